#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "WebFileManAPI.h"
#include "support/staterecords.h"

/// What the cloud tells of a device, each record as one line of text; a zeroed one is empty.

inline std::string describe(const _NAS_DEVICE_IP_INFO& record) {
    return RecordWords()
        .text("name", record.szName)
        .text("ipv4", record.szIPv4)
        .text("ipv6", record.szIPv6)
        .joined();
}

inline std::string describe(const _NAS_DEVICE_SERVICE_INFO& record) {
    return RecordWords()
        .text("service_name", record.szServiceName)
        .text("protocol", record.szProtocol)
        .text("uri", record.szUri)
        .number("external_port", record.nExternalPort)
        .number("internal_port", record.nInternalPort)
        .flag("published", record.bPublished)
        .flag("private", record.bPrivate)
        .joined();
}

inline std::string describe(const _NAS_DEVICE_USER_INFO& record) {
    return RecordWords().text("user_name", record.szUserName).joined();
}

inline std::string describe(const _NAS_DEVICE_UPDATE_INFO& record) {
    return RecordWords()
        .text("device_type", record.szDeviceType)
        .text("model_name", record.szModelName)
        .text("fw_model_name", record.szFwModelName)
        .text("hw_serial_number", record.szHwSerialNumber)
        .text("fw_serial_number", record.szFwSerialNumber)
        .text("mac_address", record.szMacAddress)
        .text("host_name", record.szHostName)
        .text("firmware_version", record.szFirmwareVersion)
        .text("firmware_build_number", record.szFirmwareBuildNumber)
        .text("firmware_patch_version", record.szFirmwarePatchVersion)
        .text("agent_version", record.szAgentVersion)
        .text("firmware_number", record.szFirmwareNumber)
        .joined();
}

inline std::string describe(const _NAS_DEVICE_MODEL_INFO& record) {
    return RecordWords()
        .text("name", record.szName)
        .text("latest_fw_version", record.szLatestFwVersion)
        .text("latest_fw_build_number", record.szLatestFwBuildNumber)
        .text("latest_fw_patch_version", record.szLatestFwPatchVersion)
        .text("img_url", record.szImgUrl)
        .joined();
}

inline std::string describe(const _NAS_DEVICE_PERMISSIONS& record) {
    return RecordWords()
        .text("basic_info", record.szBasicInfo)
        .text("remote_access", record.szRemoteAccess)
        .text("public_local_service", record.szPublicLocalService)
        .text("private_local_service", record.szPrivateLocalService)
        .text("public_package_services", record.szPublicPackageServices)
        .text("protected_package_services", record.szProtectedPackageServices)
        .text("private_package_services", record.szPrivatePackageServices)
        .joined();
}

/// The texts of the device itself.
inline std::string describe(const _NAS_DEVICE_INFORMATION_API_V11& record) {
    return RecordWords()
        .text("device_id", record.szDeviceID)
        .text("token", record.szToken)
        .text("device_name", record.szDeviceName)
        .text("access_code", record.szAccessCode)
        .text("access_control_mode", record.szAccessControlMode)
        .text("user_id", record.szUserID)
        .text("description", record.szDescription)
        .text("domain_name", record.szDomainName)
        .joined();
}

/// A list in a device; "broken" where list and count contradict each other.
template <class Record>
std::vector<std::string> describeList(Record* const* list, int32_t count) {
    if ((list == nullptr) != (count == 0)) return {"broken"};
    std::vector<std::string> texts;
    for (int32_t i = 0; i < count; ++i) texts.push_back(describe(*list[i]));
    return texts;
}

/// A list of addresses.
inline std::vector<std::wstring> textsOf(wchar_t* const* list, int32_t count) {
    if ((list == nullptr) != (count == 0)) return {L"broken"};
    return {list, list + count};
}
