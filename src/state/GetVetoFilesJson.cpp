#include "state/GetVetoFilesJson.h"

#include "core/replyfields.h"

using namespace Lattice;

int CGetVetoFilesJson::Parser(char* text) {
    return ParseReply(text, [this](const Json::Value& root) {
        if (!root.isObject()) return -1;
        status = JsonGetInt(root, "status", -1);
        vetoFiles = JsonLongText(root, "veto files");
        return 1;
    });
}
