#include <algorithm>

#include "WebFileManShareAPI.h"
#include "config/GetConfigItemInfoJson.h"
#include "config/handoverlist.h"
#include "core/callframe.h"

using namespace Lattice;

namespace {

constexpr int32_t kWithTemplate = 1;
constexpr int32_t kAllOfSecondKind = 3;

std::wstring QuestionOf(int32_t mode, bool checkExist) {
    std::wstring question = mode == kAllOfSecondKind ? L"&get_all=2" : L"&get_all=1";
    if (mode == kWithTemplate) question += L"&get_template=1";
    if (checkExist) question += L"&check_exist=1";
    return question;
}

WFM_TORVI_GET_DEVICE_CONFIG_ITEM_INFO* MakeItem(const _GET_DEVICE_CONFIG_ITEM_INFO& element) {
    const size_t size = element.value.size() + 1;
    auto* const value = new (std::nothrow) wchar_t[size];
    if (value == nullptr) return nullptr;
    std::copy_n(element.value.c_str(), size, value);
    auto* const item = new (std::nothrow) WFM_TORVI_GET_DEVICE_CONFIG_ITEM_INFO{element.flag, value, 0};
    if (item == nullptr) delete[] value;
    return item;
}

void FreeItem(WFM_TORVI_GET_DEVICE_CONFIG_ITEM_INFO* item) {
    delete[] item->pszValue;
    delete item;
}

}  // namespace

uint32_t WFMGetDeviceConfigInfo(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                                const wchar_t* deviceUID, int32_t mode, bool checkExist, void* /*reserved*/,
                                uint32_t* resultWord, WFM_TORVI_DEVICE_CONFIG_LIST* list) {
    static constexpr auto rules = CallRules("[WFMShare] WFMGetDeviceConfigInfo").withOutcomes(kShareOutcomes);
    Call call(rules, context, server, port);
    if (!call.accepts(deviceUID, resultWord, list)) return call.refuse();
    call.begin(resultWord);
    *list = {};

    call.get(L"func=nubo_get_device_config&sid=%ls&device_uid=%ls%ls", call.sid(), deviceUID,
             QuestionOf(mode, checkExist));
    CGetConfigItemInfoJson reply;
    if (!call.ask(reply)) return call.end();

    if (reply.GetStatus() != 0)
        return call.answer(reply.GetStatus(), "[WFMShare] WFMGetDeviceConfigInfo: get error status(%d)",
                           reply.GetStatus());
    if (!HandOverList(*list, reply.items, MakeItem, FreeItem))
        return call.answer(
            ERROR_NOT_ENOUGH_MEMORY,
            "[WFMShare] WFMGetDeviceConfigInfo: new WFM_TORVI_GET_DEVICE_CONFIG_ITEM_INFO failed");
    return call.answer(0);
}
