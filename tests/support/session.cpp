#include "support/session.h"

#include <stdexcept>

// A session of the web file manager that belongs to a node can't be had from outside: what makes it one is
// written here, and nowhere else.
#include "../../src/core/authcontext.h"

namespace wire {

std::string loginReply(const SessionOptions& options) {
    std::string reply = R"({"status":1,"sid":")" + options.sid + R"(","admingroup":"1","servername":"nas")";
    if (!options.slaveID.empty())
        reply += R"(,"nubo_cluster_status":1,"nubo_slave_id":")" + options.slaveID + "\"";
    return reply + "}";
}

SessionPtr makeSession(const SessionOptions& options) {
    RawServer::Options serverOptions;
    if (options.secure) serverOptions.certificate = Certificate::SelfSigned;
    const RawServer server({Reply::json(loginReply(options))}, serverOptions);
    wchar_t serverName[260] = {};
    bool isAdmin = false, isSlave = false;
    std::uint32_t result = 0;
    _WFM_AUTH_CONTEXT* context = nullptr;
    const std::uint32_t status = TorviLogin(
        L"127.0.0.1", server.port(), L"user", L"password", options.secure, L"computer", L"uid",
        options.agentName.empty() ? nullptr : options.agentName.c_str(), 1, 260, 0, nullptr, nullptr, nullptr,
        options.forwardedFor.empty() ? nullptr : options.forwardedFor.c_str(), L"1.0", 0, nullptr,
        options.fcgi, serverName, &isAdmin, &isSlave, &result, &context, 0, nullptr);
    SessionPtr session(context);
    if (status != 0 || session == nullptr) {
        throw std::runtime_error("the login of the test failed: dwStatus " + std::to_string(status) +
                                 ", result " + std::to_string(static_cast<std::int32_t>(result)));
    }
    if (options.proxyMode != 0)
        WFMSetProxyContext(session.get(), options.proxyMode, 0, options.proxyHost.c_str(), L"",
                           options.proxyUser.c_str(), options.proxyPassword.c_str());
    if (options.fileManager) useFileManager(*session);
    return session;
}

void useFileManager(_WFM_AUTH_CONTEXT& context) {
    context.bUseNuboCGI = false;
    context.bUseFcgi = false;
}

}  // namespace wire
