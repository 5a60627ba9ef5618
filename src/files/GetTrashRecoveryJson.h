#pragma once

#include <string>

#include "WebFileManAPI.h"

/// The reply of "trash_recovery": the job that brings a file back.
class TORVIAPI_EXPORT CGetTrashRecoveryJson {
public:
    int Parser(char* text);
    int GetStatus() const { return m_status; }
    const std::wstring& GetPid() const { return m_pid; }

private:
    int m_status = -1;
    std::wstring m_pid;
};
