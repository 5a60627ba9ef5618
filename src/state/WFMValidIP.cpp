#include "core/callframe.h"
#include "state/ShareGetUIDJson.h"
#include "state/prepare.h"

using namespace Lattice;

namespace {

constexpr uint32_t kDefaultTimeoutMs = 3000;

constexpr HttpOutcomes kOutcomes{
    {{404, WFM_PARSE_XML_CGI_NOT_FOUND, "", "{call}({server}:{port}): HTTP_STATUS_NOT_FOUND"},
     {407, WFM_PARSE_XML_HTTPTRAN_PROXY_AUTH_REQ, "HTTP_STATUS_PROXY_AUTH_REQ"},
     {503, WFM_PARSE_XML_HTTPTRAN_SERVICE_UNAVAIL, "HTTP_STATUS_SERVICE_UNAVAIL"}},
    3};

/// Whether the server is the one with that uid; without one, whether it answers at all.
bool IsTheOne(Call& call, const wchar_t* uid) {
    if (!IsGiven(uid)) return !call.worker().response.isEmpty();
    CShareGetUIDJson reply;
    return call.parse(reply) == 1 && ToQString(uid).compare(ToQString(reply.uid), Qt::CaseInsensitive) == 0;
}

}  // namespace

uint32_t WFMValidIP(const wchar_t* server, uint32_t port, uint64_t /*reserved*/, bool secure,
                    const wchar_t* user, const wchar_t* uid, const wchar_t* agentName, uint32_t proxyMode,
                    const wchar_t* proxyHost, const wchar_t* proxyUser, const wchar_t* proxyPassword,
                    const wchar_t* forwardedFor, const wchar_t* otherAgentName, uint32_t timeoutMs) {
    // A probe that fails is routine: its lines are at the debug level.
    static constexpr auto rules = CallRules("[WFMShare] WFMValidIP")
                                      .withOutcomes(kOutcomes)
                                      .withFailed("WFM_PARSE_XML_HTTPTRAN_CONNECT_FAIL(statusCode={http})",
                                                  "WFM_PARSE_XML_HTTPTRAN_RECEIVE_FAIL(statusCode={http})")
                                      .withSummary("{call}({server}:{port}): failed dwStatus({status})")
                                      .withLevel(Logger::Debug);
    Call call(rules, Connection{server, port, secure,
                                IsGiven(otherAgentName) ? otherAgentName : AgentOrDefault(agentName),
                                proxyMode, proxyHost, proxyUser, proxyPassword, forwardedFor});
    if (!call.accepts(user)) return call.refuse();
    call.setTimeout(timeoutMs != 0 ? timeoutMs : kDefaultTimeoutMs);

    // An older server has the question at its old place, and is asked there once.
    call.getAt(kPrepareSyncService, Encoded(user));
    int networkError = call.send();
    if (networkError != 0 && call.worker().http_status == kHttpNotFound) {
        call.getAt(kPrepareFileManager, Encoded(user));
        networkError = call.send();
    }
    if (!call.judge(networkError)) return call.end();
    if (!IsTheOne(call, uid)) {
        call.failNotUnderstood();
        return call.end();
    }
    if (IsGiven(uid)) call.line("[WFMShare] WFMValidIP: Valid IP (%ls)", server);
    return call.end();
}
