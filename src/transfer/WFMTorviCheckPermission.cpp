#include "core/StatusResultJson.h"
#include "files/RouteTo.h"

using namespace Lattice;

uint32_t WFMTorviCheckPermission(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                                 const wchar_t* slaveID, const wchar_t* folder, const wchar_t* fileName,
                                 void* /*reserved*/, uint32_t* resultWord) {
    static constexpr auto rules = CallRules("[WFM] WFMTorviCheckPermission");
    Call call(rules, context, server, port);
    if (!call.accepts(resultWord)) return call.refuse();
    call.begin(resultWord);

    const RemotePath path = RouteTo(call, slaveID, TextOf(folder), TextOf(fileName));
    call.get(L"func=nubo_check_permission&sid=%ls&path=%ls&file_name=%ls&check_upload=1", call.sid(),
             Encoded(path.parent), Encoded(path.name));
    CWFMStatusResultJson reply;
    if (!call.ask(reply)) return call.end();

    // The one question is whether the upload is denied: every other code, even an error, is a no.
    return call.answer(reply.GetStatus() == WFM_PERMISSION_DENY ? int64_t{ERROR_ACCESS_DENIED} : 0);
}
