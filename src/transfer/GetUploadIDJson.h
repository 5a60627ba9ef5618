#pragma once

#include <string>

#include "WebFileManAPI.h"

/// The reply of "start_chunked_upload".
class TORVIAPI_EXPORT CGetUploadIDJson {
public:
    int Parser(char* text);
    /// The server's own number; 0 is success.
    int GetStatus() const { return m_status; }
    const std::wstring& GetUploadID() const { return m_uploadID; }
    bool IsHomeFolderAvailable() const { return m_homeFolderAvailable; }

private:
    int m_status = -1;
    std::wstring m_uploadID;
    bool m_homeFolderAvailable = true;
};
