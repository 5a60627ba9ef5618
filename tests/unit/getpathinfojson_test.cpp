#include "files/GetPathInfoJson.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "files/PathRecord.h"
#include "parsing.h"
#include "support/pathrecord.h"

using namespace Lattice;

namespace {

using Lines = std::vector<std::string>;

std::string stat(const std::string& entries, const std::string& total = "1") {
    return R"({"status":1,"total":)" + total + R"(,"datas":[)" + entries + "]}";
}

/// What a reply with these entries leaves.
struct Outcome {
    int status;
    Lines records;
};

Outcome outcomeOf(const std::string& text, uint32_t fieldMask = kFieldName, uint32_t typeFilter = 3) {
    CGetPathInfoJson reply(L"a", typeFilter, fieldMask);
    EXPECT_EQ(parse(reply, text), 1) << text;
    return {reply.GetStatus(), describe(reply.records)};
}

Lines recordsOf(const std::string& keys, uint32_t fieldMask, uint32_t typeFilter = 3) {
    return outcomeOf(stat(R"({"filename":"a")" + keys + "}"), fieldMask, typeFilter).records;
}

}  // namespace

TEST(CGetPathInfoJson, RefusesWhatItWasNotToldEnoughFor) {
    const struct {
        const wchar_t* name;
        uint32_t typeFilter, fieldMask;
        int understood;
    } rows[] = {{L"a", 3, 1, 1},  {L"a", 1, 1, 1},  {L"a", 2, 0x100, 1}, {L"", 3, 1, -1},
                {L"a", 0, 1, -1}, {L"a", 4, 1, -1}, {L"a", 3, 0, -1},    {L"a", 7, 1, 1}};
    for (const auto& row : rows) {
        SCOPED_TRACE(std::to_string(row.typeFilter) + "/" + std::to_string(row.fieldMask));
        CGetPathInfoJson reply(row.name, row.typeFilter, row.fieldMask);
        EXPECT_EQ(parse(reply, stat(R"({"filename":"a","epochmt":"5"})")), row.understood);
        EXPECT_EQ(reply.GetStatus(), row.understood == 1 && row.typeFilter == 2 ? -4
                                     : row.understood == 1                      ? 0
                                                                                : -1);
    }
}

TEST(CGetPathInfoJson, RefusesWhatIsNoJsonObject) {
    for (const char* text : {"", "no", "[]", "5", "null", "\"status\"", "{\"status\":1"}) {
        SCOPED_TRACE(text);
        CGetPathInfoJson reply(L"a", 3, 1);
        EXPECT_EQ(parse(reply, text), -1);
        EXPECT_EQ(reply.GetStatus(), -1);
    }
    CGetPathInfoJson reply(L"a", 3, 1);
    EXPECT_EQ(reply.Parser(nullptr), -1);
}

TEST(CGetPathInfoJson, TranslatesTheStatusAndTakesAnAbsentOneAsSuccess) {
    EXPECT_EQ(outcomeOf(R"({"status":1})").status, 0);
    EXPECT_EQ(outcomeOf(R"({"status":"3"})").status, -29);
    EXPECT_EQ(outcomeOf(R"({"status":34})").status, -1);
    EXPECT_EQ(outcomeOf("{}").status, 0);
    EXPECT_EQ(outcomeOf(R"({"status":null})").status, 0);
    const Outcome other = outcomeOf(R"({"status":5,"total":1,"datas":[{"filename":"a","epochmt":"5"}]})");
    EXPECT_EQ(other.status, -4);
    EXPECT_EQ(other.records, Lines{"name=a exists"});
}

TEST(CGetPathInfoJson, ADenialEndsTheParse) {
    const Outcome outcome = outcomeOf(R"({"status":4,"total":1,"datas":[{"filename":"a","epochmt":"5"}]})");
    EXPECT_EQ(outcome.status, -3);
    EXPECT_EQ(outcome.records, Lines{});
}

TEST(CGetPathInfoJson, LooksAtEntriesOnlyWithATotalAboveZeroAndDatas) {
    const char* const entry = R"({"filename":"a","epochmt":"5"})";
    for (const std::string& text :
         {stat(entry, "0"), stat(entry, "-1"), stat(entry, "null"), stat(entry, "\"0\""),
          std::string(R"({"total":1})"), std::string(R"({"total":1,"datas":null})"), stat("")}) {
        SCOPED_TRACE(text);
        const Outcome outcome = outcomeOf(text);
        EXPECT_EQ(outcome.status, 0);
        EXPECT_EQ(outcome.records, Lines{});
    }
    EXPECT_EQ(outcomeOf(stat(entry, "\"1\"")).records, Lines{"name=a exists"});
}

