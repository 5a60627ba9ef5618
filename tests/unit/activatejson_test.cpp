#include "session/ActivateJson.h"

#include <gtest/gtest.h>

#include "parsing.h"

TEST(CActivateJson, BeginsWithNothingLearnt) {
    const CActivateJson reply;
    bool isAdmin = true;
    EXPECT_EQ(reply.GetStatus(), -1);
    EXPECT_EQ(reply.GetServerName(), L"");
    EXPECT_EQ(reply.isAdmin, -1);
    EXPECT_EQ(reply.IsAdminGroup(&isAdmin), 0);
    EXPECT_TRUE(isAdmin);
}

TEST(CActivateJson, ReadsAServersAnswer) {
    CActivateJson reply;
    EXPECT_EQ(parse(reply, R"({"status":1,"admingroup":"1","servername":"書類 NAS"})"), 1);
    EXPECT_EQ(reply.GetStatus(), 0);
    EXPECT_EQ(reply.GetServerName(), L"書類 NAS");
    bool isAdmin = false;
    EXPECT_EQ(reply.IsAdminGroup(&isAdmin), 1);
    EXPECT_TRUE(isAdmin);
}

TEST(CActivateJson, TranslatesItsStatus) {
    for (const auto& [status, code] :
         {std::pair("7", -5), {"-101", -8}, {"\"7\"", -5}, {"0", -2}, {"34", -1}, {"null", -1}}) {
        CActivateJson reply;
        EXPECT_EQ(parse(reply, std::string(R"({"status":)") + status + "}"), 1);
        EXPECT_EQ(reply.GetStatus(), code) << status;
    }
    CActivateJson reply;
    EXPECT_EQ(parse(reply, "{}"), 1);
    EXPECT_EQ(reply.GetStatus(), -1);
}

TEST(CActivateJson, TellsOnlyWhatTheReplySaidOfTheAdministrator) {
    const struct {
        const char* value;
        int told;
        bool isAdmin;
    } rows[] = {{R"("1")", 1, true},
                {R"("0")", 1, false},
                {R"("yes")", 1, false},
                {R"("")", 1, false},
                {"null", 0, false}};
    for (const auto& row : rows) {
        CActivateJson reply;
        EXPECT_EQ(parse(reply, std::string(R"({"status":1,"admingroup":)") + row.value + "}"), 1);
        bool isAdmin = !row.isAdmin;
        EXPECT_EQ(reply.IsAdminGroup(&isAdmin), row.told) << row.value;
        EXPECT_EQ(isAdmin, row.told == 1 ? row.isAdmin : !row.isAdmin) << row.value;
    }
}

TEST(CActivateJson, ANumberThatIsNoFlagTellsNothing) {
    for (const int value : {-1, 2, 100}) {
        CActivateJson reply;
        reply.isAdmin = value;
        bool isAdmin = true;
        EXPECT_EQ(reply.IsAdminGroup(&isAdmin), 0);
        EXPECT_TRUE(isAdmin);
    }
}

TEST(CActivateJson, ANameThatIsTooLongIsEmpty) {
    for (const auto& [length, fits] : {std::pair(size_t{2047}, true), {size_t{2048}, false}}) {
        CActivateJson reply;
        EXPECT_EQ(parse(reply, R"({"servername":")" + std::string(length, 'x') + "\"}"), 1);
        EXPECT_EQ(reply.GetServerName().size(), fits ? length : 0);
    }
}

TEST(CActivateJson, RefusesWhatCannotBeRead) {
    for (const char* text : {"", "sorry", "<a/>", "[]", "5", "null", R"({"status":1)",
                             R"({"status":4294967296})", R"({"admingroup":["1"]})", R"({"servername":{}})"}) {
        CActivateJson reply;
        EXPECT_EQ(parse(reply, text), -1) << text;
    }
    CActivateJson reply;
    EXPECT_EQ(reply.Parser(nullptr), -1);
}
