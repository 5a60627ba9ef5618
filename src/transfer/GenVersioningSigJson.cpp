#include "transfer/GenVersioningSigJson.h"

#include "core/replyfields.h"

using namespace Lattice;

namespace {

/// The server's own statuses: started, and two for work that is there or under way already.
bool IsStarted(int status) {
    return status == 1 || status == 33 || status == 34;
}

}  // namespace

int CGenVersioningSigJson::Parser(char* text) {
    return ParseReply(text, [this](const Json::Value& root) {
        if (!root.isObject()) return -1;
        m_status = JsonGetInt(root, "status", 0);
        m_success = IsStarted(m_status);
        if (!m_success) return 1;
        CopyTextCut(m_pid, JsonText(root, "pid"));
        CopyTextCut(m_versionID, JsonText(root, "version_id"));
        return 1;
    });
}
