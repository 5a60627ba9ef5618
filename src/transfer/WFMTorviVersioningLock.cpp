#include "files/RouteTo.h"
#include "transfer/GetVersioningLockResultJson.h"
#include "transfer/sessionids.h"

using namespace Lattice;

uint32_t WFMTorviVersioningLock(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                                const wchar_t* slaveID, const wchar_t* path, void* /*reserved*/,
                                uint32_t* resultWord, WFM_VERSIONING_LOCK* lock) {
    static constexpr auto rules = CallRules("[WFM] WFMTorviVersioningLock");
    Call call(rules, context, server, port);
    if (!call.accepts(path, resultWord, lock)) return call.refuse();
    call.begin(resultWord);

    const RemotePath file = RouteTo(call, slaveID, path);
    if (lock->szLockID[0] != L'\0' && lock->szVersionID[0] != L'\0')
        call.get(
            L"func=versioning_lock&check_version=1&sid=%ls&source_path=%ls&source_file=%ls&version_id=%ls&"
            L"lockid=%ls",
            call.sid(), Encoded(file.parent), Encoded(file.name), lock->szVersionID, lock->szLockID);
    else
        call.get(L"func=versioning_lock&create_version=1&sid=%ls&source_path=%ls&source_file=%ls", call.sid(),
                 Encoded(file.parent), Encoded(file.name));
    CGetVersioningLockResultJson reply;
    if (!call.ask(reply)) return call.end();

    if (reply.GetStatus() != 1)
        return call.answer(-1, "[WFM] WFMTorviVersioningLock: get error status = %d", reply.GetStatus());
    if (!reply.GetLockID().empty()) CopyID(lock->szLockID, reply.GetLockID());
    if (!reply.GetVersionID().empty()) CopyID(lock->szVersionID, reply.GetVersionID());
    return call.answer(0);
}
