#include "state/GetMaxLogJson.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "parsing.h"

namespace {

/// Everything that a reply leaves, in one text: the folders' numbers by index, then the others.
std::string numbersOf(const CTorviGetMaxLogJson& reply) {
    std::string text;
    for (const _TORVI_MAX_LOG_JSON_INFO& folder : reply.folders)
        text += std::to_string(folder.nFolderIndex) + ":" + std::to_string(folder.llMaxLog) + " ";
    return text + "max=" + std::to_string(reply.maxLog) + " notify=" + std::to_string(reply.notify) +
           " global=" + std::to_string(reply.globalNotify) + " signal=" + std::to_string(reply.syncSignal);
}

const char* const kNone = "max=-1 notify=-1 global=-1 signal=-1";

std::string numbersOf(uint32_t folderCount, const std::string& text) {
    CTorviGetMaxLogJson reply(folderCount);
    EXPECT_EQ(parse(reply, text), 1) << text;
    EXPECT_EQ(reply.GetStatus(), 0);
    return numbersOf(reply);
}

}  // namespace

TEST(CTorviGetMaxLogJson, BeginsWithNothingLearnt) {
    const CTorviGetMaxLogJson reply;
    EXPECT_EQ(reply.GetStatus(), -1);
    EXPECT_EQ(numbersOf(reply), kNone);
}

TEST(CTorviGetMaxLogJson, WithFoldersReadsANumberForEachIndexThatIsThere) {
    const struct {
        uint32_t folders;
        const char* reply;
        const char* numbers;
    } rows[] = {
        {2, R"({"status":1,"max_log0":"5","max_log1":"6"})", "0:5 1:6 "},
        {2, R"({"max_log1":"6"})", "1:6 "},
        {2, R"({"max_log0":"","max_log1":"6"})", "1:6 "},
        {2, R"({"max_log0":null,"max_log1":7})", "1:7 "},
        {1, R"({"max_log0":"5","max_log1":"6"})", "0:5 "},
        {1, R"({"max_log":"9"})", ""},
        {1, R"({"max_log":["9"],"max_log0":"5"})", "0:5 "},
        {12, R"({"max_log10":"5","max_log01":"6","max_log11":"7"})", "10:5 11:7 "},
        {1, R"({"max_log0":"9223372036854775807"})", "0:9223372036854775807 "},
        {1, R"({"max_log0":"99999999999999999999"})", "0:9223372036854775807 "},
        {1, R"({"max_log0":5000000000})", "0:5000000000 "},
        {1, R"({"max_log0":"-5"})", "0:-5 "},
        {1, R"({"max_log0":"abc"})", "0:0 "},
        {1, R"({"max_log0":"0x10"})", "0:0 "},
        {1, R"({"max_log0":"010"})", "0:10 "},
        {1, R"({"max_log0":" 12abc"})", "0:12 "},
    };
    for (const auto& row : rows)
        EXPECT_EQ(numbersOf(row.folders, row.reply), row.numbers + std::string(kNone)) << row.reply;
}

TEST(CTorviGetMaxLogJson, WithoutFoldersTheOverallNumberIsTheOneEntry) {
    const std::string rest = " notify=-1 global=-1 signal=-1";
    EXPECT_EQ(numbersOf(0, R"({"max_log":"9","max_log0":"5"})"), "-1:9 max=9" + rest);
    EXPECT_EQ(numbersOf(0, R"({"max_log":5000000000})"), "-1:5000000000 max=5000000000" + rest);
    EXPECT_EQ(numbersOf(0, R"({"max_log":"-5"})"), "-1:-5 max=-5" + rest);
    EXPECT_EQ(numbersOf(0, R"({"max_log":""})"), kNone);
    EXPECT_EQ(numbersOf(0, R"({"max_log0":"5"})"), kNone);
    EXPECT_EQ(numbersOf(0, "{}"), kNone);
}

TEST(CTorviGetMaxLogJson, TheOtherNumbersAreReadInTheSameWay) {
    for (const uint32_t folders : {0u, 3u}) {
        EXPECT_EQ(numbersOf(folders, R"({"notify":"1","global_notify":5000000000,"sync_signal":"3"})"),
                  "max=-1 notify=1 global=5000000000 signal=3");
        EXPECT_EQ(numbersOf(folders, R"({"notify":"","global_notify":null,"sync_signal":"-2"})"),
                  "max=-1 notify=-1 global=-1 signal=-2");
    }
}

TEST(CTorviGetMaxLogJson, TranslatesTheStatusAndADenialEndsTheParse) {
    const struct {
        const char* status;
        int expected;
        const char* numbers;
    } rows[] = {{"1", 0, "max=-1 notify=7 global=-1 signal=-1"},
                {"null", 0, "max=-1 notify=7 global=-1 signal=-1"},
                {"\"3\"", -29, "max=-1 notify=7 global=-1 signal=-1"},
                {"4", -3, kNone},
                {"34", -1, "max=-1 notify=7 global=-1 signal=-1"}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.status);
        CTorviGetMaxLogJson reply;
        EXPECT_EQ(parse(reply, R"({"notify":"7","status":)" + std::string(row.status) + "}"), 1);
        EXPECT_EQ(reply.GetStatus(), row.expected);
        EXPECT_EQ(numbersOf(reply), row.numbers);
    }
    CTorviGetMaxLogJson denied;
    EXPECT_EQ(parse(denied, R"({"status":4,"notify":[]})"), 1);
}

TEST(CTorviGetMaxLogJson, RefusesWhatCannotBeRead) {
    expectRefusesAllButObjects<CTorviGetMaxLogJson>(
        {R"({"status":99999999999})", R"({"max_log":[]})", R"({"notify":{}})", R"({"sync_signal":[1]})"});
    CTorviGetMaxLogJson folders(2);
    EXPECT_EQ(parse(folders, R"({"max_log0":"1","max_log1":["2"]})"), -1);
}
