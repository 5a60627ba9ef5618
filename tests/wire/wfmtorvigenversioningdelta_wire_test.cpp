#include <gtest/gtest.h>

#include "versioning.h"

using namespace wire;

namespace {

const char* const kGood = R"({"status":1,"pid":"4711","version_id":"version-1"})";

struct DeltaCall : VersioningCall<DeltaCall> {
    TextBuffer pid;
    wchar_t* out = pid.data();

    using VersioningCall::VersioningCall;
    uint32_t call() {
        return WFMTorviGenVersioningDelta(session, kServer, port, slaveID, path, lockID, versionID, nullptr,
                                          resultWord, out);
    }
    bool isUntouched() const { return result == 0xABCD && pid.text() == L"untouched"; }
};

std::string query(const std::string& folder, const std::string& name, const std::string& lockID = "lock-1",
                  const std::string& versionID = "version-1") {
    return "func=versioning_gen_delta&sid=sid123&source_path=" + folder + "&source_file=" + name +
           "&lockid=" + lockID + "&version_id=" + versionID;
}

void expectPid(const std::string& reply, const std::wstring& pid) {
    expectReplies<DeltaCall>({{reply, 0, 0, {}}},
                             [&](const DeltaCall& call) { EXPECT_EQ(call.pid.text(), pid); });
}

}  // namespace

TEST(WFMTorviGenVersioningDeltaWire, StartsTheJobWithOneGetAndHandsOutItsId) {
    RawServer server({Reply::json(kGood)});
    DeltaCall call(server);
    LogCapture log;
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.result, 0u);
    EXPECT_EQ(call.pid.text(), L"4711");
    log.expectNoLines();
    expectGet(server.onlyRequest(), "/cgi-bin/torvi/torvisrv.cgi?" + query("%2Fhome%2Fd", "a.txt"),
              baseHeaders(server));
}

TEST(WFMTorviGenVersioningDeltaWire, GoesToTheNodeAndFolderOfItsPath) {
    expectVersioningRoutes<DeltaCall>(
        [](const std::string& folder, const std::string& name) { return query(folder, name); });
}

TEST(WFMTorviGenVersioningDeltaWire, EncodesThePathAndSendsTheIdsAsGiven) {
    expectVersioningEncoding<DeltaCall>(
        [](const std::string& folder, const std::string& name, const std::string& lockID,
           const std::string& versionID) { return query(folder, name, lockID, versionID); });
}

TEST(WFMTorviGenVersioningDeltaWire, Status1And33And34AreSuccesses) {
    expectPid(R"({"status":1,"pid":"j-17"})", L"j-17");
    expectPid(R"({"status":33,"pid":"j-17"})", L"j-17");
    expectPid(R"({"status":34,"pid":4711})", L"4711");
    expectPid(R"({"status":"34","pid":"j-17"})", L"j-17");
}

TEST(WFMTorviGenVersioningDeltaWire, AnEmptyProcessIdIsToldAndNotCopied) {
    const std::vector<std::string> lines = {"[WFM] WFMTorviGenVersioningDelta: empty PID"};
    expectReplies<DeltaCall>(
        {
            {R"({"status":1})", 0, 0, lines},
            {R"({"status":33,"pid":""})", 0, 0, lines},
            {R"({"status":34,"pid":null})", 0, 0, lines},
        },
        [](const DeltaCall& call) { EXPECT_EQ(call.pid.text(), L"untouched"); });
}

TEST(WFMTorviGenVersioningDeltaWire, AProcessIdNeverOverrunsItsBuffer) {
    expectPid(R"({"status":1,"pid":")" + std::string(259, 'x') + "\"}", std::wstring(259, L'x'));
    for (const size_t length : {size_t{260}, size_t{2000}, size_t{5000}}) {
        RawServer server({Reply::json(R"({"status":1,"pid":")" + std::string(length, 'x') + "\"}")});
        DeltaCall call(server);
        EXPECT_EQ(call.run(), 0u);
        EXPECT_EQ(call.result, 0u);
        EXPECT_LE(call.pid.text().size(), 259u);
        EXPECT_NE(call.pid.text(), L"overrun");
        EXPECT_NE(call.pid.text(), L"unterminated");
    }
}

TEST(WFMTorviGenVersioningDeltaWire, AnyOtherStatusIsNoSuccessAndCopiesNothing) {
    const std::vector<std::string> lines = {"[WFM] WFMTorviGenVersioningDelta: IsSuccess failed"};
    const auto reply = [](const char* status) {
        return std::string(R"({"pid":"4711","version_id":"v","status":)") + status + "}";
    };
    expectReplies<DeltaCall>(
        {
            {reply("2"), 0, -1, lines},
            {reply("0"), 0, -1, lines},
            {reply("4"), 0, -1, lines},
            {reply("32"), 0, -1, lines},
            {reply("35"), 0, -1, lines},
            {reply("-1"), 0, -1, lines},
            {reply("null"), 0, -1, lines},
            {R"({"pid":"4711"})", 0, -1, lines},
            {"{}", 0, -1, lines},
        },
        [](const DeltaCall& call) { EXPECT_EQ(call.pid.text(), L"untouched"); });
}

TEST(WFMTorviGenVersioningDeltaWire, AReplyThatCannotBeReadIs14) {
    const std::vector<std::string> lines = {
        "[WFM] WFMTorviGenVersioningDelta: WFM_PARSE_XML_INVALID_PARAMETER",
        "[WFM] WFMTorviGenVersioningDelta(127.0.0.1:{port}) failed dwStatus(14)"};
    expectReplies<DeltaCall>(
        {
            {"sorry", 14, -1, lines},
            {"[]", 14, -1, lines},
            {R"({"status":1,"pid":["4711"]})", 14, -1, lines},
            {R"({"status":1,"pid":"4711","version_id":{}})", 14, -1, lines},
        },
        [](const DeltaCall& call) { EXPECT_EQ(call.pid.text(), L"untouched"); });
}

TEST(WFMTorviGenVersioningDeltaWire, RefusesWhatMustBeGivenWithOneLineAndTouchesNothing) {
    const SessionPtr session = makeSession();
    LogCapture log;
    expectRefusals<DeltaCall>(
        log, session.get(), "WFMTorviGenVersioningDelta",
        {[](DeltaCall& call) { call.path = nullptr; }, [](DeltaCall& call) { call.path = L""; },
         [](DeltaCall& call) { call.lockID = nullptr; }, [](DeltaCall& call) { call.lockID = L""; },
         [](DeltaCall& call) { call.versionID = nullptr; }, [](DeltaCall& call) { call.versionID = L""; },
         [](DeltaCall& call) { call.resultWord = nullptr; }, [](DeltaCall& call) { call.out = nullptr; }});
}
