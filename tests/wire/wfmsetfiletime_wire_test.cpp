// WFMSetFileTime: what is its own. What every call shares stands in everycall_wire_test.cpp.

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include "lines.h"
#include "pathroutes.h"
#include "refusals.h"
#include "routes.h"
#include "support/logcapture.h"
#include "support/rawserver.h"
#include "support/session.h"
#include "support/wire.h"

using namespace wire;

namespace {

struct SetTimeCall {
    const wchar_t* slaveID = nullptr;
    const wchar_t* name = L"a";
    const wchar_t* parent = L"/home";
    int64_t time = 1700000000;
    bool cancel = true;  // not read
    uint32_t result = 0xABCD;
    uint32_t* resultWord = &result;

    SetTimeCall() = default;
    SetTimeCall(const SetTimeCall&) = delete;
    SetTimeCall& operator=(const SetTimeCall&) = delete;

    uint32_t run(_WFM_AUTH_CONTEXT* session, uint32_t port) {
        return WFMSetFileTime(session, kServer, port, slaveID, name, parent, time, &cancel, resultWord);
    }
    bool isUntouched() const { return result == 0xABCD; }
};

std::string query(const std::string& parent, const std::string& name,
                  const std::string& time = "1700000000") {
    return "func=stat&sid=sid123&settime=1&mtime=" + time + "&path=" + parent +
           "&file_total=1&file_name=" + name;
}

std::string entry(const std::string& name, const std::string& time, const std::string& keys = {}) {
    return R"({"filename":")" + name + R"(","epochmt":)" + time + keys + "}";
}
std::string stat(const std::string& entries, const std::string& status = "1") {
    return R"({"status":)" + status + R"(,"total":1,"datas":[)" + entries + "]}";
}

// The reasons of this call have no prefix, its own lines have.
std::string notUnderstood(int status) {
    return "[WFM] WFMSetFileTime: WFM_PARSE_XML_FAIL Status(" + std::to_string(status) + ")";
}

class WFMSetFileTimeWire : public testing::Test {
protected:
    SessionPtr session = pathRouteSession();
    LogCapture log;
};

}  // namespace

TEST_F(WFMSetFileTimeWire, AsksForTheTimeWithThePathEncoded) {
    expectOnEveryRoute(query("%2Fhome%2Fb%20c", "d%26e%20%E6%96%87"),
                       [](_WFM_AUTH_CONTEXT* context, uint32_t port, const wchar_t* slaveID) {
                           SetTimeCall call;
                           call.parent = L"/home/b c";
                           call.name = L"d&e \x6587";
                           call.slaveID = slaveID;
                           call.run(context, port);
                       });
}

TEST_F(WFMSetFileTimeWire, ThePathGoesToTheTeamFoldersPlaceAndNode) {
    expectOnEveryPathRoute(
        [](const std::string& folder, const std::string& name) { return query(folder, name); },
        [](_WFM_AUTH_CONTEXT* context, uint32_t port, const PathRoute& route) {
            SetTimeCall call;
            call.parent = route.folder;
            call.name = route.name;
            call.slaveID = route.slaveID;
            call.run(context, port);
        });
}

TEST_F(WFMSetFileTimeWire, TheParentGoesOutWithTheSlashesThatItHas) {
    const std::pair<const wchar_t*, const char*> rows[] = {{L"home/d", "home%2Fd"},
                                                           {L"/home/", "%2Fhome%2F"},
                                                           {L"vtf://S/d", "vtf%3A%2F%2FS%2Fd"},
                                                           {L"/home/.Torvi/T/", "vtf%3A%2F%2FS"}};
    for (const auto& [parent, sent] : rows) {
        SCOPED_TRACE(sent);
        RawServer server({Reply::json(stat(entry("a", "1700000000")))});
        SetTimeCall call;
        call.parent = parent;
        EXPECT_EQ(call.run(session.get(), server.port()), 0u);
        EXPECT_EQ(server.onlyRequest().queryText(), query(sent, "a"));
    }
}

TEST_F(WFMSetFileTimeWire, ATimeThatTookIsASuccess) {
    constexpr int64_t most = std::numeric_limits<int64_t>::max();
    const struct {
        int64_t time;
        const char* sent;
        std::string entry;
    } rows[] = {{1700000000, "1700000000", entry("a", "\"1700000000\"")},
                {1700000000, "1700000000", entry("a", "1700000000", R"(,"isfolder":1,"exist":1)")},
                {1700000000, "1700000000", entry("b", "5") + "," + entry("a", "1700000000")},
                {5000000000, "5000000000", entry("a", "\"5000000000\"")},
                {most, "9223372036854775807", entry("a", "\"9223372036854775807\"")},
                // 0 is a time like any other.
                {0, "0", entry("a", "0")},
                {0, "0", R"({"filename":"a"})"}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.entry);
        RawServer server({Reply::json(stat(row.entry))});
        SetTimeCall call;
        call.time = row.time;
        EXPECT_EQ(call.run(session.get(), server.port()), 0u);
        EXPECT_EQ(call.result, 0u);
        EXPECT_EQ(server.onlyRequest().queryText(), query("%2Fhome", "a", row.sent));
    }
    log.expectNoLines();
}

