#include "sharing/GetRecycleBinJson.h"

#include <gtest/gtest.h>

#include "parsing.h"

TEST(CGetRecycleBinJson, BeginsOff) {
    EXPECT_FALSE(CGetRecycleBinJson().GetEnabled());
}

TEST(CGetRecycleBinJson, OnlyTheNumber1IsOn) {
    const struct {
        const char* reply;
        bool enabled;
    } rows[] = {{R"({"recycle_bin_enable":1})", true},
                {R"({"recycle_bin_enable":"1"})", true},
                {R"({"recycle_bin_enable":0})", false},
                {R"({"recycle_bin_enable":2})", false},
                {R"({"recycle_bin_enable":-1})", false},
                {R"({"recycle_bin_enable":true})", false},
                {R"({"recycle_bin_enable":"true"})", false},
                {R"({"recycle_bin_enable":null})", false},
                {R"({"status":1})", false},
                {"{}", false}};
    for (const auto& row : rows) {
        CGetRecycleBinJson reply;
        EXPECT_EQ(parse(reply, row.reply), 1);
        EXPECT_EQ(reply.GetEnabled(), row.enabled) << row.reply;
    }
}

TEST(CGetRecycleBinJson, RefusesWhatCannotBeRead) {
    expectRefusesAllButObjects<CGetRecycleBinJson>({R"({"recycle_bin_enable":99999999999})"});
}
