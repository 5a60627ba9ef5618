#include "state/ShareGetUIDJson.h"

#include "core/replyfields.h"

using namespace Lattice;

namespace {

/// A text for which the server may say that it has none.
std::wstring TextOrNone(const Json::Value& root, const char* key) {
    return JsonTextIs(root, key, "---") ? std::wstring() : FieldText(root, key);
}

}  // namespace

int CShareGetUIDJson::Parser(char* text) {
    return ParseReply(text, [this](const Json::Value& root) {
        if (!root.isObject()) return -1;
        isBooting = JsonGetInt(root, "is_booting", 0) != 0;
        isRecovering = JsonGetInt(root, "is_recovering", 0) != 0;
        isMigrating = JsonGetInt(root, "is_migrating", 0) != 0;
        nuboCGI = JsonGetInt(root, "nubo_cgi", 0) != 0;
        userType = JsonGetInt(root, "user_type", 0) == 1 ? 1 : 0;
        uid = TextOrNone(root, "UID");
        suid = TextOrNone(root, "SUID");
        mac = TextOrNone(root, "MAC0");
        torviVersion = TextOrNone(root, "Torvi_version");
        versioningVersion = TextOrNone(root, "versioning_version");
        return 1;
    });
}
