#pragma once

#include "WebFileManAPI.h"

/// The reply of "nubo_get_progress": how far a job is, or what stopped it.
class TORVIAPI_EXPORT CShareGetProgressJson {
public:
    int Parser(char* text);
    bool GetResult() const { return m_result; }
    int GetStatus() const { return m_status; }
    int GetErrorCode() const { return m_errorCode; }
    int GetPercent() const { return m_percent; }

private:
    bool m_result = false;
    int m_status = 0;
    int m_errorCode = 1;
    int m_percent = 0;
};
