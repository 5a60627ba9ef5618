#include "state/GetUserHomePathJson.h"

#include "core/replyfields.h"

using namespace Lattice;

int CGetUserHomePathJson::Parser(char* text) {
    return ParseReply(text, [this](const Json::Value& root) {
        constexpr size_t kLongestHome = 4096;
        if (!root.isObject()) return -1;
        status = TranslatedStatus(root, -1);
        homePath = JsonLongText(root, "home");
        if (homePath.size() >= kLongestHome) homePath.clear();
        return 1;
    });
}
