// What the replies to calls with a checksum have in common.

#include "cloud/cloudreturn.h"

#include <gtest/gtest.h>

#include "core/jsonfields.h"

using namespace Lattice;

namespace {

CloudReturn read(const char* text) {
    Json::Value root;
    EXPECT_TRUE(ReadJson(text, root));
    return ReadCloudReturn(root);
}

}  // namespace

TEST(CloudReturn, ReadsCodeAndMessageWhereTheyAre) {
    const struct {
        const char* reply;
        int httpCode;
        const wchar_t* message;
    } rows[] = {
        {R"({"return":{"StatusCode":{"code":"200","message":"yes"}}})", 200, L"yes"},
        {R"({"return":{"StatusCode":{"code":403,"message":"no"},"code":"200","message":"yes"}})", 403, L"no"},
        {R"({"return":{"StatusCode":{},"code":"200","message":"yes"}})", 0, L""},
        {R"({"return":{"StatusCode":null,"code":"404","message":"none"}})", 404, L"none"},
        {R"({"return":{"code":" 200 ","message":5}})", 200, L"5"},
        {R"({"return":{"code":"fine"}})", 0, L""},
        {R"({"return":{}})", 0, L""},
        {R"({"return":null})", 0, L""},
        {R"({"code":"200","message":"yes"})", 0, L""},
        {"{}", 0, L""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.reply);
        const CloudReturn said = read(row.reply);
        EXPECT_EQ(said.httpCode, row.httpCode);
        EXPECT_EQ(said.message, row.message);
        EXPECT_EQ(said.status(), row.httpCode == 200 ? 0 : -1);
    }
}

TEST(CloudReturn, KeepsTheOtherKeys) {
    EXPECT_EQ(read(R"({"return":{"deviceId":"d"},"deviceId":"other"})").answer["deviceId"], "d");
    EXPECT_TRUE(read("{}").answer.isNull());
}

TEST(CloudResponseCode, TellsMessagesApart) {
    const std::vector<CloudResponse> own = {{L"Ours.", 6}};
    const struct {
        const wchar_t* message;
        int code;
    } rows[] = {{L"Access successfully.", 0},
                {L"X-VEXA-TIME is invalid.", 2},
                {L"The device is not found.", 5},
                {L"The app id is not found.", 7},
                {L"The checksum X-VEXA-CHECK is invalid.", 8},
                {L"Ours.", 6},
                {L"access successfully.", 1},
                {L"Access successfully", 1},
                {L"Something else.", 1},
                {L"", 1}};
    for (const auto& row : rows) EXPECT_EQ(CloudResponseCode(row.message, own), row.code) << row.code;
    EXPECT_EQ(CloudResponseCode(L"Ours."), 1);
}
