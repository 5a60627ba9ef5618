#include "sharing/GetRecycleBinJson.h"

#include "core/replyfields.h"

int CGetRecycleBinJson::Parser(char* text) {
    return Lattice::ParseReply(text, [this](const Json::Value& root) {
        if (!root.isObject()) return -1;
        enabled = JsonGetInt(root, "recycle_bin_enable", 0) == 1;
        return 1;
    });
}
