#include <gtest/gtest.h>

#include "versioning.h"

using namespace wire;

namespace {

const char* const kGood = R"({"status":1,"pid":"4711","version_id":"version-1"})";

struct SignatureCall : VersioningCall<SignatureCall> {
    TextBuffer pid;
    wchar_t* out = pid.data();

    using VersioningCall::VersioningCall;
    uint32_t call() {
        return WFMTorviGenVersioningSig(session, kServer, port, slaveID, path, lockID, versionID, nullptr,
                                        resultWord, out);
    }
    bool isUntouched() const { return result == 0xABCD && pid.text() == L"untouched"; }
};

std::string query(const std::string& folder, const std::string& name, const std::string& lockID = "lock-1",
                  const std::string& versionID = "version-1") {
    return "func=versioning_gen_sig&sid=sid123&source_path=" + folder + "&source_file=" + name +
           "&lockid=" + lockID + "&version_id=" + versionID;
}

void expectPid(const std::string& reply, const std::wstring& pid) {
    expectReplies<SignatureCall>({{reply, 0, 0, {}}},
                                 [&](const SignatureCall& call) { EXPECT_EQ(call.pid.text(), pid); });
}

}  // namespace

TEST(WFMTorviGenVersioningSigWire, StartsTheJobWithOneGetAndHandsOutItsId) {
    RawServer server({Reply::json(kGood)});
    SignatureCall call(server);
    LogCapture log;
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.result, 0u);
    EXPECT_EQ(call.pid.text(), L"4711");
    log.expectNoLines();
    expectGet(server.onlyRequest(), "/cgi-bin/torvi/torvisrv.cgi?" + query("%2Fhome%2Fd", "a.txt"),
              baseHeaders(server));
}

TEST(WFMTorviGenVersioningSigWire, GoesToTheNodeAndFolderOfItsPath) {
    expectVersioningRoutes<SignatureCall>(
        [](const std::string& folder, const std::string& name) { return query(folder, name); });
}

TEST(WFMTorviGenVersioningSigWire, EncodesThePathAndSendsTheIdsAsGiven) {
    expectVersioningEncoding<SignatureCall>(
        [](const std::string& folder, const std::string& name, const std::string& lockID,
           const std::string& versionID) { return query(folder, name, lockID, versionID); });
}

TEST(WFMTorviGenVersioningSigWire, Status1And33And34AreSuccesses) {
    expectPid(R"({"status":1,"pid":"j-17"})", L"j-17");
    expectPid(R"({"status":33,"pid":"j-17"})", L"j-17");
    expectPid(R"({"status":34,"pid":4711})", L"4711");
    expectPid(R"({"status":"34","pid":"j-17"})", L"j-17");
}

TEST(WFMTorviGenVersioningSigWire, AnEmptyProcessIdIsCopied) {
    expectPid(R"({"status":1})", L"");
    expectPid(R"({"status":33,"pid":""})", L"");
    expectPid(R"({"status":34,"pid":null})", L"");
}

TEST(WFMTorviGenVersioningSigWire, AProcessIdNeverOverrunsItsBuffer) {
    expectPid(R"({"status":1,"pid":")" + std::string(259, 'x') + "\"}", std::wstring(259, L'x'));
    for (const size_t length : {size_t{260}, size_t{2000}, size_t{5000}}) {
        RawServer server({Reply::json(R"({"status":1,"pid":")" + std::string(length, 'x') + "\"}")});
        SignatureCall call(server);
        EXPECT_EQ(call.run(), 0u);
        EXPECT_EQ(call.result, 0u);
        EXPECT_LE(call.pid.text().size(), 259u);
        EXPECT_NE(call.pid.text(), L"overrun");
        EXPECT_NE(call.pid.text(), L"unterminated");
    }
}

TEST(WFMTorviGenVersioningSigWire, AnyOtherStatusIsNoSuccessAndCopiesNothing) {
    const std::vector<std::string> lines = {"[WFM] WFMTorviGenVersioningSig: IsSuccess failed"};
    const auto reply = [](const char* status) {
        return std::string(R"({"pid":"4711","version_id":"v","status":)") + status + "}";
    };
    expectReplies<SignatureCall>(
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
        [](const SignatureCall& call) { EXPECT_EQ(call.pid.text(), L"untouched"); });
}

TEST(WFMTorviGenVersioningSigWire, AReplyThatCannotBeReadIs14) {
    const std::vector<std::string> lines = {
        "[WFM] WFMTorviGenVersioningSig: WFM_PARSE_XML_FAIL",
        "[WFM] WFMTorviGenVersioningSig(127.0.0.1:{port}) failed dwStatus(14)"};
    expectReplies<SignatureCall>(
        {
            {"sorry", 14, -1, lines},
            {"[]", 14, -1, lines},
            {R"({"status":1,"pid":["4711"]})", 14, -1, lines},
            {R"({"status":1,"pid":"4711","version_id":{}})", 14, -1, lines},
        },
        [](const SignatureCall& call) { EXPECT_EQ(call.pid.text(), L"untouched"); });
}

TEST(WFMTorviGenVersioningSigWire, RefusesWhatMustBeGivenWithOneLineAndTouchesNothing) {
    const SessionPtr session = makeSession();
    LogCapture log;
    expectRefusals<SignatureCall>(
        log, session.get(), "WFMTorviGenVersioningSig",
        {[](SignatureCall& call) { call.path = nullptr; }, [](SignatureCall& call) { call.path = L""; },
         [](SignatureCall& call) { call.lockID = nullptr; }, [](SignatureCall& call) { call.lockID = L""; },
         [](SignatureCall& call) { call.versionID = nullptr; },
         [](SignatureCall& call) { call.versionID = L""; },
         [](SignatureCall& call) { call.resultWord = nullptr; },
         [](SignatureCall& call) { call.out = nullptr; }});
}
