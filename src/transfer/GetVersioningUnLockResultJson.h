#pragma once

#include "WebFileManAPI.h"

/// The reply of "versioning_unlock".
class TORVIAPI_EXPORT CGetVersioningUnLockResultJson {
public:
    int Parser(char* text);
    /// The server's own number; 1 is success.
    int GetStatus() const { return m_status; }

private:
    int m_status = -1;
};
