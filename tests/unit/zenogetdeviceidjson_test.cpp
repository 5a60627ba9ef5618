#include "cloud/ZenoGetDeviceIDJson.h"

#include <gtest/gtest.h>

#include <string>

#include "parsing.h"

namespace {

CZenoGetDeviceIDJson read(const std::string& text) {
    CZenoGetDeviceIDJson reply;
    EXPECT_EQ(parse(reply, text), 1) << text.substr(0, 200);
    return reply;
}

std::string replyWith(const std::string& keys) {
    return R"({"return":{)" + keys + "}}";
}

void expectNothing(const CZenoGetDeviceIDJson& reply) {
    EXPECT_EQ(reply.GetStatus(), -1);
    EXPECT_EQ(reply.GetCloudAPIResponseCode(), 1);
    EXPECT_EQ(reply.GetMessage() + reply.GetactTime() + reply.GetDeviceID(), L"");
}

}  // namespace

TEST(CZenoGetDeviceIDJson, BeginsWithNothingLearnt) {
    expectNothing(CZenoGetDeviceIDJson());
}

TEST(CZenoGetDeviceIDJson, ReadsItsFields) {
    for (const char* status :
         {R"("StatusCode":{"code":"200","message":"Access successfully."})",
          R"("StatusCode":{"code":200,"message":"Access successfully."},"code":404,"message":"x")",
          R"("code":"200","message":"Access successfully.")",
          R"("code":200,"message":"Access successfully.")",
          R"("StatusCode":null,"code":200,"message":"Access successfully.")"}) {
        const CZenoGetDeviceIDJson reply =
            read(replyWith(status + std::string(R"(,"deviceId":"d-1","actTime":"2026-11-22 08:00")")));
        EXPECT_EQ(reply.GetStatus(), 0) << status;
        EXPECT_EQ(reply.GetCloudAPIResponseCode(), 0) << status;
        EXPECT_EQ(reply.GetMessage(), L"Access successfully.");
        EXPECT_EQ(reply.GetDeviceID(), L"d-1");
        EXPECT_EQ(reply.GetactTime(), L"2026-11-22 08:00");
    }
}

TEST(CZenoGetDeviceIDJson, TheMessageSaysWhatWentWrong) {
    const struct {
        const char* message;
        int code;
    } rows[] = {{"Access successfully.", 0},
                {"The device is not found.", 5},
                {"X-VEXA-TIME is invalid.", 2},
                {"The app id is not found.", 7},
                {"The checksum X-VEXA-CHECK is invalid.", 8},
                {"", 1},
                {"Access successfully", 1},
                {"access successfully.", 1},
                {"The device is not found. ", 1},
                {"Get device name failed.", 1},
                {"Get device failed.", 1},
                {"The device status is not found.", 1},
                {"The vlink configuration is not found.", 1}};
    for (const auto& row : rows)
        EXPECT_EQ(read(replyWith(R"("code":200,"message":")" + std::string(row.message) + "\""))
                      .GetCloudAPIResponseCode(),
                  row.code)
            << row.message;
}

TEST(CZenoGetDeviceIDJson, OnlyTheCode200IsASuccess) {
    for (const char* code : {"404", "\"201\"", "0", "null", "\"\"", "\"ok\"", "-200", "2000"})
        EXPECT_EQ(read(replyWith(R"("code":)" + std::string(code))).GetStatus(), -1) << code;
}

TEST(CZenoGetDeviceIDJson, WithoutReturnNothingIsLearnt) {
    for (const char* text :
         {"{}", R"({"return":null})", R"({"return":{}})", R"({"deviceId":"d-1","code":200})",
          R"({"StatusCode":{"code":200,"message":"Access successfully."}})"})
        expectNothing(read(text));
}

TEST(CZenoGetDeviceIDJson, TextsMayBeLongNumbersOrBrokenUtf8) {
    EXPECT_EQ(read(replyWith(R"("deviceId":")" + std::string(5000, 'd') + "\"")).GetDeviceID(),
              std::wstring(5000, L'd'));
    EXPECT_EQ(read(replyWith(R"("deviceId":17)")).GetDeviceID(), L"17");
    EXPECT_EQ(read(replyWith("\"message\":\"a\xFF z\"")).GetMessage(), L"a\xFFFD z");
}

TEST(CZenoGetDeviceIDJson, RefusesWhatCannotBeRead) {
    expectRefusesAllButObjects<CZenoGetDeviceIDJson>(
        {R"({"return":[]})", R"({"return":"x"})", R"({"return":5})", replyWith(R"("StatusCode":"x")"),
         replyWith(R"("StatusCode":[])"), replyWith(R"("code":[])"), replyWith(R"("message":{})"),
         replyWith(R"("deviceId":[])"), replyWith(R"("actTime":{})")});
}
