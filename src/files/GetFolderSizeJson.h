#pragma once

#include "WebFileManAPI.h"

/// The reply of "properties": how many bytes a path holds.
class TORVIAPI_EXPORT CGetFolderSizeJson {
public:
    int Parser(char* text);
    int GetStatus() const { return m_status; }
    bool IsValid() const { return m_valid; }
    int64_t GetSize() const { return m_size; }

private:
    int m_status = -1;
    bool m_valid = false;
    int64_t m_size = 0;
};
