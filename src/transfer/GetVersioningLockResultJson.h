#pragma once

#include <string>

#include "WebFileManAPI.h"

/// The reply of "versioning_lock": the ids of the session.
class TORVIAPI_EXPORT CGetVersioningLockResultJson {
public:
    int Parser(char* text);
    /// The server's own number; 1 is success.
    int GetStatus() const { return m_status; }
    const std::wstring& GetLockID() const { return m_lockID; }
    const std::wstring& GetVersionID() const { return m_versionID; }

private:
    int m_status = -1;
    std::wstring m_lockID;
    std::wstring m_versionID;
};
