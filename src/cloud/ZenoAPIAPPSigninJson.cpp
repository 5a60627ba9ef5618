#include "cloud/ZenoAPIAPPSigninJson.h"

#include "core/Utils.h"
#include "core/jsonfields.h"

using namespace Lattice;

int CZenoAPIAPPSigninJson::Parser(char* text) {
    return ParseReply(text, [this](const Json::Value& root) {
        if (!root.isObject()) return -1;
        error = JsonLongText(root, "error");
        error_description = JsonLongText(root, "error_description");
        access_token = JsonLongText(root, "access_token");
        token_type = JsonLongText(root, "token_type");
        refresh_token = JsonLongText(root, "refresh_token");
        expires_in = JsonGetInt(root, "expires_in", 0);
        return 1;
    });
}

void CZenoAPIAPPSigninJson::store(_CLOUD_TOKEN_INFORMATION& token) const {
    CopyTextCut(token.error, error);
    CopyTextCut(token.error_description, error_description);
    CopyTextCut(token.access_token, access_token);
    CopyTextCut(token.token_type, token_type);
    CopyTextCut(token.refresh_token, refresh_token);
    token.expires_in = expires_in;
}
