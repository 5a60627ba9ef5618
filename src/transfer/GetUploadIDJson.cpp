#include "transfer/GetUploadIDJson.h"

#include "core/replyfields.h"

using namespace Lattice;

int CGetUploadIDJson::Parser(char* text) {
    return ParseReply(text, [this](const Json::Value& root) {
        if (!root.isObject()) return -1;
        m_status = JsonGetInt(root, "status", -1);
        if (m_status == 0)
            m_uploadID = JsonText(root, "upload_id");
        else
            m_homeFolderAvailable = JsonGetFlag(root, "home_folder_available", true);
        return 1;
    });
}
