#pragma once

#include "WebFileManAPI.h"

/// The reply of "nubo_get_last_modify_time".
class TORVIAPI_EXPORT CGetLastModifiedTimeJson {
public:
    int Parser(char* text);
    /// The server's own number.
    int GetStatus() const { return status; }
    /// Hands out the time if there is one.
    bool GetLastModifiedTime(long long* time) const;

    int32_t status = -1;
    int64_t epochmt = 0;
};
