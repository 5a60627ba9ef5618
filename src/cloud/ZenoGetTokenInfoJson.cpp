#include "cloud/ZenoGetTokenInfoJson.h"

#include "core/Utils.h"
#include "core/jsonfields.h"

using namespace Lattice;

int CZenoGetTokenInfoJson::Parser(char* text) {
    return ParseReply(text, [this](const Json::Value& root) {
        if (!root.isObject()) return -1;
        error = JsonLongText(root, "error");
        error_description = JsonLongText(root, "error_description");
        user_id = JsonLongText(root, "user_id");
        const Json::Value& user = root["user"];
        display_name = JsonLongText(user, "display_name");
        email = JsonLongText(user, "email");
        expires_in = JsonGetInt(root, "expires_in", 0);
        return 1;
    });
}

void CZenoGetTokenInfoJson::store(_CLOUD_TOKEN_INFORMATION& token) const {
    CopyTextCut(token.error, error);
    CopyTextCut(token.error_description, error_description);
    CopyTextCut(token.user_id, user_id);
    CopyTextCut(token.display_name, display_name);
    CopyTextCut(token.email, email);
    token.expires_in = expires_in;
}
