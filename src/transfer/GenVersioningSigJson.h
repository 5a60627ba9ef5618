#pragma once

#include "WebFileManAPI.h"

/// The reply of "versioning_gen_sig" and "versioning_gen_delta": the job that makes it.
class TORVIAPI_EXPORT CGenVersioningSigJson {
public:
    int Parser(char* text);
    bool IsSuccess() const { return m_success; }
    /// The server's own number.
    int GetStatus() const { return m_status; }
    const wchar_t* GetPid() const { return m_pid; }
    const wchar_t* GetVersionID() const { return m_versionID; }

private:
    bool m_success = false;
    int m_status = 0;
    wchar_t m_pid[260] = {};
    wchar_t m_versionID[260] = {};
};
