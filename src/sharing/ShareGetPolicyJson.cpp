#include "sharing/ShareGetPolicyJson.h"

#include "core/replyfields.h"

int CShareGetPolicyJson::Parser(char* text) {
    return Lattice::ParseReply(text, [this](const Json::Value& root) {
        if (!root.isObject()) return -1;
        policy = static_cast<uint32_t>(JsonGetInt(root, "share_policy", 0));
        return 1;
    });
}
