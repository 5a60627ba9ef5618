#pragma once

#include "WebFileManAPI.h"

/// The reply of "upload_and_move" and "chunked_upload".
class TORVIAPI_EXPORT CGetUploadChunkResultJson {
public:
    int Parser(char* text);
    int GetStatus() const { return m_status; }
    int64_t GetSize() const { return m_size; }
    bool IsHomeFolderAvailable() const { return m_homeFolderAvailable; }

private:
    int m_status = -1;
    int64_t m_size = 0;
    bool m_homeFolderAvailable = true;
};
