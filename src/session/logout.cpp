#include "session/logout.h"

#include "core/GetResultJson.h"

namespace Lattice {

uint32_t Logout(const CallRules& rules, const wchar_t* place, const char* refusal, const wchar_t* server,
                uint32_t port, bool force, const _WFM_AUTH_CONTEXT& context) {
    // A slave's connection shares the session of its master, and only the master's logout ends it.
    if (!TextOf(context.szSlaveID).empty() && !force) return 0;
    Call call(rules, &context, server, port);
    if (!call.accepts()) return call.refuse();
    if (TextOf(context.pszSid).empty()) return 0;

    call.getAt(place, call.sid());
    if (!call.exchange()) return call.end();
    CWebFileManGetResultJson reply;
    if (call.parse(reply) != 1 || reply.GetStatus() != 0 || !reply.GetResult())
        return call.fail(WFM_PARSE_XML_FAIL, refusal, reply.GetStatus(), reply.GetResult());
    return call.end();
}

}  // namespace Lattice
