#include "transfer/GetUploadChunkResultJson.h"

#include "core/replyfields.h"

using namespace Lattice;

int CGetUploadChunkResultJson::Parser(char* text) {
    return ParseReply(text, [this](const Json::Value& root) {
        if (!root.isObject()) return -1;
        m_status = TranslatedStatus(root, -1);
        m_size = JsonGetInt64(root, "size", 0);
        m_homeFolderAvailable = JsonGetFlag(root, "home_folder_available", true);
        return 1;
    });
}
