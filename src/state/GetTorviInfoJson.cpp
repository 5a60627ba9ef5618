#include "state/GetTorviInfoJson.h"

#include <algorithm>
#include <initializer_list>

#include "core/replyfields.h"

using namespace Lattice;

int CGetTorviInfoJson::Parser(char* text) {
    return ParseReply(text, [this](const Json::Value& root) {
        if (!root.isObject()) return -1;
        status = TranslatedStatus(root, -1);
        const auto needed = {"nubo_function_enable", "nubo_user_enable", "home_is_exist",
                             "team_folder_is_exist"};
        result =
            std::all_of(needed.begin(), needed.end(), [&](const char* key) { return IsPresent(root, key); });
        functionEnable = JsonGetInt(root, "nubo_function_enable", 0) == 1;
        userEnable = JsonGetInt(root, "nubo_user_enable", 0) == 1;
        homeIsExist = JsonGetInt(root, "home_is_exist", 1) == 1;
        teamFolderIsExist = JsonGetInt(root, "team_folder_is_exist", 1) == 1;
        clusterSupport = JsonGetInt(root, "nubo_cluster_support", 0) == 1;
        if (!clusterSupport) return 1;
        clusterStatus = JsonGetInt(root, "nubo_cluster_status", 0);
        if (clusterStatus == 1) slaveId = FieldText(root, "nubo_cluster_slave_id");
        return 1;
    });
}
