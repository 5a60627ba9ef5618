#include "sharing/ShareGetTeamFolderJson.h"

#include <gtest/gtest.h>

#include <string>

#include "parsing.h"
#include "support/teamrecords.h"

namespace {

std::string listOf(const std::string& folders, const std::string& keys = R"("status":0,"total":1)") {
    return "{" + keys + R"(,"team_folder":[)" + folders + "]}";
}

/// The one folder of a reply.
_TORVI_TEAM_FOLDER_JSON_INFO folderOf(const std::string& folder) {
    CShareGetTeamFolderJson reply;
    EXPECT_EQ(parse(reply, listOf(folder)), 1) << folder.substr(0, 200);
    return reply.folders.size() == 1 ? reply.folders[0] : _TORVI_TEAM_FOLDER_JSON_INFO();
}

void expectEmpty(const std::string& text, int status, uint32_t total) {
    SCOPED_TRACE(text);
    CShareGetTeamFolderJson reply;
    EXPECT_EQ(parse(reply, text), 1);
    EXPECT_EQ(reply.GetStatus(), status);
    EXPECT_EQ(reply.total, total);
    EXPECT_TRUE(reply.folders.empty());
}

}  // namespace

TEST(CShareGetTeamFolderJson, BeginsWithNothingLearnt) {
    const CShareGetTeamFolderJson reply;
    EXPECT_EQ(reply.GetStatus(), -1);
    EXPECT_EQ(reply.total, 0u);
    EXPECT_TRUE(reply.folders.empty());
}

TEST(CShareGetTeamFolderJson, ReadsEachFieldFromItsKey) {
    const _TORVI_TEAM_FOLDER_JSON_INFO folder = folderOf(
        R"({"type":1,"status":2,"owner":"o","share_id":"s","parent_id":"p","nas_id":"n","name":"N",
            "path":"/p","original_path":"/\u6587","receiver_number":1,
            "receiver":[{"name":"r","display_name":"R","permission":3,"status":"4"}]})");
    EXPECT_EQ(folder.nType, 1);
    EXPECT_EQ(folder.nStatus, 2);
    EXPECT_EQ(folder.strOwner, L"o");
    EXPECT_EQ(folder.strShareID, L"s");
    EXPECT_EQ(folder.strParentID, L"p");
    EXPECT_EQ(folder.strNasID, L"n");
    EXPECT_EQ(folder.strName, L"N");
    EXPECT_EQ(folder.strPath, L"/p");
    EXPECT_EQ(folder.strOriginalPath, L"/\x6587");
    EXPECT_EQ(describeAll(folder.receivers),
              std::vector<std::string>{"name=r display=R permission=3 status=4"});
}

TEST(CShareGetTeamFolderJson, AMissingKeyLeavesItsFieldEmpty) {
    const _TORVI_TEAM_FOLDER_JSON_INFO folder = folderOf("{}");
    EXPECT_EQ(folder.nType, 0);
    EXPECT_EQ(folder.nStatus, 0);
    for (const std::wstring& text : {folder.strOwner, folder.strShareID, folder.strParentID, folder.strNasID,
                                     folder.strName, folder.strPath, folder.strOriginalPath})
        EXPECT_EQ(text, L"");
    EXPECT_TRUE(folder.receivers.empty());
}

TEST(CShareGetTeamFolderJson, ReceiversStandInAnArray) {
    for (const char* receivers : {R"({"a":{"name":"x"}})", R"("x")", "1", "null"}) {
        const _TORVI_TEAM_FOLDER_JSON_INFO folder =
            folderOf(R"({"type":1,"receiver_number":1,"receiver":)" + std::string(receivers) + "}");
        EXPECT_EQ(folder.nType, 1) << receivers;
        EXPECT_TRUE(folder.receivers.empty()) << receivers;
    }
}

TEST(CShareGetTeamFolderJson, KeepsNoMoreThanThereIsRoomFor) {
    CShareGetTeamFolderJson reply;
    reply.room = 2;
    EXPECT_EQ(parse(reply, listOf("{},{},{}", R"("status":0,"total":3)")), 1);
    EXPECT_EQ(reply.total, 3u);
    EXPECT_EQ(reply.folders.size(), 2u);
}

TEST(CShareGetTeamFolderJson, DashesAreNoShareID) {
    EXPECT_EQ(folderOf(R"({"share_id":"--------"})").strShareID, L"");
    EXPECT_EQ(folderOf(R"({"share_id":"-------"})").strShareID, L"-------");
    EXPECT_EQ(folderOf(R"({"parent_id":"--------"})").strParentID, L"--------");
}

TEST(CShareGetTeamFolderJson, TheStatusIsTheServersAndMinus3EndsTheParse) {
    expectEmpty(listOf("{}", R"("status":-3,"total":1)"), -3, 0);
    expectEmpty(R"({"status":-3,"total":[],"team_folder":5})", -3, 0);
    for (const char* status : {"0", "null", "[]"}) {
        CShareGetTeamFolderJson reply;
        EXPECT_EQ(parse(reply, listOf("{}", R"("total":1,"status":)" + std::string(status))), 1);
        EXPECT_EQ(reply.GetStatus(), 0) << status;
        EXPECT_EQ(reply.folders.size(), 1u);
    }
    CShareGetTeamFolderJson other;
    EXPECT_EQ(parse(other, listOf("{}", R"("status":1,"total":1)")), 1);
    EXPECT_EQ(other.GetStatus(), 1);
    EXPECT_EQ(other.folders.size(), 1u);
}

TEST(CShareGetTeamFolderJson, WithoutATotalThereIsNoFolder) {
    expectEmpty(listOf("{}", R"("status":0)"), 0, 0);
    expectEmpty(listOf("{}", R"("status":0,"total":0)"), 0, 0);
    expectEmpty(listOf("{}", R"("status":0,"total":-1)"), 0, 0);
    expectEmpty(R"({"status":0,"total":5})", 0, 5);
    expectEmpty(R"({"status":0,"total":5,"team_folder":null})", 0, 5);
    expectEmpty(R"({"status":0,"total":5,"team_folder":[1,"x",null]})", 0, 5);
}

TEST(CShareGetTeamFolderJson, WhatIsNoObjectIsUnderstoodWithNothingRead) {
    for (const char* text : {"[]", "[{}]", "5", "null", "\"status\""}) expectEmpty(text, -1, 0);
}

TEST(CShareGetTeamFolderJson, NothingThatTheJsonLibraryRaisesGetsOut) {
    for (const std::string& text :
         {std::string(), std::string("sorry"), std::string(R"({"status":0)"), std::string(5000, '['),
          std::string(R"({"status":99999999999})"), std::string(R"({"total":99999999999})"),
          std::string(R"({"total":1,"team_folder":5})"), listOf(R"({"name":{}})"),
          listOf(R"({"type":99999999999})"), listOf(R"({"receiver_number":1,"receiver":[{"name":[]}]})"),
          listOf(R"({"receiver_number":1,"receiver":[{"name":"r","status":99999999999}]})")}) {
        CShareGetTeamFolderJson reply;
        EXPECT_EQ(parse(reply, text), -1) << text.substr(0, 100);
    }
    CShareGetTeamFolderJson reply;
    EXPECT_EQ(reply.Parser(nullptr), -1);
}