TEST(CGetPathInfoJson, EntriesOfOtherNamesOrTypesMakeItAbsent) {
    for (const char* entries :
         {R"({"filename":"A","epochmt":"5"})", R"({"filename":"ab","epochmt":"5"})", R"({"epochmt":"5"})",
          R"({"filename":"*","epochmt":"5"},{"filename":"?","epochmt":"5"})", "null"}) {
        SCOPED_TRACE(entries);
        const Outcome outcome = outcomeOf(stat(entries));
        EXPECT_EQ(outcome.status, -4);
        EXPECT_EQ(outcome.records, Lines{});
    }
    const std::string folder = stat(R"({"filename":"a","epochmt":"5","isfolder":1})");
    EXPECT_EQ(outcomeOf(folder, kFieldName, 1).status, -4);
    EXPECT_EQ(outcomeOf(folder, kFieldName, 2).status, 0);
    EXPECT_EQ(outcomeOf(stat(R"({"filename":"a","epochmt":"5"})"), kFieldName, 2).status, -4);
}

TEST(CGetPathInfoJson, EveryEntryOfTheNameBecomesARecord) {
    EXPECT_EQ(outcomeOf(stat(R"({"filename":"a","epochmt":"5"},{"filename":"b","epochmt":"5"},
                                {"filename":"a","epochmt":"6"})"))
                  .records,
              (Lines{"name=a exists", "name=a exists"}));
}

TEST(CGetPathInfoJson, ARecordExistsByItsExistKeyOrElseByItsTime) {
    const struct {
        const char* keys;
        const char* expected;
    } rows[] = {{R"(,"exist":1)", "name=a exists"},
                {R"(,"exist":"2")", "name=a exists"},
                {R"(,"exist":0,"epochmt":"5")", "name=a"},
                {R"(,"epochmt":"5")", "name=a exists"},
                {R"(,"epochmt":0)", "name=a"},
                {"", "name=a"},
                {R"(,"exist":null,"epochmt":"5")", "name=a exists"}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.keys);
        EXPECT_EQ(recordsOf(row.keys, kFieldName), Lines{row.expected});
    }
}

TEST(CGetPathInfoJson, EachBitOfTheFieldMaskFillsItsOwnFields) {
    const char* const keys = R"(,"isfolder":1,"epochmt":"1700000000","have_child":1,"privilege":500,
        "privilege_ex":2,"nubo_type":3,"nubo_share_id":"s1","filesize":"5000000000")";
    const struct {
        uint32_t mask;
        const char* expected;
    } rows[] = {{0x001, "access=1 exists"},
                {0x002, "exists modified=1700000000"},
                {0x004, "exists second=1700000000"},
                {0x008, "folder exists"},
                {0x010, "exists size=5000000000"},
                {0x020, "name=a exists"},
                {0x040, "exists"},
                {0x080, "privilege=2 exists"},
                {0x100, "privilege=2 exists"},
                {0x200, "exists"},
                {0x3ff,
                 "name=a access=1 privilege=2 folder exists size=5000000000 modified=1700000000 "
                 "second=1700000000"}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.mask);
        EXPECT_EQ(recordsOf(keys, row.mask), Lines{row.expected});
    }
}

TEST(CGetPathInfoJson, AnExtendedPrivilegeAboveTwoIsUnknown) {
    const struct {
        const char* privilege;
        const char* expected;
    } rows[] = {
        {R"(,"privilege_ex":0)", "privilege=0 exists"},   {R"(,"privilege_ex":1)", "privilege=1 exists"},
        {R"(,"privilege_ex":"2")", "privilege=2 exists"}, {R"(,"privilege_ex":3)", "exists"},
        {R"(,"privilege_ex":2147483647)", "exists"},      {"", "exists"}};
    for (const auto& row : rows)
        for (const uint32_t mask : {kFieldPrivilegeEx, kFieldUploadPrivilege}) {
            SCOPED_TRACE(row.privilege);
            EXPECT_EQ(recordsOf(R"(,"epochmt":"5")" + std::string(row.privilege), mask), Lines{row.expected});
        }
}

TEST(CGetPathInfoJson, HostileRepliesAreRefusedOrCountAsAbsent) {
    const struct {
        std::string text;
        int understood;
    } rows[] = {{stat("5"), -1},
                {stat("\"a\""), -1},
                {stat(R"({"filename":[]})"), -1},
                {stat(R"({"filename":"a","epochmt":99999999999})"), -1},
                {stat(R"({"filename":"a","filesize":99999999999999999999})"), -1},
                {stat(R"({"filename":")" + std::string(5000, 'a') + "\"}"), 1},
                {stat("{\"filename\":\"a\xFF\"}"), 1},
                {R"({"total":99999999999,"datas":[]})", -1},
                {R"({"total":1,"datas":"text"})", 1},
                {R"({"total":1,"datas":{"a":{"filename":"b"}}})", 1}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text.substr(0, 80));
        CGetPathInfoJson reply(L"a", 3, kFieldName | kFieldSize);
        EXPECT_EQ(parse(reply, row.text), row.understood);
        EXPECT_TRUE(reply.records.empty());
    }
}
