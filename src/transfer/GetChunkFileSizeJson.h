#pragma once

#include "WebFileManAPI.h"

/// The reply of "get_chunked_upload_status": how much of a file the server holds.
class TORVIAPI_EXPORT CGetChunkFileSizeJson {
public:
    int Parser(char* text);
    /// The server's own number; 0 is success.
    int GetStatus() const { return m_status; }
    int64_t GetSize() const { return m_size; }

private:
    int m_status = -1;
    int64_t m_size = 0;
};
