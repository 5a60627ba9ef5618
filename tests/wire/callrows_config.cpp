#include "WebFileManShareAPI.h"
#include "callrows.h"
#include "configlists.h"

namespace {

uint32_t getConfig(Context context, const wchar_t* server, uint32_t port, uint32_t* result) {
    wire::FilledList<WFM_TORVI_DEVICE_CONFIG_LIST> list;
    return WFMGetDeviceConfigInfo(context, server, port, L"d-1", 0, false, nullptr, result, &list.record);
}

uint32_t setConfig(Context context, const wchar_t* server, uint32_t port, uint32_t* result) {
    wchar_t value[] = L"1";
    WFM_TORVI_GET_DEVICE_CONFIG_ITEM_INFO item{WFM_CONFIG_SMART_SYNC, value, 0};
    WFM_TORVI_GET_DEVICE_CONFIG_ITEM_INFO* items[] = {&item};
    const WFM_TORVI_DEVICE_CONFIG_LIST list{1, items};
    return WFMSetDeviceConfigInfo(context, server, port, nullptr, L"ann", L"d-1", nullptr, 0, &list, result);
}

uint32_t notifications(Context context, const wchar_t* server, uint32_t port, uint32_t* result) {
    wire::FilledList<WFM_TORVI_CONFIG_NOTIFY_LIST> list;
    return WFMGetConfigNotifyInfo(context, server, port, nullptr, nullptr, 0, 50, nullptr, result,
                                  &list.record);
}

uint32_t configACL(Context context, const wchar_t* server, uint32_t port, uint32_t* result) {
    WFM_TORVI_CONFIG_ACL_INFO rights;
    return WFMGetConfigACL(context, server, port, nullptr, result, &rights);
}

uint32_t configPassword(Context context, const wchar_t* server, uint32_t port, uint32_t* result) {
    uint32_t authResult = 0;
    return WFMAuthConfigPassword(context, server, port, L"secret", nullptr, result, &authResult);
}

uint32_t deviceList(Context context, const wchar_t* server, uint32_t port, uint32_t* result) {
    _WFM_TORVI_DEVICE_INFORMATION record;
    _WFM_TORVI_DEVICE_INFORMATION* list[] = {&record};
    uint32_t total = 0;
    uint32_t count = 1;
    return WebFileManGetDeviceList(context, server, port, L"ann", 0, 50, nullptr, &total, &count, list,
                                   result);
}

uint32_t resetConfig(Context context, const wchar_t* server, uint32_t port, uint32_t* result) {
    return WebFileManResetDeviceConfig(context, server, port, L"ann", L"d-1", nullptr, result);
}

/// A row of the family's wording.
CallRow configRow(const std::string& name, decltype(CallRow::run) run, const char* goodReply) {
    CallRow row = spelledRow(name, std::move(run), "[WFMShare] " + name);
    row.proxyWord = "HTTP_STATUS_PROXY_AUTH_REQ";
    row.goodReply = goodReply;
    return row;
}

/// The same of a call that gets the small reply of the family's actions.
CallRow configActionRow(const std::string& name, decltype(CallRow::run) run) {
    CallRow row = configRow(name, std::move(run), R"({"status":0,"success":"true"})");
    row.nonObjectIsUnderstood = true;
    return row;
}

}  // namespace

void addConfigRows(std::vector<CallRow>& rows) {
    rows.push_back(
        configRow("WFMGetDeviceConfigInfo", getConfig,
                  R"({"total":1,"config":[{"section":"Mails","key":"server port","value":"25"}]})"));
    rows.push_back(
        configRow("WFMGetConfigNotifyInfo", notifications, R"({"count":1,"event":[{"event_id":"1"}]})"));
    rows.push_back(configRow("WFMGetConfigACL", configACL,
                             R"({"total":1,"config":[{"section":"Mails","key":"all","value":"1"}]})"));
    rows.push_back(configRow("WFMAuthConfigPassword", configPassword, R"({"auth_result":1})"));
    rows.push_back(
        configRow("WebFileManGetDeviceList", deviceList, R"({"total":1,"device":[{"device_uid":"d-1"}]})"));

    rows.push_back(configActionRow("WebFileManResetDeviceConfig", resetConfig));
    CallRow row = configActionRow("WFMSetDeviceConfigInfo", setConfig);
    row.refused = "[WFMShare] TorviActivateSid({server}:{port}): WFM_PARSE_XML_INVALID_PARAMETER";
    rows.push_back(row);
}
