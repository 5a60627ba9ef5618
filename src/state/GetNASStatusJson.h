#pragma once

#include "WebFileManAPI.h"

/// The reply of "nubo_get_nas_status": what is in order for this user.
class TORVIAPI_EXPORT CGetNASStatusJson {
public:
    int Parser(char* text);
    int GetStatus() const { return m_status; }
    const _NAS_STATUS_INFORMATION& GetInformation() const { return m_information; }

private:
    int m_status = -1;
    _NAS_STATUS_INFORMATION m_information{};
};
