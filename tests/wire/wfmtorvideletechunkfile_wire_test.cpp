#include <gtest/gtest.h>

#include "refusals.h"
#include "replies.h"
#include "routes.h"
#include "sessioncall.h"

using namespace wire;

namespace {

struct DeleteChunkCall : SessionCall<DeleteChunkCall> {
    const wchar_t* uploadID = L"u-17";
    const wchar_t* uploadRoot = L"/home/.up";

    using SessionCall::SessionCall;
    uint32_t call() {
        return WFMTorviDeleteChunkFile(session, kServer, port, slaveID, uploadID, uploadRoot, nullptr,
                                       resultWord);
    }
    bool isUntouched() const { return result == 0xABCD; }
};

std::string errorStatus(int code) {
    return "[WFM] WFMTorviDeleteChunkFile: get error status(" + std::to_string(code) + ")";
}

}  // namespace

TEST(WFMTorviDeleteChunkFileWire, AsksWithOneGetOnEitherServiceAndAnyNode) {
    expectOnEveryRoute(
        "func=delete_chunked_upload_file&sid=sid123&upload_id=u-17&upload_root_dir=%2Fhome%2F.up",
        [](_WFM_AUTH_CONTEXT* session, uint32_t port, const wchar_t* slaveID) {
            DeleteChunkCall call;
            call.slaveID = slaveID;
            call.run(session, port);
        });
}

TEST(WFMTorviDeleteChunkFileWire, EncodesIdAndRootAndMapsNeither) {
    RawServer server({Reply::json(R"({"status":1})")});
    DeleteChunkCall call(server);
    const SessionPtr session = pathRouteSession();
    call.uploadID = L"/home/.Torvi/T/a b&c";
    call.uploadRoot = L"/home/.Torvi/T/\x6587'~";
    EXPECT_EQ(call.run(session.get(), server.port()), 0u);
    expectRequestLine(server.onlyRequest(),
                      "GET /cgi-bin/torvi/torvisrv.cgi?func=delete_chunked_upload_file&sid=sid123"
                      "&upload_id=%2Fhome%2F.Torvi%2FT%2Fa%20b%26c"
                      "&upload_root_dir=%2Fhome%2F.Torvi%2FT%2F%E6%96%87%27~ HTTP/1.1");
}

TEST(WFMTorviDeleteChunkFileWire, TheResultWordIsTheClientCode) {
    expectReplies<DeleteChunkCall>({
        {R"({"status":1,"success":"true"})", 0, 0, {}},
        {R"({"status":"1"})", 0, 0, {}},
        {R"({"status":1,"success":"false"})", 0, 0, {}},
        {R"({"status":0})", 0, -2, {errorStatus(-2)}},
        {R"({"status":3})", 0, -29, {errorStatus(-29)}},
        {R"({"status":4})", 0, -3, {errorStatus(-3)}},
        {R"({"status":5,"success":"true"})", 0, -4, {errorStatus(-4)}},
        {R"({"status":34})", 0, -1, {errorStatus(-1)}},
        {"{}", 0, -1, {errorStatus(-1)}},
    });
}

TEST(WFMTorviDeleteChunkFileWire, RefusesWhatMustBeGivenWithOneLineAndTouchesNothing) {
    const SessionPtr session = makeSession();
    LogCapture log;
    expectRefusals<DeleteChunkCall>(log, session.get(), "WFMTorviDeleteChunkFile",
                                    {[](DeleteChunkCall& call) { call.uploadID = nullptr; },
                                     [](DeleteChunkCall& call) { call.uploadID = L""; },
                                     [](DeleteChunkCall& call) { call.uploadRoot = nullptr; },
                                     [](DeleteChunkCall& call) { call.uploadRoot = L""; },
                                     [](DeleteChunkCall& call) { call.resultWord = nullptr; }});
}
