#include "cloudcalls.h"

namespace {

uint32_t deviceID(const CloudTarget& to) {
    _CLOUD_DEVICE_ID_INFORMATION device;
    return ZenoAPIGetDeviceID(to.server, L"Desk/7", L"1.2.3", L"desk-app", L"user-7", L"secret", to.secure,
                              to.proxyMode, to.proxyHost, to.proxyUser, to.proxyPassword, nullptr, &device);
}

uint32_t deviceCount(const CloudTarget& to) {
    uint32_t result = 0;
    int32_t count = 0;
    return ZenoAPIGetAllDeviceCount(to.server, L"Desk/7", L"1.2.3", L"desk-app", L"token-1", to.secure,
                                    to.proxyMode, to.proxyHost, to.proxyUser, to.proxyPassword, nullptr,
                                    &result, &count);
}

uint32_t allDevices(const CloudTarget& to) {
    uint32_t result = 0;
    int32_t count = 0;
    _NAS_DEVICE_INFORMATION_API_V11** devices = nullptr;
    const uint32_t status = ZenoAPIGetAllDeviceInfo(to.server, L"Desk/7", L"1.2.3", L"desk-app", L"token-1",
                                                    to.secure, to.proxyMode, to.proxyHost, to.proxyUser,
                                                    to.proxyPassword, nullptr, &result, &count, &devices);
    ZenoFreeDeviceInfo(count, &devices);
    return status;
}

uint32_t devicesByName(const CloudTarget& to) {
    uint32_t result = 0;
    int32_t count = 0;
    _NAS_DEVICE_INFORMATION_API_V11** devices = nullptr;
    const uint32_t status = ZenoAPIGetDeviceInfoByName(
        to.server, L"Desk/7", L"1.2.3", L"desk-app", L"token-1", L"attic", to.secure, to.proxyMode,
        to.proxyHost, to.proxyUser, to.proxyPassword, nullptr, &result, &count, &devices);
    ZenoFreeDeviceInfo(count, &devices);
    return status;
}

uint32_t cloudLink(const CloudTarget& to) {
    _CLOUD_LINK_INFORMATION link{};
    const uint32_t status = ZenoAPIGetCloudLinkSetting(
        to.server, L"Desk/7", L"1.2.3", L"desk-app", L"token-1", L"d-1", to.secure, to.proxyMode,
        to.proxyHost, to.proxyUser, to.proxyPassword, nullptr, &link);
    ZenoFreeCloudInfo(&link);
    return status;
}

uint32_t publicIP(const CloudTarget& to) {
    wchar_t address[260];
    return ZenoAPIGetPublicIP(to.server, L"Desk/7", L"1.2.3", L"desk-app", L"token-1", to.secure,
                              to.proxyMode, to.proxyHost, to.proxyUser, to.proxyPassword, nullptr, address);
}

const char* const kDevices = R"({"code":0,"result":[{"device_id":"d-1","local_users":[{"user_name":"a"}]}]})";

/// The calls that list devices lack a colon.
CloudRow listRow(const char* name, decltype(CloudRow::run) run, const char* notUnderstood) {
    CloudRow row{name, std::move(run), kDevices};
    row.notUnderstood = notUnderstood;
    row.has404 = true;
    return row;
}

}  // namespace

std::vector<CloudRow> cloudDeviceRows() {
    CloudRow id{"ZenoAPIGetDeviceID", deviceID,
                R"({"return":{"code":"200","message":"Access successfully.","deviceId":"d-1"}})"};
    id.goodLine = "[WFM] ZenoAPIGetDeviceID DeviceID(d-1), Msg(Access successfully.), ResponseCode(0)";
    // Most of its lines name another call.
    id.unavailable = "[WFM] PeltAPIGetServicePorts: WFM_PARSE_XML_HTTPTRAN_SERVICE_UNAVAIL";
    id.failed = "[WFM] PeltAPIGetServicePorts FAIL(httpStatusCode={http})";
    id.summary = "[WFM] PeltAPIGetServicePorts failed dwStatus({status})";
    CloudRow link{"ZenoAPIGetCloudLinkSetting", cloudLink,
                  R"({"code":0,"result":{"resources":[{"type":"ddns","host":"nas.example"}]}})"};
    link.has404 = true;
    CloudRow address{"ZenoAPIGetPublicIP", publicIP, R"({"code":0,"result":{"public_ip":"203.0.113.7"}})"};
    address.goodLine = "[WFM] ZenoAPIGetPublicIP PublicIP(203.0.113.7)";
    return {
        id,
        {"ZenoAPIGetAllDeviceCount", deviceCount, R"({"code":0,"result":3})"},
        listRow("ZenoAPIGetAllDeviceInfo", allDevices, "[WFM] ZenoAPIGetAllDeviceInfo WFM_PARSE_XML_FAIL"),
        listRow("ZenoAPIGetDeviceInfoByName", devicesByName,
                "[WFM] ZenoAPIGetDeviceInfoByName WFM_PARSE_XML_FAIL"),
        link,
        address};
}
