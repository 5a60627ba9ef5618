#include <gtest/gtest.h>

#include "replies.h"
#include "routes.h"
#include "sessioncall.h"
#include "support/logcapture.h"

using namespace wire;

namespace {

struct SystemSid : SessionCall<SystemSid> {
    using SessionCall::SessionCall;
    const wchar_t* server = kServer;
    uint32_t room = 260;
    uint32_t* capacity = &room;
    TextBuffer text;
    wchar_t* sid = text.data();

    uint32_t call() { return WFMGetSystemSid(session, server, port, slaveID, resultWord, capacity, sid); }
};

std::string reply(const std::string& sid) {
    return R"({"status":1,"sid":")" + sid + "\"}";
}

/// The routes of a call that names no node.
std::vector<Route> withoutNode() {
    std::vector<Route> all = routes();
    for (Route& route : all)
        if (!route.isFileManager) route.cgi = "/cgi-bin/torvi/torvisrv.cgi";
    return all;
}

}  // namespace

TEST(WFMGetSystemSidWire, AsksEitherServiceAndNamesNoNode) {
    expectOnEveryRoute(
        "func=nubo_get_system_sid&sid=sid123",
        [](_WFM_AUTH_CONTEXT* session, uint32_t port, const wchar_t* slaveID) {
            SystemSid call;
            call.slaveID = slaveID;
            call.run(session, port);
        },
        withoutNode());
}

TEST(WFMGetSystemSidWire, RefusesEachMissingArgumentWithOneLine) {
    const std::pair<const char*, void (*)(SystemSid&)> changes[] = {
        {"(:80)", [](SystemSid& a) { a.server = nullptr; }},
        {"(:80)", [](SystemSid& a) { a.server = L""; }},
        {"(127.0.0.1:0)", [](SystemSid& a) { a.port = 0; }},
        {"(127.0.0.1:80)", [](SystemSid& a) { a.session = nullptr; }},
        {"(127.0.0.1:80)", [](SystemSid& a) { a.resultWord = nullptr; }},
        {"(127.0.0.1:80)", [](SystemSid& a) { a.capacity = nullptr; }},
        {"(127.0.0.1:80)", [](SystemSid& a) { a.sid = nullptr; }},
    };
    for (const auto& [address, change] : changes) {
        SystemSid call;
        change(call);
        LogCapture log;
        EXPECT_EQ(call.run(), 8u);
        EXPECT_EQ(call.result, 0xABCDu);
        EXPECT_EQ(call.text.text(), L"untouched");
        log.expectLines(
            {std::string("[WFMShare] WFMGetSystemSid") + address + ": WFM_PARSE_XML_INVALID_PARAMETER"});
    }
}

TEST(WFMGetSystemSidWire, ASidNeedsRoomForItsEnd) {
    const struct {
        uint32_t room;
        int32_t result;
        const wchar_t* text;
    } rows[] = {{0, -23, L"untouched"}, {6, -23, L"untouched"}, {7, -23, L"untouched"}, {8, 0, L"sys-sid"}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.room);
        const RawServer server({Reply::json(reply("sys-sid"))});
        SystemSid call(server);
        call.room = row.room;
        LogCapture log;
        EXPECT_EQ(call.run(), 0u);
        EXPECT_EQ(call.signedResult(), row.result);
        EXPECT_EQ(call.room, row.room);
        EXPECT_EQ(call.text.text(), row.text);
        log.expectNoLines();
    }
}

TEST(WFMGetSystemSidWire, ALongSidStaysInsideItsBuffer) {
    for (const auto& [length, result] : {std::pair{259, 0}, {260, -23}, {2047, -23}}) {
        const RawServer server({Reply::json(reply(std::string(length, 's')))});
        SystemSid call(server);
        EXPECT_EQ(call.run(), 0u);
        EXPECT_EQ(call.signedResult(), result);
        EXPECT_EQ(call.text.text(), result == 0 ? std::wstring(length, L's') : L"untouched");
    }
}

TEST(WFMGetSystemSidWire, ASidMayBeEmpty) {
    for (const char* text : {R"({"status":1})", R"({"status":1,"sid":""})", R"({"status":1,"sid":null})"}) {
        const RawServer server({Reply::json(text)});
        SystemSid call(server);
        call.room = 1;
        EXPECT_EQ(call.run(), 0u);
        EXPECT_EQ(call.result, 0u);
        EXPECT_EQ(call.text.text(), L"");
    }
}

TEST(WFMGetSystemSidWire, ARefusalIs0WithItsCodeAndALine) {
    const std::string line = "[WFMShare] WFMGetSystemSid: get error status(";
    std::vector<ReplyRow> rows;
    for (const char* status : {"0", "2", "3", "4", "-101", "34", "\"3\"", "\"no\"", "[]"})
        rows.push_back({R"({"sid":"s","status":)" + std::string(status) + "}", 0, -3, {line + "-3)"}});
    rows.push_back({R"({"sid":"s"})", 0, -1, {line + "-1)"}});
    rows.push_back({"{}", 0, -1, {line + "-1)"}});
    expectReplies<SystemSid>(rows, [](const SystemSid& call) { EXPECT_EQ(call.text.text(), L"untouched"); });
}

TEST(WFMGetSystemSidWire, AReplyThatIsNotUnderstoodIs14) {
    std::vector<ReplyRow> rows;
    for (const char* text : {"", "[]", "null", R"({"status":1,"sid":[]})", R"({"status":1,"sid":"s")"})
        rows.push_back({text,
                        14,
                        -1,
                        {"[WFMShare] WFMGetSystemSid: WFM_PARSE_XML_FAIL",
                         "[WFMShare] WFMGetSystemSid(127.0.0.1:{port}) failed dwStatus(14)"}});
    expectReplies<SystemSid>(rows, [](const SystemSid& call) { EXPECT_EQ(call.text.text(), L"untouched"); });
}
