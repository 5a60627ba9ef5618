#include "state/GetLastModifiedTimeJson.h"

#include "core/replyfields.h"
#include "state/syncfolders.h"

using namespace Lattice;

int CGetLastModifiedTimeJson::Parser(char* text) {
    return ParseReply(text, [this](const Json::Value& root) {
        if (!root.isObject()) return -1;
        status = JsonGetInt(root, "status", 0);
        if (status == kSyncFoldersDenied) return 1;
        epochmt = JsonGetSize(root, "epochmt", 0);
        return 1;
    });
}

bool CGetLastModifiedTimeJson::GetLastModifiedTime(long long* time) const {
    if (epochmt <= 0) return false;
    *time = epochmt;
    return true;
}
