#include "core/ShareToJson.h"

#include "core/replyfields.h"

using namespace Lattice;

int CShareToJson::Parser(char* text) {
    return ParseReply(text, [this](const Json::Value& root) {
        if (!root.isObject()) return -1;
        m_status = TranslatedStatus(root, -1);
        m_found = m_status == 0;
        // A process id that doesn't fit names no job.
        CopyText(m_pid, JsonText(root, "pid"));
        return 1;
    });
}
