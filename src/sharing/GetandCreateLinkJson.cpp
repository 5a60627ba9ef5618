#include "sharing/GetandCreateLinkJson.h"

#include "core/replyfields.h"

using namespace Lattice;

namespace {

constexpr size_t kLongestText = 4096;
constexpr size_t kIDCapacity = 260;

std::wstring LinkText(const Json::Value& json, const char* key) {
    std::wstring text = JsonLongText(json, key);
    return text.size() < kLongestText ? text : std::wstring();
}

/// The URL of the link with that id, byte by byte. A query that the server wrote gives way to the id alone.
std::wstring LinkOf(const Json::Value& links, const std::string& ssid) {
    for (const Json::Value& link : links) {
        if (!link.isObject() || link["ssid"].asString() != ssid) continue;
        const std::wstring url = LinkText(link, "link_url");
        const size_t question = url.find(L'?');
        return question == std::wstring::npos
                   ? url
                   : url.substr(0, question + 1) + L"ssid=" + LinkText(link, "ssid");
    }
    return {};
}

}  // namespace

int CGetandCreateLinkJson::Parser(char* text) {
    return ParseReply(text, [this](const Json::Value& root) {
        if (!root.isObject()) return -1;
        status = TranslatedStatus(root, 0);
        if (status != 0) return 1;
        linkName = LinkText(root, "link_name");
        expireTime = LinkText(root, "expire_time");
        multiple = JsonGetFlag(root, "multiple", false);
        ssid = LinkText(root, "ssid");
        if (ssid.size() >= kIDCapacity) ssid.clear();
        if (ssid.empty()) return 1;
        if (IsPresent(root, "links")) {
            if (!root["links"].isArray()) return -1;
            linkURL = LinkOf(root["links"], root["ssid"].asString());
        }
        if (linkURL.empty()) {
            const std::wstring protocol = LinkText(root, "protocol");
            const std::wstring host = LinkText(root, "host");
            const std::wstring port = LinkText(root, "port");
            if (!protocol.empty() && !host.empty() && !port.empty())
                linkURL = protocol + L"://" + host + L":" + port + L"/share.cgi?ssid=" + ssid;
        }
        return 1;
    });
}
