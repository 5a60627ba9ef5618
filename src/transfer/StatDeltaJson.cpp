#include "transfer/StatDeltaJson.h"

#include "core/replyfields.h"

using namespace Lattice;

int CStatDeltaJson::Parser(char* text) {
    return ParseReply(text, [this](const Json::Value& root) {
        if (!root.isObject()) return -1;
        m_exist = JsonGetInt(root, "exist", 0) != 0;
        if (m_exist) m_size = JsonGetInt64(root, "size", 0);
        m_success = true;
        return 1;
    });
}
