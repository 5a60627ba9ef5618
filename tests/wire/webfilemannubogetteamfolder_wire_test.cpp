// WebFileManNuboGetTeamFolder: what is its own. What every call shares stands in everycall_wire_test.cpp.

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "recordlist.h"
#include "refusals.h"
#include "replies.h"
#include "sessioncall.h"
#include "shareroutes.h"
#include "support/teamrecords.h"
#include "teamfolders.h"

using namespace wire;

namespace {

using Lines = std::vector<std::string>;

const std::string kName = "[WFMShare] WebFileManNuboGetTeamFolder";

struct TeamFolderCall : SessionCall<TeamFolderCall> {
    uint32_t eventType = 8;
    const wchar_t* targetUser = nullptr;
    const wchar_t* path = nullptr;
    uint32_t lower = 0;
    uint32_t upper = 50;
    uint32_t total = 0xABCD;
    uint32_t* totalOut = &total;
    uint32_t count = 3;
    uint32_t* countInOut = &count;
    CallersList<_WFM_TORVI_TEAM_FOLDER_INFORMATION> folders;
    _WFM_TORVI_TEAM_FOLDER_INFORMATION** list = folders.data();

    using SessionCall::SessionCall;
    ~TeamFolderCall() {
        for (auto& folder : folders.records) {
            if (folder.isUntouched()) continue;
            for (uint32_t i = 0; i < folder.record.dwReceiverCount; ++i) delete folder.record.lppReceivers[i];
            delete[] folder.record.lppReceivers;
        }
    }
    uint32_t call() {
        return WebFileManNuboGetTeamFolder(session, kServer, port, eventType, targetUser, path, lower, upper,
                                           0, totalOut, countInOut, list, resultWord);
    }
    bool isUntouched() const {
        return result == 0xABCD && total == 0xABCD && count == 3 && folders.isUntouched();
    }
    bool isCleared() const { return total == 0 && count == 0 && folders.isUntouched(); }
};

/// A reply with that many folders, "1", "2" and so on.
std::string listOf(int count, const std::string& keys = R"("status":0,"total":50)") {
    std::string folders;
    for (int i = 1; i <= count; ++i)
        folders += std::string(i > 1 ? "," : "") + R"({"name":")" + std::to_string(i) + R"("})";
    return "{" + keys + R"(,"team_folder":[)" + folders + "]}";
}

std::string listOfOne(const std::string& folder) {
    return R"({"status":0,"total":1,"team_folder":[)" + folder + "]}";
}

/// What the first record is like after a reply with one folder.
std::string recordOf(const std::string& folder) {
    RawServer server({Reply::json(listOfOne(folder))});
    TeamFolderCall call(server);
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.result, 0u);
    EXPECT_EQ(call.count, 1u);
    return call.folders.texts()[0];
}

std::string queryOf(void (*change)(TeamFolderCall&)) {
    RawServer server({Reply::json(listOf(0))});
    TeamFolderCall call(server);
    change(call);
    EXPECT_EQ(call.run(), 0u);
    return server.onlyRequest().queryText();
}

}  // namespace

// ---- The request ----

TEST(WebFileManNuboGetTeamFolderWire, AsksTheSyncServiceAndNamesNoNode) {
    expectOnEveryRoute(
        "func=nubo_team_folder_get_list&sid=sid123&event_status=0&event_type=8&lower=0&upper=50",
        [](_WFM_AUTH_CONTEXT* session, uint32_t port, const wchar_t*) {
            TeamFolderCall call;
            call.run(session, port);
        },
        shareRoutes(false));
}

TEST(WebFileManNuboGetTeamFolderWire, ASessionOfTheFileManagerIsRefused) {
    expectRefusedAtTheService<TeamFolderCall>("WebFileManNuboGetTeamFolder", true);
}

