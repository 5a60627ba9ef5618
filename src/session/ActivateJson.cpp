#include "session/ActivateJson.h"

#include "core/replyfields.h"

using namespace Lattice;

int CActivateJson::Parser(char* text) {
    return ParseReply(text, [this](const Json::Value& root) {
        if (!root.isObject()) return -1;
        status = TranslatedStatus(root, -1);
        if (IsPresent(root, "admingroup")) isAdmin = JsonTextIs(root, "admingroup", "1") ? 1 : 0;
        servername = JsonText(root, "servername");
        return 1;
    });
}

int CActivateJson::IsAdminGroup(bool* out) const {
    if (isAdmin != 0 && isAdmin != 1) return 0;
    *out = isAdmin == 1;
    return 1;
}
