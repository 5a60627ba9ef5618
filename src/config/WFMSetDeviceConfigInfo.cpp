#include "WebFileManShareAPI.h"
#include "config/configitems.h"
#include "core/ShareJson.h"
#include "core/callframe.h"
#include "session/password.h"

using namespace Lattice;

namespace {

constexpr int32_t kIsTemplate = 1;
constexpr int32_t kWithAction = 1;

/// Adds an item as the one of that number; false for one that the server doesn't know.
bool AddItem(Call& call, const WFM_TORVI_GET_DEVICE_CONFIG_ITEM_INFO& item, uint32_t number) {
    const std::wstring value = TextOf(item.pszValue);
    std::wstring section;
    std::wstring key;
    if (GetConfigItemContent(item.dwFlag, section, key) == 0) {
        call.line("[WFMShare] WFMSetDeviceConfigInfo: GetConfigItemContent failed(%d)(%ls)",
                  static_cast<int>(item.dwFlag), value.c_str());
        return false;
    }
    const std::string index = std::to_string(number);
    call.field(("section" + index).c_str(), section);
    call.field(("key" + index).c_str(), key);
    call.field(("value" + index).c_str(), EncodedConfigValue(item.dwFlag, value));
    if (item.nAction == kWithAction) call.field(("action" + index).c_str(), "1");
    return true;
}

}  // namespace

uint32_t WFMSetDeviceConfigInfo(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                                void* /*reserved*/, const wchar_t* user, const wchar_t* deviceUID,
                                const wchar_t* password, int32_t isTemplate,
                                const WFM_TORVI_DEVICE_CONFIG_LIST* list, uint32_t* resultWord) {
    // The line of a refusal names another call, and that must stay.
    static constexpr auto rules =
        CallRules("[WFMShare] WFMSetDeviceConfigInfo")
            .withRefused("[WFMShare] TorviActivateSid({server}:{port}): WFM_PARSE_XML_INVALID_PARAMETER")
            .withOutcomes(kShareOutcomes);
    Call call(rules, context, server, port);
    if (!call.accepts(user, deviceUID, list, resultWord) || list->dwCount == 0 || list->lppItems == nullptr)
        return call.refuse();
    call.begin(resultWord);

    call.post(L"func=nubo_save_device_config&sid=%ls&device_uid=%ls&user=%ls&apply=1", call.sid(), deviceUID,
              user);
    if (isTemplate == kIsTemplate) call.field("template", "1");
    uint32_t sent = 0;
    for (uint32_t i = 0; i < list->dwCount; ++i)
        if (list->lppItems[i] != nullptr && AddItem(call, *list->lppItems[i], sent)) ++sent;
    if (sent == 0) {
        call.line("[WFMShare] WFMSetDeviceConfigInfo: WFM_PARSE_XML_INVALID_PARAMETER item number(0)");
        return call.leave(WFM_PARSE_XML_INVALID_PARAMETER);
    }
    call.field("config_number", sent);
    if (IsGiven(password)) call.field("password", EncodedPassword(password).constData());
    CShareJson reply;
    if (!call.ask(reply)) return call.end();

    if (reply.GetStatus() != 0)
        return call.answer(reply.GetStatus(), "[WFMShare] WFMSetDeviceConfigInfo: get error status(%d)",
                           reply.GetStatus());
    return call.answer(0);
}
