#pragma once

#include <string>

#include "WebFileManAPI.h"

/// The reply of "get_move_status": how far a job is.
class TORVIAPI_EXPORT CGetMoveStatusJson {
public:
    int Parser(char* text);
    int GetStatus() const { return m_status; }
    const std::wstring& GetFileName() const { return m_fileName; }
    int GetPercent() const { return m_percent; }

private:
    int m_status = -1;
    std::wstring m_fileName;
    int m_percent = 0;
};
