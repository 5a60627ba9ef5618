#include "files/GetNodeInfoJson.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "files/PathRecord.h"
#include "parsing.h"
#include "support/pathrecord.h"

using namespace Lattice;

namespace {

constexpr uint32_t kEveryField = 0x3ff;
using Lines = std::vector<std::string>;

CGetNodeInfoJson page(const std::wstring& pattern = L"*", uint32_t typeFilter = 3,
                      uint32_t fieldMask = kFieldName) {
    CGetNodeInfoJson reply;
    reply.pattern = pattern;
    reply.typeFilter = typeFilter;
    reply.fieldMask = fieldMask;
    return reply;
}

/// A reply with these entries, which are JSON objects.
std::string listing(const std::string& entries) {
    return R"({"status":1,"total":100,"datas":[)" + entries + "]}";
}

/// The one record of a reply that holds this entry, as text.
Lines recordsOf(const std::string& entry, uint32_t fieldMask, uint32_t typeFilter = 3) {
    CGetNodeInfoJson reply = page(L"*", typeFilter, fieldMask);
    EXPECT_EQ(parse(reply, listing(entry)), 1);
    return describe(reply.records);
}

}  // namespace

TEST(CGetNodeInfoJson, BeginsWithStatusMinusOneAndTypeFilterThree) {
    const CGetNodeInfoJson reply;
    EXPECT_EQ(reply.GetStatus(), -1);
    EXPECT_EQ(reply.total, 0u);
    EXPECT_EQ(reply.nextStart, 0u);
    EXPECT_EQ(reply.typeFilter, 3u);
    EXPECT_EQ(reply.fieldMask, 0u);
    EXPECT_TRUE(reply.records.empty());
}

TEST(CGetNodeInfoJson, ParserIsTheFirstOperationOfItsTable) {
    CGetNodeInfoJson reply = page();
    using Operation = int (*)(CGetNodeInfoJson*, char*);
    Operation* table = nullptr;
    std::memcpy(&table, static_cast<const void*>(&reply), sizeof table);
    std::string text = listing(R"({"filename":"a","epochmt":"5"})");
    EXPECT_EQ(table[0](&reply, text.data()), 1);
    EXPECT_EQ(describe(reply.records), Lines{"name=a exists child"});
}

TEST(CGetNodeInfoJson, RefusesWhatIsNoJsonAndSetsTheStatusBack) {
    for (const char* text : {"", "no", "{\"status\":1", "<html/>"}) {
        SCOPED_TRACE(text);
        CGetNodeInfoJson reply = page();
        reply.status = 0;
        EXPECT_EQ(parse(reply, text), -1);
        EXPECT_EQ(reply.GetStatus(), -1);
        EXPECT_EQ(reply.nextStart, 0u);
    }
    CGetNodeInfoJson reply = page();
    EXPECT_EQ(reply.Parser(nullptr), -1);
}

TEST(CGetNodeInfoJson, UnderstandsWhatIsNoObjectAsNothing) {
    for (const char* text : {"[]", "5", "\"text\"", "null", "true"}) {
        SCOPED_TRACE(text);
        CGetNodeInfoJson reply = page();
        reply.status = 0;
        EXPECT_EQ(parse(reply, text), 1);
        EXPECT_EQ(reply.GetStatus(), -1);
        EXPECT_EQ(reply.total, 0u);
        EXPECT_TRUE(reply.records.empty());
    }
}

TEST(CGetNodeInfoJson, TranslatesTheStatusAndTakesAnAbsentOneAsSuccess) {
    const struct {
        const char* status;
        int expected;
    } rows[] = {{R"("status":1,)", 0},  {R"("status":"1",)", 0}, {R"("status":3,)", -29}, {"", 0},
                {R"("status":5,)", -4}, {R"("status":34,)", -1}, {R"("status":null,)", 0}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.status);
        CGetNodeInfoJson reply = page();
        // Only a denial ends the parse.
        EXPECT_EQ(parse(reply, "{" + std::string(row.status) +
                                   R"("total":1,"datas":[{"filename":"a","epochmt":"5"}]})"),
                  1);
        EXPECT_EQ(reply.GetStatus(), row.expected);
        EXPECT_EQ(reply.records.size(), 1u);
    }
}

