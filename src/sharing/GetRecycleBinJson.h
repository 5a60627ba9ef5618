#pragma once

#include "WebFileManAPI.h"

/// The reply of "nubo_get_recycle_bin_status".
class TORVIAPI_EXPORT CGetRecycleBinJson {
public:
    int Parser(char* text);
    bool GetEnabled() const { return enabled; }

    bool enabled = false;
};
