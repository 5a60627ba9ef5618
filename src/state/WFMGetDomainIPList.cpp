#include "core/callframe.h"
#include "state/GetDomainIPListJson.h"

using namespace Lattice;

namespace {

constexpr uint32_t kDefaultTimeoutMs = 60000;

/// Stores a text that fits with one character to spare, and says so if it doesn't.
template <size_t N>
void Take(Call& call, wchar_t (&field)[N], const std::wstring& text) {
    if (text.size() <= N - 2) {
        CopyText(field, text);
        return;
    }
    call.line("[WFM] WFMGetDomainIPList:ERROR_NOT_ENOUGH_MEMORY");
    call.setResult(ERROR_NOT_ENOUGH_MEMORY);
}

}  // namespace

uint32_t WFMGetDomainIPList(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                            uint32_t timeoutMs, void* /*reserved1*/, void* /*reserved2*/,
                            _DOMAIN_IP_LIST_INFORMATION* information, uint32_t* resultWord) {
    static constexpr auto rules = CallRules("[WFM] WFMGetDomainIPList");
    Call call(rules, context, server, port);
    if (!call.accepts(information, resultWord)) return call.refuse();
    call.begin(resultWord);
    *information = {};

    call.setTimeout(timeoutMs != 0 ? timeoutMs : kDefaultTimeoutMs);
    call.get(L"func=get_domain_ip_list&sid=%ls", call.sid());
    CGetDomainIPListJson reply;
    if (!call.ask(reply)) return call.end();

    if (reply.GetStatus() != 0)
        return call.answer(-1, "[WFM] WFMGetDomainIPList: get error status(%d)", reply.GetStatus());
    call.setResult(0);
    Take(call, information->szPeltnetHostName, reply.peltnetHostName);
    Take(call, information->szDdnsHostName, reply.ddnsHostName);
    Take(call, information->szExternalIP, reply.externalIP);
    Take(call, information->szLocalIP, reply.localIP);
    Take(call, information->szHostIP, reply.hostIP);
    Take(call, information->szLocalIPList, reply.localIPList);
    information->nPort = reply.port;
    information->nSslPort = reply.sslPort;
    information->nExtPort = reply.extPort;
    information->nExtSslPort = reply.extSslPort;
    return call.end();
}
