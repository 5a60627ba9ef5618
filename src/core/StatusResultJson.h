#pragma once

#include "WebFileManAPI.h"

/// A reply that is its status alone. The number is kept as it came and translated at each reading, so a
/// parser that read nothing answers with the translation of 0, which is no success.
class TORVIAPI_EXPORT CWFMStatusResultJson {
public:
    int Parser(char* text);
    int GetStatus() const;

private:
    int m_status = 0;
};