TEST_F(WFMSetFileTimeWire, ATimeThatDidNotTakeIs12) {
    const struct {
        int64_t time;
        std::string entry;
    } rows[] = {{1700000000, entry("\xE6\x96\x87", "1600000000")},
                {1700000000, entry("\xE6\x96\x87", "0")},
                // Times before 1970 aren't told.
                {-5, entry("\xE6\x96\x87", "-5")},
                {std::numeric_limits<int64_t>::min(), entry("\xE6\x96\x87", "1700000000")}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.time);
        RawServer server({Reply::json(stat(row.entry))});
        SetTimeCall call;
        call.parent = L"/home/.Torvi/T/d&";
        call.name = L"\x6587";
        call.time = row.time;
        log.clear();
        EXPECT_EQ(call.run(session.get(), server.port()), 0u);
        EXPECT_EQ(call.result, 12u);
        EXPECT_EQ(server.onlyRequest().queryText(),
                  query("vtf%3A%2F%2FS%2Fd%26", "%E6%96%87", std::to_string(row.time)));
        log.expectLines({"[WFM] WFMSetFileTime: ERROR_INVALID_ACCESS(vtf://S/d&)(\xE6\x96\x87)"});
    }
}

TEST_F(WFMSetFileTimeWire, WithoutExactlyOneRecordTheResultIsTheStatus) {
    const std::string twice = entry("a", "1700000000") + "," + entry("a", "1700000000");
    const struct {
        std::string reply;
        int32_t result;
    } rows[] = {{stat(twice), 0},
                {R"({"status":1,"total":0,"datas":[]})", 0},
                {R"({"status":1})", 0},
                {"{}", 0},
                {stat(entry("b", "1700000000")), -4},
                {R"({"status":5})", -4},
                {R"({"status":3})", -29},
                {R"({"status":9})", -6},
                {R"({"status":34})", -1}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.reply);
        RawServer server({Reply::json(row.reply)});
        SetTimeCall call;
        log.clear();
        EXPECT_EQ(call.run(session.get(), server.port()), 0u);
        EXPECT_EQ(static_cast<int32_t>(call.result), row.result);
        log.expectLines(
            {"[WFM] WFMSetFileTime: ERROR_UNKNOWN Status(" + std::to_string(row.result) + ")(/home)(a)"});
    }
}

TEST_F(WFMSetFileTimeWire, ARecordOutweighsTheStatus) {
    RawServer server({Reply::json(stat(entry("a", "1700000000"), "5"))});
    SetTimeCall call;
    EXPECT_EQ(call.run(session.get(), server.port()), 0u);
    EXPECT_EQ(call.result, 0u);
    log.expectNoLines();
}

TEST_F(WFMSetFileTimeWire, ADenialIs14AndMinus3) {
    RawServer server({Reply::json(stat(entry("a", "1700000000"), "4"))});
    SetTimeCall call;
    EXPECT_EQ(call.run(session.get(), server.port()), 14u);
    EXPECT_EQ(static_cast<int32_t>(call.result), -3);
    log.expectLines({notUnderstood(-3), summaryLine("WFMSetFileTime", server.port(), 14)});
}

TEST_F(WFMSetFileTimeWire, AReplyThatIsNotUnderstoodLeavesTheResult) {
    const struct {
        const char* reply;
        int status;
    } rows[] = {{"[]", -1},
                {"no", -1},
                {R"({"status":99999999999})", -1},
                {R"({"status":1,"total":99999999999})", 0},
                {R"({"status":1,"total":1,"datas":[{"filename":"a","epochmt":99999999999}]})", 0}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.reply);
        RawServer server({Reply::json(row.reply)});
        SetTimeCall call;
        log.clear();
        EXPECT_EQ(call.run(session.get(), server.port()), 14u);
        EXPECT_EQ(static_cast<int32_t>(call.result), -1);
        log.expectLines({notUnderstood(row.status), summaryLine("WFMSetFileTime", server.port(), 14)});
    }
}

TEST_F(WFMSetFileTimeWire, TheRootOfATeamFolderGoesOutWithoutANameAndIs14) {
    RawServer server({Reply::json(stat(entry("T", "1700000000") + "," + entry("S", "1700000000")))});
    SetTimeCall call;
    call.parent = L"/home/.Torvi";
    call.name = L"T";
    EXPECT_EQ(call.run(session.get(), server.port()), 14u);
    EXPECT_EQ(static_cast<int32_t>(call.result), -1);
    EXPECT_EQ(server.onlyRequest().queryText(), query("vtf%3A%2F%2FS", ""));
    log.expectLines({notUnderstood(-1), summaryLine("WFMSetFileTime", server.port(), 14)});
}

TEST_F(WFMSetFileTimeWire, RefusesWhatMustBeGivenWithOneLineAndTouchesNothing) {
    expectRefusals<SetTimeCall>(
        log, session.get(), "WFMSetFileTime",
        {[](SetTimeCall& call) { call.name = nullptr; }, [](SetTimeCall& call) { call.name = L""; },
         [](SetTimeCall& call) { call.parent = nullptr; }, [](SetTimeCall& call) { call.parent = L""; },
         [](SetTimeCall& call) { call.resultWord = nullptr; }});
}
