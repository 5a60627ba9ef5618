#pragma once

#include <algorithm>
#include <iterator>

#include "support/session.h"
#include "support/wire.h"

namespace wire {

/// The arguments of a login, good ones until a test changes them, and what came back.
struct LoginArgs {
    const wchar_t* server = kServer;
    int32_t port = 0;
    const wchar_t* user = L"user";
    const wchar_t* password = L"password";
    bool secure = false;
    const wchar_t* computer = L"computer";
    const wchar_t* uid = L"uid";
    const wchar_t* agent = nullptr;
    uint32_t deviceType = 1;
    uint32_t capacity = 260;
    uint32_t proxyMode = 0;
    const wchar_t* proxyHost = nullptr;
    const wchar_t* proxyUser = nullptr;
    const wchar_t* proxyPassword = nullptr;
    const wchar_t* forwardedFor = nullptr;
    const wchar_t* clientVersion = L"5.1";
    const uint32_t* timeout = nullptr;
    bool fcgi = false;
    wchar_t name[260];
    wchar_t* serverName = name;
    bool admin = true, slave = true;
    bool* isAdmin = &admin;
    bool* isSlave = &slave;
    uint32_t result = 0xABCD;
    uint32_t* resultWord = &result;
    _WFM_AUTH_CONTEXT* made = nullptr;
    _WFM_AUTH_CONTEXT** context = &made;
    _WFM_NETWORK_INFORMATION* network = nullptr;

    LoginArgs() { std::fill(std::begin(name), std::end(name), L'#'); }
    explicit LoginArgs(const RawServer& at) : LoginArgs() { port = at.port(); }
    LoginArgs(const LoginArgs&) = delete;
    LoginArgs& operator=(const LoginArgs&) = delete;
    ~LoginArgs() { WFMFreeAuthContext(made); }

    uint32_t run() {
        return TorviLogin(server, port, user, password, secure, computer, uid, agent, deviceType, capacity,
                          proxyMode, proxyHost, proxyUser, proxyPassword, forwardedFor, clientVersion, 7,
                          timeout, fcgi, serverName, isAdmin, isSlave, resultWord, context, 7, network);
    }
    int32_t signedResult() const { return static_cast<int32_t>(result); }
};

}  // namespace wire
