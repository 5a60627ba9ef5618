#include "transfer/GetUploadMultiPartResultJson.h"

#include <algorithm>
#include <cwchar>

#include "core/replyfields.h"

using namespace Lattice;

int CGetUploadMultiPartResultJson::Parser(char* text) {
    return ParseReply(text, [this](const Json::Value& root) {
        if (!root.isObject()) return -1;
        m_status = TranslatedStatus(root, -1);
        if (!IsPresent(root, "files")) return 1;
        if (!root["files"].isArray()) return -1;
        for (const Json::Value& file : root["files"]) {
            const long status = std::wcstol(JsonText(file, "status").c_str(), nullptr, 10);
            m_files.push_back({TranslateWFMErrorCode(static_cast<int>(status)), JsonText(file, "name"),
                               file["size"].asInt64()});
            m_names.push_back(ToQString(m_files.back().strName).toCaseFolded());
        }
        return 1;
    });
}

const _MULTI_PART_FILE_INFO* CGetUploadMultiPartResultJson::GetMultiPartFileInfo(std::wstring name) const {
    const auto found = std::find(m_names.begin(), m_names.end(), ToQString(name).toCaseFolded());
    return found != m_names.end() ? &m_files[static_cast<size_t>(found - m_names.begin())] : nullptr;
}
