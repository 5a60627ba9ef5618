// The five reply parsers that the families of calls share.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "core/FileProcessJson.h"
#include "core/GetResultJson.h"
#include "core/ShareJson.h"
#include "core/ShareToJson.h"
#include "core/StatusResultJson.h"
#include "parsing.h"

namespace {

std::string text(size_t length) {
    return std::string(length, 'x');
}

/// Texts that no parser reads.
const char* const kNotJson[] = {"", " ", "sorry", "<html/>", "{", R"({"status":1)", R"({"status":)"};
/// JSON that is no object.
const char* const kNoObject[] = {"[]", R"([{"status":1}])", "null", "1", "true", R"("status")"};

template <class Parser>
void expectNoObjectRefused() {
    for (const char* noObject : kNoObject) {
        Parser reply;
        EXPECT_EQ(parse(reply, noObject), -1) << noObject;
    }
}

template <class Parser>
class CommonReplies : public testing::Test {};

using Parsers = testing::Types<CWebFileManGetResultJson, CWebFileManFileProcessJson, CWFMStatusResultJson,
                               CShareJson, CShareToJson>;
TYPED_TEST_SUITE(CommonReplies, Parsers);

/// What a "success" counts as, in the parsers that have one.
template <class Parser>
void expectSuccess(bool (Parser::*success)() const) {
    const std::pair<const char*, bool> rows[] = {
        {R"("true")", true}, {"true", true}, {"false", false},  {R"("false")", false}, {R"("True")", false},
        {R"("")", false},    {"1", false},   {R"("1")", false}, {R"("true ")", false}, {"null", false},
    };
    for (const auto& [value, expected] : rows) {
        Parser reply;
        EXPECT_EQ(parse(reply, std::string(R"({"status":1,"success":)") + value + "}"), 1) << value;
        EXPECT_EQ((reply.*success)(), expected) << value;
    }
    for (const char* value : {"[true]", R"({"true":"true"})"}) {
        Parser reply;
        EXPECT_EQ(parse(reply, std::string(R"({"status":1,"success":)") + value + "}"), -1) << value;
    }
}

/// What a "status" becomes in the parsers that translate it as they read.
template <class Parser>
void expectTranslatedStatus() {
    const std::pair<const char*, int> rows[] = {
        {"1", 0},     {"9", -6},    {"4", -3},          {"0", -2},    {"34", -1},
        {"-102", -1}, {"-101", -8}, {R"("5")", -4},     {"1.0", 0},   {R"("x")", -2},
        {"null", -1}, {"[]", -1},   {R"({"a":1})", -1}, {"true", -1}, {"2147483647", -1},
    };
    for (const auto& [value, expected] : rows) {
        Parser reply;
        EXPECT_EQ(parse(reply, std::string(R"({"status":)") + value + "}"), 1) << value;
        EXPECT_EQ(reply.GetStatus(), expected) << value;
    }
}

}  // namespace

TYPED_TEST(CommonReplies, RefusesWhatIsNotJson) {
    for (const char* notJson : kNotJson) {
        TypeParam reply;
        EXPECT_EQ(parse(reply, notJson), -1) << notJson;
    }
    TypeParam reply;
    EXPECT_EQ(reply.Parser(nullptr), -1);
}

TYPED_TEST(CommonReplies, NothingThatTheJsonLibraryRaisesGetsOut) {
    for (const std::string& hostile :
         {std::string(R"({"status":4294967296})"), std::string(R"({"status":-1e300})"),
          std::string(5000, '['), std::string(R"({"status":)") + std::string(2000, '[')}) {
        TypeParam reply;
        EXPECT_EQ(parse(reply, hostile), -1) << hostile.substr(0, 40);
    }
}

TYPED_TEST(CommonReplies, AStatusThatIsTextIsReadAsItsNumber) {
    TypeParam number, asText;
    EXPECT_EQ(parse(number, R"({"status":9})"), 1);
    EXPECT_EQ(parse(asText, R"({"status":"9"})"), 1);
    EXPECT_EQ(asText.GetStatus(), number.GetStatus());
}

// ---- CWebFileManGetResultJson ----

TEST(GetResultJson, BeginsWithNothingLearnt) {
    const CWebFileManGetResultJson reply;
    EXPECT_EQ(reply.GetStatus(), -1);
    EXPECT_FALSE(reply.GetResult());
}

TEST(GetResultJson, AStatusAloneIsUnderstoodAndNoSuccess) {
    CWebFileManGetResultJson reply;
    EXPECT_EQ(parse(reply, R"({"status":1})"), 1);
    EXPECT_EQ(reply.GetStatus(), 0);
    EXPECT_FALSE(reply.GetResult());
}