TEST(WebFileManNuboGetTeamFolderWire, UserAndPathAreAskedForWhenGiven) {
    const std::string usual =
        "func=nubo_team_folder_get_list&sid=sid123&event_status=0&event_type=8&lower=0&upper=50";
    const struct {
        void (*change)(TeamFolderCall&);
        const char* tail;
    } rows[] = {
        {[](TeamFolderCall& call) { call.targetUser = call.path = L""; }, ""},
        {[](TeamFolderCall& call) { call.targetUser = L"ann &\x6587"; }, "&target_user=ann%20%26%E6%96%87"},
        {[](TeamFolderCall& call) { call.path = L"/home/a b"; }, "&path=%2Fhome%2Fa%20b"},
        {[](TeamFolderCall& call) {
             call.targetUser = L"ann";
             call.path = L"/home/a";
         },
         "&target_user=ann&path=%2Fhome%2Fa"},
    };
    for (const auto& row : rows) EXPECT_EQ(queryOf(row.change), usual + row.tail);
}

TEST(WebFileManNuboGetTeamFolderWire, NumbersTravelAsSignedOnes) {
    EXPECT_EQ(queryOf([](TeamFolderCall& call) {
                  call.eventType = 4;
                  call.lower = 0x80000000;
                  call.upper = 0xFFFFFFFF;
              }),
              "func=nubo_team_folder_get_list&sid=sid123&event_status=0&event_type=4&lower=-2147483648&"
              "upper=-1");
}

// ---- The reply ----

TEST(WebFileManNuboGetTeamFolderWire, TheFoldersAreCopiedIntoTheCallersRecords) {
    RawServer server({Reply::json(R"({"status":0,"total":70,"team_folder":[
        {"type":1,"status":2,"owner":"ann","share_id":"s-1","nas_id":"n-1","parent_id":"p-1","name":"Plans",
         "path":"/home/.Torvi/Plans","original_path":"/home/Pl\u00e4ne","receiver_number":2,"receiver":[
           {"name":"bob","display_name":"Bob B.","permission":3,"status":4},{"name":"eve"}]},
        {"type":"7","share_id":"--------","name":"No id"}]})")});
    TeamFolderCall call(server);
    const int32_t reserved = call.folders.records[0].record.nReserved;
    LogCapture log;
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.result, 0u);
    EXPECT_EQ(call.total, 70u);
    EXPECT_EQ(call.count, 2u);
    EXPECT_EQ(call.folders.texts(),
              (Lines{"type=1 status=2 owner=ann share=s-1 nas=n-1 parent=p-1 name=Plans "
                     "path=/home/.Torvi/Plans original=/home/Pl\xC3\xA4ne "
                     "{name=bob display=Bob B. permission=3 status=4} {name=eve}",
                     "type=7 name=No id", "untouched"}));
    EXPECT_EQ(call.folders.records[0].record.nReserved, reserved);
    EXPECT_EQ(call.folders.records[1].record.lppReceivers, nullptr);
    log.expectNoLines();
}

TEST(WebFileManNuboGetTeamFolderWire, AListThatIsTooSmallIsFilledWithoutAWord) {
    const struct {
        uint32_t capacity;
        int folders;
        uint32_t filled;
    } rows[] = {{3, 50, 3}, {3, 3, 3}, {2, 3, 2}, {0, 3, 0}, {3, 2, 2}, {3, 0, 0}};
    for (const auto& row : rows) {
        SCOPED_TRACE(std::to_string(row.folders) + " folders for " + std::to_string(row.capacity));
        RawServer server({Reply::json(listOf(row.folders))});
        TeamFolderCall call(server);
        call.count = row.capacity;
        LogCapture log;
        EXPECT_EQ(call.run(), 0u);
        EXPECT_EQ(call.result, 0u);
        EXPECT_EQ(call.total, 50u);
        EXPECT_EQ(call.count, row.filled);
        Lines expected(3, "untouched");
        for (uint32_t i = 0; i < row.filled; ++i) expected[i] = "name=" + std::to_string(i + 1);
        EXPECT_EQ(call.folders.texts(), expected);
        log.expectNoLines();
    }
}

