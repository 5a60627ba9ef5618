#include "sharing/ShareLinkListJson.h"

#include <algorithm>

#include "sharing/shareid.h"

using namespace Lattice;

int CShareLinkListJson::Parser(char* text) {
    return ParseReply(text, [this](const Json::Value& root) {
        if (!root.isObject()) return -1;
        status = JsonGetInt(root, "status", status);
        if (status == kQuestionFailed) return 1;
        maxShareFile = JsonGetInt(root, "max_share_file", 0);
        total = std::max(0, JsonGetInt(root, "total", 0));
        if (!IsPresent(root, "datas")) return 1;
        if (!root["datas"].isArray()) return -1;
        for (const Json::Value& json : root["datas"]) {
            if (!json.isObject() || number++ >= room) continue;
            _WFM_SHARE_LINK_INFO link{};
            CopyText(link.szSsid, JsonText(json, "ssid"));
            CopyTextCut(link.szFileName, JsonText(json, "filename"));
            CopyTextCut(link.szDownloadLink, JsonText(json, "download_link"));
            CopyTextCut(link.szCreator, JsonText(json, "creator"));
            CopyTextCut(link.szLinkName, JsonText(json, "link_name"));
            link.bIsFolder = JsonGetFlag(json, "isfolder", false);
            link.bMultiple = JsonGetFlag(json, "multiple", false);
            links.push_back(link);
        }
        return 1;
    });
}
