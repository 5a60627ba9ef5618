#include "core/authcontext.h"
#include "session/ActivateJson.h"
#include "session/activation.h"

using namespace Lattice;

uint32_t TorviActivateSid2(const wchar_t* server, uint32_t port, bool secure, const wchar_t* token,
                           const wchar_t* slaveID, const wchar_t* agentName, const wchar_t* ownSlaveID,
                           uint32_t serverNameCapacity, uint32_t proxyMode, const wchar_t* proxyHost,
                           const wchar_t* proxyUser, const wchar_t* proxyPassword,
                           const wchar_t* forwardedFor, bool /*isCluster*/, uint32_t* resultWord,
                           wchar_t* serverName, bool* isAdmin, _WFM_AUTH_CONTEXT** context) {
    static constexpr auto rules = ActivationRules("[WFM] TorviActivateSid2");
    const Connection connection{server,    port,      secure,        agentName,   proxyMode,
                                proxyHost, proxyUser, proxyPassword, forwardedFor};
    Call call(rules, connection);
    if (!call.accepts(token, serverNameCapacity, resultWord, Given{serverName}, isAdmin, context))
        return call.refuse(ERROR_INVALID_PARAMETER);
    *isAdmin = false;
    call.begin(resultWord);

    call.getAt(L"/%lscgi-bin/torvi/torvisrvPrepare.cgi?func=activate&token=%ls",
               SlavePrefix(TextOf(ownSlaveID), TextOf(slaveID)), token);
    CActivateJson reply;
    if (!call.ask(reply)) return call.end();

    call.setResult(ActivationResultOf(reply.GetStatus()));
    if (reply.GetStatus() != 0) {
        call.line("[WFM] TorviActivateSid2: Status failed(%d)(%d)", reply.GetStatus(),
                  static_cast<int>(call.result()));
        return call.end();
    }
    // The first line has no bracket at its end, and that must stay.
    if (reply.GetServerName().empty())
        return call.fail(WFM_PARSE_XML_FAIL, "[WFM] TorviActivateSid2: WFM_PARSE_XML_FAIL(empty server name");
    if (reply.IsAdminGroup(isAdmin) == 0)
        return call.fail(WFM_PARSE_XML_FAIL,
                         "[WFM] TorviActivateSid2: WFM_PARSE_XML_FAIL(empty is admin group)");

    AuthContextPtr session = MakeAuthContext(token);
    if (session == nullptr)
        return call.fail(WFM_PARSE_XML_FAIL, "[WFM] TorviActivateSid2: WFM_PARSE_XML_FAIL");
    session->bUseNuboCGI = true;
    StoreConnection(*session, connection);
    CopyText(session->szSlaveID, TextOf(ownSlaveID));
    CopyText(serverName, serverNameCapacity, reply.GetServerName());
    *context = session.release();
    return call.end();
}
