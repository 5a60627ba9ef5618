#include "config/configitems.h"

#include <QString>
#include <algorithm>

#include "WebFileManShareAPI.h"
#include "core/Utils.h"
#include "session/password.h"

using namespace Lattice;

namespace {

struct Item {
    unsigned int flag;
    const wchar_t* section;
    const wchar_t* key;
};

constexpr Item kItems[] = {
    {WFM_CONFIG_SMART_SYNC, L"Synchronize", L"smart sync"},
    {WFM_CONFIG_CONFLICT_POLICY, L"Policy", L"conflict Policy"},
    {WFM_CONFIG_BLACK_FILE_FILTER, L"Policy", L"black file filter"},
    {WFM_CONFIG_MAIL_SEND_METHOD, L"Mails", L"send method"},
    {WFM_CONFIG_MAIL_SENDER_ADDRESS, L"Mails", L"sender address"},
    {WFM_CONFIG_MAIL_SENDER_SMTP_AUTH, L"Mails", L"sender smtp auth"},
    {WFM_CONFIG_MAIL_SENDER_USERNAME, L"Mails", L"sender username"},
    {WFM_CONFIG_MAIL_SENDER_PASSWORD, L"Mails", L"sender password"},
    {WFM_CONFIG_MAIL_SERVER_NAME, L"Mails", L"server name"},
    {WFM_CONFIG_MAIL_SERVER_PORT, L"Mails", L"server port"},
    {WFM_CONFIG_MAIL_SERVER_SECURE, L"Mails", L"server secure"},
    {WFM_CONFIG_MAIL_SERVER_SECURITY_PROTOCOL, L"Mails", L"server security protocol"},
    {WFM_CONFIG_OFFICIAL_VERSION, L"Config", L"official version"},
    {WFM_CONFIG_MANUAL_VERSION, L"Config", L"manual version"},
};

bool IsSame(const std::string& text, const wchar_t* name) {
    return QString::fromStdString(text).compare(ToQString(name), Qt::CaseInsensitive) == 0;
}

}  // namespace

int GetConfigItemContent(unsigned int flag, std::wstring& section, std::wstring& key) {
    section.clear();
    key.clear();
    const auto* const item = std::find_if(std::begin(kItems), std::end(kItems),
                                          [flag](const Item& candidate) { return candidate.flag == flag; });
    if (item == std::end(kItems)) return 0;
    section = item->section;
    key = item->key;
    return 1;
}

unsigned int GetConfigItemFlag(std::string section, std::string key) {
    if (section.empty() || key.empty()) return 0;
    const auto* const item = std::find_if(std::begin(kItems), std::end(kItems), [&](const Item& candidate) {
        return IsSame(section, candidate.section) && IsSame(key, candidate.key);
    });
    return item != std::end(kItems) ? item->flag : 0;
}

namespace Lattice {

std::wstring EncodedConfigValue(unsigned int flag, const std::wstring& value) {
    switch (flag) {
        case WFM_CONFIG_BLACK_FILE_FILTER:
            return StringReplace(value, L"\t", L"\\t");
        case WFM_CONFIG_MAIL_SENDER_PASSWORD:
            return FromQString(EncodedPassword(value.c_str()));
        default:
            return value;
    }
}

std::wstring DecodedConfigValue(unsigned int flag, const std::wstring& value) {
    switch (flag) {
        case WFM_CONFIG_BLACK_FILE_FILTER:
            return StringReplace(value, L"\\t", L"\t");
        case WFM_CONFIG_MAIL_SENDER_PASSWORD:
            return FromQString(QString::fromUtf8(QByteArray::fromBase64(ToUtf8(value))));
        default:
            return value;
    }
}

}  // namespace Lattice
