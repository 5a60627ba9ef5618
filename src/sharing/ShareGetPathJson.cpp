#include "sharing/ShareGetPathJson.h"

#include "core/replyfields.h"

using namespace Lattice;

int CShareGetPathJson::Parser(char* text) {
    return ParseReply(text, [this](const Json::Value& root) {
        constexpr size_t kLongestPath = 4096;
        if (!root.isObject()) return -1;
        status = TranslatedStatus(root, -1);
        path = JsonLongText(root, "share_path");
        if (path.size() >= kLongestPath) path.clear();
        return 1;
    });
}
