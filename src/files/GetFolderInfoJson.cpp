#include "files/GetFolderInfoJson.h"

#include "core/replyfields.h"
#include "files/PathRecord.h"

using namespace Lattice;

namespace {

uint32_t AccessOf(const std::wstring& cls) {
    if (cls == L"w" || cls == L"6" || cls == L"7") return 2;
    if (cls == L"r" || cls == L"4" || cls == L"5") return 1;
    return 0;
}

_WFM_PATH_INFORMATION Record(const Json::Value& element, const std::wstring& name, uint32_t fieldMask) {
    _WFM_PATH_INFORMATION record = EmptyPathRecord();
    record.bExists = true;
    if (fieldMask & kFieldName) CopyTextCut(record.szPathName, name);
    if (fieldMask & kFieldIsFolder) record.bIsFolder = true;
    if (fieldMask & kFieldAccess) record.dwAccess = AccessOf(JsonText(element, "cls"));
    return record;
}

int Read(const Json::Value& root, CGetFolderInfoJson& reply) {
    if (root.isObject()) {
        reply.status = TranslatedStatus(root, 0);
        return 1;
    }
    if (!root.isArray()) return -1;
    reply.status = 0;
    for (const Json::Value& element : root) {
        const std::wstring name = JsonText(element, "text");
        if (name.empty() || !JsonTextIs(element, "iconCls", "folder")) continue;
        if (reply.filter != L"*" && reply.filter != name) continue;
        reply.records.push_back(Record(element, name, reply.fieldMask));
        if (reply.filter != L"*") break;
    }
    return 1;
}

}  // namespace

int CGetFolderInfoJson::Parser(char* text) {
    return ParseReply(text, [this](const Json::Value& root) { return Read(root, *this); });
}
