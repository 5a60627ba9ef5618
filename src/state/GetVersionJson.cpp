#include "state/GetVersionJson.h"

#include "core/replyfields.h"

using namespace Lattice;

int CGetVersionJson::Parser(char* text) {
    return ParseReply(text, [this](const Json::Value& root) {
        if (!root.isObject()) return -1;
        m_version = JsonText(root, "version");
        m_buildNumber = JsonText(root, "build");
        return 1;
    });
}
