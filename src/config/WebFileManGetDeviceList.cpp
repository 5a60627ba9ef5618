#include "WebFileManShareAPI.h"
#include "config/GetDeviceListJson.h"
#include "core/callframe.h"

using namespace Lattice;

uint32_t WebFileManGetDeviceList(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                                 const wchar_t* user, uint32_t lower, uint32_t upper, void* /*reserved*/,
                                 uint32_t* total, uint32_t* count, _WFM_TORVI_DEVICE_INFORMATION** list,
                                 uint32_t* resultWord) {
    static constexpr auto rules =
        CallRules("[WFMShare] WebFileManGetDeviceList").withOutcomes(kShareOutcomes);
    Call call(rules, context, server, port);
    if (!call.accepts(user, total, count, list, resultWord)) return call.refuse();
    call.begin(resultWord);
    const uint32_t capacity = *count;
    *total = *count = 0;

    call.get(L"func=nubo_get_device_config_list&sid=%ls&user=%ls&lower=%d&upper=%d", call.sid(),
             Encoded(user), lower, upper);
    CGetDeviceListJson reply;
    reply.room = capacity;
    if (!call.ask(reply)) return call.end();

    if (reply.GetStatus() != 0) return call.answer(reply.GetStatus());
    *total = reply.total;
    if (reply.number > capacity) {
        *count = reply.number;
        return call.answer(ERROR_INSUFFICIENT_BUFFER,
                           "[WFMShare] WebFileManGetDeviceList: ERROR_INSUFFICIENT_BUFFER");
    }
    for (size_t i = 0; i < reply.devices.size(); ++i) {
        if (list[i] == nullptr) continue;
        *list[i] = reply.devices[i];
        ++*count;
    }
    return call.answer(0);
}
