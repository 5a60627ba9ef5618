#include "core/GetResultJson.h"
#include "core/callframe.h"

using namespace Lattice;

uint32_t TorviLogout(const wchar_t* server, uint32_t port, bool force, _WFM_AUTH_CONTEXT* context) {
    static constexpr auto rules = CallRules("[WFM] TorviLogout")
                                      .withRefused("{call} failed dwStatus({status})")
                                      .withReason("{call} {word}")
                                      .withSummary("{call} failed dwStatus({status})")
                                      .withTimeout(30000);
    if (context == nullptr) return WFM_PARSE_XML_INVALID_PARAMETER;
    // A slave's connection shares the session of its master, and only the master's logout ends it.
    if (IsGiven(std::as_const(context->szSlaveID)) && !force) return 0;
    Call call(rules, Connection::Of(*context, server, port));
    if (!call.accepts()) return call.refuse();
    if (!IsGiven(std::as_const(context->pszSid))) return 0;

    if (context->bUseFcgi)
        call.getAt(L"%ls%ls:%d/cgi-bin/torvi/torvisrv.fcgi?func=logout&sid=%ls&logout=1", context->pszSid);
    else
        call.getAt(L"%ls%ls:%d/cgi-bin/torvi/torvisrv_logout.cgi?sid=%ls&logout=1", context->pszSid);
    if (!call.exchange()) return call.end();

    CWebFileManGetResultJson reply;
    if (call.parse(reply) != 1 || reply.GetStatus() != 0 || !reply.GetResult()) {
        call.line("[WFM] TorviLogout WFM_PARSE_XML_FAIL Status(%d), Result(%d)", reply.GetStatus(),
                  reply.GetResult());
        call.fail(WFM_PARSE_XML_FAIL);
    }
    return call.end();
}
