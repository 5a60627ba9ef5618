#include "core/GetResultJson.h"
#include "core/callframe.h"

using namespace Lattice;

uint32_t TorviLogout(const wchar_t* server, uint32_t port, bool force, _WFM_AUTH_CONTEXT* context) {
    static constexpr auto rules = CallRules("[WFM] TorviLogout")
                                      .withRefused("{call} failed dwStatus({status})")
                                      .withReason("{call} {word}")
                                      .withSummary("{call} failed dwStatus({status})")
                                      .withTimeout(30000)
                                      .withoutSidCheck();
    if (context == nullptr) return WFM_PARSE_XML_INVALID_PARAMETER;
    // A slave's connection shares the session of its master, and only the master's logout ends it.
    if (!TextOf(context->szSlaveID).empty() && !force) return 0;
    Call call(rules, context, server, port);
    if (!call.accepts()) return call.refuse();
    if (TextOf(context->pszSid).empty()) return 0;

    if (context->bUseFcgi)
        call.getAt(L"/cgi-bin/torvi/torvisrv.fcgi?func=logout&sid=%ls&logout=1", call.sid());
    else
        call.getAt(L"/cgi-bin/torvi/torvisrv_logout.cgi?sid=%ls&logout=1", call.sid());
    if (!call.exchange()) return call.end();

    CWebFileManGetResultJson reply;
    if (call.parse(reply) != 1 || reply.GetStatus() != 0 || !reply.GetResult())
        return call.fail(WFM_PARSE_XML_FAIL, "[WFM] TorviLogout WFM_PARSE_XML_FAIL Status(%d), Result(%d)",
                         reply.GetStatus(), reply.GetResult());
    return call.end();
}
