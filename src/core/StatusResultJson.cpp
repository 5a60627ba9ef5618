#include "core/StatusResultJson.h"

#include "core/replyfields.h"

using namespace Lattice;

int CWFMStatusResultJson::Parser(char* text) {
    return ParseReply(text, [this](const Json::Value& root) {
        if (!root.isObject() || !IsPresent(root, "status")) return -1;
        m_status = JsonGetInt(root, "status", 0);
        return 1;
    });
}

int CWFMStatusResultJson::GetStatus() const {
    return TranslateWFMErrorCode(m_status);
}
