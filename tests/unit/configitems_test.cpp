#include "config/configitems.h"

#include <gtest/gtest.h>

#include <string>

#include "WebFileManShareAPI.h"

namespace {

struct Row {
    unsigned int flag;
    const char* section;
    const char* key;
};

// The numbers and names of the wire, spelled out once more.
const Row kRows[] = {{0x1, "Synchronize", "smart sync"},     {0x2, "Policy", "conflict Policy"},
                     {0x4, "Policy", "black file filter"},   {0x8, "Mails", "send method"},
                     {0x10, "Mails", "sender address"},      {0x20, "Mails", "sender smtp auth"},
                     {0x40, "Mails", "sender username"},     {0x80, "Mails", "sender password"},
                     {0x100, "Mails", "server name"},        {0x200, "Mails", "server port"},
                     {0x400, "Mails", "server secure"},      {0x800, "Mails", "server security protocol"},
                     {0x1000, "Config", "official version"}, {0x2000, "Config", "manual version"}};

std::wstring wide(const std::string& ascii) {
    return {ascii.begin(), ascii.end()};
}

std::string changed(std::string text, int (*change)(int)) {
    for (char& c : text) c = static_cast<char>(change(c));
    return text;
}
std::string upper(const std::string& text) {
    return changed(text, std::toupper);
}
std::string lower(const std::string& text) {
    return changed(text, std::tolower);
}

}  // namespace

TEST(GetConfigItemContent, EachItemHasItsSectionAndKey) {
    for (const Row& row : kRows) {
        std::wstring section = L"before";
        std::wstring key = L"before";
        EXPECT_EQ(GetConfigItemContent(row.flag, section, key), 1);
        EXPECT_EQ(section, wide(row.section));
        EXPECT_EQ(key, wide(row.key));
    }
}

TEST(GetConfigItemContent, WhatIsNotOneItemEmptiesBothTexts) {
    for (const unsigned int flag : {0u, 3u, 0x6u, 0x3FFFu, 0x4000u, 0x8000u, 0x80000000u, 0xFFFFFFFFu}) {
        std::wstring section = L"before";
        std::wstring key = L"before";
        EXPECT_EQ(GetConfigItemContent(flag, section, key), 0) << flag;
        EXPECT_EQ(section, L"");
        EXPECT_EQ(key, L"");
    }
}

TEST(GetConfigItemFlag, FindsEachItemWhateverTheCase) {
    for (const Row& row : kRows) {
        EXPECT_EQ(GetConfigItemFlag(row.section, row.key), row.flag);
        EXPECT_EQ(GetConfigItemFlag(lower(row.section), upper(row.key)), row.flag);
        EXPECT_EQ(GetConfigItemFlag(upper(row.section), lower(row.key)), row.flag);
    }
    EXPECT_EQ(GetConfigItemFlag("Synchronize", "Smart Sync"), 0x1u);
}

TEST(GetConfigItemFlag, AKeyBelongsToOneSection) {
    for (const Row& of : kRows)
        for (const Row& other : kRows)
            if (std::string(of.section) != other.section) {
                EXPECT_EQ(GetConfigItemFlag(of.section, other.key), 0u) << of.section << "/" << other.key;
            }
    EXPECT_EQ(GetConfigItemFlag("Mails", "smart sync"), 0u);
}

TEST(GetConfigItemFlag, WhatIsNotThereIs0) {
    const Row rows[] = {{0, "", ""},
                        {0, "Mails", ""},
                        {0, "No section", ""},
                        {0, "", "smart sync"},
                        {0, "Mails", "server"},
                        {0, "Mails", "server names"},
                        {0, "Mail", "server name"},
                        {0, " Mails", "server name"},
                        {0, "Mails", "server  name"},
                        {0, "Admin", "manager mode"},
                        {0, "Mails", "all"},
                        {0, "Mails\xC3\xA9", "server name"},
                        {0, "Mails\xFF", "server name"},
                        {0, "Mails", "\xC0\x80"}};
    for (const Row& row : rows) EXPECT_EQ(GetConfigItemFlag(row.section, row.key), 0u) << row.key;
}

TEST(ConfigFlags, AreTheBitsOfTheTable) {
    const unsigned int flags[] = {WFM_CONFIG_SMART_SYNC,           WFM_CONFIG_CONFLICT_POLICY,
                                  WFM_CONFIG_BLACK_FILE_FILTER,    WFM_CONFIG_MAIL_SEND_METHOD,
                                  WFM_CONFIG_MAIL_SENDER_ADDRESS,  WFM_CONFIG_MAIL_SENDER_SMTP_AUTH,
                                  WFM_CONFIG_MAIL_SENDER_USERNAME, WFM_CONFIG_MAIL_SENDER_PASSWORD,
                                  WFM_CONFIG_MAIL_SERVER_NAME,     WFM_CONFIG_MAIL_SERVER_PORT,
                                  WFM_CONFIG_MAIL_SERVER_SECURE,   WFM_CONFIG_MAIL_SERVER_SECURITY_PROTOCOL,
                                  WFM_CONFIG_OFFICIAL_VERSION,     WFM_CONFIG_MANUAL_VERSION};
    ASSERT_EQ(std::size(flags), std::size(kRows));
    for (size_t i = 0; i < std::size(flags); ++i) EXPECT_EQ(flags[i], kRows[i].flag);
}

// ---- Values ----

namespace {

struct ValueRow {
    unsigned int flag;
    const wchar_t* client;
    const wchar_t* wire;
};

}  // namespace

TEST(ConfigValue, TwoItemsTravelInAnotherForm) {
    const ValueRow rows[] = {{0x4, L"*.tmp", L"*.tmp"},
                             {0x4, L"*.tmp\t~*\t", L"*.tmp\\t~*\\t"},
                             {0x4, L"", L""},
                             {0x80, L"secret", L"c2VjcmV0"},
                             {0x80, L"p\x00E4\x00DF\x6587", L"cMOkw5/mloc="},
                             {0x80, L"", L""},
                             {0x1, L"a\tb", L"a\tb"},
                             {0x1, L"a\\tb", L"a\\tb"},
                             {0x40, L"secret", L"secret"},
                             {0x84, L"a\tb", L"a\tb"}};
    for (const ValueRow& row : rows) {
        EXPECT_EQ(Lattice::EncodedConfigValue(row.flag, row.client), row.wire);
        EXPECT_EQ(Lattice::DecodedConfigValue(row.flag, row.wire), row.client);
    }
}

TEST(ConfigValue, AFilterOfTwoSignsReadsAsATab) {
    EXPECT_EQ(Lattice::DecodedConfigValue(0x4, L"a\\tb\\\\t"), L"a\tb\\\t");
    EXPECT_EQ(Lattice::EncodedConfigValue(0x4, L"a\\t\t"), L"a\\t\\t");
}

TEST(ConfigValue, APasswordThatIsNoTextIsReadAsFarAsItGoes) {
    const ValueRow rows[] = {{0x80, L"\xFFFD", L"/w=="},       // a byte that is no UTF-8
                             {0x80, L"secret", L"c2Vj!cmV0"},  // a sign that is no base64
                             {0x80, L"a", L"YQ"},
                             {0x80, L"a", L"YQBi"},  // a zero byte ends it
                             {0x80, L"", L"\x6587"}};
    for (const ValueRow& row : rows) EXPECT_EQ(Lattice::DecodedConfigValue(row.flag, row.wire), row.client);
}
