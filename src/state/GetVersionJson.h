#pragma once

#include <string>

#include "WebFileManAPI.h"

/// The reply of the bare file-manager CGI: its version.
class TORVIAPI_EXPORT CGetVersionJson {
public:
    int Parser(char* text);
    const std::wstring& GetVersion() const { return m_version; }
    const std::wstring& GetBuildNumber() const { return m_buildNumber; }

private:
    std::wstring m_version;
    std::wstring m_buildNumber;
};
