#pragma once

#include <string>

#include "loginargs.h"

// What the tests of the two activations share.
namespace wire {

/// TorviActivateSid, on a session that has a slave id.
struct ActivateSession {
    const wchar_t* server = kServer;
    uint32_t port = 80;
    SessionPtr own;
    _WFM_AUTH_CONTEXT* session;
    const wchar_t* slaveID = nullptr;
    uint32_t result = 0xABCD;
    uint32_t* resultWord = &result;

    explicit ActivateSession(const SessionOptions& options = node()) : own(makeSession(options)) {
        session = own.get();
    }
    explicit ActivateSession(const RawServer& at) : ActivateSession() { port = at.port(); }

    static SessionOptions node() {
        SessionOptions options;
        options.slaveID = "Node7";
        return options;
    }
    uint32_t run() { return TorviActivateSid(server, port, session, slaveID, resultWord); }
    int32_t signedResult() const { return static_cast<int32_t>(result); }
    void nameNode(const wchar_t* node) { slaveID = node; }
    static std::string function() { return "TorviActivateSid"; }
    static std::string token() { return "sid123"; }
};

/// TorviActivateSid2.
struct ActivateToken : AnyLogin {
    const wchar_t* tokenText = L"token-1";
    const wchar_t* slaveID = nullptr;
    const wchar_t* ownSlaveID = L"Node7";
    uint32_t proxyMode = 0;
    const wchar_t* proxyHost = nullptr;
    const wchar_t* proxyUser = nullptr;
    const wchar_t* proxyPassword = nullptr;
    const wchar_t* forwardedFor = nullptr;
    bool isCluster = false;

    ActivateToken() { port = 80; }
    explicit ActivateToken(const RawServer& at) { port = at.port(); }

    uint32_t run() {
        return TorviActivateSid2(server, port, secure, tokenText, slaveID, agent, ownSlaveID, capacity,
                                 proxyMode, proxyHost, proxyUser, proxyPassword, forwardedFor, isCluster,
                                 resultWord, serverName, isAdmin, context);
    }
    void nameNode(const wchar_t* node) { slaveID = node; }
    static std::string function() { return "TorviActivateSid2"; }
    static std::string token() { return "token-1"; }
};

/// Where an activation goes.
inline std::string activationTarget(const std::string& token, const std::string& prefix = {}) {
    return "/" + prefix + "cgi-bin/torvi/torvisrvPrepare.cgi?func=activate&token=" + token;
}

inline const char* const kActivated = R"({"status":1,"admingroup":"1","servername":"nas-1"})";

}  // namespace wire
