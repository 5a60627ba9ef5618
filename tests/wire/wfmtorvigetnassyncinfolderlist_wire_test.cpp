// WFMTorviGetNASSyncinFolderList: what is its own. What every call shares stands in everycall_wire_test.cpp.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "lists.h"
#include "refusals.h"
#include "replies.h"
#include "routes.h"
#include "sessioncall.h"
#include "support/staterecords.h"

using namespace wire;

namespace {

using Lines = std::vector<std::string>;

struct SyncFolderListCall : SessionCall<SyncFolderListCall> {
    bool detail = false;
    bool refresh = false;
    bool* cancel = nullptr;
    ListOf<_NAS_SYNCING_FOLDER_INFORMATION> folders;
    uint32_t* countOut = &folders.count;
    _NAS_SYNCING_FOLDER_INFORMATION*** listOut = &folders.list;

    using SessionCall::SessionCall;
    uint32_t call() {
        return WFMTorviGetNASSyncinFolderList(session, kServer, port, detail, refresh, cancel, resultWord,
                                              countOut, listOut);
    }
    bool isUntouched() const { return result == 0xABCD && folders.isUntouched(); }
};

/// One letter is missing from every line.
const std::string kName = "WFMTorviGetNASSyncingolderList";

const std::string kSync = "/cgi-bin/torvi/torvisrv.cgi";

/// The ways of a session with that slave id of its own.
std::vector<Route> waysOf(const char* ownSlaveID, const std::string& fileManager) {
    Route sync{"the sync service", {}, nullptr, kSync};
    sync.options.agentName = L"agent";
    sync.options.slaveID = ownSlaveID;
    Route faster = sync;
    faster.name = "the faster end";
    faster.options.fcgi = true;
    Route older = sync;
    older.name = "the file manager";
    older.cgi = fileManager;
    older.options.fileManager = true;
    return {sync, faster, older};
}

SessionPtr nodeSession() {
    SessionOptions options;
    options.slaveID = "n1";
    return makeSession(options);
}

const char* const kSingle = R"({"status":0,"total":3,"folder":[
    {"name":"Public","path":"/share/Public","privilege":2,"volume_id":7,"used_size":"3","used_unit":"mb",
     "capacity":"2","capacity_unit":"GB","free_size":"1"},
    {"name":"書類","path":"/share/書類","privilege":0,"used_size":"5","used_unit":"XB"},
    {"name":"Web","path":"/share/Web","used_size":"-5","used_unit":"KB"}]})";
const char* const kCluster = R"({"status":0,"count":2,"slave":[
    {"slave_id":"n1","hostname":"first","folder":[
        {"name":"Public","path":"/share/Public","permission":2,"used_size":"3","used_unit":"MB"},
        {"path":"/share/nameless","permission":2}]},
    {"slave_id":"n2","hostname":"second","folder":[{"name":"Web","path":"/share/Web","permission":1}]}]})";

}  // namespace

// ---- The request ----

TEST(WFMTorviGetNASSyncinFolderListWire, DetailAndRefreshAreAskedForWhereTheyAreWanted) {
    const struct {
        bool detail, refresh;
        const char* extra;
    } rows[] = {{false, false, ""},
                {true, false, "&detail=1"},
                {false, true, "&refresh=1"},
                {true, true, "&detail=1&refresh=1"}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.extra);
        const auto call = [&row](_WFM_AUTH_CONTEXT* session, uint32_t port, const wchar_t*) {
            SyncFolderListCall call;
            call.detail = row.detail;
            call.refresh = row.refresh;
            call.run(session, port);
        };
        expectOnEveryRoute(std::string("func=nubo_get_syncing_folder_list&sid=sid123") + row.extra, call,
                           waysOf("", "/cgi-bin/filemanager/utilRequest.cgi"));
        // A cluster's list is the sync service's, whatever the session speaks to.
        expectOnEveryRoute(std::string("func=nubo_get_cluster_node_list&sid=sid123") + row.extra, call,
                           waysOf("Own", kSync));
    }
}

// ---- The reply ----

