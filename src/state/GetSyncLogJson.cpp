#include "state/GetSyncLogJson.h"

#include "core/replyfields.h"

using namespace Lattice;

int CGetTorviSyncLogJson::Parser(char* text) {
    return ParseReply(text, [this](const Json::Value& root) {
        if (!root.isObject()) return -1;
        status = JsonGetInt(root, "status", 0);
        if (status != 0) return 1;
        end = JsonGetInt(root, "end", 0) != 0;
        if (JsonGetInt(root, "number", 0) < 1 || !IsPresent(root, "data")) return 1;
        if (!root["data"].isArray()) return -1;

        for (const Json::Value& entry : root["data"]) {
            if (!entry.isObject()) continue;
            const std::wstring path = JsonLongText(entry, "filepath");
            _WFM_SYNC_LOG_INFORMATION record{};
            if (path.empty() || !CopyText(record.szFilePath, path)) continue;
            CopyText(record.szOldFilePath, JsonLongText(entry, "old_filepath"));
            CopyText(record.szDevice, JsonText(entry, "device"));
            record.llLogID = JsonGetSize(entry, "log_id", -1);
            record.nIsFolder = TranslateSyncEventIsFolder(JsonGetInt(entry, "isfolder", 0));
            record.nAction = TranslateSyncEventAction(JsonGetInt(entry, "action", -1));
            if (records.size() <= capacity) records.push_back(record);
        }
        return 1;
    });
}
