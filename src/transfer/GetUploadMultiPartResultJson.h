#pragma once

#include <QString>
#include <string>
#include <vector>

#include "WebFileManAPI.h"

/// What the server says of one file of a batch.
struct _MULTI_PART_FILE_INFO {
    int32_t nStatus;  ///< client code
    std::wstring strName;
    int64_t llSize;
};

/// The reply to a batch of files.
class TORVIAPI_EXPORT CGetUploadMultiPartResultJson {
public:
    int Parser(char* text);
    int GetStatus() const { return m_status; }
    /// The file of that name, in whatever case, or null.
    const _MULTI_PART_FILE_INFO* GetMultiPartFileInfo(std::wstring name) const;

private:
    int m_status = -1;
    std::vector<_MULTI_PART_FILE_INFO> m_files;
    std::vector<QString> m_names;  // of the files, without regard to case
};
