#include "core/callframe.h"
#include "state/GetMaxLogJson.h"

using namespace Lattice;

namespace {

constexpr Endpoint kPrepare{L"/%lscgi-bin/torvi/torvisrvPrepare.cgi",
                            L"/cgi-bin/filemanager/torviPrepare.cgi"};
constexpr Endpoint kPrepareFcgi{L"/%lscgi-bin/torvi/torvisrv.fcgi", L"/cgi-bin/filemanager/torviPrepare.cgi"};

}  // namespace

uint32_t WFMTorviGetMaxLog(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                           const wchar_t* slaveID, const wchar_t* folder, void* /*reserved*/,
                           _TORVI_MAX_LOG_NUMBERS* record, uint32_t* resultWord) {
    static constexpr auto rules = CallRules("[WFMShare] WFMTorviGetMaxLog").withEndpoint(kPrepare);
    Call call(rules, context, server, port);
    if (!call.accepts(record, resultWord)) return call.refuse();
    call.begin(resultWord);
    *record = {-1, -1, -1, -1};

    call.route(slaveID);
    if (call.usesFcgi()) call.use(kPrepareFcgi);
    const std::wstring ofFolder = IsGiven(folder) ? L"&folder=" + Encoded(folder) : L"";
    call.get(L"func=nubo_get_max_log&sid=%ls%ls", call.sid(), ofFolder);
    CTorviGetMaxLogJson reply;
    if (!call.ask(reply)) return call.end();

    if (reply.GetStatus() != 0)
        return call.answer(reply.GetStatus(), "[WFMShare] WFMTorviGetMaxLog(%ls:%d): Get error status=%d",
                           server, static_cast<int>(port), reply.GetStatus());
    if (reply.folders.size() == 1 && reply.folders.front().llMaxLog != -1)
        record->llMaxLog = reply.folders.front().llMaxLog;
    TakeLogNumber(record->llNotify, reply.notify);
    TakeLogNumber(record->llGlobalNotify, reply.globalNotify);
    TakeLogNumber(record->llSyncSignal, reply.syncSignal);
    return call.answer(0);
}
