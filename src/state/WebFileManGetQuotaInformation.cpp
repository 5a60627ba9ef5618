#include "WebFileManShareAPI.h"
#include "core/callframe.h"
#include "core/handover.h"
#include "state/GetUserQuotaJson.h"

using namespace Lattice;

uint32_t WebFileManGetQuotaInformation(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                                       const wchar_t* slaveID, bool getAll, void* /*reserved*/,
                                       bool* quotaEnabled, int64_t* volumeFree, int64_t* volumeTotal,
                                       uint32_t* count, USER_QUOTA_INFO*** list, uint32_t* resultWord) {
    static constexpr auto rules = CallRules("[WFM] WebFileManGetQuotaInformation");
    Call call(rules, context, server, port);
    if (!call.accepts(quotaEnabled, volumeFree, volumeTotal, count, list, resultWord)) return call.refuse();
    call.begin(resultWord);
    *quotaEnabled = false;
    *volumeFree = *volumeTotal = 0;
    *count = 0;
    *list = nullptr;

    call.route(slaveID);
    call.get(L"func=nubo_get_quota_info&sid=%ls%ls", call.sid(), getAll ? L"&get_all=1" : L"");
    CGetUserQuotaJson reply;
    if (!call.ask(reply)) return call.end();

    if (reply.GetStatus() != 0)
        return call.answer(-1, "[WFM] WebFileManGetQuotaInformation: ERROR_UNKNOWN (%d)", reply.GetStatus());
    *volumeFree = reply.volumeFree;
    *volumeTotal = reply.volumeTotal;
    *quotaEnabled = reply.quotaEnabled;
    for (USER_QUOTA_INFO& quota : reply.quotas)
        if (quota.llUsedSize >= quota.llQuotaSize) quota.llAvailableSize = 0;
    *list = HandOver(reply.quotas);
    *count = static_cast<uint32_t>(reply.quotas.size());
    return call.answer(0);
}