TEST(GetResultJson, AnEmptyObjectIsUnderstoodAndSaysNothing) {
    CWebFileManGetResultJson reply;
    EXPECT_EQ(parse(reply, "{}"), 1);
    EXPECT_EQ(reply.GetStatus(), -1);
    EXPECT_FALSE(reply.GetResult());
}

TEST(GetResultJson, RefusesWhatIsNoObject) {
    expectNoObjectRefused<CWebFileManGetResultJson>();
}

TEST(GetResultJson, TranslatesTheStatus) {
    expectTranslatedStatus<CWebFileManGetResultJson>();
}

TEST(GetResultJson, HandsOnTheServersNumberWhenToldSo) {
    for (const auto& [value, expected] :
         {std::pair<const char*, int>{"1", 1}, {"9", 9}, {"-101", -101}, {"0", 0}, {"null", -1}}) {
        CWebFileManGetResultJson reply(false);
        EXPECT_EQ(parse(reply, std::string(R"({"status":)") + value + "}"), 1);
        EXPECT_EQ(reply.GetStatus(), expected) << value;
    }
}

TEST(GetResultJson, OnlyTheTextTrueIsASuccess) {
    expectSuccess(&CWebFileManGetResultJson::GetResult);
}

// ---- CWebFileManFileProcessJson ----

TEST(FileProcessJson, BeginsWithNothingLearnt) {
    const CWebFileManFileProcessJson reply;
    EXPECT_EQ(reply.GetPid(), 0);
    EXPECT_EQ(reply.GetStatus(), -1);
    EXPECT_FALSE(reply.GetResult());
}

TEST(FileProcessJson, ReadsItsThreeFields) {
    struct {
        const char* reply;
        int pid, status;
        bool result;
    } const rows[] = {
        {R"({"pid":4711,"status":1,"success":"true"})", 4711, 0, true},
        {R"({"pid":"4711","status":9})", 4711, -6, false},
        {R"({"pid":null})", 0, -1, false},
        {R"({"pid":[1],"status":1})", 0, 0, false},
        {R"({"pid":-5})", -5, -1, false},
        {"{}", 0, -1, false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.reply);
        CWebFileManFileProcessJson reply;
        EXPECT_EQ(parse(reply, row.reply), 1);
        EXPECT_EQ(reply.GetPid(), row.pid);
        EXPECT_EQ(reply.GetStatus(), row.status);
        EXPECT_EQ(reply.GetResult(), row.result);
    }
}

TEST(FileProcessJson, ReadsThePidLast) {
    CWebFileManFileProcessJson reply;
    EXPECT_EQ(parse(reply, R"({"pid":4294967296,"status":1,"success":"true"})"), -1);
    EXPECT_EQ(reply.GetStatus(), 0);
    EXPECT_TRUE(reply.GetResult());
}

TEST(FileProcessJson, RefusesWhatIsNoObject) {
    expectNoObjectRefused<CWebFileManFileProcessJson>();
}

TEST(FileProcessJson, TranslatesTheStatus) {
    expectTranslatedStatus<CWebFileManFileProcessJson>();
}

TEST(FileProcessJson, OnlyTheTextTrueIsASuccess) {
    expectSuccess(&CWebFileManFileProcessJson::GetResult);
}

// ---- CWFMStatusResultJson ----

TEST(StatusResultJson, AParserThatReadNothingIsNoSuccess) {
    CWFMStatusResultJson reply;
    EXPECT_EQ(reply.GetStatus(), -2);
    EXPECT_EQ(parse(reply, "{}"), -1);
    EXPECT_EQ(reply.GetStatus(), -2);
}

TEST(StatusResultJson, TranslatesAtEachReading) {
    const std::pair<const char*, int> rows[] = {
        {"1", 0},     {"9", -6},      {"4", -3},  {"0", -2},    {"34", -1},
        {"-101", -8}, {R"("5")", -4}, {"[]", -2}, {"true", -2},
    };
    for (const auto& [value, expected] : rows) {
        CWFMStatusResultJson reply;
        EXPECT_EQ(parse(reply, std::string(R"({"status":)") + value + "}"), 1) << value;
        EXPECT_EQ(reply.GetStatus(), expected) << value;
        EXPECT_EQ(reply.GetStatus(), expected) << value;
    }
}

TEST(StatusResultJson, RefusesAnAbsentOrNullStatusAndWhatIsNoObject) {
    std::vector<const char*> refused(std::begin(kNoObject), std::end(kNoObject));
    refused.insert(refused.end(), {"{}", R"({"status":null})", R"({"success":"true"})"});
    for (const char* reply_ : refused) {
        CWFMStatusResultJson reply;
        EXPECT_EQ(parse(reply, reply_), -1) << reply_;
    }
}