TEST(CGetNodeInfoJson, ADenialEndsTheParse) {
    CGetNodeInfoJson reply = page();
    EXPECT_EQ(parse(reply, R"({"status":4,"total":1,"datas":[{"filename":"a","epochmt":"5"}]})"), 1);
    EXPECT_EQ(reply.GetStatus(), -3);
    EXPECT_EQ(reply.total, 0u);
    EXPECT_EQ(reply.nextStart, 0u);
    EXPECT_TRUE(reply.records.empty());
}

TEST(CGetNodeInfoJson, ReadsNoEntriesWithoutATotalOrWithoutDatas) {
    const char* const entries = R"("datas":[{"filename":"a","epochmt":"5"}])";
    for (const std::string& text :
         {std::string("{") + entries + "}", std::string(R"({"total":0,)") + entries + "}",
          std::string(R"({"total":"0",)") + entries + "}", std::string(R"({"total":7})"),
          std::string(R"({"total":7,"datas":null})")}) {
        SCOPED_TRACE(text);
        CGetNodeInfoJson reply = page();
        EXPECT_EQ(parse(reply, text), 1);
        EXPECT_TRUE(reply.records.empty());
        EXPECT_EQ(reply.nextStart, 0u);
    }
    CGetNodeInfoJson reply = page();
    EXPECT_EQ(parse(reply, R"({"total":"7","datas":[]})"), 1);
    EXPECT_EQ(reply.total, 7u);
}

TEST(CGetNodeInfoJson, NextStartGrowsByTheWholePageWhateverIsKept) {
    CGetNodeInfoJson reply = page(L"*.txt", 1);
    reply.nextStart = 40;
    const std::string text = listing(
        R"({"filename":"a.txt","epochmt":"5"},{"filename":"b.pdf","epochmt":"5"},{"filename":""},
           {"filename":"c.txt","isfolder":1,"epochmt":"5"},{"filename":"d.txt"})");
    EXPECT_EQ(parse(reply, text), 1);
    EXPECT_EQ(reply.nextStart, 45u);
    EXPECT_EQ(describe(reply.records), Lines{"name=a.txt exists child"});
}

