#include "core/ShareToJson.h"
#include "files/RouteTo.h"
#include "transfer/sessionids.h"

using namespace Lattice;

uint32_t WFMTorviVersioningCommitUpload(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                                        const wchar_t* slaveID, const wchar_t* path, const wchar_t* lockID,
                                        const wchar_t* versionID, int64_t modifiedTime, void* /*reserved*/,
                                        uint32_t* resultWord, wchar_t* pid) {
    static constexpr auto rules = CallRules("[WFM] WFMTorviVersioningCommitUpload");
    Call call(rules, context, server, port);
    if (!call.accepts(path, lockID, versionID, resultWord, Given{pid})) return call.refuse();
    call.begin(resultWord);

    const RemotePath file = RouteTo(call, slaveID, path);
    call.get(
        L"func=versioning_commit_upload&sid=%ls&settime=1&mtime=%ls&source_path=%ls&source_file=%ls&lockid=%"
        L"ls&"
        L"version_id=%ls",
        call.sid(), std::to_wstring(modifiedTime), Encoded(file.parent), Encoded(file.name), lockID,
        versionID);
    CShareToJson reply;
    if (!call.ask(reply)) return call.end();

    if (!reply.GetFound())
        call.line("[WFM] WFMTorviVersioningCommitUpload: IsSuccess failed");
    else if (!IsGiven(reply.GetPid()))
        call.line("[WFM] WFMTorviVersioningCommitUpload: empty PID");
    else
        CopyID(pid, reply.GetPid());
    return call.answer(reply.GetStatus());
}
