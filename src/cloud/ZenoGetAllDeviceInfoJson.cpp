#include "cloud/ZenoGetAllDeviceInfoJson.h"

#include "cloud/cloudstatus.h"
#include "core/handover.h"
#include "core/replyfields.h"

using namespace Lattice;

namespace {

/// A text of a record, and the key that it comes from.
template <class Record>
struct TextField {
    const char* key;
    wchar_t (Record::*field)[260];
};

template <class Record, size_t N>
void ReadTexts(Record& record, const Json::Value& json, const TextField<Record> (&fields)[N]) {
    for (const TextField<Record>& text : fields) CopyTextCut(record.*text.field, JsonText(json, text.key));
}

/// An object in a device; one that is missing or something else has no keys.
const Json::Value& ObjectOf(const Json::Value& json, const char* key) {
    return json[key].isObject() ? json[key] : Json::Value::nullSingleton();
}

/// A list in a device; one that is missing or something else is empty, and so is what isn't an object in it.
template <class Record, class Read>
void ReadList(const Json::Value& json, const char* key, Record**& list, int32_t& count, Read read) {
    std::vector<Record> records;
    if (json[key].isArray())
        for (const Json::Value& element : json[key])
            if (element.isObject()) read(records.emplace_back(), element);
    list = HandOver(records);
    count = static_cast<int32_t>(records.size());
}

void ReadIP(_NAS_DEVICE_IP_INFO& ip, const Json::Value& json) {
    ReadTexts(ip, json,
              {{"name", &_NAS_DEVICE_IP_INFO::szName},
               {"ipv4", &_NAS_DEVICE_IP_INFO::szIPv4},
               {"ipv6", &_NAS_DEVICE_IP_INFO::szIPv6}});
}

void ReadUpdateInfo(_NAS_DEVICE_UPDATE_INFO& info, const Json::Value& json) {
    using Info = _NAS_DEVICE_UPDATE_INFO;
    ReadTexts(info, json,
              {{"device_type", &Info::szDeviceType},
               {"model_name", &Info::szModelName},
               {"fw_model_name", &Info::szFwModelName},
               {"hw_serial_number", &Info::szHwSerialNumber},
               {"fw_serial_number", &Info::szFwSerialNumber},
               {"mac_address", &Info::szMacAddress},
               {"host_name", &Info::szHostName},
               {"firmware_version", &Info::szFirmwareVersion},
               {"firmware_build_number", &Info::szFirmwareBuildNumber},
               {"firmware_patch_version", &Info::szFirmwarePatchVersion},
               {"agent_version", &Info::szAgentVersion},
               {"firmware_number", &Info::szFirmwareNumber}});
    ReadIP(info.lanGateway, ObjectOf(json, "lan_gateway"));
    ReadList(json, "lan_ips", info.lppLanIPs, info.nLanIPCount, ReadIP);
    ReadList(json, "wan_ips", info.lppWanIPs, info.nWanIPCount, ReadIP);
}

void ReadService(_NAS_DEVICE_SERVICE_INFO& service, const Json::Value& json) {
    ReadTexts(service, json,
              {{"service_name", &_NAS_DEVICE_SERVICE_INFO::szServiceName},
               {"protocol", &_NAS_DEVICE_SERVICE_INFO::szProtocol},
               {"uri", &_NAS_DEVICE_SERVICE_INFO::szUri}});
    service.nExternalPort = JsonGetInt(json, "external_port", 0);
    service.nInternalPort = JsonGetInt(json, "internal_port", 0);
    service.bPublished = JsonGetFlag(json, "published", false);
    service.bPrivate = JsonGetFlag(json, "private", false);
}

void ReadUser(_NAS_DEVICE_USER_INFO& user, const Json::Value& json) {
    ReadTexts(user, json, {{"user_name", &_NAS_DEVICE_USER_INFO::szUserName}});
}

void ReadModel(_NAS_DEVICE_MODEL_INFO& model, const Json::Value& json) {
    using Model = _NAS_DEVICE_MODEL_INFO;
    ReadTexts(model, json,
              {{"name", &Model::szName},
               {"latest_fw_version", &Model::szLatestFwVersion},
               {"latest_fw_build_number", &Model::szLatestFwBuildNumber},
               {"latest_fw_patch_version", &Model::szLatestFwPatchVersion},
               {"img_url", &Model::szImgUrl}});
}

void ReadPermissions(_NAS_DEVICE_PERMISSIONS& permissions, const Json::Value& json) {
    using Permissions = _NAS_DEVICE_PERMISSIONS;
    ReadTexts(permissions, json,
              {{"basic_info", &Permissions::szBasicInfo},
               {"remote_access", &Permissions::szRemoteAccess},
               {"public_local_service", &Permissions::szPublicLocalService},
               {"private_local_service", &Permissions::szPrivateLocalService},
               {"public_package_services", &Permissions::szPublicPackageServices},
               {"protected_package_services", &Permissions::szProtectedPackageServices},
               {"private_package_services", &Permissions::szPrivatePackageServices}});
}

DevicePtr ReadDevice(const Json::Value& json) {
    using Device = _NAS_DEVICE_INFORMATION_API_V11;
    DevicePtr device(new Device{});
    ReadTexts(*device, json,
              {{"device_id", &Device::szDeviceID},
               {"token", &Device::szToken},
               {"device_name", &Device::szDeviceName},
               {"access_code", &Device::szAccessCode},
               {"access_control_mode", &Device::szAccessControlMode},
               {"user_id", &Device::szUserID},
               {"description", &Device::szDescription},
               {"domain_name", &Device::szDomainName}});
    ReadUpdateInfo(device->info, ObjectOf(json, "info"));
    ReadList(json, "local_services", device->lppServices, device->nServiceCount, ReadService);
    ReadList(json, "local_users", device->lppUsers, device->nUserCount, ReadUser);
    ReadModel(device->modelInfo, ObjectOf(json, "model_info"));
    ReadPermissions(device->permissions, ObjectOf(json, "permissions"));
    return device;
}

}  // namespace

int CZenoGetAllDeviceInfoJson::Parser(char* text) {
    return ParseReply(text, [this](const Json::Value& root) {
        if (!root.isObject()) return -1;
        code = CloudCodeOf(root);
        status = CloudStatusOf(code);
        if (status != 0 || !IsPresent(root, "result")) return 1;
        if (!root["result"].isArray()) return -1;
        for (const Json::Value& json : root["result"])
            if (json.isObject()) devices.push_back(ReadDevice(json));
        return 1;
    });
}
