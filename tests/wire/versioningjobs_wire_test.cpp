// WFMTorviGenVersioningSig and WFMTorviGenVersioningDelta: two jobs that differ in a word of their query, in
// the word for a reply that isn't understood and in what an empty process id comes to.

#include <gtest/gtest.h>

#include "versioning.h"

using namespace wire;

namespace {

const char* const kGood = R"({"status":1,"pid":"4711","version_id":"version-1"})";

/// One of the two, with good arguments.
template <class Derived>
struct JobCall : VersioningCall<Derived> {
    TextBuffer pid;
    wchar_t* out = pid.data();

    using VersioningCall<Derived>::VersioningCall;
    bool isUntouched() const { return this->result == 0xABCD && pid.text() == L"untouched"; }
};

struct SignatureCall : JobCall<SignatureCall> {
    static constexpr const char* kName = "WFMTorviGenVersioningSig";
    static constexpr const char* kFunc = "versioning_gen_sig";
    static constexpr const char* kNotUnderstood = "WFM_PARSE_XML_FAIL";
    static constexpr bool kTellsEmptyPid = false;

    using JobCall::JobCall;
    uint32_t call() {
        return WFMTorviGenVersioningSig(session, kServer, port, slaveID, path, lockID, versionID, nullptr,
                                        resultWord, out);
    }
};

struct DeltaCall : JobCall<DeltaCall> {
    static constexpr const char* kName = "WFMTorviGenVersioningDelta";
    static constexpr const char* kFunc = "versioning_gen_delta";
    static constexpr const char* kNotUnderstood = "WFM_PARSE_XML_INVALID_PARAMETER";
    static constexpr bool kTellsEmptyPid = true;

    using JobCall::JobCall;
    uint32_t call() {
        return WFMTorviGenVersioningDelta(session, kServer, port, slaveID, path, lockID, versionID, nullptr,
                                          resultWord, out);
    }
};

template <class Call>
class VersioningJobWire : public testing::Test {
protected:
    static std::string line(const std::string& text) { return std::string("[WFM] ") + Call::kName + text; }
    static std::string query(const std::string& folder, const std::string& name,
                             const std::string& lockID = "lock-1",
                             const std::string& versionID = "version-1") {
        return std::string("func=") + Call::kFunc + "&sid=sid123&source_path=" + folder +
               "&source_file=" + name + "&lockid=" + lockID + "&version_id=" + versionID;
    }
    static void expectPid(const std::string& reply, const std::wstring& pid) {
        expectReplies<Call>({{reply, 0, 0, {}}}, [&](const Call& call) { EXPECT_EQ(call.pid.text(), pid); });
    }
};

struct Names {
    template <class Call>
    static std::string GetName(int) {
        return Call::kName;
    }
};
using Jobs = testing::Types<SignatureCall, DeltaCall>;
TYPED_TEST_SUITE(VersioningJobWire, Jobs, Names);

}  // namespace

TYPED_TEST(VersioningJobWire, StartsTheJobWithOneGetAndHandsOutItsId) {
    RawServer server({Reply::json(kGood)});
    TypeParam call(server);
    LogCapture log;
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.result, 0u);
    EXPECT_EQ(call.pid.text(), L"4711");
    log.expectNoLines();
    expectGet(server.onlyRequest(), "/cgi-bin/torvi/torvisrv.cgi?" + this->query("%2Fhome%2Fd", "a.txt"),
              baseHeaders(server));
}

TYPED_TEST(VersioningJobWire, GoesToTheNodeAndFolderOfItsPath) {
    expectVersioningRoutes<TypeParam>(
        [](const std::string& folder, const std::string& name) { return TestFixture::query(folder, name); });
}

TYPED_TEST(VersioningJobWire, EncodesThePathAndSendsTheIdsAsGiven) {
    expectVersioningEncoding<TypeParam>(
        [](const std::string& folder, const std::string& name, const std::string& lockID,
           const std::string& versionID) { return TestFixture::query(folder, name, lockID, versionID); });
}

