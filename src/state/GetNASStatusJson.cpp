#include "state/GetNASStatusJson.h"

#include "core/replyfields.h"

using namespace Lattice;

int CGetNASStatusJson::Parser(char* text) {
    return ParseReply(text, [this](const Json::Value& root) {
        if (!root.isObject()) return -1;
        m_status = TranslatedStatus(root, 0);
        if (m_status != 0) return 1;
        const auto flag = [&root](const char* key, int absent) { return JsonGetInt(root, key, absent) == 1; };
        m_information.bHomeFolderEnable = flag("home_folder_enable", 0);
        m_information.bRecycleBinEnable = flag("recycle_bin_enable", 0);
        m_information.bDeviceDBExist = flag("device_db_exist", 0);
        m_information.bLogDBExist = flag("log_db_exist", 0);
        m_information.bShareDBExist = flag("share_db_exist", 0);
        m_information.bUserEnable = flag("user_enable", 0);
        m_information.bVersioningEnable = flag("versioning_enable", 0);
        m_information.bNuboVersioningEnable = flag("nubo_versioning_enable", 0);
        m_information.bHomeFolderAvailable = flag("home_folder_available", 1);
        m_information.bRecovering = flag("is_recovering", 0);
        const std::wstring version = JsonText(root, "versioning_version");
        if (version != L"---") CopyText(m_information.szVersioningVersion, version);
        return 1;
    });
}
