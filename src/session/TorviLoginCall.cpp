#include "core/callframe.h"
#include "session/TorviLogin.h"
#include "session/logintimeout.h"
#include "session/password.h"

using namespace Lattice;

namespace {

void FillNetwork(const CTorviLogin& reply, _WFM_NETWORK_INFORMATION& network) {
    network = {};
    CopyText(network.szPeltnetDomainName, reply.peltnet_dn);
    CopyText(network.szDdnsDomainName, reply.ddns_dn);
    CopyText(network.szExternalIP, reply.ext_ip);
    CopyText(network.szLocalIP, reply.local_ip);
    CopyText(network.szLocalIPList, reply.local_ip_list);
    network.nPort = reply.port;
    network.nSslPort = reply.sslPort;
    network.nExtPort = reply.extPort;
    network.nExtSslPort = reply.extSslPort;
}

/// The session that the server opened: null if it opened none.
AuthContextPtr OpenSession(const CTorviLogin& reply, const Connection& connection, bool useFcgi) {
    if (reply.sid.empty()) return nullptr;
    AuthContextPtr context = MakeAuthContext(reply.sid.c_str());
    if (context == nullptr) return nullptr;
    context->bUseNuboCGI = true;
    context->bUseFcgi = useFcgi;
    StoreConnection(*context, connection);
    CopyText(context->szSlaveID, reply.slaveId);
    return context;
}

}  // namespace

uint32_t TorviLogin(const wchar_t* server, int32_t port, const wchar_t* user, const wchar_t* password,
                    bool secure, const wchar_t* computerName, const wchar_t* uid, const wchar_t* agentName,
                    uint32_t deviceType, uint32_t serverNameCapacity, uint32_t proxyMode,
                    const wchar_t* proxyHost, const wchar_t* proxyUser, const wchar_t* proxyPassword,
                    const wchar_t* forwardedFor, const wchar_t* clientVersion, uint64_t /*reserved1*/,
                    const uint32_t* timeoutMs, bool useFcgi, wchar_t* serverName, bool* isAdmin,
                    bool* isSlave, uint32_t* resultWord, _WFM_AUTH_CONTEXT** context, uint64_t /*reserved2*/,
                    _WFM_NETWORK_INFORMATION* network) {
    static constexpr auto rules = CallRules("[WFM] TorviLogin")
                                      .withOutcomes(kLoginOutcomes)
                                      .withRefused("{call}: WFM_PARSE_XML_INVALID_PARAMETER")
                                      .withSummary("{call} failed dwStatus({status})");
    const Connection connection{server,      static_cast<uint32_t>(port),
                                secure,      agentName,
                                proxyMode,   proxyHost,
                                proxyUser,   proxyPassword,
                                forwardedFor};
    Call call(rules, connection);
    if (!call.accepts(user, Given{password}, computerName, uid, serverNameCapacity, clientVersion,
                      Given{serverName}, isAdmin, isSlave, resultWord, context))
        return call.refuse();
    *isAdmin = *isSlave = false;
    call.begin(resultWord);

    call.setTimeout(LoginTimeout(timeoutMs));
    // The server is asked once; whether to try another CGI is the client's decision.
    call.postAt(useFcgi ? L"/cgi-bin/torvi/torvisrv.fcgi?func=login" : L"/cgi-bin/torvi/torvisrv_login.cgi");
    call.field("user", user);
    call.field("pwd", EncodedPassword(password).constData());
    call.field("nubo_user", "1");
    call.field("nubo_computer", computerName);
    call.field("uid", uid);
    call.field("nubo_device_type", deviceType);
    call.field("Torvi_client_version", clientVersion);

    // A redirect to TLS ends without a network error, with a body that isn't understood: the HTTP status
    // decides.
    CTorviLogin reply;
    const int networkError = call.send();
    if (networkError == 0 && call.parse(reply) == 1) {
        call.setResult(reply.status);
        if (reply.status != 0) call.line("[WFM] TorviLogin: AuthStatus(%d)", reply.status);
    } else {
        call.failByHttp(networkError);
    }

    if (network != nullptr) FillNetwork(reply, *network);
    if (auto session = OpenSession(reply, connection, useFcgi)) {
        *isSlave = !TextOf(session->szSlaveID).empty();
        if (!reply.servername.empty()) CopyText(serverName, serverNameCapacity, reply.servername);
        *isAdmin = reply.isAdmin;
        *context = session.release();
    } else if (call.status() == 0) {
        // Despite its words this is the normal end of every refused login; the line has no prefix.
        call.line("TorviLogin: Failed to allocate memory pSid");
        call.setStatus(WFM_PARSE_XML_FAIL);
    }
    return call.end();
}
