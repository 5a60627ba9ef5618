#include "state/GetClusterSyncingFolderListJson.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "parsing.h"
#include "support/staterecords.h"

namespace {

using Lines = std::vector<std::string>;

std::string list(const std::string& nodes, const std::string& keys = R"("count":1)") {
    return "{" + keys + R"(,"slave":[)" + nodes + "]}";
}

std::string node(const std::string& folders) {
    return R"({"slave_id":"n1","hostname":"h1","folder":[)" + folders + "]}";
}

Lines foldersOf(const std::string& text) {
    CGetClusterSyncingFolderListJson reply;
    EXPECT_EQ(parse(reply, text), 1) << text.substr(0, 200);
    return describeAll(reply.folders);
}

}  // namespace

TEST(CGetClusterSyncingFolderListJson, EachFolderGetsItsNodesNamesAndNoSizes) {
    CGetClusterSyncingFolderListJson reply;
    EXPECT_EQ(parse(reply, R"({"status":0,"count":2,"slave":[
        {"slave_id":"n1","hostname":"first","folder":[
            {"name":"Public","path":"/share/Public","permission":2,"privilege":9,"volume_id":7,
             "used_size":"3","used_unit":"MB","capacity":"2","capacity_unit":"GB","free_size":"1"},
            {"name":"書類","path":"/share/書類","permission":"0"}]},
        {"slave_id":"n2","hostname":"second","folder":[{"name":"Web","path":"/share/Web"}]}]})"),
              1);
    EXPECT_EQ(reply.status, 0);
    EXPECT_EQ(reply.total, 2);
    EXPECT_EQ(describeAll(reply.folders),
              (Lines{"slave=n1 host=first name=Public path=/share/Public privilege=2",
                     "slave=n1 host=first name=書類 path=/share/書類 privilege=0",
                     "slave=n2 host=second name=Web path=/share/Web"}));
}

TEST(CGetClusterSyncingFolderListJson, AFolderWithoutANameGivesNoRecord) {
    EXPECT_EQ(foldersOf(list(node(R"({"path":"/share/x","permission":2},{"name":"a"},{"name":null})"))),
              Lines{"slave=n1 host=h1 name=a"});
}

TEST(CGetClusterSyncingFolderListJson, KeepsTheServersOwnStatusAndADenialEndsTheParse) {
    const struct {
        const char* status;
        int expected;
        size_t folders;
    } rows[] = {{R"("status":1,)", 1, 1},
                {R"("status":"4",)", 4, 1},
                {"", 0, 1},
                {R"("status":-3,)", -3, 0},
                {R"("status":-4,)", -4, 1}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.status);
        CGetClusterSyncingFolderListJson reply;
        EXPECT_EQ(parse(reply, list(node(R"({"name":"a"})"), row.status + std::string(R"("count":1)"))), 1);
        EXPECT_EQ(reply.status, row.expected);
        EXPECT_EQ(reply.folders.size(), row.folders);
    }
}

TEST(CGetClusterSyncingFolderListJson, LooksAtNodesOnlyWithACountAboveZero) {
    for (const char* keys :
         {R"("count":0)", R"("count":-1)", R"("count":"0")", R"("count":null)", R"("total":1)"})
        EXPECT_EQ(foldersOf(list(node(R"({"name":"a"})"), keys)), Lines{}) << keys;
    for (const char* text : {R"({"count":1})", R"({"count":1,"slave":null})", R"({"count":1,"slave":[]})",
                             R"({"count":1,"slave":[{"slave_id":"n1","hostname":"h1"}]})"})
        EXPECT_EQ(foldersOf(text), Lines{}) << text;
}

TEST(CGetClusterSyncingFolderListJson, ATextThatDoesNotFitIsEmpty) {
    const std::string longest(259, 'x');
    const std::string longer(260, 'x');
    const auto folder = [](const std::string& text) {
        return list(R"({"slave_id":")" + text + R"(","hostname":")" + text + R"(","folder":[{"name":")" +
                    text + R"(","path":")" + text + R"("}]})");
    };
    EXPECT_EQ(foldersOf(folder(longest)),
              Lines{"slave=" + longest + " host=" + longest + " name=" + longest + " path=" + longest});
    EXPECT_EQ(foldersOf(folder(longer)), Lines{""});
}

TEST(CGetClusterSyncingFolderListJson, RefusesWhatCannotBeRead) {
    expectRefusesAllButObjects<CGetClusterSyncingFolderListJson>(
        {R"({"status":99999999999})", R"({"count":99999999999})", R"({"count":1,"slave":{}})",
         list(R"({"folder":5})"), list(node(R"({"name":[]})")),
         list(node(R"({"name":"a","permission":99999999999})")),
         list(R"({"slave_id":[],"folder":[{"name":"a"}]})")});
    EXPECT_EQ(foldersOf(list("null,5,[]," + node(R"(null,5,"x",[],{"name":"a"})"))),
              Lines{"slave=n1 host=h1 name=a"});
}
