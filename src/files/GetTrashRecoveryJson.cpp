#include "files/GetTrashRecoveryJson.h"

#include "core/replyfields.h"

using namespace Lattice;

int CGetTrashRecoveryJson::Parser(char* text) {
    return ParseReply(text, [this](const Json::Value& root) {
        if (!IsPresent(root, "status")) return -1;
        m_status = TranslatedStatus(root, -1);
        if (m_status == 0) m_pid = JsonText(root, "pid");
        return 1;
    });
}
