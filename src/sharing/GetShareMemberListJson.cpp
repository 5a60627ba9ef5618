#include "sharing/GetShareMemberListJson.h"

#include <algorithm>

#include "sharing/shareid.h"

using namespace Lattice;

int CGetShareMemberListJson::Parser(char* text) {
    return ParseReply(text, [this](const Json::Value& root) {
        if (!root.isObject()) return -1;
        status = JsonGetInt(root, "status", 0);
        if (status == kQuestionFailed) return 1;
        total = static_cast<uint32_t>(std::max(0, JsonGetInt(root, "total", 0)));
        if (!IsPresent(root, "user")) return 1;
        if (!root["user"].isArray()) return -1;
        for (const Json::Value& user : root["user"]) {
            if (!user.isObject()) continue;
            members.push_back({JsonText(user, "name"), JsonGetInt(user, "share_member", 0),
                               JsonGetInt(user, "event_status", 0), JsonGetInt(user, "event_id", 0),
                               JsonLongText(user, "description"), JsonGetInt(user, "torviuser", 0)});
        }
        return 1;
    });
}
