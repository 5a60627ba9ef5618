#include <gtest/gtest.h>

#include <limits>

#include "versioning.h"

using namespace wire;

namespace {

struct CommitCall : VersioningCall<CommitCall> {
    int64_t modifiedTime = 1700000000;
    TextBuffer pid;
    wchar_t* out = pid.data();

    using VersioningCall::VersioningCall;
    uint32_t call() {
        return WFMTorviVersioningCommitUpload(session, kServer, port, slaveID, path, lockID, versionID,
                                              modifiedTime, nullptr, resultWord, out);
    }
    bool isUntouched() const { return result == 0xABCD && pid.text() == L"untouched"; }
};

std::string query(const std::string& folder, const std::string& name, const std::string& lockID = "lock-1",
                  const std::string& versionID = "version-1", const std::string& time = "1700000000") {
    return "func=versioning_commit_upload&sid=sid123&settime=1&mtime=" + time + "&source_path=" + folder +
           "&source_file=" + name + "&lockid=" + lockID + "&version_id=" + versionID;
}

}  // namespace

TEST(WFMTorviVersioningCommitUploadWire, StartsTheJobWithOneGetAndHandsOutItsId) {
    RawServer server({Reply::json(R"({"status":1,"pid":"4711"})")});
    CommitCall call(server);
    LogCapture log;
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.result, 0u);
    EXPECT_EQ(call.pid.text(), L"4711");
    log.expectNoLines();
    expectGet(server.onlyRequest(), "/cgi-bin/torvi/torvisrv.cgi?" + query("%2Fhome%2Fd", "a.txt"),
              baseHeaders(server));
}

TEST(WFMTorviVersioningCommitUploadWire, GoesToTheNodeAndFolderOfItsPath) {
    expectVersioningRoutes<CommitCall>(
        [](const std::string& folder, const std::string& name) { return query(folder, name); });
}

TEST(WFMTorviVersioningCommitUploadWire, EncodesThePathAndSendsTheIdsAsGiven) {
    expectVersioningEncoding<CommitCall>(
        [](const std::string& folder, const std::string& name, const std::string& lockID,
           const std::string& versionID) { return query(folder, name, lockID, versionID); });
}

TEST(WFMTorviVersioningCommitUploadWire, SendsTheTimeInDecimalAsGiven) {
    const std::pair<int64_t, const char*> rows[] = {
        {0, "0"},
        {-1, "-1"},
        {4294967296, "4294967296"},
        {std::numeric_limits<int64_t>::min(), "-9223372036854775808"},
    };
    for (const auto& [time, sent] : rows) {
        RawServer server({Reply::json(R"({"status":1,"pid":"4711"})")});
        CommitCall call(server);
        call.modifiedTime = time;
        EXPECT_EQ(call.run(), 0u);
        EXPECT_EQ(server.onlyRequest().queryText(),
                  query("%2Fhome%2Fd", "a.txt", "lock-1", "version-1", sent));
    }
}

TEST(WFMTorviVersioningCommitUploadWire, AProcessIdIsTextOrNumber) {
    for (const char* pid : {"\"4711\"", "4711"})
        expectReplies<CommitCall>({{std::string(R"({"status":"1","pid":)") + pid + "}", 0, 0, {}}},
                                  [](const CommitCall& call) { EXPECT_EQ(call.pid.text(), L"4711"); });
}

TEST(WFMTorviVersioningCommitUploadWire, TheResultWordIsTheClientCodeInAnyCase) {
    const std::vector<std::string> lines = {"[WFM] WFMTorviVersioningCommitUpload: IsSuccess failed"};
    expectReplies<CommitCall>(
        {
            {R"({"status":4,"pid":"4711"})", 0, -3, lines},
            {R"({"status":0,"pid":"4711"})", 0, -2, lines},
            {R"({"status":3})", 0, -29, lines},
            {R"({"status":9})", 0, -6, lines},
            {R"({"status":33,"pid":"4711"})", 0, -15, lines},
            {R"({"status":34,"pid":"4711"})", 0, -1, lines},
            {R"({"pid":"4711"})", 0, -1, lines},
            {"{}", 0, -1, lines},
        },
        [](const CommitCall& call) { EXPECT_EQ(call.pid.text(), L"untouched"); });
}

TEST(WFMTorviVersioningCommitUploadWire, AnEmptyProcessIdIsToldAndNotCopied) {
    const std::vector<std::string> lines = {"[WFM] WFMTorviVersioningCommitUpload: empty PID"};
    expectReplies<CommitCall>(
        {
            {R"({"status":1})", 0, 0, lines},
            {R"({"status":1,"pid":""})", 0, 0, lines},
            {R"({"status":1,"pid":null})", 0, 0, lines},
        },
        [](const CommitCall& call) { EXPECT_EQ(call.pid.text(), L"untouched"); });
}

TEST(WFMTorviVersioningCommitUploadWire, AProcessIdNeverOverrunsItsBuffer) {
    expectReplies<CommitCall>(
        {{R"({"status":1,"pid":")" + std::string(259, 'x') + "\"}", 0, 0, {}}},
        [](const CommitCall& call) { EXPECT_EQ(call.pid.text(), std::wstring(259, L'x')); });
    for (const size_t length : {size_t{260}, size_t{2000}, size_t{5000}}) {
        RawServer server({Reply::json(R"({"status":1,"pid":")" + std::string(length, 'x') + "\"}")});
        CommitCall call(server);
        EXPECT_EQ(call.run(), 0u);
        EXPECT_EQ(call.result, 0u);
        EXPECT_LE(call.pid.text().size(), 259u);
        EXPECT_NE(call.pid.text(), L"overrun");
        EXPECT_NE(call.pid.text(), L"unterminated");
    }
}

TEST(WFMTorviVersioningCommitUploadWire, AReplyThatCannotBeReadIs14) {
    const std::vector<std::string> lines = {
        "[WFM] WFMTorviVersioningCommitUpload: WFM_PARSE_XML_FAIL",
        "[WFM] WFMTorviVersioningCommitUpload(127.0.0.1:{port}) failed dwStatus(14)"};
    expectReplies<CommitCall>(
        {
            {"sorry", 14, -1, lines},
            {"[]", 14, -1, lines},
            {R"({"status":1,"pid":["4711"]})", 14, -1, lines},
        },
        [](const CommitCall& call) { EXPECT_EQ(call.pid.text(), L"untouched"); });
}

TEST(WFMTorviVersioningCommitUploadWire, RefusesWhatMustBeGivenWithOneLineAndTouchesNothing) {
    const SessionPtr session = makeSession();
    LogCapture log;
    expectRefusals<CommitCall>(
        log, session.get(), "WFMTorviVersioningCommitUpload",
        {[](CommitCall& call) { call.path = nullptr; }, [](CommitCall& call) { call.path = L""; },
         [](CommitCall& call) { call.lockID = nullptr; }, [](CommitCall& call) { call.lockID = L""; },
         [](CommitCall& call) { call.versionID = nullptr; }, [](CommitCall& call) { call.versionID = L""; },
         [](CommitCall& call) { call.resultWord = nullptr; }, [](CommitCall& call) { call.out = nullptr; }});
}
