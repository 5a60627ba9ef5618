#include "sharing/ShareGetTeamFolderJson.h"

#include "sharing/shareid.h"

using namespace Lattice;

namespace {

std::vector<_WFM_TORVI_TEAM_FOLDER_RECEIVER_INFO> ReceiversOf(const Json::Value& json) {
    std::vector<_WFM_TORVI_TEAM_FOLDER_RECEIVER_INFO> receivers;
    if (JsonGetInt(json, "receiver_number", 0) <= 0 || !IsPresent(json, "receiver") ||
        !json["receiver"].isArray())
        return receivers;
    for (const Json::Value& one : json["receiver"]) {
        // Names of any length count; they are cut.
        const std::wstring name = one.isObject() ? JsonLongText(one, "name") : std::wstring();
        if (name.empty()) continue;
        _WFM_TORVI_TEAM_FOLDER_RECEIVER_INFO receiver{};
        CopyTextCut(receiver.szName, name);
        CopyTextCut(receiver.szDisplayName, JsonLongText(one, "display_name"));
        receiver.nPermission = JsonGetInt(one, "permission", 0);
        receiver.nStatus = JsonGetInt(one, "status", 0);
        receivers.push_back(receiver);
    }
    return receivers;
}

}  // namespace

int CShareGetTeamFolderJson::Parser(char* text) {
    return ParseReply(text, [this](const Json::Value& root) {
        if (!root.isObject()) return 1;
        status = JsonGetInt(root, "status", 0);
        if (status == kQuestionFailed) return 1;
        const int number = JsonGetInt(root, "total", 0);
        if (number < 1) return 1;
        total = static_cast<uint32_t>(number);
        if (!IsPresent(root, "team_folder")) return 1;
        if (!root["team_folder"].isArray()) return -1;
        for (const Json::Value& json : root["team_folder"]) {
            if (!json.isObject() || folders.size() >= room) continue;
            folders.push_back({JsonGetInt(json, "type", 0), JsonGetInt(json, "status", 0),
                               JsonText(json, "owner"), ShareIDOf(json), JsonText(json, "parent_id"),
                               JsonText(json, "nas_id"), JsonText(json, "name"), JsonText(json, "path"),
                               JsonText(json, "original_path"), ReceiversOf(json)});
        }
        return 1;
    });
}
