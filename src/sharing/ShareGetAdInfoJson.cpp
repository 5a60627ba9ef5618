#include "sharing/ShareGetAdInfoJson.h"

#include <algorithm>

#include "core/replyfields.h"

using namespace Lattice;

int CShareGetAdInfoJson::Parser(char* text) {
    return ParseReply(text, [this](const Json::Value& root) {
        if (!root.isObject()) return -1;
        status = JsonGetInt(root, "status", -1) == 1 ? 0 : -1;
        adSupport = JsonGetInt(root, "ADSupport", 0);
        trustedDomainEnable = JsonGetInt(root, "TrustedDomainEnable", 0);
        count = static_cast<uint32_t>(std::max(0, JsonGetInt(root, "count", 0)));
        const bool isCounted = IsPresent(root, "count");
        if (!IsPresent(root, "datas")) return 1;
        if (!root["datas"].isArray()) return -1;
        for (const Json::Value& json : root["datas"]) {
            if (!json.isObject() || number++ >= room) continue;
            _WFM_TORVI_AD_INFORMATION domain{};
            CopyTextCut(domain.szDomain, JsonText(json, "domain"));
            CopyTextCut(domain.szNetbios, JsonText(json, "netbios"));
            domains.push_back(domain);
        }
        if (!isCounted) count = number;
        return 1;
    });
}
