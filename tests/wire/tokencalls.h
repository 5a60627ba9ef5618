#pragma once

#include <algorithm>

#include "checksumcalls.h"
#include "directory.h"

namespace wire {

/// The arguments that the calls with a token record share.
struct TokenArgs : DirectoryArgs {
    const wchar_t* secret = L"s e&c/ret";
    const wchar_t* refreshToken = L"re=fresh";
    const wchar_t* tokenInfo = nullptr;
    _CLOUD_TOKEN_INFORMATION record;
    _CLOUD_TOKEN_INFORMATION* out = &record;

    TokenArgs() { std::fill_n(reinterpret_cast<char*>(&record), sizeof record, 'x'); }
    bool isUntouched() const { return isFilledWith('x'); }
    bool isEmpty() const { return isFilledWith('\0'); }

private:
    bool isFilledWith(char c) const {
        const char* bytes = reinterpret_cast<const char*>(&record);
        return std::all_of(bytes, bytes + sizeof record, [c](char byte) { return byte == c; });
    }
};

struct SigninArgs : TokenArgs {
    static constexpr const char* kName = "ZenoAPIAPPSignin";
    static constexpr const char* kNotUnderstood = "[WFM] ZenoAPIAPPSignin WFM_PARSE_XML_FAIL";
    uint32_t run() {
        return ZenoAPIAPPSignin(server, agent, appVersion, clientID, secret, secure, 0, nullptr, nullptr,
                                nullptr, nullptr, out);
    }
};

struct RefreshArgs : TokenArgs {
    static constexpr const char* kName = "ZenoAPIAPPRefreshToken";
    static constexpr const char* kNotUnderstood = "[WFM] ZenoAPIAPPRefreshToken: WFM_PARSE_XML_FAIL";
    uint32_t run() {
        return ZenoAPIAPPRefreshToken(server, agent, refreshToken, appVersion, clientID, secret, secure, 0,
                                      nullptr, nullptr, nullptr, nullptr, out);
    }
};

struct TokenInfoArgs : TokenArgs {
    static constexpr const char* kName = "ZenoAPIGetTokenInfo";
    static constexpr const char* kNotUnderstood = "[WFM] ZenoAPIGetTokenInfo FAIL(httpStatusCode=200)";
    uint32_t run() {
        return ZenoAPIGetTokenInfo(server, agent, token, appVersion, clientID, tokenInfo, secure, 0, nullptr,
                                   nullptr, nullptr, nullptr, out);
    }
};

/// The headers of a request in the application's own name, in their order.
inline const HeaderList& appHeaders() {
    static const HeaderList all = {{"Accept", "application/json"},
                                   {"X-VEXA-APP-ID", "desk-app"},
                                   {"X-VEXA-SUBAPP-ID", "desk-app"},
                                   {"X-VEXA-APP-VER", "1.2.3"}};
    return all;
}

/// The whole of a form that goes to the account service.
inline void expectCloudForm(const CloudServer& server, const std::string& path, const HeaderList& fields,
                            const HeaderList& ownHeaders) {
    const Request request = server.onlyRequest();
    expectRequestLine(request, "POST " + path + " HTTP/1.1");
    expectForm(request, fields);
    EXPECT_EQ(cloudHeaders(request), ownHeaders);
    HeaderList headers = formHeaders(server, request.bodySize, "Desk/7");
    headers.insert(headers.end(), ownHeaders.begin(), ownHeaders.end());
    expectHeaders(request, headers);
}

/// What the service answers to a request for a token.
inline const char* const kNewToken =
    R"({"access_token":"token-1","token_type":"bearer","refresh_token":"refresh-2","expires_in":3600,
        "email":"not@here.example","user_id":"none"})";

/// `kNewToken` and nothing else is in the record.
inline void expectNewToken(const TokenArgs& args) {
    const _CLOUD_TOKEN_INFORMATION& record = args.record;
    EXPECT_STREQ(record.access_token, L"token-1");
    EXPECT_STREQ(record.token_type, L"bearer");
    EXPECT_STREQ(record.refresh_token, L"refresh-2");
    EXPECT_EQ(record.expires_in, 3600);
    for (const wchar_t* empty :
         {record.error, record.error_description, record.email, record.display_name, record.user_id})
        EXPECT_STREQ(empty, L"");
}

}  // namespace wire
