#include "files/ShareGetProgressJson.h"

#include "core/replyfields.h"

using namespace Lattice;

int CShareGetProgressJson::Parser(char* text) {
    return ParseReply(text, [this](const Json::Value& root) {
        if (!root.isObject()) return -1;
        m_status = JsonGetInt(root, "status", 0);
        m_result = m_status == 1;
        if (!m_result || !IsPresent(root, "copying")) return 1;
        m_errorCode = JsonGetInt(root, "copying", kNoStatus);
        if (m_errorCode != 0)
            m_errorCode = TranslateWFMErrorCode(m_errorCode);
        else
            m_percent = JsonGetInt(root, "percent", 0);
        return 1;
    });
}
