#include "config/AuthConfigPasswordJson.h"

#include "config/configreply.h"

using namespace Lattice;

int CAuthConfigPasswordJson::Parser(char* text) {
    return ParseConfigReply(text, status, [this](const Json::Value& root) {
        authResult = JsonGetInt(root, "auth_result", -1);
        return 1;
    });
}