TEST(WFMTorviGetNASSyncinFolderListWire, ASingleServerTellsTheSizes) {
    RawServer server({Reply::json(kSingle)});
    SyncFolderListCall call(server);
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.result, 0u);
    EXPECT_EQ(call.folders.take(),
              (Lines{"name=Public path=/share/Public privilege=2 volume=7 used=3145728 capacity=2147483648 "
                     "free=1073741824",
                     "name=書類 path=/share/書類 privilege=0", "name=Web path=/share/Web"}));
}

TEST(WFMTorviGetNASSyncinFolderListWire, AClusterTellsTheNodesAndNoSizes) {
    RawServer server({Reply::json(kCluster)});
    SyncFolderListCall call;
    const SessionPtr session = nodeSession();
    EXPECT_EQ(call.run(session.get(), server.port()), 0u);
    EXPECT_EQ(call.result, 0u);
    EXPECT_EQ(call.folders.take(), (Lines{"slave=n1 host=first name=Public path=/share/Public privilege=2",
                                          "slave=n2 host=second name=Web path=/share/Web privilege=1"}));
}

TEST(WFMTorviGetNASSyncinFolderListWire, EachKindOfSessionReadsItsOwnKindOfReply) {
    RawServer single({Reply::json(kCluster)});
    SyncFolderListCall call(single);
    EXPECT_EQ(call.run(), 0u);
    EXPECT_TRUE(call.folders.isEmpty());

    RawServer cluster({Reply::json(kSingle)});
    SyncFolderListCall onNode;
    const SessionPtr session = nodeSession();
    EXPECT_EQ(onNode.run(session.get(), cluster.port()), 0u);
    EXPECT_TRUE(onNode.folders.isEmpty());
}

TEST(WFMTorviGetNASSyncinFolderListWire, TheServersOwnStatusIsTheResult) {
    const std::string rest = R"(,"total":1,"count":1,"folder":[{"name":"a","privilege":2}],)"
                             R"("slave":[{"folder":[{"name":"a","permission":2}]}]})";
    const struct {
        std::string reply;
        int32_t result;
        uint32_t count;
    } rows[] = {{R"({"status":0)" + rest, 0, 1},   {R"({"status":1)" + rest, 1, 1},
                {R"({"status":"4")" + rest, 4, 1}, {R"({"status":-4)" + rest, -4, 1},
                {R"({"status":-1)" + rest, -1, 1}, {R"({"status":-3)" + rest, -3, 0},
                {R"({"other":1)" + rest, 0, 1}};
    for (const auto& row : rows)
        for (const bool isCluster : {false, true}) {
            SCOPED_TRACE(row.reply.substr(0, 20) + (isCluster ? " cluster" : " single"));
            RawServer server({Reply::json(row.reply)});
            SyncFolderListCall call;
            LogCapture log;
            const SessionPtr session = isCluster ? nodeSession() : makeSession();
            EXPECT_EQ(call.run(session.get(), server.port()), 0u);
            EXPECT_EQ(call.signedResult(), row.result);
            EXPECT_EQ(call.folders.count, row.count);
            EXPECT_EQ(call.folders.take(), Lines(row.count, "name=a privilege=2"));
            log.expectNoLines();
        }
}

TEST(WFMTorviGetNASSyncinFolderListWire, TheResultWordMayBeNull) {
    RawServer server({Reply::json(kSingle)});
    SyncFolderListCall call(server);
    call.resultWord = nullptr;
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.folders.take().size(), 3u);
    EXPECT_EQ(call.result, 0xABCDu);

    RawServer refusing({Reply::status(503)});
    SyncFolderListCall failing(refusing);
    failing.resultWord = nullptr;
    EXPECT_EQ(failing.run(), 12u);
    EXPECT_TRUE(failing.folders.isEmpty());
}

TEST(WFMTorviGetNASSyncinFolderListWire, AListMayBeEmpty) {
    for (const char* reply :
         {"{}", R"({"total":0,"folder":[{"name":"a"}]})", R"({"total":-1,"folder":[{"name":"a"}]})",
          R"({"total":1})", R"({"total":1,"folder":null})", R"({"total":1,"folder":[]})"}) {
        SCOPED_TRACE(reply);
        RawServer server({Reply::json(reply)});
        SyncFolderListCall call(server);
        EXPECT_EQ(call.run(), 0u);
        EXPECT_EQ(call.result, 0u);
        EXPECT_TRUE(call.folders.isEmpty());
    }
}

