#pragma once

#include "WebFileManAPI.h"

/// The reply of a request that may start a job on the server.
class TORVIAPI_EXPORT CWebFileManFileProcessJson {
public:
    int Parser(char* text);
    int GetPid() const { return m_pid; }
    int GetStatus() const { return m_status; }
    bool GetResult() const { return m_result; }

private:
    int m_pid = 0;
    int m_status = -1;
    bool m_result = false;
};
