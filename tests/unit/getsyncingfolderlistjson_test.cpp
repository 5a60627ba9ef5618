#include "state/GetSyncingFolderListJson.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "parsing.h"
#include "support/staterecords.h"

namespace {

using Lines = std::vector<std::string>;

std::string list(const std::string& folders, const std::string& keys = R"("total":1)") {
    return "{" + keys + R"(,"folder":[)" + folders + "]}";
}

Lines foldersOf(const std::string& text) {
    CGetSyncingFolderListJson reply;
    EXPECT_EQ(parse(reply, text), 1) << text.substr(0, 200);
    return describeAll(reply.folders);
}

Lines folderOf(const std::string& keys) {
    return foldersOf(list("{" + keys + "}"));
}

}  // namespace

TEST(CGetSyncingFolderListJson, ReadsEachFieldFromItsKey) {
    CGetSyncingFolderListJson reply;
    EXPECT_EQ(parse(reply, R"({"status":0,"admingroup":true,"total":2,"folder":[
        {"name":"Public","path":"/share/Public","privilege":2,"volume_id":7,"used_size":"3","used_unit":"MB",
         "capacity":"2","capacity_unit":"GB","free_size":"1"},
        {"name":"書類","path":"/share/書類"}]})"),
              1);
    EXPECT_EQ(reply.status, 0);
    EXPECT_EQ(reply.total, 2);
    EXPECT_EQ(reply.adminGroup, 1u);
    EXPECT_EQ(describeAll(reply.folders),
              (Lines{"name=Public path=/share/Public privilege=2 volume=7 used=3145728 capacity=2147483648 "
                     "free=1073741824",
                     "name=書類 path=/share/書類"}));
}

TEST(CGetSyncingFolderListJson, KeepsTheServersOwnStatusAndTakesAnAbsentOneAsZero) {
    const struct {
        const char* status;
        int expected;
        size_t folders;
    } rows[] = {{R"("status":1,)", 1, 1},
                {R"("status":"4",)", 4, 1},
                {R"("status":-1,)", -1, 1},
                {R"("status":-4,)", -4, 1},
                {"", 0, 1},
                {R"("status":-3,)", -3, 0},
                {R"("status":"-3",)", -3, 0}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.status);
        CGetSyncingFolderListJson reply;
        EXPECT_EQ(parse(reply, list(R"({"name":"a"})", row.status + std::string(R"("total":1)"))), 1);
        EXPECT_EQ(reply.status, row.expected);
        EXPECT_EQ(reply.folders.size(), row.folders);
    }
}

TEST(CGetSyncingFolderListJson, ADenialEndsTheParse) {
    CGetSyncingFolderListJson reply;
    EXPECT_EQ(parse(reply, R"({"status":-3,"admingroup":true,"total":99999999999,"folder":5})"), 1);
    EXPECT_EQ(reply.status, -3);
    EXPECT_EQ(reply.total, -1);
    EXPECT_EQ(reply.adminGroup, 0u);
}

TEST(CGetSyncingFolderListJson, LooksAtFoldersOnlyWithATotalAboveZero) {
    for (const char* keys :
         {R"("total":0)", R"("total":-1)", R"("total":"0")", R"("total":null)", R"("other":1)"})
        EXPECT_EQ(foldersOf(list(R"({"name":"a"})", keys)), Lines{}) << keys;
    for (const char* text : {R"({"total":1})", R"({"total":1,"folder":null})", R"({"total":1,"folder":[]})"})
        EXPECT_EQ(foldersOf(text), Lines{}) << text;
    // The array counts, not the total.
    EXPECT_EQ(foldersOf(list(R"({"name":"a"},{"name":"b"})", R"("total":"1")")), (Lines{"name=a", "name=b"}));
}

