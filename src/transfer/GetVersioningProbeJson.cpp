#include "transfer/GetVersioningProbeJson.h"

#include "core/replyfields.h"

using namespace Lattice;

int CGetVersioningProbeJson::Parser(char* text) {
    return ParseReply(text, [this](const Json::Value& root) {
        if (!root.isObject() || !IsPresent(root, "status")) return -1;
        m_status = JsonGetInt(root, "status", -1);
        m_versioningEnabled = JsonGetInt(root, "versioning_enable", 0) == 1;
        m_syncVersioningEnabled = JsonGetInt(root, "nubo_versioning_enable", 0) == 1;
        m_version = JsonText(root, "versioning_version");
        return 1;
    });
}
