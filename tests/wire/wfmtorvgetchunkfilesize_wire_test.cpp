#include <gtest/gtest.h>

#include <limits>

#include "refusals.h"
#include "replies.h"
#include "routes.h"
#include "sessioncall.h"

using namespace wire;

namespace {

constexpr int64_t kUntouched = -77;

struct ChunkSizeCall : SessionCall<ChunkSizeCall> {
    const wchar_t* uploadID = L"u-17";
    const wchar_t* uploadRoot = L"/home/.up";
    int64_t size = kUntouched;
    int64_t* out = &size;

    using SessionCall::SessionCall;
    uint32_t call() {
        return WFMTorvGetChunkFileSize(session, kServer, port, slaveID, uploadID, uploadRoot, nullptr, out,
                                       resultWord);
    }
    bool isUntouched() const { return result == 0xABCD && size == kUntouched; }
};

std::string errorStatus(int status) {
    return "[WFM] WFMTorvGetChunkFileSize: get error status = " + std::to_string(status);
}

}  // namespace

TEST(WFMTorvGetChunkFileSizeWire, AsksWithOneGetOnEitherServiceAndAnyNode) {
    expectOnEveryRoute(
        "func=get_chunked_upload_status&sid=sid123&upload_id=u-17&upload_root_dir=%2Fhome%2F.up",
        [](_WFM_AUTH_CONTEXT* session, uint32_t port, const wchar_t* slaveID) {
            ChunkSizeCall call;
            call.slaveID = slaveID;
            call.run(session, port);
        });
}

TEST(WFMTorvGetChunkFileSizeWire, EncodesIdAndRootAndMapsNeither) {
    RawServer server({Reply::json(R"({"status":0})")});
    ChunkSizeCall call(server);
    const SessionPtr session = pathRouteSession();
    call.uploadID = L"/home/.Torvi/T/a b&c";
    call.uploadRoot = L"/home/.Torvi/T/\x6587'~";
    EXPECT_EQ(call.run(session.get(), server.port()), 0u);
    expectRequestLine(server.onlyRequest(),
                      "GET /cgi-bin/torvi/torvisrv.cgi?func=get_chunked_upload_status&sid=sid123"
                      "&upload_id=%2Fhome%2F.Torvi%2FT%2Fa%20b%26c"
                      "&upload_root_dir=%2Fhome%2F.Torvi%2FT%2F%E6%96%87%27~ HTTP/1.1");
}

TEST(WFMTorvGetChunkFileSizeWire, Status0GivesTheSize) {
    const std::pair<const char*, int64_t> rows[] = {
        {R"({"status":0,"size":"0"})", 0},
        {R"({"status":0,"size":"5000000000"})", 5000000000},
        {R"({"status":"0","size":7})", 7},
        {R"({"status":0,"size":"9223372036854775807"})", std::numeric_limits<int64_t>::max()},
        {R"({"status":0})", 0},
    };
    for (const auto& [reply, size] : rows) {
        const int64_t expected = size;
        expectReplies<ChunkSizeCall>({{reply, 0, 0, {}}},
                                     [&](const ChunkSizeCall& call) { EXPECT_EQ(call.size, expected); });
    }
}

TEST(WFMTorvGetChunkFileSizeWire, AnyOtherStatusIsTheServersOwnNumberAndLeavesTheSize) {
    expectReplies<ChunkSizeCall>(
        {
            {R"({"status":-4,"size":"7"})", 0, -11, {errorStatus(-4)}},
            {R"({"status":5,"size":"7"})", 0, -4, {errorStatus(5)}},
            {R"({"status":1,"size":"7"})", 0, -1, {errorStatus(1)}},
            {R"({"status":3,"size":"7"})", 0, -1, {errorStatus(3)}},
            {R"({"status":4,"size":"7"})", 0, -1, {errorStatus(4)}},
            {R"({"status":-3,"size":"7"})", 0, -1, {errorStatus(-3)}},
        },
        [](const ChunkSizeCall& call) { EXPECT_EQ(call.size, kUntouched); });
}

TEST(WFMTorvGetChunkFileSizeWire, AMissingStatusIsMinus1) {
    expectReplies<ChunkSizeCall>(
        {
            {"{}", 0, -1, {errorStatus(-1)}},
            {R"({"size":"7"})", 0, -1, {errorStatus(-1)}},
        },
        [](const ChunkSizeCall& call) { EXPECT_EQ(call.size, kUntouched); });
}

TEST(WFMTorvGetChunkFileSizeWire, ASizeThatCannotBeReadIs14AndLeavesTheSize) {
    expectReplies<ChunkSizeCall>({{R"({"status":0,"size":5000000000})",
                                   14,
                                   -1,
                                   {"[WFM] WFMTorvGetChunkFileSize: WFM_PARSE_XML_FAIL",
                                    "[WFM] WFMTorvGetChunkFileSize(127.0.0.1:{port}) failed dwStatus(14)"}}},
                                 [](const ChunkSizeCall& call) { EXPECT_EQ(call.size, kUntouched); });
}

TEST(WFMTorvGetChunkFileSizeWire, RefusesWhatMustBeGivenWithOneLineAndTouchesNothing) {
    const SessionPtr session = makeSession();
    LogCapture log;
    expectRefusals<ChunkSizeCall>(
        log, session.get(), "WFMTorvGetChunkFileSize",
        {[](ChunkSizeCall& call) { call.uploadID = nullptr; },
         [](ChunkSizeCall& call) { call.uploadID = L""; },
         [](ChunkSizeCall& call) { call.uploadRoot = nullptr; },
         [](ChunkSizeCall& call) { call.uploadRoot = L""; }, [](ChunkSizeCall& call) { call.out = nullptr; },
         [](ChunkSizeCall& call) { call.resultWord = nullptr; }});
}
