#include "transfer/GetVersioningLockResultJson.h"

#include "core/replyfields.h"

using namespace Lattice;

int CGetVersioningLockResultJson::Parser(char* text) {
    return ParseReply(text, [this](const Json::Value& root) {
        if (!root.isObject() || !IsPresent(root, "status")) return -1;
        m_status = JsonGetInt(root, "status", -1);
        m_lockID = JsonText(root, "lockid");
        m_versionID = JsonText(root, "version_id");
        return 1;
    });
}
