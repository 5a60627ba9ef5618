// WebFileManGetSharePath: what is its own. What every call shares stands in everycall_wire_test.cpp.

#include <gtest/gtest.h>

#include <string>

#include "WebFileManShareAPI.h"
#include "refusals.h"
#include "replies.h"
#include "routes.h"
#include "sessioncall.h"

using namespace wire;

namespace {

struct SharePathCall : SessionCall<SharePathCall> {
    const wchar_t* shareID = L"a b/1";
    uint32_t capacity = 260;
    MarkedBuffer buffer{5000};
    wchar_t* path = buffer.data();

    using SessionCall::SessionCall;
    uint32_t call() {
        return WebFileManGetSharePath(session, kServer, port, shareID, capacity, nullptr, path, resultWord);
    }
    bool isUntouched() const { return result == 0xABCD && buffer.isUntouched(); }
};

std::string pathOf(size_t length) {
    return R"({"status":1,"share_path":"/)" + std::string(length - 1, 'x') + "\"}";
}

const char* const kInsufficientBuffer = "[WFMShare] WebFileManGetSharePath: ERROR_INSUFFICIENT_BUFFER";
const char* const kInvalidPath = "[WFMShare] WebFileManGetSharePath: Invalid SharePath";

/// The id stands in the line as the caller gave it.
std::string invalidStatus(int status) {
    return "[WFMShare] WebFileManGetSharePath: Invalid Status (a b/1) (" + std::to_string(status) + ")";
}

}  // namespace

TEST(WebFileManGetSharePathWire, AsksTheSessionsServiceAndNamesNoNode) {
    expectOnEveryRoute(
        "func=nubo_get_share_path&sid=sid123&share_id=%E6%96%87%20%26%25%2F1",
        [](_WFM_AUTH_CONTEXT* session, uint32_t port, const wchar_t*) {
            SharePathCall call;
            call.shareID = L"\x6587 &%/1";
            call.run(session, port);
        },
        routesWithoutNode());
}

TEST(WebFileManGetSharePathWire, ThePathFillsTheBuffer) {
    RawServer server({Reply::json(R"({"status":"1","share_path":"/share/\u6587"})")});
    SharePathCall call(server);
    LogCapture log;
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.result, 0u);
    EXPECT_EQ(call.buffer.text(), L"/share/\x6587");
    log.expectNoLines();
}

TEST(WebFileManGetSharePathWire, APathThatDoesNotFitWithItsTerminatorIsMinus23) {
    const struct {
        size_t length;
        uint32_t capacity;
        bool fits;
    } rows[] = {{259, 260, true}, {260, 260, false},  {261, 260, false},  {1, 2, true},
                {1, 1, false},    {4095, 4096, true}, {4095, 4095, false}};
    for (const auto& row : rows) {
        SCOPED_TRACE(std::to_string(row.length) + " for " + std::to_string(row.capacity));
        RawServer server({Reply::json(pathOf(row.length))});
        SharePathCall call(server);
        call.capacity = row.capacity;
        LogCapture log;
        EXPECT_EQ(call.run(), 0u);
        EXPECT_EQ(call.signedResult(), row.fits ? 0 : -23);
        if (row.fits) {
            EXPECT_EQ(call.buffer.text().size(), row.length);
            log.expectNoLines();
        } else {
            EXPECT_TRUE(call.buffer.isUntouched());
            log.expectLines({kInsufficientBuffer});
        }
    }
}

TEST(WebFileManGetSharePathWire, WithoutAPathTheResultIsTheStatusOrMinus1) {
    expectReplies<SharePathCall>(
        {
            {R"({"status":4,"share_path":"/a"})", 0, -3, {invalidStatus(-3)}},
            {R"({"status":"3","share_path":"/a"})", 0, -29, {invalidStatus(-29)}},
            {R"({"status":0,"share_path":"/a"})", 0, -2, {invalidStatus(-2)}},
            {R"({"status":34,"share_path":"/a"})", 0, -1, {invalidStatus(-1)}},
            {R"({"share_path":"/a"})", 0, -1, {invalidStatus(-1)}},
            {"{}", 0, -1, {invalidStatus(-1)}},
            {R"({"status":1,"share_path":""})", 0, -1, {kInvalidPath}},
            {R"({"status":1,"share_path":null})", 0, -1, {kInvalidPath}},
            {R"({"status":1})", 0, -1, {kInvalidPath}},
            {pathOf(4096), 0, -1, {kInvalidPath}},
            {pathOf(100000), 0, -1, {kInvalidPath}},
            {R"({"status":1,"share_path":["/a"]})",
             14,
             -1,
             {"[WFMShare] WebFileManGetSharePath: WFM_PARSE_XML_FAIL",
              "[WFMShare] WebFileManGetSharePath(127.0.0.1:{port}) failed dwStatus(14)"}},
        },
        [](const SharePathCall& call) { EXPECT_TRUE(call.buffer.isUntouched()); });
}

TEST(WebFileManGetSharePathWire, RefusesWhatMustBeGivenWithOneLineAndTouchesNothing) {
    const SessionPtr session = makeSession();
    LogCapture log;
    expectRefusals<SharePathCall>(
        log, session.get(), "WebFileManGetSharePath",
        {[](SharePathCall& call) { call.shareID = nullptr; }, [](SharePathCall& call) { call.shareID = L""; },
         [](SharePathCall& call) { call.capacity = 0; }, [](SharePathCall& call) { call.path = nullptr; },
         [](SharePathCall& call) { call.resultWord = nullptr; }},
        kSharePrefix);
}
