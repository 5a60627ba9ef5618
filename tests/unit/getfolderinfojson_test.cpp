#include "files/GetFolderInfoJson.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "files/PathRecord.h"
#include "parsing.h"
#include "support/pathrecord.h"

using namespace Lattice;

namespace {

using Lines = std::vector<std::string>;

Lines recordsOf(const std::string& text, const std::wstring& filter = L"*", uint32_t fieldMask = kFieldName) {
    CGetFolderInfoJson reply(filter, fieldMask);
    EXPECT_EQ(parse(reply, text), 1) << text;
    EXPECT_EQ(reply.GetStatus(), 0);
    return describe(reply.records);
}

const char* const kThree = R"([{"text":"a","iconCls":"folder"},{"text":"b","iconCls":"folder"},
                               {"text":"a","iconCls":"folder","cls":"w"}])";

}  // namespace

TEST(CGetFolderInfoJson, RefusesWhatIsNeitherAnArrayNorAnObject) {
    for (const char* text : {"", "no", "5", "null", "\"status\"", "[{\"text\":"}) {
        SCOPED_TRACE(text);
        CGetFolderInfoJson reply(L"*", 1);
        EXPECT_EQ(parse(reply, text), -1);
        EXPECT_EQ(reply.GetStatus(), -1);
    }
    CGetFolderInfoJson reply(L"*", 1);
    EXPECT_EQ(reply.Parser(nullptr), -1);
}

TEST(CGetFolderInfoJson, AnObjectIsTheBadAnswer) {
    const struct {
        const char* text;
        int status;
    } rows[] = {{R"({"status":4})", -3},
                {R"({"status":"3"})", -29},
                {R"({"status":1})", 0},
                {R"({"status":34})", -1},
                {"{}", 0},
                {R"({"status":null})", 0},
                {R"({"status":false})", -1}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        CGetFolderInfoJson reply(L"*", kFieldName);
        EXPECT_EQ(parse(reply, row.text), 1);
        EXPECT_EQ(reply.GetStatus(), row.status);
        EXPECT_TRUE(reply.records.empty());
    }
}

TEST(CGetFolderInfoJson, OnlyFoldersWithANameAreListed) {
    EXPECT_EQ(recordsOf(R"([{"text":"f","iconCls":"file"},{"text":"x"},{"text":"y","iconCls":"Folder"},
                            {"text":"z","iconCls":""},{"text":"","iconCls":"folder"},{"iconCls":"folder"},
                            {"text":"d","iconCls":"folder"}])"),
              Lines{"name=d exists"});
    EXPECT_EQ(recordsOf("[]"), Lines{});
}

TEST(CGetFolderInfoJson, TheFilterIsEveryFolderOrTheFirstOfOneName) {
    EXPECT_EQ(recordsOf(kThree), (Lines{"name=a exists", "name=b exists", "name=a exists"}));
    EXPECT_EQ(recordsOf(kThree, L"a", kFieldName | kFieldAccess), Lines{"name=a exists"});
    EXPECT_EQ(recordsOf(kThree, L"b"), Lines{"name=b exists"});
    for (const wchar_t* other : {L"A", L"c", L"a*", L"?", L""}) EXPECT_EQ(recordsOf(kThree, other), Lines{});
}

TEST(CGetFolderInfoJson, EachBitOfTheFieldMaskFillsItsOwnField) {
    const char* const element =
        R"([{"text":"a","iconCls":"folder","cls":"w","filesize":"5","epochmt":"5","privilege_ex":1}])";
    const struct {
        uint32_t mask;
        const char* expected;
    } rows[] = {
        {0x000, "exists"},        {0x001, "access=2 exists"}, {0x002, "exists"},
        {0x004, "exists"},        {0x008, "folder exists"},   {0x010, "exists"},
        {0x020, "name=a exists"}, {0x040, "exists"},          {0x080, "exists"},
        {0x100, "exists"},        {0x200, "exists"},          {0x3ff, "name=a access=2 folder exists"}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.mask);
        EXPECT_EQ(recordsOf(element, L"*", row.mask), Lines{row.expected});
    }
}

TEST(CGetFolderInfoJson, AccessComesFromTheClass) {
    const struct {
        const char* cls;
        const char* expected;
    } rows[] = {{R"("w")", "access=2 exists"},
                {R"("6")", "access=2 exists"},
                {R"("7")", "access=2 exists"},
                {"7", "access=2 exists"},
                {R"("r")", "access=1 exists"},
                {R"("4")", "access=1 exists"},
                {R"("5")", "access=1 exists"},
                {"5", "access=1 exists"},
                {R"("W")", "exists"},
                {R"("rw")", "exists"},
                {R"("0")", "exists"},
                {R"("")", "exists"},
                {"null", "exists"}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.cls);
        EXPECT_EQ(recordsOf(R"([{"text":"a","iconCls":"folder","cls":)" + std::string(row.cls) + "}]", L"*",
                            kFieldAccess),
                  Lines{row.expected});
    }
    EXPECT_EQ(recordsOf(R"([{"text":"a","iconCls":"folder"}])", L"*", kFieldAccess), Lines{"exists"});
}

TEST(CGetFolderInfoJson, NamesOfUpTo2047CharactersOfEveryPlaneAreTaken) {
    const auto element = [](const std::string& name) {
        return R"([{"text":")" + name + R"(","iconCls":"folder"}])";
    };
    EXPECT_EQ(recordsOf(element(std::string(2047, 'n'))),
              Lines{"name=" + std::string(2047, 'n') + " exists"});
    EXPECT_EQ(recordsOf(element(std::string(2048, 'n'))), Lines{});
    EXPECT_EQ(recordsOf(element("\xF0\x9F\x98\x80"), L"\U0001F600"), Lines{"name=\xF0\x9F\x98\x80 exists"});
    EXPECT_EQ(recordsOf(element("\xFF")), Lines{"name=\xEF\xBF\xBD exists"});
}

TEST(CGetFolderInfoJson, HostileElementsAreSkippedOrRefused) {
    EXPECT_EQ(recordsOf("[null]"), Lines{});
    for (const char* text : {"[5]", R"(["folder"])", "[[]]", R"([{"text":[],"iconCls":"folder"}])",
                             R"([{"text":"a","iconCls":{}}])",
                             R"([{"text":"a","iconCls":"folder","cls":[]}])", R"({"status":99999999999})"}) {
        SCOPED_TRACE(text);
        CGetFolderInfoJson reply(L"*", kFieldAccess);
        EXPECT_EQ(parse(reply, text), -1);
    }
}
