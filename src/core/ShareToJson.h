#pragma once

#include "WebFileManAPI.h"

/// The reply of the calls that start a background job of the sharing family.
class TORVIAPI_EXPORT CShareToJson {
public:
    int Parser(char* text);
    bool GetFound() const { return m_found; }
    int GetStatus() const { return m_status; }
    const wchar_t* GetPid() const { return m_pid; }

private:
    bool m_found = false;
    int m_status = -1;
    wchar_t m_pid[260] = {};
};
