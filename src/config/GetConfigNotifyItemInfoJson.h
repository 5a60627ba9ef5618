#pragma once

#include <string>
#include <vector>

#include "WebFileManAPI.h"

/// One change of a configuration.
struct _GET_CONFIG_NOTIFY_ITEM_INFO {
    int32_t eventID = 0;
    std::wstring user;
    std::wstring deviceUID;
    std::wstring action;
    std::wstring type;
    std::wstring status;
    std::wstring time;
    std::wstring modifier;
    std::wstring value;
};

/// The reply of "nubo_query_notify".
class TORVIAPI_EXPORT CGetConfigNotifyItemInfoJson {
public:
    /// Whose changes were asked for; empty: anybody's, on any device. Given before the reply is parsed.
    void SetFilter(std::wstring ofUser, std::wstring ofDeviceUID) {
        user = std::move(ofUser);
        deviceUID = std::move(ofDeviceUID);
    }
    int Parser(char* text);
    int GetStatus() const { return status; }

    std::wstring user;
    std::wstring deviceUID;
    int32_t status = -1;
    int32_t count = 0;
    std::vector<_GET_CONFIG_NOTIFY_ITEM_INFO> events;
};
