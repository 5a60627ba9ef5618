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
    CopyTextCut(token.szError, error);
    CopyTextCut(token.szErrorDescription, errorDescription);
    CopyTextCut(token.szUserID, userID);
    CopyTextCut(token.szDisplayName, displayName);
    CopyTextCut(token.szEmail, email);
    token.nExpiresIn = expiresIn;
}
