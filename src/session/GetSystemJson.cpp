#include "session/GetSystemJson.h"

#include "core/replyfields.h"

using namespace Lattice;

int CGetSystemJson::Parser(char* text) {
    return ParseReply(text, [this](const Json::Value& root) {
        if (!root.isObject()) return -1;
        if (IsPresent(root, "status")) status = TranslatedStatus(root, -1) == 0 ? 0 : WFM_PERMISSION_DENY;
        sid = JsonText(root, "sid");
        return 1;
    });
}
