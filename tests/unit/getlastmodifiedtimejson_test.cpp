#include "state/GetLastModifiedTimeJson.h"

#include <gtest/gtest.h>

#include "parsing.h"

namespace {

/// What the parser hands out: the time, or -77 where it has none.
long long timeOf(const CGetLastModifiedTimeJson& reply) {
    long long time = -77;
    const bool has = reply.GetLastModifiedTime(&time);
    EXPECT_EQ(has, time != -77);
    return time;
}

}  // namespace

TEST(CGetLastModifiedTimeJson, BeginsWithNothingLearnt) {
    const CGetLastModifiedTimeJson reply;
    EXPECT_EQ(reply.GetStatus(), -1);
    EXPECT_EQ(timeOf(reply), -77);
}

TEST(CGetLastModifiedTimeJson, KeepsTheServersOwnStatusAndHandsOutATimeAboveZero) {
    const struct {
        const char* reply;
        int status;
        long long time;
    } rows[] = {
        {R"({"status":0,"epochmt":"1700000000"})", 0, 1700000000},
        {R"({"status":0,"epochmt":5000000000})", 0, 5000000000},
        {R"({"epochmt":"9223372036854775807"})", 0, 9223372036854775807},
        {R"({"status":1,"epochmt":"1"})", 1, 1},
        {R"({"status":"4","epochmt":"1"})", 4, 1},
        {R"({"status":-1,"epochmt":"1"})", -1, 1},
        {R"({"status":0,"epochmt":0})", 0, -77},
        {R"({"status":0,"epochmt":"0"})", 0, -77},
        {R"({"status":0,"epochmt":-1})", 0, -77},
        {R"({"status":0,"epochmt":"now"})", 0, -77},
        {R"({"status":0,"epochmt":null})", 0, -77},
        {R"({"status":0,"epochmt":[5]})", 0, -77},
        {"{}", 0, -77},
        {R"({"status":-3,"epochmt":"5"})", -3, -77},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.reply);
        CGetLastModifiedTimeJson reply;
        EXPECT_EQ(parse(reply, row.reply), 1);
        EXPECT_EQ(reply.GetStatus(), row.status);
        EXPECT_EQ(timeOf(reply), row.time);
    }
}

TEST(CGetLastModifiedTimeJson, RefusesWhatCannotBeRead) {
    expectRefusesAllButObjects<CGetLastModifiedTimeJson>(
        {R"({"status":99999999999})", R"({"epochmt":99999999999999999999})"});
}
