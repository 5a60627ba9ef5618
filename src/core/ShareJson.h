#pragma once

#include <string>

#include "WebFileManAPI.h"

/// The reply of the simple sharing and configuration actions. The status is the server's own number.
class TORVIAPI_EXPORT CShareJson {
public:
    int Parser(char* text);
    int GetStatus() const { return m_status; }
    bool GetSuccess() const { return m_success; }
    const std::wstring& GetFile() const { return m_file; }

private:
    int m_status = -1;
    bool m_success = false;
    std::wstring m_file;
};
