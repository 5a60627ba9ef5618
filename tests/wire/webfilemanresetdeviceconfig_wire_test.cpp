// WebFileManResetDeviceConfig: what is its own. What every call shares stands in everycall_wire_test.cpp.

#include <gtest/gtest.h>

#include <string>

#include "WebFileManShareAPI.h"
#include "configreplies.h"
#include "refusals.h"
#include "routes.h"
#include "sessioncall.h"

using namespace wire;

namespace {

const char* const kFunction = "WebFileManResetDeviceConfig";

struct ResetCall : SessionCall<ResetCall> {
    const wchar_t* user = L"ann";
    const wchar_t* deviceUID = L"d-1";

    using SessionCall::SessionCall;
    uint32_t call() {
        return WebFileManResetDeviceConfig(session, kServer, port, user, deviceUID, nullptr, resultWord);
    }
    bool isUntouched() const { return result == 0xABCD; }
};

}  // namespace

TEST(WebFileManResetDeviceConfigWire, EncodesTheUserAndSendsTheDeviceAsGiven) {
    expectOnEveryRoute(
        "func=nubo_reset_device_config&sid=sid123&user=a%20%26%E6%96%87%2F&device_uid=d/1:2%20&mode=1",
        [](_WFM_AUTH_CONTEXT* session, uint32_t port, const wchar_t*) {
            ResetCall call;
            call.user = L"a &\x6587/";
            call.deviceUID = L"d/1:2%20";
            call.run(session, port);
        },
        routesWithoutNode());
}

TEST(WebFileManResetDeviceConfigWire, TheServersOwnStatusIsTheResult) {
    const std::string name = std::string(kSharePrefix) + kFunction;
    const auto failed = [](int status) { return errorStatusLine(kFunction, status); };
    expectReplies<ResetCall>({
        {R"({"status":0})", 0, 0, {}},
        {R"({"status":"0","success":"false"})", 0, 0, {}},
        {R"({"status":1,"success":"true"})", 0, 1, failed(1)},
        {R"({"status":-3})", 0, -3, failed(-3)},
        {R"({"success":"true"})", 0, -1, failed(-1)},
        {"[]", 0, -1, failed(-1)},
        {R"({"status":99999999999})",
         14,
         -1,
         {name + ": WFM_PARSE_XML_FAIL", name + "(127.0.0.1:{port}) failed dwStatus(14)"}},
    });
}

TEST(WebFileManResetDeviceConfigWire, RefusesWhatMustBeGivenWithOneLineAndTouchesNothing) {
    const SessionPtr session = makeSession();
    LogCapture log;
    expectRefusals<ResetCall>(
        log, session.get(), kFunction,
        {[](ResetCall& call) { call.user = nullptr; }, [](ResetCall& call) { call.user = L""; },
         [](ResetCall& call) { call.deviceUID = nullptr; }, [](ResetCall& call) { call.deviceUID = L""; },
         [](ResetCall& call) { call.resultWord = nullptr; }},
        kSharePrefix);
}
