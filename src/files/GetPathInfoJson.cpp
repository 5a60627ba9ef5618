#include "files/GetPathInfoJson.h"

#include "core/replyfields.h"
#include "files/PathRecord.h"

using namespace Lattice;

namespace {

constexpr int kHighestPrivilegeEx = 2;

_WFM_PATH_INFORMATION Record(const PathEntry& entry, uint32_t fieldMask) {
    _WFM_PATH_INFORMATION record = EmptyPathRecord();
    record.bExists = entry.exists();
    if (fieldMask & (kFieldPrivilegeEx | kFieldUploadPrivilege)) {
        record.nPrivilegeEx = JsonGetInt(entry.json, "privilege_ex", -1);
        if (record.nPrivilegeEx > kHighestPrivilegeEx) record.nPrivilegeEx = -1;
    }
    entry.fill(record, fieldMask);
    return record;
}

int Read(const Json::Value& root, CGetPathInfoJson& reply) {
    if (!root.isObject()) return -1;
    reply.status = TranslatedStatus(root, 0);
    if (reply.status == WFM_PERMISSION_DENY) return 1;
    if (JsonGetInt(root, "total", 0) <= 0 || !IsPresent(root, "datas")) return 1;

    const Json::Value& entries = root["datas"];
    for (const Json::Value& json : entries) {
        const PathEntry entry(json);
        if (entry.name == reply.expectedName && entry.wantedBy(reply.typeFilter))
            reply.records.push_back(Record(entry, reply.fieldMask));
    }
    if (!entries.empty() && reply.records.empty()) reply.status = WFM_FILE_NO_EXIST;
    return 1;
}

}  // namespace

int CGetPathInfoJson::Parser(char* text) {
    if (expectedName.empty() || (typeFilter & (kTypeFiles | kTypeFolders)) == 0 || fieldMask == 0) return -1;
    return ParseReply(text, [this](const Json::Value& root) { return Read(root, *this); });
}
