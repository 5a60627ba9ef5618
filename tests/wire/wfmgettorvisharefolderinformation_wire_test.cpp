// WFMGetTorviShareFolderInformation: what is its own. What every call shares stands in
// everycall_wire_test.cpp.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "lists.h"
#include "receivedfolders.h"
#include "refusals.h"
#include "replies.h"
#include "sessioncall.h"
#include "shareroutes.h"
#include "support/teamrecords.h"

using namespace wire;

namespace {

using Lines = std::vector<std::string>;

const std::string kName = "[WFMShare] WFMGetTorviShareFolderInformation";
const std::string kParser = "[WFMShare] CGetTorviShareFileInfoJson";

struct InformationCall : SessionCall<InformationCall> {
    const wchar_t* path = L"/home/a";
    uint32_t status = 0xABCD;
    uint32_t* statusWord = &status;
    Garbage<_WFM_TORVI_SHARE_FOLDER_INFORMATION> information;
    _WFM_TORVI_SHARE_FOLDER_INFORMATION* record = &information.record;

    using SessionCall::SessionCall;
    uint32_t call() {
        return WFMGetTorviShareFolderInformation(session, kServer, port, nullptr, path, nullptr, resultWord,
                                                 statusWord, record);
    }
    int32_t signedStatus() const { return static_cast<int32_t>(status); }
    bool isUntouched() const { return result == 0xABCD && status == 0xABCD && information.isUntouched(); }
};

/// What is sent as the path of a session of the sync service.
std::string pathFor(const wchar_t* path) {
    RawServer server({Reply::json("{}")});
    InformationCall call(server);
    call.path = path;
    EXPECT_EQ(call.run(), 0u);
    return server.onlyRequest().query().back().value;
}

/// What a good reply comes to in which these keys stand for the usual ones.
void expectInformation(const std::string& keys, int32_t status, const std::string& record,
                       const Lines& lines) {
    SCOPED_TRACE(keys);
    RawServer server({Reply::json("{" + keys + "}")});
    InformationCall call(server);
    LogCapture log;
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.result, 0u);
    EXPECT_EQ(call.signedStatus(), status);
    EXPECT_EQ(call.information.text(), record);
    EXPECT_EQ(log.texts(), lines);
}

}  // namespace

// ---- The request ----

TEST(WFMGetTorviShareFolderInformationWire, AsksEachServiceInItsOwnWords) {
    const CallTo ask = [](_WFM_AUTH_CONTEXT* session, uint32_t port, const wchar_t*) {
        InformationCall call;
        call.path = L"/home/a b/\x6587";
        call.run(session, port);
    };
    expectOnEveryRoute("func=nubo_team_folder_get_info&sid=sid123&path=%2Fhome%2Fa%20b%2F%E6%96%87", ask,
                       shareRoutes(false));
    expectOnEveryRoute("func=nubo_get_share_info&sid=sid123&file=%2Fhome%2Fa%20b%2F%E6%96%87", ask,
                       shareRoutes(true));
}

TEST(WFMGetTorviShareFolderInformationWire, TheSyncServiceIsSentWhatFollowsTheTeamArea) {
    EXPECT_EQ(pathFor(L"/home/.Torvi/T/d"), "T/d");
    EXPECT_EQ(pathFor(L"/x/.Torvi/T/.Torvi/d"), "T/.Torvi/d");
    EXPECT_EQ(pathFor(L"/home/.Torvi"), "/home/.Torvi");
    EXPECT_EQ(pathFor(L"/home/.torvi/T"), "/home/.torvi/T");
    EXPECT_EQ(pathFor(L"/home/d"), "/home/d");
}

TEST(WFMGetTorviShareFolderInformationWire, TheFileManagerIsSentThePathAsItIs) {
    RawServer server({Reply::json("{}")});
    InformationCall call(server);
    useFileManager(*call.session);
    call.path = L"/home/.Torvi/T/d";
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(server.onlyRequest().query().back().value, "/home/.Torvi/T/d");
}

TEST(WFMGetTorviShareFolderInformationWire, AFolderThatWasReceivedIsNotAskedFor) {
    for (const ReceivedFolder& row : receivedFolders()) {
        SCOPED_TRACE(row.what);
        RawServer server({Reply::json("{}")});
        const SessionPtr session = row.session();
        InformationCall call(server);
        call.session = session.get();
        call.path = row.path;
        LogCapture log;
        if (!row.isReceived) {
            EXPECT_EQ(call.run(), 0u);
            EXPECT_EQ(server.requestCount(), 1u);
            continue;
        }
        EXPECT_EQ(call.run(), 8u);
        EXPECT_EQ(call.signedResult(), -1);
        EXPECT_EQ(call.signedStatus(), -1);
        EXPECT_EQ(call.information.text(), "");
        EXPECT_EQ(server.connectionCount(), 0u);
        log.expectLines({kName + ": Is recevier side team folder(" + row.sent + ")"});
    }
}

// ---- The reply ----

TEST(WFMGetTorviShareFolderInformationWire, AFolderThatIsThereAndShared) {
    expectInformation(
        R"("status":1,"file_exist":1,"nubo_type":8,"event_status":2,"share_id":"s-\u6587","nas_id":"n-1",
           "event_id":7,"share_id_status":3)",
        0, "id=7 exists share-status=3 status=2 nubo=8 share=s-\xE6\x96\x87 nas=n-1", {});
    expectInformation(R"("file_exist":"1","nubo_type":"8","event_status":"2","share_id":"s")", 0,
                      "exists status=2 nubo=8 share=s", {});
}

TEST(WFMGetTorviShareFolderInformationWire, AFolderThatIsGoneIs2AndFilledAllTheSame) {
    for (const char* exists : {"0", "2", "\"x\""})
        expectInformation(
            R"("nubo_type":8,"event_status":2,"share_id":"s","file_exist":)" + std::string(exists), 2,
            "status=2 nubo=8 share=s", {});
}

