#include "core/callframe.h"
#include "state/ShareGetUIDJson.h"
#include "state/prepare.h"
#include "state/uidrecord.h"

using namespace Lattice;

namespace {

constexpr uint32_t kDefaultTimeoutMs = 15000;

constexpr HttpOutcomes kOutcomes{
    {{404, WFM_PARSE_XML_CGI_NOT_FOUND, "WFM_PARSE_XML_CGI_NOT_FOUND", "{call}({server}:{port}): {word}"},
     kProxyRefused,
     kServiceUnavailable},
    3};

}  // namespace

uint32_t WFMGetNASUserUID(const wchar_t* server, uint32_t port, uint32_t tlsPort, bool secure,
                          const wchar_t* user, const wchar_t* agentName, uint32_t proxyMode,
                          const wchar_t* proxyHost, const wchar_t* proxyUser, const wchar_t* proxyPassword,
                          const wchar_t* forwardedFor, const uint32_t* timeoutMs, bool* cancel,
                          _NAS_USER_UID_INFORMATION* information) {
    // The other function's name in the summary must stay.
    static constexpr auto rules =
        CallRules("[WFM] WFMGetNASUserUID")
            .withNotUnderstood("{call}({server}:{port}): {word}")
            .withSummary("[WFM] PeltAPIGetVLinkInfo({server}:{port}) failed dwStatus({status})")
            .withOutcomes(kOutcomes);
    Call call(rules, Connection{server, port, secure, AgentOrDefault(agentName), proxyMode, proxyHost,
                                proxyUser, proxyPassword, forwardedFor});
    if (!call.accepts(user, information)) return call.refuse();
    *information = {};
    call.setTimeout(timeoutMs != nullptr && *timeoutMs != 0 ? *timeoutMs : kDefaultTimeoutMs);

    bool atOldPlace = false;
    bool cameBack = false;
    while (!IsSet(cancel)) {
        call.getAt(atOldPlace ? kPrepareFileManager : kPrepareSyncService, Encoded(user));
        const int networkError = call.send();
        const int httpStatus = call.worker().http_status;
        if (httpStatus == kHttpFound && !secure && tlsPort != 0) {
            secure = true;
            call.connectTo(tlsPort, secure);
            continue;
        }
        if (networkError != 0 && httpStatus == kHttpNotFound && !atOldPlace) {
            atOldPlace = true;
            continue;
        }
        if (networkError != 0 || httpStatus == kHttpFound) {
            call.failByHttp(networkError);
            return call.end();
        }
        CShareGetUIDJson reply;
        if (!call.understands(reply)) return call.end();
        // A server that has the sync service and answered at the old place is asked again at the new one.
        if (atOldPlace && !cameBack && !reply.isBooting && SupportNuboCGI(reply.torviVersion)) {
            atOldPlace = false;
            cameBack = true;
            continue;
        }
        *information = IdentityRecord(reply);
        return call.end();
    }
    call.setStatus(WFM_PARSE_XML_HTTPTRAN_CONNECT_FAIL);
    return call.end();
}
