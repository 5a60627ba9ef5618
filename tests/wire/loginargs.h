#pragma once

#include <algorithm>
#include <iterator>
#include <string>

#include "support/session.h"
#include "support/wire.h"
#include "support/xmlreplies.h"

namespace wire {

/// What the arguments of all logins have in common, good ones until a test changes them, and what came back.
struct AnyLogin {
    const wchar_t* server = kServer;
    uint32_t port = 0;
    const wchar_t* user = L"user";
    const wchar_t* password = L"password";
    bool secure = false;
    const wchar_t* agent = nullptr;
    uint32_t capacity = 260;
    const uint32_t* timeout = nullptr;
    wchar_t name[260];
    wchar_t* serverName = name;
    bool admin = true;
    bool* isAdmin = &admin;
    uint32_t result = 0xABCD;
    uint32_t* resultWord = &result;
    _WFM_AUTH_CONTEXT* made = nullptr;
    _WFM_AUTH_CONTEXT** context = &made;

    AnyLogin() { std::fill(std::begin(name), std::end(name), L'#'); }
    AnyLogin(const AnyLogin&) = delete;
    AnyLogin& operator=(const AnyLogin&) = delete;
    ~AnyLogin() { WFMFreeAuthContext(made); }

    int32_t signedResult() const { return static_cast<int32_t>(result); }
};

/// Those of the calls that go through a proxy and may act for someone else.
struct LoginThroughProxy : AnyLogin {
    const wchar_t* computer = L"computer";
    const wchar_t* uid = L"uid";
    uint32_t deviceType = 1;
    uint32_t proxyMode = 0;
    const wchar_t* proxyHost = nullptr;
    const wchar_t* proxyUser = nullptr;
    const wchar_t* proxyPassword = nullptr;
    const wchar_t* forwardedFor = nullptr;
    const wchar_t* clientVersion = L"5.1";
};

/// TorviLogin.
struct LoginArgs : LoginThroughProxy {
    bool fcgi = false;
    bool slave = true;
    bool* isSlave = &slave;
    _WFM_NETWORK_INFORMATION* network = nullptr;

    explicit LoginArgs(const RawServer& at) { port = at.port(); }

    uint32_t run() {
        return TorviLogin(server, static_cast<int32_t>(port), user, password, secure, computer, uid, agent,
                          deviceType, capacity, proxyMode, proxyHost, proxyUser, proxyPassword, forwardedFor,
                          clientVersion, 7, timeout, fcgi, serverName, isAdmin, isSlave, resultWord, context,
                          7, network);
    }
};

/// WFMLogin.
struct FileManagerLogin : LoginThroughProxy {
    FileManagerLogin() = default;
    explicit FileManagerLogin(const RawServer& at) { port = at.port(); }

    uint32_t run() {
        return WFMLogin(server, port, user, password, secure, computer, uid, agent, deviceType, capacity,
                        proxyMode, proxyHost, proxyUser, proxyPassword, forwardedFor, clientVersion, 7,
                        timeout, serverName, isAdmin, resultWord, context);
    }
    static std::string function() { return "WFMLogin"; }
    /// A login that the server accepted. Empty texts aren't sent.
    static std::string accepted(const std::string& sid, const std::string& name = {},
                                const std::string& isAdmin = {}) {
        std::string reply = R"({"status":1)";
        if (!sid.empty()) reply += R"(,"sid":")" + sid + '"';
        if (!name.empty()) reply += R"(,"servername":")" + name + '"';
        if (!isAdmin.empty()) reply += R"(,"admingroup":")" + isAdmin + '"';
        return reply + "}";
    }
};

/// WFMLoginStep2.
struct SecondStep : AnyLogin {
    bool isAnswer = false;
    const wchar_t* code = L"123456";
    int something = 0;
    void* last = &something;

    SecondStep() = default;
    explicit SecondStep(const RawServer& at) { port = at.port(); }

    uint32_t run() {
        return WFMLoginStep2(server, port, user, password, isAnswer, code, secure, agent, capacity, 7, 7,
                             timeout, serverName, isAdmin, resultWord, context, last);
    }
    static std::string function() { return "WFMLoginStep2"; }
    static std::string accepted(const std::string& sid, const std::string& name = {},
                                const std::string& isAdmin = {}) {
        const auto given = [](const std::string& key, const std::string& text) {
            return text.empty() ? text : element(key, text);
        };
        return document(element("authPassed", "1") + given("authSid", sid) + given("servername", name) +
                        given("isAdmin", isAdmin));
    }
};

inline std::wstring slaveOf(const _WFM_AUTH_CONTEXT* context) {
    wchar_t id[260];
    uint32_t capacity = 260;
    EXPECT_EQ(WFMGetSlaveID(context, &capacity, id), 0u);
    return id;
}

inline std::wstring sidOf(const _WFM_AUTH_CONTEXT* context) {
    wchar_t sid[2048];
    uint32_t capacity = 2048;
    EXPECT_EQ(WFMGetSid(context, &capacity, sid), 0u);
    return sid;
}

inline bool usesSyncService(const _WFM_AUTH_CONTEXT* context) {
    bool sync = false;
    EXPECT_EQ(WFMGetUseNuboCGI(context, &sync), 0u);
    return sync;
}

/// A request of that session, which tells its service, its agent, its proxy and for whom it acts.
inline Request nextRequestOf(_WFM_AUTH_CONTEXT* context, const wchar_t* server = kServer) {
    const RawServer at({Reply::json(R"({"status":1,"size":"10"})")});
    uint32_t result = 0;
    int64_t size = 0;
    EXPECT_EQ(WFMGetFolderSize(context, server, at.port(), L"", L"a", L"/home", nullptr, &result, &size), 0u);
    return at.onlyRequest();
}

/// Where such a request goes.
inline std::string targetOf(const std::string& cgi, const std::string& sid) {
    return "/cgi-bin/" + cgi + "?func=properties&sid=" + sid + "&path=%2Fhome&total=1&name=a";
}

}  // namespace wire
