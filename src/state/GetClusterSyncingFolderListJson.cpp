#include "state/GetClusterSyncingFolderListJson.h"

#include "core/replyfields.h"
#include "state/syncfolders.h"

using namespace Lattice;

int CGetClusterSyncingFolderListJson::Parser(char* text) {
    return ParseReply(text, [this](const Json::Value& root) {
        if (!root.isObject()) return -1;
        status = JsonGetInt(root, "status", 0);
        if (status == kSyncFoldersDenied) return 1;
        total = JsonGetInt(root, "count", -1);
        if (total <= 0 || !IsPresent(root, "slave")) return 1;
        if (!root["slave"].isArray()) return -1;

        for (const Json::Value& node : root["slave"]) {
            if (!node.isObject() || !IsPresent(node, "folder")) continue;
            if (!node["folder"].isArray()) return -1;
            for (const Json::Value& folder : node["folder"]) {
                if (!folder.isObject() || !IsPresent(folder, "name")) continue;
                _NAS_SYNCING_FOLDER_INFORMATION record = EmptySyncFolder();
                CopyText(record.szSlaveID, JsonText(node, "slave_id"));
                CopyText(record.szHostName, JsonText(node, "hostname"));
                CopyText(record.szName, JsonText(folder, "name"));
                CopyText(record.szPath, JsonText(folder, "path"));
                record.nPrivilege = JsonGetInt(folder, "permission", -1);
                folders.push_back(record);
            }
        }
        return 1;
    });
}
