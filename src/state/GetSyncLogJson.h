#pragma once

#include <vector>

#include "WebFileManAPI.h"

/// The reply of "nubo_get_sync_log": changes from a number on.
class TORVIAPI_EXPORT CGetTorviSyncLogJson {
public:
    int Parser(char* text);
    /// The server's own number.
    int GetStatus() const { return status; }
    bool IsEnd() const { return end; }

    int32_t status = -1;
    bool end = false;
    std::vector<_WFM_SYNC_LOG_INFORMATION> records;
};
