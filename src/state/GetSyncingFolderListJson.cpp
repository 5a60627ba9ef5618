#include "state/GetSyncingFolderListJson.h"

#include "core/replyfields.h"
#include "state/syncfolders.h"

using namespace Lattice;

int CGetSyncingFolderListJson::Parser(char* text) {
    return ParseReply(text, [this](const Json::Value& root) {
        if (!root.isObject()) return -1;
        status = JsonGetInt(root, "status", 0);
        if (status == kSyncFoldersDenied) return 1;
        adminGroup = JsonGetFlag(root, "admingroup", false) ? 1 : 0;
        total = JsonGetInt(root, "total", -1);
        if (total <= 0 || !IsPresent(root, "folder")) return 1;
        if (!root["folder"].isArray()) return -1;

        for (const Json::Value& folder : root["folder"]) {
            if (!folder.isObject()) continue;
            const auto bytes = [&](const char* number, const char* unitKey) -> int64_t {
                const std::wstring unit = FieldText(folder, unitKey);
                if (!IsPresent(folder, number) || !IsValidSizeUnit(unit)) return -1;
                return GetFileSizeByte(unit, FieldText(folder, number));
            };
            _NAS_SYNCING_FOLDER_INFORMATION record = EmptySyncFolder();
            CopyText(record.szName, JsonText(folder, "name"));
            CopyText(record.szPath, JsonText(folder, "path"));
            record.nPrivilege = JsonGetInt(folder, "privilege", -1);
            record.llUsed = bytes("used_size", "used_unit");
            record.llCapacity = bytes("capacity", "capacity_unit");
            record.llFree = bytes("free_size", "capacity_unit");  // it has no unit of its own
            record.nVolumeID = JsonGetInt(folder, "volume_id", 0);
            folders.push_back(record);
        }
        return 1;
    });
}