TEST(WFMTorviGetNASSyncinFolderListWire, AListMayBeLongAndItsTextsToo) {
    std::string folders = R"({"name":")" + std::string(260, 'n') + R"(","path":"/p"})";
    for (int i = 1; i < 3000; ++i) folders += R"(,{"name":"f)" + std::to_string(i) + R"(","privilege":2})";
    RawServer server({Reply::json(R"({"total":1,"folder":[)" + folders + "]}")});
    SyncFolderListCall call(server);
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.folders.count, 3000u);
    const Lines records = call.folders.take();
    EXPECT_EQ(records.front(), "path=/p");
    EXPECT_EQ(records.back(), "name=f2999 privilege=2");
}

TEST(WFMTorviGetNASSyncinFolderListWire, AFolderWithoutFullPrivilegeIsToldAtTheDebugLevel) {
    const auto folderLine = [](const std::string& fields) {
        return LogLine("Debug", "[WFM] " + kName + ": Folder" + fields);
    };
    LogCapture log(32 + 4);
    RawServer single({Reply::json(kSingle)});
    SyncFolderListCall call(single);
    log.clear();
    EXPECT_EQ(call.run(), 0u);
    call.folders.take();
    log.expectLines({folderLine("(書類)(/share/書類)(0)"), folderLine("(Web)(/share/Web)(-1)")});

    RawServer cluster({Reply::json(kCluster)});
    SyncFolderListCall onNode;
    const SessionPtr session = nodeSession();
    log.clear();
    EXPECT_EQ(onNode.run(session.get(), cluster.port()), 0u);
    onNode.folders.take();
    log.expectLines({folderLine("(Web)(/share/Web)(1)")});

    log.setLevels(32);
    log.clear();
    RawServer again({Reply::json(kSingle)});
    SyncFolderListCall silent(again);
    EXPECT_EQ(silent.run(), 0u);
    silent.folders.take();
    log.expectNoLines();
}

TEST(WFMTorviGetNASSyncinFolderListWire, ASetCancelFlagChangesNothing) {
    RawServer server({Reply::json(kSingle)});
    SyncFolderListCall call(server);
    bool cancel = true;
    call.cancel = &cancel;
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.folders.take().size(), 3u);
}

TEST(WFMTorviGetNASSyncinFolderListWire, WhatCannotBeReadIs14AndGivesNoList) {
    const std::vector<const char*> single = {R"({"status":99999999999})", R"({"total":1,"folder":{}})",
                                             R"({"total":1,"folder":"x"})",
                                             R"({"total":1,"folder":[{"name":"a"},{"name":[]}]})", "[]"};
    const std::vector<const char*> cluster = {
        R"({"status":99999999999})",
        R"({"count":1,"slave":{}})",
        R"({"count":1,"slave":"x"})",
        R"({"count":1,"slave":[{"folder":{}}]})",
        R"({"count":1,"slave":[{"folder":[{"name":"a"},{"name":[]}]}]})",
        "[]"};
    for (const bool isCluster : {false, true})
        for (const char* reply : isCluster ? cluster : single) {
            SCOPED_TRACE(reply);
            RawServer server({Reply::json(reply)});
            SyncFolderListCall call;
            LogCapture log;
            const SessionPtr session = isCluster ? nodeSession() : makeSession();
            EXPECT_EQ(call.run(session.get(), server.port()), 14u);
            EXPECT_EQ(call.signedResult(), -1);
            EXPECT_TRUE(call.folders.isEmpty());
            log.expectLines(
                {"[WFM] " + kName + ": WFM_PARSE_XML_FAIL", summaryLine(kName, server.port(), 14)});
        }
}

TEST(WFMTorviGetNASSyncinFolderListWire, RefusesWhatMustBeGivenWithOneLineAndTouchesNothing) {
    const SessionPtr session = makeSession();
    LogCapture log;
    expectRefusals<SyncFolderListCall>(log, session.get(), kName,
                                       {[](SyncFolderListCall& call) { call.countOut = nullptr; },
                                        [](SyncFolderListCall& call) { call.listOut = nullptr; }});
}
