#include "files/GetFolderSizeJson.h"

#include <cwchar>

#include "core/replyfields.h"

using namespace Lattice;

int CGetFolderSizeJson::Parser(char* text) {
    return ParseReply(text, [this](const Json::Value& root) {
        if (!root.isObject()) return -1;
        m_status = TranslatedStatus(root, 0);
        if (m_status == WFM_PERMISSION_DENY) return 1;
        const std::wstring size = JsonText(root, "size");
        m_size = std::wcstoll(size.c_str(), nullptr, 10);
        m_valid = !size.empty() && m_size >= 0;
        return 1;
    });
}