TEST(WebFileManNuboGetTeamFolderWire, AFolderWithoutARecordIsSkippedAndNotCounted) {
    RawServer server({Reply::json(listOf(4))});
    TeamFolderCall call(server);
    call.list[1] = nullptr;
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.result, 0u);
    EXPECT_EQ(call.count, 2u);
    EXPECT_EQ(call.folders.texts(), (Lines{"name=1", "untouched", "name=3"}));
}

TEST(WebFileManNuboGetTeamFolderWire, ATextAsLongAsItsFieldHasNoTerminator) {
    const struct {
        const char* key;
        const char* word;
        size_t width;
    } rows[] = {{"owner", "owner=", 32},
                {"share_id", "share=", 260},
                {"nas_id", "nas=", 260},
                {"parent_id", "parent=", 260}};
    for (const auto& row : rows)
        for (const size_t length : {row.width - 1, row.width, row.width + 1, size_t{2047}, size_t{2048}}) {
            SCOPED_TRACE(row.key + std::to_string(length));
            // A longer one reads as none.
            const size_t kept = length == 2048 ? 0 : std::min(length, row.width);
            EXPECT_EQ(recordOf(R"({"type":1,")" + std::string(row.key) + R"(":")" + std::string(length, 'x') +
                               "\"}"),
                      "type=1" + (kept == 0 ? "" : " " + std::string(row.word) + std::string(kept, 'x')));
        }
}

TEST(WebFileManNuboGetTeamFolderWire, TheLongFieldsTakeWhatIsRead) {
    const struct {
        const char* key;
        const char* word;
    } rows[] = {{"name", "name="}, {"path", "path="}, {"original_path", "original="}};
    for (const auto& row : rows) {
        const auto with = [&](size_t length) {
            return recordOf(R"({"type":1,")" + std::string(row.key) + R"(":")" + std::string(length, 'x') +
                            "\"}");
        };
        EXPECT_EQ(with(2047), "type=1 " + std::string(row.word) + std::string(2047, 'x'));
        EXPECT_EQ(with(2048), "type=1") << row.key;
    }
}

TEST(WebFileManNuboGetTeamFolderWire, ReceiversCountThatHaveAName) {
    const auto with = [](const std::string& receivers, const std::string& number) {
        return recordOf(R"({"type":1,"receiver_number":)" + number + R"(,"receiver":)" + receivers + "}");
    };
    EXPECT_EQ(with(R"([{"name":""},{"display_name":"x"},{"name":"bob"},5])", "4"), "type=1 {name=bob}");
    EXPECT_EQ(with(R"([{"name":"a"},{"name":"b"}])", "1"), "type=1 {name=a} {name=b}");
    EXPECT_EQ(with(R"([{"name":"a"}])", "0"), "type=1");
    EXPECT_EQ(with(R"([{"display_name":"x"}])", "1"), "type=1");
    EXPECT_EQ(with("null", "1"), "type=1");
}

TEST(WebFileManNuboGetTeamFolderWire, AReceiversTextsAreCutAndTerminated) {
    for (const size_t length : {size_t{31}, size_t{32}, size_t{2047}, size_t{2048}, size_t{5000}}) {
        const std::string text(length, 'x');
        EXPECT_EQ(recordOf(R"({"receiver_number":1,"receiver":[{"name":")" + text + R"(","display_name":")" +
                           text + R"("}]})"),
                  " {name=" + std::string(31, 'x') +
                      " display=" + std::string(std::min(length, size_t{2047}), 'x') + "}")
            << length;
    }
}

TEST(WebFileManNuboGetTeamFolderWire, TheServersOwnNumberIsTheResult) {
    const auto failed = [](const std::string& number) {
        return Lines{kName + ": failed (statud=" + number + ")"};
    };
    expectReplies<TeamFolderCall>(
        {
            {listOf(2, R"("status":-3,"total":50)"), 0, -3, failed("-3")},
            {listOf(2, R"("status":1,"total":50)"), 0, 1, failed("1")},
            {listOf(2, R"("status":"4","total":50)"), 0, 4, failed("4")},
            {"[]", 0, -1, failed("-1")},
            {R"("status")", 0, -1, failed("-1")},
        },
        [](const TeamFolderCall& call) { EXPECT_TRUE(call.isCleared()); });
}

