#include "core/StatusResultJson.h"
#include "files/RouteTo.h"

using namespace Lattice;

uint32_t WFMTorviVersioningCleanVersion(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                                        const wchar_t* slaveID, const wchar_t* path, const wchar_t* lockID,
                                        const wchar_t* versionID, void* /*reserved*/, uint32_t* resultWord) {
    static constexpr auto rules = CallRules("[WFM] WFMTorviVersioningCleanVersion");
    Call call(rules, context, server, port);
    if (!call.accepts(path, lockID, versionID, resultWord)) return call.refuse();
    call.begin(resultWord);

    const RemotePath file = RouteTo(call, slaveID, path);
    call.get(
        L"func=versioning_clean_version&sid=%ls&source_path=%ls&source_file=%ls&lockid=%ls&version_id=%ls",
        call.sid(), Encoded(file.parent), Encoded(file.name), lockID, versionID);
    CWFMStatusResultJson reply;
    if (!call.ask(reply)) return call.end();

    if (reply.GetStatus() != 0)
        call.line("[WFM] WFMTorviVersioningCleanVersion: status failed(%d)", reply.GetStatus());
    return call.answer(reply.GetStatus());
}
