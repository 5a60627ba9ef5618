#include "cloud/ZenoAPIAPPSigninJson.h"

#include "core/Utils.h"
#include "core/jsonfields.h"

using namespace Lattice;

int CZenoAPIAPPSigninJson::Parser(char* text) {
    return ParseReply(text, [this](const Json::Value& root) {
        if (!root.isObject()) return -1;
        error = JsonLongText(root, "error");
        errorDescription = JsonLongText(root, "error_description");
        accessToken = JsonLongText(root, "access_token");
        tokenType = JsonLongText(root, "token_type");
        refreshToken = JsonLongText(root, "refresh_token");
        expiresIn = JsonGetInt(root, "expires_in", 0);
        return 1;
    });
}

void CZenoAPIAPPSigninJson::store(_CLOUD_TOKEN_INFORMATION& token) const {
    CopyTextCut(token.error, error);
    CopyTextCut(token.error_description, errorDescription);
    CopyTextCut(token.access_token, accessToken);
    CopyTextCut(token.token_type, tokenType);
    CopyTextCut(token.refresh_token, refreshToken);
    token.expires_in = expiresIn;
}
