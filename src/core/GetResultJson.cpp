#include "core/GetResultJson.h"

#include "core/replyfields.h"

using namespace Lattice;

int CWebFileManGetResultJson::Parser(char* text) {
    return ParseReply(text, [this](const Json::Value& root) {
        if (!root.isObject()) return -1;
        if (m_translate)
            m_status = TranslatedStatus(root, -1);
        else
            m_status = JsonGetInt(root, "status", -1);
        m_result = JsonTextIs(root, "success", "true");
        return 1;
    });
}
