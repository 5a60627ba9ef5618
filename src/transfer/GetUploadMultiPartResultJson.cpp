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
        }
        return 1;
    });
}

const _MULTI_PART_FILE_INFO* CGetUploadMultiPartResultJson::GetMultiPartFileInfo(std::wstring name) const {
    const QString wanted = ToQString(name);
    const auto found = std::find_if(m_files.begin(), m_files.end(), [&](const _MULTI_PART_FILE_INFO& file) {
        return ToQString(file.strName).compare(wanted, Qt::CaseInsensitive) == 0;
    });
    return found != m_files.end() ? &*found : nullptr;
}
