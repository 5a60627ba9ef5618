#include "state/ShareGetUIDJson.h"

#include <gtest/gtest.h>

#include "parsing.h"

namespace {

std::string flagsOf(const CShareGetUIDJson& reply) {
    std::string words;
    const auto add = [&words](const char* word, bool is) { words += is ? std::string(" ") + word : ""; };
    add("booting", reply.isBooting);
    add("recovering", reply.isRecovering);
    add("migrating", reply.isMigrating);
    add("nubo", reply.nuboCGI);
    add("fcgi", reply.fcgi);
    return words;
}

std::wstring textsOf(const CShareGetUIDJson& reply) {
    return reply.uid + L"|" + reply.suid + L"|" + reply.mac + L"|" + reply.torviVersion + L"|" +
           reply.versioningVersion;
}

}  // namespace

TEST(CShareGetUIDJson, BeginsWithNothingLearnt) {
    const CShareGetUIDJson reply;
    EXPECT_EQ(flagsOf(reply), "");
    EXPECT_EQ(reply.userType, 0u);
    EXPECT_EQ(textsOf(reply), L"||||");
}

TEST(CShareGetUIDJson, AFlagIsTrueIfItsNumberIsNotZeroButForFcgi) {
    const struct {
        const char* key;
        const char* word;
    } rows[] = {{"is_booting", " booting"},
                {"is_recovering", " recovering"},
                {"is_migrating", " migrating"},
                {"nubo_cgi", " nubo"},
                {"fcgi", ""}};
    for (const auto& row : rows) {
        const auto withValue = [&row](const std::string& value) {
            CShareGetUIDJson reply;
            EXPECT_EQ(parse(reply, "{\"" + std::string(row.key) + "\":" + value + "}"), 1);
            return flagsOf(reply);
        };
        for (const char* yes : {"1", "\"1\"", "2", "-1"}) EXPECT_EQ(withValue(yes), row.word) << yes;
        for (const char* no : {"0", "\"0\"", "\"\"", "null"}) EXPECT_EQ(withValue(no), "") << no;
    }
}

TEST(CShareGetUIDJson, AUserTypeIsOneOrZero) {
    const struct {
        const char* value;
        uint32_t type;
    } rows[] = {{"1", 1}, {"\"1\"", 1}, {"0", 0}, {"2", 0}, {"-1", 0}, {"\"x\"", 0}, {"null", 0}};
    for (const auto& row : rows) {
        CShareGetUIDJson reply;
        EXPECT_EQ(parse(reply, R"({"user_type":)" + std::string(row.value) + "}"), 1);
        EXPECT_EQ(reply.userType, row.type) << row.value;
    }
}

TEST(CShareGetUIDJson, ReadsItsFiveTextsAndTakesThreeDashesForNone) {
    CShareGetUIDJson reply;
    EXPECT_EQ(parse(reply, R"({"UID":"u1","SUID":"s1","MAC0":"00:11","Torvi_version":"4.3.6",
                               "versioning_version":"版"})"),
              1);
    EXPECT_EQ(textsOf(reply), L"u1|s1|00:11|4.3.6|版");

    CShareGetUIDJson none;
    EXPECT_EQ(parse(none, R"({"UID":"---","SUID":"---","MAC0":"---","Torvi_version":"---",
                              "versioning_version":"---"})"),
              1);
    EXPECT_EQ(textsOf(none), L"||||");

    CShareGetUIDJson almost;
    EXPECT_EQ(parse(almost, R"({"UID":"----","SUID":"--","MAC0":"","Torvi_version":null})"), 1);
    EXPECT_EQ(textsOf(almost), L"----|--|||");
}

TEST(CShareGetUIDJson, ATextThatDoesNotFitItsFieldIsNone) {
    for (const char* key : {"UID", "SUID", "MAC0", "Torvi_version", "versioning_version"})
        for (const size_t length : {size_t{259}, size_t{260}, size_t{5000}}) {
            CShareGetUIDJson reply;
            EXPECT_EQ(parse(reply, "{\"" + std::string(key) + "\":\"" + std::string(length, 'x') + "\"}"), 1);
            EXPECT_EQ(textsOf(reply).size(), 4 + (length < 260 ? length : 0)) << key << length;
        }
}

TEST(CShareGetUIDJson, RefusesWhatCannotBeRead) {
    expectRefusesAllButObjects<CShareGetUIDJson>(
        {R"({"is_booting":99999999999})", R"({"UID":["u"]})", R"({"Torvi_version":{}})"});
}