TEST(CGetSyncingFolderListJson, ASizeNeedsItsNumberAndAValidUnit) {
    const struct {
        const char* keys;
        const char* expected;
    } rows[] = {
        {R"("capacity":2,"capacity_unit":"GB","free_size":1)", "capacity=2147483648 free=1073741824"},
        {R"("capacity":"2","capacity_unit":"GB")", "capacity=2147483648"},
        {R"("free_size":"1","capacity_unit":"kb")", "free=1024"},
        {R"("free_size":"1","free_unit":"kb")", ""},
        {R"("used_size":"2","used_unit":"gb")", "used=2147483648"},
        {R"("used_size":"2","used_unit":"XB")", ""},
        {R"("used_size":"2","used_unit":"")", ""},
        {R"("used_size":"2")", ""},
        {R"("used_unit":"GB")", ""},
        {R"("used_size":"0","used_unit":"GB")", "used=0"},
        {R"("used_size":"-5","used_unit":"GB")", ""},
        {R"("used_size":"1.5","used_unit":"GB")", "used=0"},
        {R"("used_size":1.5,"used_unit":"GB")", "used=0"},
        {R"("used_size":"2","used_unit":"GB","capacity_unit":"KB")", "used=2147483648"},
        {R"("used_size":5000000000,"used_unit":"Byte")", "used=5000000000"},
    };
    for (const auto& row : rows) EXPECT_EQ(folderOf(row.keys), Lines{row.expected}) << row.keys;
}

TEST(CGetSyncingFolderListJson, ANumberOrUnitBeyondItsFieldCountsAsNotSent) {
    const auto sized = [](size_t zeros, const std::string& unit) {
        return folderOf(R"("used_size":")" + std::string(zeros, '0') + R"(5","used_unit":")" + unit + "\"");
    };
    EXPECT_EQ(sized(258, "KB"), Lines{"used=5120"});
    EXPECT_EQ(sized(259, "KB"), Lines{"used=0"});
    EXPECT_EQ(sized(0, std::string(260, 'K')), Lines{""});
}

TEST(CGetSyncingFolderListJson, NumbersMayComeAsTextAndBeginUnknown) {
    EXPECT_EQ(folderOf(R"("privilege":"0","volume_id":"3")"), Lines{"privilege=0 volume=3"});
    EXPECT_EQ(folderOf(R"("privilege":null,"volume_id":null)"), Lines{""});
    EXPECT_EQ(folderOf(""), Lines{""});
    EXPECT_EQ(folderOf(R"("slave_id":"n","hostname":"h")"), Lines{""});
}

TEST(CGetSyncingFolderListJson, ANameOrPathThatDoesNotFitIsEmpty) {
    const std::string longest(259, 'n');
    EXPECT_EQ(folderOf(R"("name":")" + longest + R"(","path":")" + longest + '"'),
              Lines{"name=" + longest + " path=" + longest});
    for (const size_t length : {size_t{260}, size_t{2047}, size_t{2048}, size_t{100000}})
        EXPECT_EQ(folderOf(R"("name":")" + std::string(length, 'n') + R"(","path":"/p")"), Lines{"path=/p"});
}

TEST(CGetSyncingFolderListJson, AdminGroupIsAFlag) {
    const struct {
        const char* value;
        uint32_t expected;
    } rows[] = {{"true", 1}, {"false", 0}, {"1", 1}, {"\"1\"", 1}, {"0", 0}, {"null", 0}};
    for (const auto& row : rows) {
        CGetSyncingFolderListJson reply;
        EXPECT_EQ(parse(reply, R"({"admingroup":)" + std::string(row.value) + "}"), 1);
        EXPECT_EQ(reply.adminGroup, row.expected) << row.value;
    }
}

TEST(CGetSyncingFolderListJson, RefusesWhatCannotBeRead) {
    expectRefusesAllButObjects<CGetSyncingFolderListJson>(
        {R"({"status":99999999999})", R"({"total":99999999999})", R"({"total":1,"folder":{}})",
         R"({"total":1,"folder":"x"})", list(R"({"name":[]})"), list(R"({"privilege":99999999999})"),
         list(R"({"used_size":[],"used_unit":"GB"})"), list(R"({"used_size":"1","used_unit":{}})")});
    EXPECT_EQ(foldersOf(list(R"(null,5,"x",[],{"name":"a"})")), Lines{"name=a"});
    EXPECT_EQ(foldersOf(list("{\"name\":\"a\xFF\"}")), Lines{"name=a\xEF\xBF\xBD"});
}
