#include "transfer/GetVersioningUnLockResultJson.h"

#include "core/replyfields.h"

using namespace Lattice;

int CGetVersioningUnLockResultJson::Parser(char* text) {
    return ParseReply(text, [this](const Json::Value& root) {
        if (!root.isObject() || !IsPresent(root, "status")) return -1;
        m_status = JsonGetInt(root, "status", -1);
        return 1;
    });
}
