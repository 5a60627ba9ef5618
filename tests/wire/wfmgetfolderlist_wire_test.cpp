// WFMGetFolderList: what is its own. What every call shares stands in everycall_wire_test.cpp.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "lists.h"
#include "refusals.h"
#include "routes.h"
#include "support/logcapture.h"
#include "support/rawserver.h"
#include "support/session.h"
#include "support/wire.h"
#include "teamfolders.h"

using namespace wire;

namespace {

using Lines = std::vector<std::string>;

struct FolderListCall {
    const wchar_t* slaveID = nullptr;
    uint32_t fieldMask = 0x39;
    const wchar_t* node = L"share_root";
    uint32_t result = 0xABCD;
    RecordList records;
    uint32_t* resultWord = &result;
    uint32_t* countOut = &records.count;
    _WFM_PATH_INFORMATION*** listOut = &records.list;

    FolderListCall() = default;
    FolderListCall(const FolderListCall&) = delete;
    FolderListCall& operator=(const FolderListCall&) = delete;

    uint32_t run(_WFM_AUTH_CONTEXT* session, uint32_t port) {
        return WFMGetFolderList(session, kServer, port, slaveID, fieldMask, node, nullptr, resultWord,
                                countOut, listOut);
    }
    bool isUntouched() const { return result == 0xABCD && records.isUntouched(); }
};

class WFMGetFolderListWire : public testing::Test {
protected:
    SessionPtr session = makeTeamSession();
    LogCapture log;
};

}  // namespace

TEST_F(WFMGetFolderListWire, AsksForTheNodeEncoded) {
    const struct {
        const wchar_t* node;
        const char* encoded;
    } rows[] = {{L"share_root", "share_root"},
                {L"/home/a b", "%2Fhome%2Fa%20b"},
                {L"home", "home"},
                {L"/\x6587\U0001F600", "%2F%E6%96%87%F0%9F%98%80"}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.encoded);
        expectOnEveryRoute("func=get_tree&sid=sid123&is_iso=0&node=" + std::string(row.encoded),
                           [&row](_WFM_AUTH_CONTEXT* context, uint32_t port, const wchar_t* slaveID) {
                               FolderListCall call;
                               call.node = row.node;
                               call.slaveID = slaveID;
                               call.run(context, port);
                           });
    }
}

TEST_F(WFMGetFolderListWire, MapsNothing) {
    RawServer server({Reply::json("[]")});
    FolderListCall call;
    call.node = L"/home/.Torvi/T/a";
    call.slaveID = L"Other";
    call.run(session.get(), server.port());
    expectRequestLine(server.onlyRequest(),
                      "GET /Other/cgi-bin/torvi/torvisrv.cgi?func=get_tree&sid=sid123&is_iso=0&node="
                      "%2Fhome%2F.Torvi%2FT%2Fa HTTP/1.1");
}

TEST_F(WFMGetFolderListWire, HandsOutEveryFolder) {
    RawServer server({Reply::json(R"([{"text":"a","iconCls":"folder","cls":"w"},
                                      {"text":"f","iconCls":"file","cls":"w"},
                                      {"text":"b","iconCls":"folder","cls":"r"}])")});
    FolderListCall call;
    EXPECT_EQ(call.run(session.get(), server.port()), 0u);
    EXPECT_EQ(call.result, 0u);
    EXPECT_EQ(call.records.take(), (Lines{"name=a access=2 folder exists", "name=b access=1 folder exists"}));
    log.expectNoLines();
}

TEST_F(WFMGetFolderListWire, WhatTheServerSaysDecidesTheResult) {
    const struct {
        const char* reply;
        uint32_t result;
        std::vector<LogLine> lines;
    } rows[] = {{"[]", 0, {}},
                {R"([{"text":"f","iconCls":"file"}])", 0, {}},
                {R"({"status":1})", 0, {}},
                {R"({"status":5})", 0, {}},
                {"{}", 0, {}},
                {R"({"status":4})", 5, {}},
                {R"({"status":3})", 1244, {"[WFM] WFMGetFolderList: ERROR_NOT_AUTHENTICATED"}}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.reply);
        RawServer server({Reply::json(row.reply)});
        FolderListCall call;
        log.clear();
        EXPECT_EQ(call.run(session.get(), server.port()), 0u);
        EXPECT_EQ(call.result, row.result);
        EXPECT_TRUE(call.records.isEmpty());
        EXPECT_EQ(log.lines(), row.lines);
    }
}

TEST_F(WFMGetFolderListWire, AFailedCallHandsOutNothing) {
    RawServer server({Reply::status(500)});
    FolderListCall call;
    EXPECT_EQ(call.run(session.get(), server.port()), 6u);
    EXPECT_EQ(call.result, 0xFFFFFFFFu);
    EXPECT_TRUE(call.records.isEmpty());
}

TEST_F(WFMGetFolderListWire, RefusesWhatMustBeGivenWithOneLineAndTouchesNothing) {
    expectRefusals<FolderListCall>(
        log, session.get(), "WFMGetFolderList",
        {[](FolderListCall& call) { call.node = nullptr; }, [](FolderListCall& call) { call.node = L""; },
         [](FolderListCall& call) { call.resultWord = nullptr; },
         [](FolderListCall& call) { call.countOut = nullptr; },
         [](FolderListCall& call) { call.listOut = nullptr; }});
}

TEST_F(WFMGetFolderListWire, AHostileReplyIsRefusedOrListsNothing) {
    const struct {
        std::string reply;
        uint32_t dwStatus;
    } rows[] = {{"[5]", 14},
                {"[[]]", 14},
                {R"([{"text":{},"iconCls":"folder"}])", 14},
                {R"([{"text":"a","iconCls":"folder","cls":[]}])", 14},
                {R"({"status":99999999999})", 14},
                {"[null]", 0},
                {R"([{"text":")" + std::string(5000, 'n') + R"(","iconCls":"folder"}])", 0}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.reply.substr(0, 80));
        RawServer server({Reply::json(row.reply)});
        FolderListCall call;
        EXPECT_EQ(call.run(session.get(), server.port()), row.dwStatus);
        EXPECT_EQ(call.result, row.dwStatus == 0 ? 0u : 0xFFFFFFFFu);
        EXPECT_TRUE(call.records.isEmpty());
    }
}
