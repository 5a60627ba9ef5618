#include "transfer/GetChunkFileSizeJson.h"

#include "core/replyfields.h"

using namespace Lattice;

int CGetChunkFileSizeJson::Parser(char* text) {
    return ParseReply(text, [this](const Json::Value& root) {
        if (!root.isObject()) return -1;
        m_status = JsonGetInt(root, "status", -1);
        m_size = JsonGetInt64(root, "size", 0);
        return 1;
    });
}
