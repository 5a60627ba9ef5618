#include "config/GetConfigACLInfoJson.h"

#include "config/configreply.h"

using namespace Lattice;

namespace {

struct Right {
    const wchar_t* section;
    const wchar_t* key;
    uint32_t WFM_TORVI_CONFIG_ACL_INFO::*field;
};

constexpr Right kRights[] = {
    {L"Admin", L"manager mode", &WFM_TORVI_CONFIG_ACL_INFO::dwManagerMode},
    {L"Admin", L"use manager password", &WFM_TORVI_CONFIG_ACL_INFO::dwUseManagerPassword},
    {L"Admin", L"client set config", &WFM_TORVI_CONFIG_ACL_INFO::dwClientSetConfig},
    {L"Synchronize", L"smart sync", &WFM_TORVI_CONFIG_ACL_INFO::dwSmartSync},
    {L"Policy", L"conflict Policy", &WFM_TORVI_CONFIG_ACL_INFO::dwConflictPolicy},
    {L"Policy", L"black file filter", &WFM_TORVI_CONFIG_ACL_INFO::dwBlackFileFilter},
    {L"Mails", L"all", &WFM_TORVI_CONFIG_ACL_INFO::dwMails},
};

}  // namespace

int CGetConfigACLInfoJson::Parser(char* text) {
    return ParseConfigReply(text, status, [this](const Json::Value& root) {
        total = JsonGetInt(root, "total", 0);
        return ReadObjects(root, "config", [this](const Json::Value& json) {
            const std::wstring section = JsonText(json, "section");
            const std::wstring key = JsonText(json, "key");
            for (const Right& right : kRights)
                if (section == right.section && key == right.key)
                    rights.*right.field = JsonTextIs(json, "value", "0") ? 0 : 1;
        });
    });
}
