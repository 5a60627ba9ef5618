#include "core/callframe.h"
#include "state/GetVersionJson.h"

using namespace Lattice;

uint32_t WFMGetVersion(const wchar_t* server, uint32_t port, const wchar_t* agentName, bool secure,
                       uint32_t proxyMode, const wchar_t* proxyHost, const wchar_t* proxyUser,
                       const wchar_t* proxyPassword, const wchar_t* forwardedFor, uint64_t /*reserved*/,
                       uint32_t* resultWord, _WFM_VERSION_INFORMATION* version) {
    static constexpr auto rules = CallRules("[WFM] WFMGetVersion").withOutcomes(kWithNotFound);
    Call call(rules, Connection{server, port, secure, AgentOrDefault(agentName), proxyMode, proxyHost,
                                proxyUser, proxyPassword, forwardedFor});
    if (!call.accepts(resultWord, version)) return call.refuse();
    call.begin(resultWord);
    *version = {};

    // The bare CGI answers with its version, on either service and without a session.
    call.getAt(L"/cgi-bin/filemanager/utilRequest.cgi");
    CGetVersionJson reply;
    if (!call.ask(reply)) return call.end();

    // A server that doesn't tell its version is not a usable server.
    if (reply.GetVersion().empty() || reply.GetBuildNumber().empty())
        return call.answer(ERROR_NOT_SUPPORTED,
                           "[WFM] WFMGetVersion: ERROR_NOT_SUPPORTED strVersion(%ls) strBuildNumber(%ls)",
                           reply.GetVersion().c_str(), reply.GetBuildNumber().c_str());
    CopyTextCut(version->szVersion, reply.GetVersion());
    CopyTextCut(version->szBuildNumber, reply.GetBuildNumber());
    return call.answer(0);
}
