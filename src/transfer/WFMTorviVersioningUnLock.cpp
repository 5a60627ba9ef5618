#include "files/RouteTo.h"
#include "transfer/GetVersioningUnLockResultJson.h"

using namespace Lattice;

uint32_t WFMTorviVersioningUnLock(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                                  const wchar_t* slaveID, const wchar_t* path, const wchar_t* lockID,
                                  void* /*reserved*/, uint32_t* resultWord) {
    static constexpr auto rules = CallRules("[WFM] WFMTorviVersioningUnLock");
    Call call(rules, context, server, port);
    if (!call.accepts(path, lockID, resultWord)) return call.refuse();
    call.begin(resultWord);

    const RemotePath file = RouteTo(call, slaveID, path);
    call.get(L"func=versioning_unlock&sid=%ls&source_path=%ls&source_file=%ls&lockid=%ls", call.sid(),
             Encoded(file.parent), Encoded(file.name), lockID);
    CGetVersioningUnLockResultJson reply;
    if (!call.ask(reply)) return call.end();

    if (reply.GetStatus() != 1)
        return call.answer(-1, "[WFM] WFMTorviVersioningUnLock: get error status = %d", reply.GetStatus());
    return call.answer(0);
}
