#include "files/RouteTo.h"
#include "transfer/StatDeltaJson.h"

using namespace Lattice;

uint32_t WFMTorviVersioningStatDelta(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                                     const wchar_t* slaveID, const wchar_t* path, const wchar_t* versionID,
                                     void* /*reserved*/, WFM_VERSIONING_DELTA_STAT* stat) {
    static constexpr auto rules = CallRules("[WFM] WFMTorviVersioningStatDelta");
    Call call(rules, context, server, port);
    if (!call.accepts(path, versionID, stat)) return call.refuse();
    *stat = {};

    const RemotePath file = RouteTo(call, slaveID, path);
    call.get(L"func=versioning_stat_delta&sid=%ls&source_path=%ls&source_file=%ls&version_id=%ls", call.sid(),
             Encoded(file.parent), Encoded(file.name), versionID);
    CStatDeltaJson reply;
    if (!call.ask(reply)) return call.end();

    if (reply.IsSuccess())
        *stat = {reply.IsExist(), reply.GetSize()};
    else
        call.line("[WFM] WFMTorviVersioningStatDelta: IsSuccess failed");
    return call.end();
}
