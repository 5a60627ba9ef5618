#pragma once

#include "WebFileManAPI.h"

/// The reply of "versioning_stat_delta": whether a delta is there and how long it is.
class TORVIAPI_EXPORT CStatDeltaJson {
public:
    int Parser(char* text);
    bool IsSuccess() const { return m_success; }
    bool IsExist() const { return m_exist; }
    int64_t GetSize() const { return m_size; }

private:
    bool m_success = false;
    bool m_exist = false;
    int64_t m_size = 0;
};