TEST(WFMGetTorviShareFolderInformationWire, WhatLacksAKeyIs13AndFillsNothing) {
    const Lines noFile = {kParser + "::Parser ERROR_INVALID_DATA(file_exist)"};
    const Lines noType = {kParser + "::Parser ERROR_INVALID_DATA(nubo_type)"};
    const Lines noStatus = {kParser + "::Parser ERROR_INVALID_DATA(event_status)"};
    const Lines noID = {kParser + ": ERROR_INVALID_DATA share_id is NULL"};
    expectInformation(R"("nubo_type":8,"event_status":2,"share_id":"s")", 13, "", noFile);
    expectInformation(R"("file_exist":null,"nubo_type":8,"event_status":2,"share_id":"s")", 13, "", noFile);
    expectInformation(R"("file_exist":1,"event_status":2,"share_id":"s")", 13, "", noType);
    expectInformation(R"("file_exist":1,"nubo_type":8,"share_id":"s")", 13, "", noStatus);
    expectInformation(R"("file_exist":1,"nubo_type":8,"event_status":2)", 13, "", noID);
    for (const std::string& id : {std::string(), std::string("--------"), std::string(260, 's')})
        expectInformation(R"("file_exist":1,"nubo_type":8,"event_status":2,"share_id":")" + id + "\"", 13, "",
                          {});
    expectInformation(R"("status":1)", 13, "", {noFile[0], noType[0], noStatus[0], noID[0]});
}

TEST(WFMGetTorviShareFolderInformationWire, TheFirstComplaintCounts) {
    expectInformation(R"("file_exist":0,"event_status":2,"share_id":"s")", 2, "status=2 share=s",
                      {kParser + "::Parser ERROR_INVALID_DATA(nubo_type)"});
    expectInformation(R"("file_exist":0,"nubo_type":8,"event_status":2,"share_id":"--------")", 2,
                      "status=2 nubo=8", {});
    expectInformation(R"("nubo_type":8,"event_status":2,"share_id":"s","event_id":7)", 13, "",
                      {kParser + "::Parser ERROR_INVALID_DATA(file_exist)"});
}

TEST(WFMGetTorviShareFolderInformationWire, ANasIdMayBeMissingOrDashes) {
    const std::string usual = R"("file_exist":1,"nubo_type":8,"event_status":2,"share_id":"s","nas_id":)";
    const std::string record = "exists status=2 nubo=8 share=s";
    expectInformation(usual + R"("")", 0, record, {});
    expectInformation(usual + R"("-n")", 0, record, {});
    expectInformation(usual + "null", 0, record, {});
    expectInformation(usual + R"("n-")", 0, record + " nas=n-", {});
    expectInformation(usual + "\"" + std::string(259, 'n') + "\"", 0,
                      record + " nas=" + std::string(259, 'n'), {});
    expectInformation(usual + "\"" + std::string(260, 'n') + "\"", 0, record, {});
}

TEST(WFMGetTorviShareFolderInformationWire, TheTranslatedStatusIsTheResultAndFillsNothing) {
    const auto lines = [](const std::string& raw, const std::string& translated) {
        return Lines{kParser + ": nStatus(" + raw + ") m_nStatus(" + translated + ")",
                     kName + ": (/home/a) invalid status (" + translated + ")"};
    };
    const auto reply = [](const std::string& status) {
        return R"({"file_exist":1,"nubo_type":8,"event_status":2,"share_id":"s","status":)" + status + "}";
    };
    expectReplies<InformationCall>(
        {
            {reply("-3"), 0, -4, lines("-3", "-4")},
            {reply("4"), 0, -3, lines("4", "-3")},
            {reply("0"), 0, -2, lines("0", "-2")},
            {reply("\"34\""), 0, -1, lines("34", "-1")},
        },
        [](const InformationCall& call) {
            EXPECT_EQ(call.signedStatus(), -1);
            EXPECT_EQ(call.information.text(), "");
        });
}

TEST(WFMGetTorviShareFolderInformationWire, WhatCannotBeReadIs14) {
    const Lines lines = {kName + ": WFM_PARSE_XML_FAIL", kName + "(127.0.0.1:{port}) failed dwStatus(14)"};
    expectReplies<InformationCall>(
        {
            {"sorry", 14, -1, lines},
            {"[]", 14, -1, lines},
            {R"({"file_exist":1,"nubo_type":8,"event_status":2,"share_id":[]})", 14, -1, lines},
        },
        [](const InformationCall& call) {
            EXPECT_EQ(call.signedStatus(), -1);
            EXPECT_EQ(call.information.text(), "");
        });
}

TEST(WFMGetTorviShareFolderInformationWire, AFailedCallLeavesTheRecordEmpty) {
    RawServer server({Reply::status(503)});
    InformationCall call(server);
    EXPECT_EQ(call.run(), 12u);
    EXPECT_EQ(call.signedStatus(), -1);
    EXPECT_EQ(call.information.text(), "");
}

TEST(WFMGetTorviShareFolderInformationWire, RefusesWhatMustBeGivenWithOneLineAndTouchesNothing) {
    const SessionPtr session = makeSession();
    LogCapture log;
    expectRefusals<InformationCall>(
        log, session.get(), "WFMGetTorviShareFolderInformation",
        {[](InformationCall& call) { call.path = nullptr; }, [](InformationCall& call) { call.path = L""; },
         [](InformationCall& call) { call.resultWord = nullptr; },
         [](InformationCall& call) { call.statusWord = nullptr; },
         [](InformationCall& call) { call.record = nullptr; }},
        kSharePrefix);
}
