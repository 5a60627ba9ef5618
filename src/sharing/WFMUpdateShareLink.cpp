#include "sharing/WebFileManCreateLinkXml.h"
#include "sharing/linkform.h"
#include "sharing/linkplace.h"

using namespace Lattice;

namespace {

constexpr int kTimeoutMs = 120000;
constexpr size_t kHostBuffer = 260;

/// How a link names its host: what of the two fields goes out, and in which order.
struct HostFields {
    std::wstring hostname;
    const char* kind = nullptr;  // "ht"
    bool kindFirst = false;
};

struct Host {
    const wchar_t* name;
    uint32_t port;
    bool form;  ///< with its port, and as the kind that has one
};

HostFields FieldsOf(const Host& host, const wchar_t* node, bool nameOnly) {
    if (nameOnly) return {{}, "11"};
    if (!IsGiven(host.name)) return {};
    const std::wstring name = host.name;
    const std::wstring withPort = name + L":" + std::to_wstring(static_cast<int>(host.port));
    if (host.form) {
        if (IsGiven(node)) return {withPort + L"/" + node, "10"};
        return {host.port == 0 ? name : withPort, "10"};
    }
    if (!IsGiven(node)) return {name};
    return {(host.port == 0 ? name : withPort) + L"/" + node, "10", true};
}

void AddHost(Call& call, const HostFields& host) {
    if (host.kind != nullptr && host.kindFirst) call.field("ht", host.kind);
    if (!host.hostname.empty()) call.field("hostname", host.hostname);
    if (host.kind != nullptr && !host.kindFirst) call.field("ht", host.kind);
}

}  // namespace

uint32_t WFMUpdateShareLink(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                            const wchar_t* slaveID, uint32_t downloadType, uint32_t durationType,
                            uint32_t networkType, uint32_t hostPort, const wchar_t* hostname,
                            const wchar_t* accessCode, const wchar_t* datetime, bool secureLink, bool option,
                            bool hostForm, const wchar_t* expireTime, const wchar_t* ssids,
                            const wchar_t* linkName, const wchar_t* further, bool nameOnly,
                            void* /*reserved*/, uint32_t* linkCapacity, wchar_t* link, uint32_t* resultWord) {
    static constexpr auto rules =
        CallRules("[WFMShare] WFMUpdateShareLink").withEndpoint(kLinkPlace).withTimeout(kTimeoutMs);
    Call call(rules, context, server, port);
    const LinkTypes types{downloadType, durationType, networkType};
    if (!call.accepts(ssids, resultWord)) return call.refuse();
    if (!nameOnly && !(IsGiven(hostname) && IsGiven(expireTime) && IsGiven(further) &&
                       linkCapacity != nullptr && link != nullptr && types.inRange()))
        return call.refuse();
    call.route(slaveID);
    const std::wstring node = call.slavePrefix().empty() ? std::wstring() : TextOf(slaveID);
    const HostFields host = FieldsOf({hostname, hostPort, hostForm}, node.c_str(), nameOnly);
    if (host.hostname.size() >= kHostBuffer) return call.refuse();
    call.begin(resultWord);

    call.post(L"func=update_share_link&sid=%ls", call.sid());
    call.field("download_type", TypeText(gDownloadLinkTypes, downloadType));
    call.field("option", option ? "3" : "1");
    AddDuration(call, durationType, datetime);
    call.field("file_total", "1");
    AddAccess(call, accessCode);
    AddHost(call, host);
    call.field("ssl", TrueOrFalse(secureLink));
    call.field("include_access_code", TrueOrFalse(IsGiven(accessCode)));
    call.field("expire_time", TextOf(expireTime));
    call.field("ssids", ssids);
    if (IsGiven(linkName)) call.field("link_name", linkName);
    CWebFileManCreateLinkXml reply;
    if (!call.ask(reply)) return call.end();

    if (reply.GetStatus() != 0)
        return call.answer(reply.GetStatus(), "[WFMShare] WFMUpdateShareLink: Get error code(%d)",
                           reply.GetStatus());
    call.setResult(0);
    if (link == nullptr || linkCapacity == nullptr) return call.end();
    // A link as long as the capacity doesn't fit here, unlike that of WFMGetShareLink.
    if (!CopyText(link, *linkCapacity, reply.GetResult())) {
        *linkCapacity = static_cast<uint32_t>(reply.GetResult().size() + 1);
        call.failAs(WFM_PARSE_XML_BUFFER_NOT_ENOUGH, "WFM_PARSE_XML_BUFFER_NOT_ENOUGH");
    }
    return call.end();
}
