#pragma once

#include <string>

#include "WebFileManAPI.h"

/// The reply of "versioning_probe": whether the server keeps versions.
class TORVIAPI_EXPORT CGetVersioningProbeJson {
public:
    int Parser(char* text);
    /// The server's own number.
    int GetStatus() const { return m_status; }
    bool IsVersioningEnabled() const { return m_versioningEnabled; }
    bool IsSyncVersioningEnabled() const { return m_syncVersioningEnabled; }
    const std::wstring& GetVersion() const { return m_version; }

private:
    int m_status = -1;
    bool m_versioningEnabled = false;
    bool m_syncVersioningEnabled = false;
    std::wstring m_version;
};
