#include "state/GetNASStatusJson.h"

#include <gtest/gtest.h>

#include "parsing.h"
#include "support/staterecords.h"

namespace {

/// What a reply of success with these keys leaves.
std::string informationOf(const std::string& keys) {
    CGetNASStatusJson reply;
    EXPECT_EQ(parse(reply, R"({"status":1)" + keys + "}"), 1) << keys;
    EXPECT_EQ(reply.GetStatus(), 0);
    return describe(reply.GetInformation());
}

}  // namespace

TEST(CGetNASStatusJson, BeginsWithNothingLearnt) {
    const CGetNASStatusJson reply;
    EXPECT_EQ(reply.GetStatus(), -1);
    EXPECT_EQ(describe(reply.GetInformation()), "");
}

TEST(CGetNASStatusJson, EachFlagHasItsKeyAndIsTrueIfItsIntegerIsOne) {
    const struct {
        const char* key;
        const char* word;
    } rows[] = {{"home_folder_enable", "home"},      {"recycle_bin_enable", "recycle"},
                {"device_db_exist", "device"},       {"log_db_exist", "log"},
                {"share_db_exist", "share"},         {"user_enable", "user"},
                {"versioning_enable", "versioning"}, {"nubo_versioning_enable", "nubo"},
                {"is_recovering", "recovering"}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.key);
        const auto withValue = [&row](const std::string& value) {
            return informationOf(R"(,"home_folder_available":0,")" + std::string(row.key) + "\":" + value);
        };
        for (const char* yes : {"1", "\"1\""}) EXPECT_EQ(withValue(yes), row.word);
        for (const char* no : {"0", "2", "-1", "\"0\"", "\"true\"", "\"\"", "null", "[]", "{}"})
            EXPECT_EQ(withValue(no), "") << no;
    }
}

TEST(CGetNASStatusJson, AHomeIsAvailableWhereTheServerDoesNotTell) {
    EXPECT_EQ(informationOf(""), "available");
    EXPECT_EQ(informationOf(R"(,"home_folder_available":1)"), "available");
    EXPECT_EQ(informationOf(R"(,"home_folder_available":0)"), "");
    EXPECT_EQ(informationOf(R"(,"home_folder_available":2)"), "");
}

TEST(CGetNASStatusJson, AVersionOfThreeDashesIsNone) {
    const std::string rest = R"(,"home_folder_available":0,"versioning_version":)";
    EXPECT_EQ(informationOf(rest + R"("1.2.3")"), "version=1.2.3");
    EXPECT_EQ(informationOf(rest + R"("---")"), "");
    EXPECT_EQ(informationOf(rest + R"("----")"), "version=----");
    EXPECT_EQ(informationOf(rest + R"("版")"), "version=版");
}

TEST(CGetNASStatusJson, AVersionThatDoesNotFitIsEmpty) {
    const std::string rest = R"(,"home_folder_available":0,"versioning_version":")";
    EXPECT_EQ(informationOf(rest + std::string(259, 'v') + '"'), "version=" + std::string(259, 'v'));
    EXPECT_EQ(informationOf(rest + std::string(260, 'v') + '"'), "");
    EXPECT_EQ(informationOf(rest + std::string(5000, 'v') + '"'), "");
}

TEST(CGetNASStatusJson, TranslatesTheStatusAndReadsNothingUnlessItIsSuccess) {
    const struct {
        const char* status;
        int expected;
        const char* information;
    } rows[] = {{R"("status":1,)", 0, "home available"},
                {"", 0, "home available"},
                {R"("status":null,)", 0, "home available"},
                {R"("status":4,)", -3, ""},
                {R"("status":"3",)", -29, ""},
                {R"("status":0,)", -2, ""},
                {R"("status":-102,)", -1, ""}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.status);
        CGetNASStatusJson reply;
        EXPECT_EQ(parse(reply, std::string("{") + row.status + R"("home_folder_enable":1})"), 1);
        EXPECT_EQ(reply.GetStatus(), row.expected);
        EXPECT_EQ(describe(reply.GetInformation()), row.information);
    }
    CGetNASStatusJson refused;
    EXPECT_EQ(parse(refused, R"({"status":4,"home_folder_enable":99999999999})"), 1);
}

TEST(CGetNASStatusJson, RefusesWhatCannotBeRead) {
    expectRefusesAllButObjects<CGetNASStatusJson>({R"({"status":99999999999})",
                                                   R"({"status":1,"user_enable":99999999999})",
                                                   R"({"status":1,"versioning_version":[]})"});
}
