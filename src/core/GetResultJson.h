#pragma once

#include "WebFileManAPI.h"

/// The reply of most calls that do something: {"status": n, "success": "true"}.
class TORVIAPI_EXPORT CWebFileManGetResultJson {
public:
    /// `translate` false hands on the server's own number.
    explicit CWebFileManGetResultJson(bool translate = true) : m_translate(translate) {}

    int Parser(char* text);
    int GetStatus() const { return m_status; }
    bool GetResult() const { return m_result; }

private:
    int m_status = -1;
    bool m_result = false;
    bool m_translate;
};
