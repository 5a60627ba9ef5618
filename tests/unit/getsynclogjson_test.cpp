#include "state/GetSyncLogJson.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "parsing.h"
#include "support/staterecords.h"

namespace {

using Lines = std::vector<std::string>;

std::string log(const std::string& entries, const std::string& keys = R"("status":0,"number":1)") {
    return "{" + keys + R"(,"data":[)" + entries + "]}";
}

Lines recordsOf(const std::string& text) {
    CGetTorviSyncLogJson reply;
    EXPECT_EQ(parse(reply, text), 1) << text.substr(0, 200);
    return describeAll(reply.records);
}

/// The record of an entry with these keys beside its path; an absent log id, folder and action left out.
Lines recordOf(const std::string& keys) {
    return recordsOf(log(R"({"filepath":"/a","log_id":"0","action":8)" + keys + "}"));
}

}  // namespace

TEST(CGetTorviSyncLogJson, BeginsWithNothingLearnt) {
    const CGetTorviSyncLogJson reply;
    EXPECT_EQ(reply.GetStatus(), -1);
    EXPECT_FALSE(reply.IsEnd());
    EXPECT_TRUE(reply.records.empty());
}

TEST(CGetTorviSyncLogJson, ReadsEachFieldFromItsKey) {
    CGetTorviSyncLogJson reply;
    EXPECT_EQ(parse(reply, R"({"status":0,"end":1,"number":2,"data":[
        {"filepath":"/home/b","old_filepath":"/home/a","device":"PC 書","log_id":"5000000000","isfolder":1,
         "action":10},
        {"filepath":"/home/c","log_id":5000000001,"isfolder":"2","action":"8"}]})"),
              1);
    EXPECT_EQ(reply.GetStatus(), 0);
    EXPECT_TRUE(reply.IsEnd());
    EXPECT_EQ(describeAll(reply.records),
              (Lines{"path=/home/b old=/home/a device=PC 書 id=5000000000 folder=1 action=3",
                     "path=/home/c id=5000000001 folder=2 action=1"}));
}

TEST(CGetTorviSyncLogJson, KeepsTheServersOwnStatusAndAnythingButZeroEndsTheParse) {
    for (const int status : {1, 3, 4, -1, -3, 34}) {
        CGetTorviSyncLogJson reply;
        const std::string keys = R"("end":1,"number":1,"status":)" + std::to_string(status);
        EXPECT_EQ(parse(reply, log(R"({"filepath":"/a"})", keys)), 1);
        EXPECT_EQ(reply.GetStatus(), status);
        EXPECT_FALSE(reply.IsEnd());
        EXPECT_TRUE(reply.records.empty());
    }
    CGetTorviSyncLogJson refused;
    EXPECT_EQ(parse(refused, R"({"status":4,"number":99999999999,"data":5})"), 1);
}

TEST(CGetTorviSyncLogJson, TheEndIsWhateverIsNotZero) {
    const struct {
        const char* value;
        bool isEnd;
    } rows[] = {{"1", true},  {"\"1\"", true},  {"2", true},    {"-1", true},
                {"0", false}, {"\"0\"", false}, {"null", false}};
    for (const auto& row : rows) {
        CGetTorviSyncLogJson reply;
        EXPECT_EQ(parse(reply, R"({"status":0,"end":)" + std::string(row.value) + "}"), 1);
        EXPECT_EQ(reply.IsEnd(), row.isEnd) << row.value;
    }
}

