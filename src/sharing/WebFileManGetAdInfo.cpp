#include <algorithm>

#include "WebFileManShareAPI.h"
#include "core/callframe.h"
#include "sharing/ShareGetAdInfoJson.h"

using namespace Lattice;

uint32_t WebFileManGetAdInfo(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                             int32_t capacity, void* /*reserved*/, uint32_t* resultWord,
                             _WFM_TORVI_AD_INFORMATION** list, uint32_t* count) {
    static constexpr auto rules = CallRules("[WFMShare] WebFileManGetAdInfo");
    Call call(rules, context, server, port);
    if (!call.accepts(resultWord, list, count)) return call.refuse();
    call.begin(resultWord);
    *count = 0;

    call.get(L"func=get_ad_info&sid=%ls", call.sid());
    CShareGetAdInfoJson reply;
    reply.room = static_cast<uint32_t>(std::max(capacity, 0));
    if (!call.ask(reply)) return call.end();

    if (reply.GetStatus() != 0) return call.answer(-1);
    call.debugLine("[WFMShare] WebFileManGetAdInfo: AdInfo num(%d)", static_cast<int>(reply.number));
    if (capacity < 0 || static_cast<uint32_t>(capacity) < reply.number) {
        *count = reply.count;
        return call.answer(ERROR_INSUFFICIENT_BUFFER,
                           "[WFMShare] WebFileManGetAdInfo: ERROR_INSUFFICIENT_BUFFER");
    }
    for (size_t i = 0; i < reply.domains.size(); ++i) {
        if (list[i] == nullptr) continue;
        *list[i] = reply.domains[i];
        ++*count;
    }
    return call.answer(0);
}