// ---- CShareJson ----

TEST(ShareJson, BeginsWithNothingLearnt) {
    const CShareJson reply;
    EXPECT_EQ(reply.GetStatus(), -1);
    EXPECT_FALSE(reply.GetSuccess());
    EXPECT_EQ(reply.GetFile(), L"");
}

TEST(ShareJson, WhatIsNoObjectIsUnderstoodWithNothingRead) {
    for (const char* noObject : kNoObject) {
        CShareJson reply;
        EXPECT_EQ(parse(reply, noObject), 1) << noObject;
        EXPECT_EQ(reply.GetStatus(), -1);
        EXPECT_FALSE(reply.GetSuccess());
        EXPECT_EQ(reply.GetFile(), L"");
    }
}

TEST(ShareJson, TheStatusIsTheServersOwnNumber) {
    for (const auto& [value, expected] : {std::pair<const char*, int>{"1", 1},
                                          {"0", 0},
                                          {"9", 9},
                                          {"-101", -101},
                                          {"2147483647", 2147483647},
                                          {"null", -1},
                                          {"[]", -1}}) {
        CShareJson reply;
        EXPECT_EQ(parse(reply, std::string(R"({"status":)") + value + "}"), 1) << value;
        EXPECT_EQ(reply.GetStatus(), expected) << value;
    }
}

TEST(ShareJson, OnlyTheTextTrueIsASuccess) {
    expectSuccess(&CShareJson::GetSuccess);
}

TEST(ShareJson, ReadsTheFileIntoItsBuffer) {
    const std::pair<std::string, std::wstring> rows[] = {
        {R"({"file":"/home/a.txt"})", L"/home/a.txt"},
        {"{\"file\":\"\xE6\x96\x87\xF0\x9F\x98\x80\"}", L"\x6587\x1F600"},
        {R"({"file":"\ud83d\ude00"})", L"\x1F600"},
        {R"({"file":7})", L"7"},
        {R"({"file":null})", L""},
        {"{}", L""},
        {"{\"file\":\"" + text(2047) + "\"}", std::wstring(2047, L'x')},
        {"{\"file\":\"" + text(2048) + "\"}", L""},
        {"{\"file\":\"" + text(5000) + "\"}", L""},
    };
    for (const auto& [json, expected] : rows) {
        CShareJson reply;
        EXPECT_EQ(parse(reply, json), 1) << json;
        EXPECT_EQ(reply.GetFile(), expected) << json;
    }
    CShareJson reply;
    EXPECT_EQ(parse(reply, R"({"file":["a"]})"), -1);
}

// ---- CShareToJson ----

TEST(ShareToJson, BeginsWithNothingLearnt) {
    const CShareToJson reply;
    EXPECT_FALSE(reply.GetFound());
    EXPECT_EQ(reply.GetStatus(), -1);
    EXPECT_STREQ(reply.GetPid(), L"");
}

TEST(ShareToJson, IsFoundWhenTheTranslatedStatusIs0) {
    struct {
        const char* reply;
        bool found;
        int status;
        const wchar_t* pid;
    } const rows[] = {
        {R"({"status":1,"pid":"j-17"})", true, 0, L"j-17"},
        {R"({"status":1})", true, 0, L""},
        {R"({"status":0,"pid":"j-17"})", false, -2, L"j-17"},
        {R"({"status":4})", false, -3, L""},
        {R"({"pid":4711})", false, -1, L"4711"},
        {R"({"status":null,"pid":null})", false, -1, L""},
        {"{}", false, -1, L""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.reply);
        CShareToJson reply;
        EXPECT_EQ(parse(reply, row.reply), 1);
        EXPECT_EQ(reply.GetFound(), row.found);
        EXPECT_EQ(reply.GetStatus(), row.status);
        EXPECT_STREQ(reply.GetPid(), row.pid);
    }
}

TEST(ShareToJson, RefusesWhatIsNoObject) {
    expectNoObjectRefused<CShareToJson>();
}

TEST(ShareToJson, TranslatesTheStatus) {
    expectTranslatedStatus<CShareToJson>();
}

TEST(ShareToJson, AProcessIdNeverOverrunsItsField) {
    for (const size_t length : {size_t{259}, size_t{260}, size_t{2047}, size_t{5000}}) {
        CShareToJson reply;
        EXPECT_EQ(parse(reply, "{\"status\":1,\"pid\":\"" + text(length) + "\"}"), 1);
        EXPECT_EQ(std::wstring(reply.GetPid()).size(), length < 260 ? length : 0u) << length;
        EXPECT_TRUE(reply.GetFound());
    }
}