TEST(CGetTorviSyncLogJson, ANumberBelowOneEndsTheParseBehindTheEnd) {
    for (const char* number : {"0", "-1", "\"0\"", "null"}) {
        CGetTorviSyncLogJson reply;
        EXPECT_EQ(parse(reply,
                        log(R"({"filepath":"/a"})", R"("status":0,"end":1,"number":)" + std::string(number))),
                  1);
        EXPECT_TRUE(reply.IsEnd());
        EXPECT_TRUE(reply.records.empty()) << number;
    }
    // The array counts, not the number.
    EXPECT_EQ(recordsOf(log(R"({"filepath":"/a","log_id":"0","action":8},
                               {"filepath":"/b","log_id":"0","action":8})"))
                  .size(),
              2u);
    for (const char* text : {R"({"status":0,"number":1})", R"({"status":0,"number":1,"data":null})",
                             R"({"status":0,"number":1,"data":[]})"})
        EXPECT_EQ(recordsOf(text), Lines{});
}

TEST(CGetTorviSyncLogJson, ActionsAndFolderFlagsAreTheClients) {
    const struct {
        const char* keys;
        const char* expected;
    } rows[] = {
        {R"(,"isfolder":1)", "path=/a folder=1 action=1"},
        {R"(,"isfolder":2)", "path=/a folder=2 action=1"},
        {R"(,"isfolder":0)", "path=/a action=1"},
        {R"(,"isfolder":7)", "path=/a action=1"},
        {R"(,"isfolder":-1)", "path=/a action=1"},
        {R"(,"isfolder":"1")", "path=/a folder=1 action=1"},
        {R"(,"isfolder":null)", "path=/a action=1"},
    };
    for (const auto& row : rows) EXPECT_EQ(recordOf(row.keys), Lines{row.expected}) << row.keys;

    const struct {
        const char* action;
        const char* expected;
    } actions[] = {{"-91", "-3"}, {"-90", "-2"}, {"8", "1"},    {"9", "2"},     {"10", "3"},
                   {"11", "4"},   {"12", "5"},   {"13", "18"},  {"14", "6"},    {"16", "7"},
                   {"17", "8"},   {"18", "9"},   {"19", "16"},  {"20", "17"},   {"26", "21"},
                   {"27", "19"},  {"28", "20"},  {"99", "-1"},  {"15", "-1"},   {"0", "-1"},
                   {"1", "-1"},   {"29", "-1"},  {"-92", "-1"}, {"null", "-1"}, {"\"8\"", "1"}};
    for (const auto& row : actions)
        EXPECT_EQ(
            recordsOf(log(R"({"filepath":"/a","log_id":"0","action":)" + std::string(row.action) + "}")),
            Lines{std::string("path=/a action=") + row.expected})
            << row.action;
    EXPECT_EQ(recordsOf(log(R"({"filepath":"/a","log_id":"0"})")), Lines{"path=/a action=-1"});
}

TEST(CGetTorviSyncLogJson, ALogIdIsANumberOrItsTextAndUnknownWithoutOne) {
    const std::pair<const char*, const char*> rows[] = {
        {R"(,"log_id":"9223372036854775807")", "9223372036854775807"},
        {R"(,"log_id":5000000000)", "5000000000"},
        {R"(,"log_id":"-5")", "-5"},
        {R"(,"log_id":null)", "-1"},
        {"", "-1"}};
    for (const auto& [key, id] : rows)
        EXPECT_EQ(recordsOf(log(R"({"filepath":"/a","action":8)" + std::string(key) + "}")),
                  Lines{std::string("path=/a id=") + id + " action=1"});
}

TEST(CGetTorviSyncLogJson, AnEntryWithoutAPathIsSkipped) {
    EXPECT_EQ(recordsOf(log(R"({"old_filepath":"/o","log_id":"1"},{"filepath":"","log_id":"2"},
                               {"filepath":null,"log_id":"3"},{"filepath":"/a","log_id":"4","action":8})")),
              Lines{"path=/a id=4 action=1"});
}

TEST(CGetTorviSyncLogJson, PathsHaveUpTo4095Characters) {
    const std::string longest(4095, 'p');
    EXPECT_EQ(recordsOf(log(R"({"filepath":")" + longest + R"(","old_filepath":")" + longest +
                            R"(","log_id":"1","action":8})")),
              Lines{"path=" + longest + " old=" + longest + " id=1 action=1"});
    EXPECT_EQ(recordsOf(log(R"({"filepath":")" + longest + R"(p","log_id":"1","action":8})")), Lines{});
    EXPECT_EQ(recordOf(R"(,"old_filepath":")" + longest + "p\""), Lines{"path=/a action=1"});
    EXPECT_EQ(recordOf(R"(,"device":")" + std::string(259, 'd') + '"'),
              Lines{"path=/a device=" + std::string(259, 'd') + " action=1"});
    EXPECT_EQ(recordOf(R"(,"device":")" + std::string(260, 'd') + '"'), Lines{"path=/a action=1"});
}

TEST(CGetTorviSyncLogJson, KeepsOneRecordMoreThanItsCallerHasRoomForAndReadsOn) {
    std::string entries = R"({"filepath":"/a"})";
    for (int i = 0; i < 9; ++i) entries += R"(,{"filepath":"/a"})";
    CGetTorviSyncLogJson reply(2);
    EXPECT_EQ(parse(reply, log(entries)), 1);
    EXPECT_EQ(reply.records.size(), 3u);

    CGetTorviSyncLogJson broken(2);
    EXPECT_EQ(parse(broken, log(entries + R"(,{"filepath":[]})")), -1);
}

TEST(CGetTorviSyncLogJson, RefusesWhatCannotBeRead) {
    expectRefusesAllButObjects<CGetTorviSyncLogJson>(
        {R"({"status":99999999999})", R"({"status":0,"number":99999999999})",
         R"({"status":0,"number":1,"data":{}})", R"({"status":0,"number":1,"data":"x"})",
         log(R"({"filepath":[]})"), log(R"({"filepath":"/a","action":99999999999})"),
         log(R"({"filepath":"/a","old_filepath":{}})")});
    EXPECT_EQ(recordsOf(log(R"(null,5,"x",[],{"filepath":"/a","log_id":"1","action":8})")),
              Lines{"path=/a id=1 action=1"});
    EXPECT_EQ(recordsOf(log("{\"filepath\":\"/a\xFF\",\"log_id\":\"1\",\"action\":8}")),
              Lines{"path=/a\xEF\xBF\xBD id=1 action=1"});
}
