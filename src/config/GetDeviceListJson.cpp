#include "config/GetDeviceListJson.h"

#include <algorithm>

#include "config/configreply.h"

using namespace Lattice;

int CGetDeviceListJson::Parser(char* text) {
    return ParseConfigReply(text, status, [this](const Json::Value& root) {
        total = static_cast<uint32_t>(std::max(0, JsonGetInt(root, "total", 0)));
        return ReadObjects(root, "device", [this](const Json::Value& json) {
            if (number++ >= room) return;
            _WFM_TORVI_DEVICE_INFORMATION device{};
            CopyTextCut(device.szDeviceName, JsonText(json, "device_name"));
            CopyTextCut(device.szDeviceUID, JsonText(json, "device_uid"));
            CopyTextCut(device.szIP, JsonText(json, "ip"));
            device.llModifiedTime = JsonGetSize(json, "modify_time", 0);
            devices.push_back(device);
        });
    });
}
