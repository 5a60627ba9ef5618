#include "session/WebFileManLogin.h"

#include "core/replyfields.h"

using namespace Lattice;

namespace {

int Read(const Json::Value& root, CWebFileManLogin& login) {
    if (!root.isObject()) return -1;
    login.status = TranslatedStatus(root, -1);
    if (login.status == 0) login.result = 1;
    if (login.result != 1 && IsPresent(root, "need_2sv")) {
        login.need2sv = JsonGetInt(root, "need_2sv", 0);
        login.lostPhone = JsonGetInt(root, "lost_phone", 0);
        login.tryCount = JsonGetInt(root, "emergency_try_count", 0);
        login.tryLimit = JsonGetInt(root, "emergency_try_limit", -1);
        return 1;
    }
    login.sid = FieldText(root, "sid");
    login.isAdmin = JsonTextIs(root, "admingroup", "1");
    login.servername = FieldText(root, "servername");
    return 1;
}

}  // namespace

int CWebFileManLogin::Parser(char* text) {
    const int understood = ParseReply(text, [this](const Json::Value& root) { return Read(root, *this); });
    // Half a reply must not open a session.
    if (understood != 1) *this = CWebFileManLogin();
    return understood;
}