TEST(WebFileManNuboGetTeamFolderWire, AListMayBeEmpty) {
    expectReplies<TeamFolderCall>(
        {
            {"{}", 0, 0, {}},
            {listOf(2, R"("status":0)"), 0, 0, {}},
            {listOf(2, R"("status":0,"total":0)"), 0, 0, {}},
            {listOf(2, R"("status":null,"total":-1)"), 0, 0, {}},
        },
        [](const TeamFolderCall& call) { EXPECT_TRUE(call.isCleared()); });
    RawServer server({Reply::json(R"({"status":0,"total":7,"team_folder":null})")});
    TeamFolderCall call(server);
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.total, 7u);
    EXPECT_EQ(call.count, 0u);
}

TEST(WebFileManNuboGetTeamFolderWire, ALineTellsThatTheFoldersOfTheSessionAreGone) {
    const struct {
        size_t known;
        uint32_t eventType;
        const char* reply;
        Lines lines;
    } rows[] = {
        {2, 8, R"({"status":0,"total":0})", {kName + ": No shared team folder(ori-num=2)"}},
        {2, 7, R"({"status":0,"total":0})", {}},
        {0, 8, R"({"status":0,"total":0})", {}},
        {2, 8, R"({"status":0,"total":1})", {}},
    };
    for (const auto& row : rows) {
        RawServer server({Reply::json(row.reply)});
        TeamFolderCall call(server);
        setTeamFolders(*call.session,
                       std::vector<TeamFolder>(row.known, {L"/home/.Torvi/T/", L"vtf://S/", L"n"}));
        call.eventType = row.eventType;
        LogCapture log;
        EXPECT_EQ(call.run(), 0u);
        EXPECT_EQ(call.result, 0u);
        EXPECT_EQ(log.texts(), row.lines);
    }
}

TEST(WebFileManNuboGetTeamFolderWire, WhatCannotBeReadIs14AndFillsNothing) {
    const Lines lines = {kName + ": WFM_PARSE_XML_FAIL", kName + "(127.0.0.1:{port}) failed dwStatus(14)"};
    expectReplies<TeamFolderCall>(
        {
            {"sorry", 14, -1, lines},
            {R"({"status":0,"total":1,"team_folder":"none"})", 14, -1, lines},
            {R"({"status":0,"total":2,"team_folder":[{"name":"a"},{"name":[]}]})", 14, -1, lines},
            {R"({"status":0,"total":99999999999})", 14, -1, lines},
        },
        [](const TeamFolderCall& call) { EXPECT_TRUE(call.isCleared()); });
}

TEST(WebFileManNuboGetTeamFolderWire, AFailureOfTheNetworkClearsTheCount) {
    RawServer server({Reply::status(503)});
    TeamFolderCall call(server);
    EXPECT_EQ(call.run(), 12u);
    EXPECT_EQ(call.signedResult(), -1);
    EXPECT_TRUE(call.isCleared());
}

TEST(WebFileManNuboGetTeamFolderWire, RefusesWhatMustBeGivenWithOneLineAndTouchesNothing) {
    const SessionPtr session = makeSession();
    LogCapture log;
    expectRefusals<TeamFolderCall>(log, session.get(), "WebFileManNuboGetTeamFolder",
                                   {[](TeamFolderCall& call) { call.totalOut = nullptr; },
                                    [](TeamFolderCall& call) { call.countInOut = nullptr; },
                                    [](TeamFolderCall& call) { call.list = nullptr; },
                                    [](TeamFolderCall& call) { call.resultWord = nullptr; }},
                                   kSharePrefix);
}
