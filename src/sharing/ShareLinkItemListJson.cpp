#include "sharing/ShareLinkItemListJson.h"

#include "core/replyfields.h"

using namespace Lattice;

int CShareLinkItemListJson::Parser(char* text) {
    return ParseReply(text, [this](const Json::Value& root) {
        if (!root.isObject()) return -1;
        const int told = JsonGetInt(root, "total", 0);
        if (told < 1) return 1;
        total = static_cast<uint32_t>(told);
        if (!IsPresent(root, "datas")) return 1;
        if (!root["datas"].isArray()) return -1;
        for (const Json::Value& json : root["datas"]) {
            if (!json.isObject() || number++ >= room) continue;
            _WFM_SHARE_LINK_ITEM_INFO item{};
            CopyTextCut(item.szFileName, JsonText(json, "filename"));
            item.bIsFolder = JsonGetFlag(json, "isfolder", false);
            items.push_back(item);
        }
        return 1;
    });
}
