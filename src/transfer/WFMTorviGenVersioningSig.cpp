#include "files/RouteTo.h"
#include "transfer/GenVersioningSigJson.h"
#include "transfer/sessionids.h"

using namespace Lattice;

uint32_t WFMTorviGenVersioningSig(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                                  const wchar_t* slaveID, const wchar_t* path, const wchar_t* lockID,
                                  const wchar_t* versionID, void* /*reserved*/, uint32_t* resultWord,
                                  wchar_t* pid) {
    static constexpr auto rules = CallRules("[WFM] WFMTorviGenVersioningSig");
    Call call(rules, context, server, port);
    if (!call.accepts(path, lockID, versionID, resultWord, Given{pid})) return call.refuse();
    call.begin(resultWord);

    const RemotePath file = RouteTo(call, slaveID, path);
    call.get(L"func=versioning_gen_sig&sid=%ls&source_path=%ls&source_file=%ls&lockid=%ls&version_id=%ls",
             call.sid(), Encoded(file.parent), Encoded(file.name), lockID, versionID);
    CGenVersioningSigJson reply;
    if (!call.ask(reply)) return call.end();

    if (!reply.IsSuccess()) return call.answer(-1, "[WFM] WFMTorviGenVersioningSig: IsSuccess failed");
    CopyID(pid, reply.GetPid());
    return call.answer(0);
}