TEST(CGetNodeInfoJson, APatternWithoutWildcardsStopsAtItsFirstMatchAfterNextStartHasGrown) {
    CGetNodeInfoJson reply = page(L"B");
    EXPECT_EQ(parse(reply, listing(R"({"filename":"a","epochmt":"5"},{"filename":"b","epochmt":"5"},
                                      {"filename":"B","epochmt":"5"})")),
              1);
    EXPECT_EQ(describe(reply.records), Lines{"name=b exists child"});
    EXPECT_EQ(reply.nextStart, 3u);
}

TEST(CGetNodeInfoJson, APatternWithoutWildcardsStopsAtAMatchThatIsNotRecorded) {
    const char* const unwanted[] = {R"({"filename":"b","epochmt":"5","isfolder":1})", R"({"filename":"b"})"};
    for (const char* first : unwanted) {
        SCOPED_TRACE(first);
        CGetNodeInfoJson reply = page(L"b", 1);
        EXPECT_EQ(parse(reply, listing(first + std::string(R"(,{"filename":"b","epochmt":"5"})"))), 1);
        EXPECT_TRUE(reply.records.empty());
        EXPECT_EQ(reply.nextStart, 2u);
    }
}

TEST(CGetNodeInfoJson, WhatAnUnwantedEntrySaysElsewhereDoesNotSpoilThePage) {
    const char* const broken[] = {R"({"filename":"other","epochmt":99999999999})",
                                  R"({"filename":"other","isfolder":99999999999})",
                                  R"({"filename":"a","isfolder":1,"epochmt":99999999999})"};
    for (const char* entry : broken) {
        SCOPED_TRACE(entry);
        CGetNodeInfoJson reply = page(L"a*", 1);
        EXPECT_EQ(parse(reply, listing(entry + std::string(R"(,{"filename":"a","epochmt":"5"})"))), 1);
        EXPECT_EQ(reply.records.size(), 1u);
    }
}

TEST(CGetNodeInfoJson, AWildPatternGoesThroughTheWholePage) {
    for (const wchar_t* pattern : {L"*b*", L"?b", L"*", L"?B"}) {
        CGetNodeInfoJson reply = page(pattern);
        EXPECT_EQ(parse(reply, listing(R"({"filename":"ab","epochmt":"5"},{"filename":"xB","epochmt":"5"})")),
                  1);
        EXPECT_EQ(reply.records.size(), 2u);
    }
}

TEST(CGetNodeInfoJson, TheTypeFilterKeepsFilesAndFolders) {
    const std::string file = R"({"filename":"f","epochmt":"5","isfolder":0})";
    const std::string folder = R"({"filename":"d","epochmt":"5","isfolder":1})";
    const std::string folderAsText = R"({"filename":"d","epochmt":"5","isfolder":"1"})";
    const std::string neither = R"({"filename":"n","epochmt":"5"})";
    const std::string two = R"({"filename":"n","epochmt":"5","isfolder":2})";
    const std::string f = "name=f exists child", d = "name=d exists child", n = "name=n exists child";
    const struct {
        uint32_t typeFilter;
        std::string entry;
        Lines expected;
    } rows[] = {
        {1, file, {f}},    {2, file, {}},    {3, file, {f}},         {4, file, {}},         {1, folder, {}},
        {2, folder, {d}},  {6, folder, {d}}, {2, folderAsText, {d}}, {1, folderAsText, {}}, {2, neither, {}},
        {1, neither, {n}}, {2, two, {}},     {1, two, {n}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.entry + " by " + std::to_string(row.typeFilter));
        EXPECT_EQ(recordsOf(row.entry, kFieldName, row.typeFilter), row.expected);
    }
}

TEST(CGetNodeInfoJson, AnEntryWithoutIsFolderIsDroppedByTypeFilterTwo) {
    EXPECT_EQ(recordsOf(R"({"filename":"a","epochmt":"5"})", kEveryField, 2), Lines{});
}

TEST(CGetNodeInfoJson, AnEntryExistsByItsExistKeyOrElseByItsTime) {
    const struct {
        const char* keys;
        bool isRecorded;
    } rows[] = {{R"("exist":1)", true},
                {R"("exist":"1")", true},
                {R"("exist":1,"epochmt":"0")", true},
                {R"("exist":0,"epochmt":"5")", false},
                {R"("exist":"0","epochmt":"5")", false},
                {R"("epochmt":"5")", true},
                {R"("epochmt":-5)", true},
                {R"("epochmt":"0")", false},
                {R"("epochmt":0)", false},
                {R"("exist":null,"epochmt":"5")", true},
                {R"("isfolder":1)", false}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.keys);
        const Lines records = recordsOf(R"({"filename":"a",)" + std::string(row.keys) + "}", kFieldName);
        EXPECT_EQ(records, row.isRecorded ? Lines{"name=a exists child"} : Lines{});
    }
}

TEST(CGetNodeInfoJson, EachBitOfTheFieldMaskFillsItsOwnFields) {
    const char* const entry = R"({"filename":"a","isfolder":1,"epochmt":"1700000000","have_child":1,
        "privilege":700,"privilege_ex":2,"nubo_type":3,"nubo_share_id":"s1","filesize":"5000000000"})";
    const struct {
        uint32_t mask;
        const char* expected;
    } rows[] = {{0x000, "exists child"},
                {0x001, "access=2 exists child"},
                {0x002, "exists child modified=1700000000"},
                {0x004, "exists child second=1700000000"},
                {0x008, "folder exists child"},
                {0x010, "exists child size=5000000000"},
                {0x020, "name=a exists child"},
                {0x040, "exists child nubo=3 share=s1"},
                // Only a stat tells the extended privilege.
                {0x080, "exists child"},
                {0x100, "exists child"},
                {0x200, "exists child"},
                {kEveryField,
                 "name=a access=2 folder exists child size=5000000000 modified=1700000000 "
                 "second=1700000000 nubo=3 share=s1"}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.mask);
        EXPECT_EQ(recordsOf(entry, row.mask), Lines{row.expected});
    }
}

