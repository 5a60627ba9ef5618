#include "sharing/ShareGetUserListJson.h"

#include <algorithm>

#include "sharing/shareid.h"

using namespace Lattice;

int CShareGetUserListJson::Parser(char* text) {
    return ParseReply(text, [this](const Json::Value& root) {
        if (!root.isObject()) return -1;
        status = JsonGetInt(root, "status", status);
        if (status == kQuestionFailed) return 1;
        total = static_cast<uint32_t>(std::max(0, JsonGetInt(root, "total", 0)));
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