TYPED_TEST(VersioningJobWire, Status1And33And34AreSuccesses) {
    this->expectPid(R"({"status":1,"pid":"j-17"})", L"j-17");
    this->expectPid(R"({"status":33,"pid":"j-17"})", L"j-17");
    this->expectPid(R"({"status":34,"pid":4711})", L"4711");
    this->expectPid(R"({"status":"34","pid":"j-17"})", L"j-17");
}

TYPED_TEST(VersioningJobWire, AnEmptyProcessIdIsCopiedOrTold) {
    const std::vector<std::string> lines =
        TypeParam::kTellsEmptyPid ? std::vector{this->line(": empty PID")} : std::vector<std::string>{};
    expectReplies<TypeParam>(
        {
            {R"({"status":1})", 0, 0, lines},
            {R"({"status":33,"pid":""})", 0, 0, lines},
            {R"({"status":34,"pid":null})", 0, 0, lines},
        },
        [](const TypeParam& call) {
            EXPECT_EQ(call.pid.text(), TypeParam::kTellsEmptyPid ? L"untouched" : L"");
        });
}

TYPED_TEST(VersioningJobWire, AProcessIdNeverOverrunsItsBuffer) {
    this->expectPid(R"({"status":1,"pid":")" + std::string(259, 'x') + "\"}", std::wstring(259, L'x'));
    for (const size_t length : {size_t{260}, size_t{2000}, size_t{5000}}) {
        RawServer server({Reply::json(R"({"status":1,"pid":")" + std::string(length, 'x') + "\"}")});
        TypeParam call(server);
        EXPECT_EQ(call.run(), 0u);
        EXPECT_EQ(call.result, 0u);
        EXPECT_LE(call.pid.text().size(), 259u);
        EXPECT_NE(call.pid.text(), L"overrun");
        EXPECT_NE(call.pid.text(), L"unterminated");
    }
}

TYPED_TEST(VersioningJobWire, AnyOtherStatusIsNoSuccessAndCopiesNothing) {
    const std::vector<std::string> lines = {this->line(": IsSuccess failed")};
    const auto reply = [](const char* status) {
        return std::string(R"({"pid":"4711","version_id":"v","status":)") + status + "}";
    };
    expectReplies<TypeParam>(
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
        [](const TypeParam& call) { EXPECT_EQ(call.pid.text(), L"untouched"); });
}

TYPED_TEST(VersioningJobWire, AReplyThatCannotBeReadIs14) {
    const std::vector<std::string> lines = {this->line(std::string(": ") + TypeParam::kNotUnderstood),
                                            this->line("(127.0.0.1:{port}) failed dwStatus(14)")};
    expectReplies<TypeParam>(
        {
            {"sorry", 14, -1, lines},
            {"[]", 14, -1, lines},
            {R"({"status":1,"pid":["4711"]})", 14, -1, lines},
            {R"({"status":1,"pid":"4711","version_id":{}})", 14, -1, lines},
        },
        [](const TypeParam& call) { EXPECT_EQ(call.pid.text(), L"untouched"); });
}

TYPED_TEST(VersioningJobWire, RefusesWhatMustBeGivenWithOneLineAndTouchesNothing) {
    const SessionPtr session = makeSession();
    LogCapture log;
    expectRefusals<TypeParam>(
        log, session.get(), TypeParam::kName,
        {[](TypeParam& call) { call.path = nullptr; }, [](TypeParam& call) { call.path = L""; },
         [](TypeParam& call) { call.lockID = nullptr; }, [](TypeParam& call) { call.lockID = L""; },
         [](TypeParam& call) { call.versionID = nullptr; }, [](TypeParam& call) { call.versionID = L""; },
         [](TypeParam& call) { call.resultWord = nullptr; }, [](TypeParam& call) { call.out = nullptr; }});
}