TEST(CGetNodeInfoJson, AccessComesFromTheHundredsOfThePrivilege) {
    const struct {
        const char* privilege;
        const char* expected;
    } rows[] = {{R"(,"privilege":700)", "access=2 exists child"},
                {R"(,"privilege":755)", "access=2 exists child"},
                {R"(,"privilege":200)", "access=2 exists child"},
                {R"(,"privilege":600)", "access=2 exists child"},
                {R"(,"privilege":500)", "access=1 exists child"},
                {R"(,"privilege":"400")", "access=1 exists child"},
                {R"(,"privilege":100)", "exists child"},
                {R"(,"privilege":77)", "exists child"},
                {R"(,"privilege":0)", "exists child"},
                {"", "exists child"}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.privilege);
        EXPECT_EQ(
            recordsOf(R"({"filename":"a","epochmt":"5")" + std::string(row.privilege) + "}", kFieldAccess),
            Lines{row.expected});
    }
}

TEST(CGetNodeInfoJson, HasChildIsTrueForFoldersUnlessTheServerSaysNo) {
    const char* const folder = R"("isfolder":1)";
    const char* const file = R"("isfolder":0)";
    const struct {
        const char* kind;
        const char* haveChild;
        uint32_t mask;
        const char* expected;
    } rows[] = {{folder, "", kFieldHasChild, "exists child"},
                {folder, R"(,"have_child":1)", kFieldHasChild, "exists child"},
                {folder, R"(,"have_child":"2")", kFieldHasChild, "exists child"},
                {folder, R"(,"have_child":0)", kFieldHasChild, "exists"},
                {folder, R"(,"have_child":"0")", kFieldHasChild, "exists"},
                {folder, R"(,"have_child":0)", 0, "exists child"},
                {file, R"(,"have_child":1)", kFieldIsFolder, "exists"},
                {file, R"(,"have_child":1)", kFieldIsFolder | kFieldHasChild, "exists"},
                {file, R"(,"have_child":1)", kFieldHasChild, "exists child"}};
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.kind) + row.haveChild + " mask " + std::to_string(row.mask));
        EXPECT_EQ(recordsOf(R"({"filename":"a","epochmt":"5",)" + std::string(row.kind) + row.haveChild + "}",
                            row.mask),
                  Lines{row.expected});
    }
}

TEST(CGetNodeInfoJson, TimesAreFilledOnlyAboveZero) {
    const uint32_t times = kFieldModifiedTime | kFieldSecondTime;
    EXPECT_EQ(recordsOf(R"({"filename":"a","epochmt":-5})", times), Lines{"exists child"});
    EXPECT_EQ(recordsOf(R"({"filename":"a","exist":1,"epochmt":0})", times), Lines{"exists child"});
    EXPECT_EQ(recordsOf(R"({"filename":"a","epochmt":2147483647})", times),
              Lines{"exists child modified=2147483647 second=2147483647"});
    EXPECT_EQ(recordsOf(R"({"filename":"a","epochmt":"4102444800"})", times),
              Lines{"exists child modified=4102444800 second=4102444800"});
}

TEST(CGetNodeInfoJson, SizesComeAsTextOrAsNumbersOf64Bits) {
    EXPECT_EQ(recordsOf(R"({"filename":"a","epochmt":"5","filesize":5000000000})", kFieldSize),
              Lines{"exists child size=5000000000"});
    EXPECT_EQ(recordsOf(R"({"filename":"a","epochmt":"5","filesize":"9223372036854775807"})", kFieldSize),
              Lines{"exists child size=9223372036854775807"});
    EXPECT_EQ(recordsOf(R"({"filename":"a","epochmt":"5"})", kFieldSize), Lines{"exists child"});
}

TEST(CGetNodeInfoJson, AShareIdOfThreeDashesMeansNone) {
    EXPECT_EQ(
        recordsOf(R"({"filename":"a","epochmt":"5","nubo_type":"2","nubo_share_id":"---"})", kFieldShare),
        Lines{"exists child nubo=2"});
    EXPECT_EQ(recordsOf(R"({"filename":"a","epochmt":"5","nubo_share_id":"--"})", kFieldShare),
              Lines{"exists child share=--"});
}

TEST(CGetNodeInfoJson, AShareIdThatDoesNotFitIsLeftOut) {
    const auto share = [](size_t length) {
        return recordsOf(
            R"({"filename":"a","epochmt":"5","nubo_share_id":")" + std::string(length, 's') + "\"}",
            kFieldShare);
    };
    EXPECT_EQ(share(259), Lines{"exists child share=" + std::string(259, 's')});
    EXPECT_EQ(share(260), Lines{"exists child"});
    EXPECT_EQ(share(5000), Lines{"exists child"});
}

