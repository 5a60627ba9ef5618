#include <gtest/gtest.h>

#include "refusals.h"
#include "replies.h"
#include "routes.h"
#include "sessioncall.h"

using namespace wire;

namespace {

struct ProbeCall : SessionCall<ProbeCall> {
    TextBuffer version;
    wchar_t* out = version.data();

    using SessionCall::SessionCall;
    uint32_t call() {
        return WFMTorviGetVersioningProbe(session, kServer, port, slaveID, nullptr, resultWord, out);
    }
    bool isUntouched() const { return result == 0xABCD && version.text() == L"untouched"; }
};

void expectVersion(const std::string& reply, const std::wstring& version) {
    expectReplies<ProbeCall>({{reply, 0, -1, {}}},
                             [&](const ProbeCall& call) { EXPECT_EQ(call.version.text(), version); });
}

}  // namespace

TEST(WFMTorviGetVersioningProbeWire, AsksWithOneGetOnEitherServiceAndAnyNode) {
    expectOnEveryRoute("func=versioning_probe&sid=sid123",
                       [](_WFM_AUTH_CONTEXT* session, uint32_t port, const wchar_t* slaveID) {
                           ProbeCall call;
                           call.slaveID = slaveID;
                           call.run(session, port);
                       });
}

TEST(WFMTorviGetVersioningProbeWire, ASuccessGivesTheVersionAndLeavesTheResultWordAtMinus1) {
    expectVersion(
        R"({"status":1,"versioning_enable":1,"nubo_versioning_enable":1,"versioning_version":"2.1"})",
        L"2.1");
    expectVersion("{\"status\":1,\"versioning_version\":\"\xE6\x96\x87\xF0\x9F\x98\x80\"}", L"\x6587\x1F600");
}

TEST(WFMTorviGetVersioningProbeWire, TheVersionIsGivenWhateverTheStatus) {
    expectVersion(R"({"status":0,"versioning_version":"2.1"})", L"2.1");
    expectVersion(R"({"status":"4","versioning_version":"2.1"})", L"2.1");
    expectVersion(R"({"status":-4,"versioning_enable":0,"versioning_version":"2.1"})", L"2.1");
}

TEST(WFMTorviGetVersioningProbeWire, AVersionNeverOverrunsItsBuffer) {
    expectVersion(R"({"status":1,"versioning_version":")" + std::string(259, 'x') + "\"}",
                  std::wstring(259, L'x'));
    expectVersion(R"({"status":1,"versioning_version":")" + std::string(260, 'x') + "\"}",
                  std::wstring(259, L'x'));
    expectVersion(R"({"status":1,"versioning_version":")" + std::string(2000, 'x') + "\"}",
                  std::wstring(259, L'x'));
}

TEST(WFMTorviGetVersioningProbeWire, AnEmptyVersionIsTold) {
    const std::vector<std::string> lines = {"[WFM] WFMTorviGetVersioningProbe: empty version"};
    expectReplies<ProbeCall>(
        {
            {R"({"status":1})", 0, -1, lines},
            {R"({"status":1,"versioning_version":""})", 0, -1, lines},
            {R"({"status":1,"versioning_version":null})", 0, -1, lines},
            {R"({"status":4,"versioning_enable":1})", 0, -1, lines},
        },
        [](const ProbeCall& call) { EXPECT_EQ(call.version.text(), L"untouched"); });
}

TEST(WFMTorviGetVersioningProbeWire, AReplyWithoutAStatusIs14) {
    const std::vector<std::string> lines = {
        "[WFM] WFMTorviGetVersioningProbe: WFM_PARSE_XML_FAIL",
        "[WFM] WFMTorviGetVersioningProbe(127.0.0.1:{port}) failed dwStatus(14)"};
    expectReplies<ProbeCall>(
        {
            {"{}", 14, -1, lines},
            {R"({"status":null,"versioning_version":"2.1"})", 14, -1, lines},
            {R"({"versioning_enable":1,"versioning_version":"2.1"})", 14, -1, lines},
            {R"({"status":1,"versioning_version":["2.1"]})", 14, -1, lines},
            {R"({"status":1,"versioning_enable":4294967296,"versioning_version":"2.1"})", 14, -1, lines},
        },
        [](const ProbeCall& call) { EXPECT_EQ(call.version.text(), L"untouched"); });
}

TEST(WFMTorviGetVersioningProbeWire, RefusesWhatMustBeGivenWithOneLineAndTouchesNothing) {
    const SessionPtr session = makeSession();
    LogCapture log;
    expectRefusals<ProbeCall>(
        log, session.get(), "WFMTorviGetVersioningProbe",
        {[](ProbeCall& call) { call.resultWord = nullptr; }, [](ProbeCall& call) { call.out = nullptr; }});
}
