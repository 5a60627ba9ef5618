#include "cloud/ZenoGetTokenInfoJson.h"

#include "core/Utils.h"
#include "core/jsonfields.h"

using namespace Lattice;

int CZenoGetTokenInfoJson::Parser(char* text) {
    return ParseReply(text, [this](const Json::Value& root) {
        if (!root.isObject()) return -1;
        error = JsonLongText(root, "error");
        errorDescription = JsonLongText(root, "error_description");
        userID = JsonLongText(root, "user_id");
        const Json::Value& user = root["user"];
        displayName = JsonLongText(user, "display_name");
        email = JsonLongText(user, "email");
        expiresIn = JsonGetInt(root, "expires_in", 0);
        return 1;
    });
}

void CZenoGetTokenInfoJson::store(_CLOUD_TOKEN_INFORMATION& token) const {
    CopyTextCut(token.error, error);
    CopyTextCut(token.error_description, errorDescription);
    CopyTextCut(token.user_id, userID);
    CopyTextCut(token.display_name, displayName);
    CopyTextCut(token.email, email);
    token.expires_in = expiresIn;
}
