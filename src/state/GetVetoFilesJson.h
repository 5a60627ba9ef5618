#pragma once

#include <string>

#include "WebFileManAPI.h"

/// The reply of "nubo_get_veto_files": the names that must not be synced, as the server writes them.
class TORVIAPI_EXPORT CGetVetoFilesJson {
public:
    int Parser(char* text);
    /// The server's own number.
    int GetStatus() const { return status; }
    const std::wstring& GetVetoFiles() const { return vetoFiles; }

    int32_t status = -1;
    std::wstring vetoFiles;
};
