#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "WebFileManAPI.h"
#include "support/rawserver.h"

namespace wire {

struct AuthContextDeleter {
    void operator()(_WFM_AUTH_CONTEXT* context) const { WFMFreeAuthContext(context); }
};
using SessionPtr = std::unique_ptr<_WFM_AUTH_CONTEXT, AuthContextDeleter>;

/// What a session in a wire test is like.
struct SessionOptions {
    std::string sid = "sid123";
    std::string slaveID;  ///< this node's own id; makes it a cluster session
    bool secure = false;
    bool fcgi = false;
    std::wstring agentName;     ///< empty: the transport's default
    std::wstring forwardedFor;  ///< sent, since the server is 127.0.0.1
    std::uint32_t proxyMode = 0;
    std::wstring proxyHost, proxyUser, proxyPassword;
    /// A session of the web file manager; see useFileManager().
    bool fileManager = false;
};

/// The login reply that makes such a session.
std::string loginReply(const SessionOptions& options);

/// Logs in at a server of its own, which is gone afterwards, and gives the session. Throws if that fails.
/// With a proxy the login itself goes without: the session gets the proxy afterwards.
SessionPtr makeSession(const SessionOptions& options = {});

/// Makes a session speak to the web file manager, as a login there would.
void useFileManager(_WFM_AUTH_CONTEXT& context);

}  // namespace wire