TEST(CGetNodeInfoJson, NamesOfEveryPlaneArriveWhole) {
    EXPECT_EQ(recordsOf("{\"filename\":\"\xE6\x96\x87\xF0\x9F\x98\x80\",\"epochmt\":\"5\"}", kFieldName),
              Lines{"name=\xE6\x96\x87\xF0\x9F\x98\x80 exists child"});
    EXPECT_EQ(recordsOf(R"({"filename":"\ud83d\ude00","epochmt":"5"})", kFieldName),
              Lines{"name=\xF0\x9F\x98\x80 exists child"});
    CGetNodeInfoJson reply = page();
    EXPECT_EQ(parse(reply, listing(R"({"filename":"\ud83d\ude00","epochmt":"5"})")), 1);
    EXPECT_EQ(std::wstring(reply.records.at(0).szPathName), L"\U0001F600");
}

TEST(CGetNodeInfoJson, NamesOfUpTo2047CharactersAreTaken) {
    const auto names = [](size_t length) {
        return recordsOf(R"({"filename":")" + std::string(length, 'n') + R"(","epochmt":"5"})", kFieldName);
    };
    EXPECT_EQ(names(2047), Lines{"name=" + std::string(2047, 'n') + " exists child"});
    EXPECT_EQ(names(2048), Lines{});
    EXPECT_EQ(names(5000), Lines{});
}

TEST(CGetNodeInfoJson, HostileEntriesAreSkippedOrRefusedAndNeverHarm) {
    const struct {
        const char* entries;
        int understood;
        Lines records;
    } rows[] = {
        {"null", 1, {}},
        {R"({"filename":null,"epochmt":"5"})", 1, {}},
        {R"({"filename":5,"epochmt":"5"})", 1, {"name=5 exists child"}},
        {R"({"filename":"a\u0000b","epochmt":"5"})", 1, {"name=a exists child"}},
        {"{\"filename\":\"a\xFF\",\"epochmt\":\"5\"}", 1, {"name=a\xEF\xBF\xBD exists child"}},
        {R"({"filename":"a","epochmt":"99999999999999999999"})", 1, {"name=a exists child"}},
        {R"({"filename":"a","epochmt":{}})", 1, {}},
        {R"({"filename":"a","epochmt":99999999999})", -1, {}},
        {R"({"filename":[],"epochmt":"5"})", -1, {}},
        {R"({"filename":{},"epochmt":"5"})", -1, {}},
        {"5", -1, {}},
        {R"("text")", -1, {}},
        {"[[]]", -1, {}},
        {R"({"filename":"a","isfolder":1e300})", -1, {}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.entries);
        CGetNodeInfoJson reply = page();
        EXPECT_EQ(parse(reply, listing(row.entries)), row.understood);
        EXPECT_EQ(describe(reply.records), row.records);
        EXPECT_EQ(reply.nextStart, row.understood == 1 ? 1u : 0u);
    }
}

TEST(CGetNodeInfoJson, DatasOfAnotherTypeHoldNoEntries) {
    for (const char* datas : {"5", "\"text\"", "true", "{}"}) {
        SCOPED_TRACE(datas);
        CGetNodeInfoJson reply = page();
        EXPECT_EQ(parse(reply, R"({"total":3,"datas":)" + std::string(datas) + "}"), 1);
        EXPECT_EQ(reply.nextStart, 0u);
        EXPECT_TRUE(reply.records.empty());
    }
}

TEST(CGetNodeInfoJson, APageThatBreaksHalfWayMovesNothingOn) {
    CGetNodeInfoJson reply = page();
    reply.nextStart = 40;
    EXPECT_EQ(parse(reply, listing(R"({"filename":"a","epochmt":"5"},{"filename":[]})")), -1);
    EXPECT_EQ(reply.nextStart, 40u);
    EXPECT_EQ(reply.total, 0u);
    EXPECT_EQ(reply.GetStatus(), -1);
    EXPECT_TRUE(reply.records.empty());
}
