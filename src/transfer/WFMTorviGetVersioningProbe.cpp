#include "core/callframe.h"
#include "transfer/GetVersioningProbeJson.h"
#include "transfer/sessionids.h"

using namespace Lattice;

uint32_t WFMTorviGetVersioningProbe(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                                    const wchar_t* slaveID, void* /*reserved*/, uint32_t* resultWord,
                                    wchar_t* version) {
    static constexpr auto rules = CallRules("[WFM] WFMTorviGetVersioningProbe");
    Call call(rules, context, server, port);
    if (!call.accepts(resultWord, Given{version})) return call.refuse();
    call.begin(resultWord);

    call.route(slaveID);
    call.get(L"func=versioning_probe&sid=%ls", call.sid());
    CGetVersioningProbeJson reply;
    if (!call.ask(reply)) return call.end();

    // The result word stays -1, whatever the server says: callers judge by the text.
    if (reply.GetVersion().empty())
        call.line("[WFM] WFMTorviGetVersioningProbe: empty version");
    else
        CopyID(version, reply.GetVersion());
    return call.end();
}
