#include "files/GetNodeInfoJson.h"

#include "core/replyfields.h"
#include "files/PathRecord.h"

using namespace Lattice;

namespace {

/// Filled where it lies: a record is large, and a page has many.
void AddRecord(const PathEntry& entry, uint32_t fieldMask, std::vector<_WFM_PATH_INFORMATION>& records) {
    _WFM_PATH_INFORMATION& record = records.emplace_back();
    record.nPrivilegeEx = -1;
    record.bExists = true;
    record.bHasChild = true;
    bool hasChild = !IsPresent(entry.json, "have_child") || JsonGetInt(entry.json, "have_child", 0) != 0;
    entry.fill(record, fieldMask);
    if ((fieldMask & kFieldIsFolder) && !entry.isFolder()) record.bHasChild = hasChild = false;
    if (fieldMask & kFieldHasChild) record.bHasChild = hasChild;
    if (fieldMask & kFieldShare) {
        record.dwNuboType = static_cast<uint32_t>(JsonGetInt(entry.json, "nubo_type", 0));
        const std::wstring shareID = JsonText(entry.json, "nubo_share_id");
        if (shareID != L"---") CopyText(record.szShareID, shareID);
    }
}

int Read(const Json::Value& root, CGetNodeInfoJson& reply) {
    if (!root.isObject()) return 1;
    const bool isWild = reply.pattern.find_first_of(L"*?") != std::wstring::npos;

    reply.status = TranslatedStatus(root, 0);
    if (reply.status == WFM_PERMISSION_DENY) return 1;
    reply.total = static_cast<uint32_t>(JsonGetInt(root, "total", 0));
    if (reply.total == 0 || !IsPresent(root, "datas")) return 1;
    const Json::Value& entries = root["datas"];
    reply.nextStart += entries.size();

    for (const Json::Value& json : entries) {
        const PathEntry entry(json);
        if (entry.name.empty() || !wildCmp(reply.pattern.c_str(), entry.name.c_str(), 0)) continue;
        if (entry.wantedBy(reply.typeFilter) && entry.exists())
            AddRecord(entry, reply.fieldMask, reply.records);
        // One name was asked for, and this was it, kept or not.
        if (!isWild) break;
    }
    return 1;
}

}  // namespace

int CGetNodeInfoJson::Parser(char* text) {
    status = -1;
    CGetNodeInfoJson page = *this;
    const int understood = ParseReply(text, [&](const Json::Value& root) { return Read(root, page); });
    // Half a page must not move the listing on.
    if (understood == 1) {
        status = page.status;
        total = page.total;
        nextStart = page.nextStart;
        records.swap(page.records);
    }
    return understood;
}
