#include "core/FileProcessJson.h"

#include "core/replyfields.h"

using namespace Lattice;

int CWebFileManFileProcessJson::Parser(char* text) {
    return ParseReply(text, [this](const Json::Value& root) {
        if (!root.isObject()) return -1;
        m_status = TranslatedStatus(root, -1);
        m_result = JsonTextIs(root, "success", "true");
        m_pid = JsonGetInt(root, "pid", 0);
        return 1;
    });
}
