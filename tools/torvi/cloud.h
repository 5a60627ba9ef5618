#pragma once

#include <QString>
#include <cstdint>
#include <optional>
#include <string>

#include "connection.h"
#include "options.h"

namespace CLI {
class App;
}

namespace torvi {

class KeptCloud;

/// The version by which the program goes in the cloud.
constexpr const wchar_t* kAppVersion = L"" TORVI_VERSION;
/// How a refused token looks, and every other HTTP error.
constexpr uint32_t kHttpError = 6;

/// What the commands on the cloud take besides. What isn't given is looked for elsewhere.
struct CloudOptions {
    std::optional<std::string> host;
    std::optional<std::string> remoteHost;
    std::optional<std::string> clientId;
    std::optional<std::string> clientSecretFile;
    std::optional<std::string> accessTokenFile;

    void addTo(CLI::App& command);
};

struct CloudTokens {
    QString access;
    QString refresh;  ///< empty if there is none
};

/// The cloud as one application reaches it, and for whom.
struct Cloud {
    QString host;        ///< of the account service, whose port is that of the scheme
    QString remoteHost;  ///< of the remote-access service
    bool tls = true;
    QString clientId;
    QString clientSecret;  ///< empty if it isn't known
    Connection way;        ///< its proxy is the way there
    CloudTokens tokens;
    bool kept = false;  ///< the tokens are those of the kept session
};

/// Merges command line, environment and the kept session.
Cloud resolveCloud(const GlobalOptions& global, const CloudOptions& options);
/// With a session that is open already.
Cloud resolveCloud(const GlobalOptions& global, const CloudOptions& options, const KeptCloud& kept);
/// Asks for the secret if it isn't known.
void requireClientSecret(Cloud& cloud);

}  // namespace torvi
