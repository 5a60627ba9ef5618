#pragma once

#include <string>

#include "WebFileManAPI.h"

/// The reply of the calls that make, change or mail a link. It is JSON, whatever the name says.
class TORVIAPI_EXPORT CWebFileManCreateLinkXml {
public:
    int Parser(char* text);
    /// 0; 6: the mail failed; 7: the time is no good; -1 otherwise.
    int GetStatus() const { return status; }
    const std::wstring& GetResult() const { return result; }

    int32_t status = -1;
    std::wstring result;
};
