#include "WebFileManShareAPI.h"
#include "config/GetConfigNotifyItemInfoJson.h"
#include "config/handoverlist.h"
#include "core/callframe.h"

using namespace Lattice;

namespace {

WFM_TORVI_CONFIG_NOTIFY_ITEM_INFO* MakeItem(const _GET_CONFIG_NOTIFY_ITEM_INFO& event) {
    auto* const item = new (std::nothrow) WFM_TORVI_CONFIG_NOTIFY_ITEM_INFO{};
    if (item == nullptr) return nullptr;
    item->nEventID = event.eventID;
    CopyTextCut(item->szUser, event.user);
    CopyTextCut(item->szDeviceUID, event.deviceUID);
    CopyTextCut(item->szAction, event.action);
    CopyTextCut(item->szType, event.type);
    CopyTextCut(item->szStatus, event.status);
    CopyTextCut(item->szTime, event.time);
    CopyTextCut(item->szModifier, event.modifier);
    CopyTextCut(item->szValue, event.value);
    return item;
}

void FreeItem(WFM_TORVI_CONFIG_NOTIFY_ITEM_INFO* item) {
    delete item;
}

}  // namespace

uint32_t WFMGetConfigNotifyInfo(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                                const wchar_t* user, const wchar_t* deviceUID, uint32_t lower, uint32_t upper,
                                void* /*reserved*/, uint32_t* resultWord,
                                WFM_TORVI_CONFIG_NOTIFY_LIST* list) {
    static constexpr auto rules = CallRules("[WFMShare] WFMGetConfigNotifyInfo").withOutcomes(kShareOutcomes);
    Call call(rules, context, server, port);
    if (!call.accepts(resultWord, list) || lower > upper) return call.refuse();
    call.begin(resultWord);
    *list = {};

    std::wstring whose;
    if (IsGiven(user)) whose += std::wstring(L"&user=") + user;
    if (IsGiven(deviceUID)) whose += std::wstring(L"&device_uid=") + deviceUID;
    call.get(L"func=nubo_query_notify&sid=%ls&lower=%d&upper=%d%ls", call.sid(), lower, upper, whose);
    CGetConfigNotifyItemInfoJson reply;
    reply.SetFilter(TextOf(user), TextOf(deviceUID));
    if (!call.ask(reply)) return call.end();

    if (reply.GetStatus() != 0)
        return call.answer(reply.GetStatus(), "[WFMShare] WFMGetConfigNotifyInfo: get error status(%d)",
                           reply.GetStatus());
    if (!HandOverList(*list, reply.events, MakeItem, FreeItem))
        return call.answer(ERROR_NOT_ENOUGH_MEMORY,
                           "[WFMShare] WFMGetConfigNotifyInfo: new WFM_TORVI_CONFIG_NOTIFY_ITEM_INFO failed");
    return call.answer(0);
}
