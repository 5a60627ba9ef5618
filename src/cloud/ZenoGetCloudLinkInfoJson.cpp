#include "cloud/ZenoGetCloudLinkInfoJson.h"

#include "cloud/cloudstatus.h"
#include "core/qclogger.h"
#include "core/replyfields.h"

using namespace Lattice;

namespace {

/// The addresses of the resource's protocol; null for one that isn't known. A resource that names none is
/// reached like a web page.
_CLOUD_LINK_JSON_ADDRESSES* AddressesOf(CZenoGetCloudLinkInfoJson& reply, const std::wstring& protocol) {
    if (protocol.empty() || protocol == L"http") return &reply.http;
    if (protocol == L"https") return &reply.https;
    LogLine(Logger::Error, "[WFM] CZenoGetCloudLinkInfoJson::Parser Unknown protocol type (%ls)",
            protocol.c_str());
    return nullptr;
}

using List = AddressList _CLOUD_LINK_JSON_ADDRESSES::*;

/// The list that the resource's addresses belong in; null for what lists none.
List ListOf(const std::wstring& type) {
    if (type == L"wan_ip") return &_CLOUD_LINK_JSON_ADDRESSES::wan;
    if (type == L"lan_ip") return &_CLOUD_LINK_JSON_ADDRESSES::lan;
    if (type == L"ddns") return &_CLOUD_LINK_JSON_ADDRESSES::ddns;
    LogLine(Logger::Error, "[WFM] CZenoGetCloudLinkInfoJson::Parser Unknown IP type (%ls)", type.c_str());
    return nullptr;
}

void GetIPInfo(const Json::Value& resource, int port, AddressList& list) {
    for (const char* key : {"ipv4", "ipv6", "host"}) {
        const std::wstring address = JsonText(resource, key);
        if (address.empty()) continue;
        list.add(port == 0 ? address : address + L":" + std::to_wstring(port));
    }
}

void ReadResource(CZenoGetCloudLinkInfoJson& reply, const Json::Value& resource) {
    const std::wstring protocol = JsonText(resource, "protocol");
    const int port = protocol.empty() ? 0 : JsonGetInt(resource, "port", 0);
    _CLOUD_LINK_JSON_ADDRESSES* const addresses = AddressesOf(reply, protocol);
    const std::wstring type = JsonText(resource, "type");
    if (type == L"cloud_link") {
        const std::wstring id = JsonText(resource, "cloud_link_id");
        if (!id.empty()) reply.cloudLinkID = id;
        return;
    }
    const List list = ListOf(type);
    if (addresses != nullptr && list != nullptr) GetIPInfo(resource, port, addresses->*list);
}

}  // namespace

int CZenoGetCloudLinkInfoJson::Parser(char* text) {
    return ParseReply(text, [this](const Json::Value& root) {
        if (!root.isObject()) return -1;
        code = CloudCodeOf(root);
        status = CloudStatusOf(code);
        if (status != 0 || !IsPresent(root, "result") || !IsPresent(root["result"], "resources")) return 1;
        const Json::Value& resources = root["result"]["resources"];
        if (!resources.isArray()) return -1;
        for (const Json::Value& resource : resources)
            if (resource.isObject()) ReadResource(*this, resource);
        return 1;
    });
}
