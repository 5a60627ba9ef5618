#include "sharing/GetTorviShareFileInfoJson.h"

#include <gtest/gtest.h>

#include <string>

#include "parsing.h"
#include "support/logcapture.h"

namespace {

const std::string kPrefix = "[WFMShare] CGetTorviShareFileInfoJson";

}  // namespace

TEST(CGetTorviShareFileInfoJson, BeginsWithNothingLearnt) {
    const CGetTorviShareFileInfoJson reply;
    EXPECT_EQ(reply.GetStatus(), -1);
    EXPECT_EQ(reply.GetFolderStatus(), 0u);
}

TEST(CGetTorviShareFileInfoJson, ReadsEachFieldFromItsKey) {
    LogCapture log;
    CGetTorviShareFileInfoJson reply;
    EXPECT_EQ(parse(reply, R"({"status":1,"file_exist":1,"nubo_type":8,"event_status":2,"share_id":"s\u6587",
                               "nas_id":"n","event_id":7,"share_id_status":"3"})"),
              1);
    EXPECT_EQ(reply.GetStatus(), 0);
    EXPECT_EQ(reply.GetFolderStatus(), 0u);
    EXPECT_TRUE(reply.fileExists);
    EXPECT_EQ(reply.nuboType, 8);
    EXPECT_EQ(reply.eventStatus, 2);
    EXPECT_EQ(reply.shareID, L"s\x6587");
    EXPECT_EQ(reply.nasID, L"n");
    EXPECT_EQ(reply.eventID, 7);
    EXPECT_EQ(reply.shareIDStatus, 3);
    log.expectNoLines();
}

TEST(CGetTorviShareFileInfoJson, ARefusalIsLoggedAndEndsTheParse) {
    for (const auto& [raw, translated] :
         {std::pair<std::string, std::string>{"-3", "-4"}, {"5", "-4"}, {"4", "-3"}, {"0", "-2"}}) {
        LogCapture log;
        CGetTorviShareFileInfoJson reply;
        EXPECT_EQ(parse(reply, R"({"file_exist":[],"share_id":{},"status":)" + raw + "}"), 1);
        EXPECT_EQ(std::to_string(reply.GetStatus()), translated);
        EXPECT_EQ(reply.GetFolderStatus(), 0u);
        log.expectLines({kPrefix + ": nStatus(" + raw + ") m_nStatus(" + translated + ")"});
    }
}

TEST(CGetTorviShareFileInfoJson, TheFirstComplaintCounts) {
    const struct {
        const char* reply;
        uint32_t status;
    } rows[] = {
        {"{}", 13},
        {R"({"file_exist":0})", 2},
        {R"({"file_exist":1})", 13},
        {R"({"file_exist":0,"nubo_type":8,"event_status":1,"share_id":""})", 2},
        {R"({"file_exist":1,"nubo_type":8,"event_status":1,"share_id":""})", 13},
        {R"({"file_exist":1,"nubo_type":8,"event_status":1,"share_id":"--------"})", 13},
        {R"({"file_exist":1,"nubo_type":8,"event_status":1,"share_id":"-"})", 0},
    };
    for (const auto& row : rows) {
        LogCapture log;
        CGetTorviShareFileInfoJson reply;
        EXPECT_EQ(parse(reply, row.reply), 1);
        EXPECT_EQ(reply.GetStatus(), 0);
        EXPECT_EQ(reply.GetFolderStatus(), row.status) << row.reply;
    }
}

TEST(CGetTorviShareFileInfoJson, RefusesAllButObjects) {
    LogCapture log;
    expectRefusesAllButObjects<CGetTorviShareFileInfoJson>({R"({"status":99999999999})", R"({"share_id":[]})",
                                                            R"({"file_exist":99999999999})",
                                                            R"({"nas_id":{}})"});
}
