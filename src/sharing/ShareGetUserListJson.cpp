#include "sharing/ShareGetUserListJson.h"

#include "core/replyfields.h"

using namespace Lattice;

int CShareGetUserListJson::Parser(char* text) {
    return ParseReply(text, [this](const Json::Value& root) {
        if (!root.isObject()) return -1;
        status = JsonGetInt(root, "status", 0);
        if (status == WFM_PERMISSION_DENY) return 1;
        total = static_cast<uint32_t>(JsonGetInt(root, "total", 0));
        if (!IsPresent(root, "user")) return 1;
        if (!root["user"].isArray()) return -1;
        for (const Json::Value& user : root["user"]) {
            if (!user.isObject() || !IsPresent(user, "name")) continue;
            users.push_back({JsonText(user, "name"), JsonText(user, "policy"),
                             JsonLongText(user, "description"), JsonGetInt(user, "torviuser", 0)});
        }
        return 1;
    });
}
