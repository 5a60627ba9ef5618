#include "core/ShareJson.h"

#include "core/replyfields.h"

using namespace Lattice;

int CShareJson::Parser(char* text) {
    return ParseReply(text, [this](const Json::Value& root) {
        // A reply that is no object counts as understood, with nothing read; it must stay.
        if (!root.isObject()) return 1;
        m_status = JsonGetInt(root, "status", -1);
        m_success = JsonTextIs(root, "success", "true");
        m_file = JsonText(root, "file");
        return 1;
    });
}
