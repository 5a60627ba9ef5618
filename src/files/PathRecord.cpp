#include "files/PathRecord.h"

#include "core/replyfields.h"

namespace Lattice {

namespace {

/// The server's privilege holds the access in its hundreds: 2 to write, 4 to read.
uint32_t AccessOf(int privilege) {
    const int bits = privilege / 100;
    if ((bits & 2) != 0) return 2;
    if ((bits & 4) != 0) return 1;
    return 0;
}

}  // namespace

_WFM_PATH_INFORMATION EmptyPathRecord() {
    _WFM_PATH_INFORMATION record = {};
    record.nPrivilegeEx = -1;
    return record;
}

PathEntry::PathEntry(const Json::Value& entry) : json(entry), name(JsonText(entry, "filename")) {}

bool PathEntry::isFolder() const {
    return JsonGetInt(json, "isfolder", 0) == 1;
}

int64_t PathEntry::modifiedTime() const {
    return JsonGetInt64(json, "epochmt", 0);
}

bool PathEntry::exists() const {
    return IsPresent(json, "exist") ? JsonGetInt(json, "exist", 0) != 0 : modifiedTime() != 0;
}

bool PathEntry::wantedBy(uint32_t typeFilter) const {
    return (typeFilter & (isFolder() ? kTypeFolders : kTypeFiles)) != 0;
}

void PathEntry::fill(_WFM_PATH_INFORMATION& record, uint32_t fieldMask) const {
    if (fieldMask & kFieldName) CopyTextCut(record.szPathName, name);
    if (fieldMask & kFieldIsFolder) record.bIsFolder = isFolder();
    if (fieldMask & kFieldAccess) record.dwAccess = AccessOf(JsonGetInt(json, "privilege", 0));
    if (fieldMask & kFieldSize) record.llSize = JsonGetSize(json, "filesize", 0);
    const int64_t time = modifiedTime();
    if (time <= 0) return;
    if (fieldMask & kFieldModifiedTime) record.llModifiedTime = time;
    if (fieldMask & kFieldSecondTime) record.llSecondTime = time;
}

_WFM_PATH_INFORMATION** HandOverList(const std::vector<_WFM_PATH_INFORMATION>& first,
                                     const std::vector<_WFM_PATH_INFORMATION>& second) {
    if (first.empty() && second.empty()) return nullptr;
    auto** list = new _WFM_PATH_INFORMATION*[first.size() + second.size()];
    auto** next = list;
    for (const auto* part : {&first, &second})
        for (const auto& record : *part) *next++ = new _WFM_PATH_INFORMATION(record);
    return list;
}

}  // namespace Lattice
