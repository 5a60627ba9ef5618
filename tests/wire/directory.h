#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "WebFileManAPI.h"
#include "checksumcalls.h"
#include "support/cloudplace.h"
#include "support/logcapture.h"
#include "support/wire.h"

namespace wire {

/// The arguments that the calls on the cloud share, good until they are spoilt.
struct DirectoryArgs {
    DirectoryArgs() = default;
    DirectoryArgs(const DirectoryArgs&) = delete;
    DirectoryArgs& operator=(const DirectoryArgs&) = delete;

    const std::wstring host{cloudAddress()->begin(), cloudAddress()->end()};
    const wchar_t* server = host.c_str();
    const wchar_t* agent = L"Desk/7";
    const wchar_t* appVersion = L"1.2.3";
    const wchar_t* clientID = L"desk-app";
    const wchar_t* token = L"token-1";
    bool secure = false;
};

/// The whole of a request with a token: its line, its headers, and the order of those that the cloud reads.
inline void expectTokenRequest(const CloudServer& server, const std::string& target) {
    const HeaderList own = {{"Accept", "application/json"},
                            {"X-VEXA-APP-ID", "desk-app"},
                            {"X-VEXA-SUBAPP-ID", "desk-app"},
                            {"X-VEXA-APP-VER", "1.2.3"},
                            {"Authorization", "Bearer token-1"}};
    const Request request = server.onlyRequest();
    EXPECT_EQ(cloudHeaders(request), own);
    HeaderList headers = baseHeaders(server, "Desk/7");
    headers.insert(headers.end(), own.begin(), own.end());
    expectGet(request, target, headers);
}

template <class Args>
using Spoilers = std::vector<void (*)(Args&)>;

/// Each spoilt set of arguments is refused with 8 and one line, unsent, and nothing that the caller gave is
/// touched: `spoilers`, and those that all these calls share.
template <class Args>
void expectRefusesEach(const std::string& function, Spoilers<Args> spoilers) {
    const Spoilers<Args> shared = {
        [](Args& args) { args.server = nullptr; },     [](Args& args) { args.server = L""; },
        [](Args& args) { args.agent = nullptr; },      [](Args& args) { args.agent = L""; },
        [](Args& args) { args.appVersion = nullptr; }, [](Args& args) { args.appVersion = L""; },
        [](Args& args) { args.clientID = nullptr; },   [](Args& args) { args.clientID = L""; }};
    spoilers.insert(spoilers.end(), shared.begin(), shared.end());
    const CloudServer server({Reply::json("{}")});
    LogCapture log;
    int number = 0;
    for (const auto spoil : spoilers) {
        SCOPED_TRACE(number++);
        log.clear();
        Args args;
        spoil(args);
        EXPECT_EQ(args.run(), 8u);
        EXPECT_TRUE(args.isUntouched());
        log.expectLines({"[WFM] " + function + " WFM_PARSE_XML_INVALID_PARAMETER"});
    }
    EXPECT_EQ(server.requestCount(), 0u);
}

/// The codes by which the directory refuses, and what they are to a client.
struct RefusalCode {
    const char* reply;
    int status;
};
inline const std::vector<RefusalCode>& refusalCodes() {
    static const std::vector<RefusalCode> all = {{R"({"code":1013001})", 3},
                                                 {R"({"code":1013002,"result":{}})", 4},
                                                 {R"({"code":"1070001","result":"none"})", 5},
                                                 {R"({"code":1,"result":null})", 1},
                                                 {R"({"code":-7})", 1},
                                                 {"{}", 1}};
    return all;
}

}  // namespace wire
