#pragma once

#include <QString>
#include <optional>
#include <string>

#include "connection.h"
#include "options.h"
#include "state.h"

namespace torvi {

/// What the commands on the cloud take besides. What isn't given is looked for elsewhere.
struct CloudOptions {
    std::optional<std::string> host;
    std::optional<std::string> remoteHost;
    std::optional<std::string> clientId;
    std::optional<std::string> clientSecretFile;
    std::optional<std::string> accessTokenFile;
    std::optional<std::string> refreshTokenFile;

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
/// Asks for the secret if it isn't known.
void requireClientSecret(Cloud& cloud);

/// The session in the cloud that outlives the commands, in a file that its owner alone can read. No other
/// process can use the file while this object lives.
class KeptCloud {
public:
    KeptCloud();

    /// Whether there is one. Doesn't wait.
    static bool exists();
    QString text(const char* key) const;
    bool tls() const;
    /// Whether it speaks of that application at that service.
    bool belongsTo(const Cloud& cloud) const;
    CloudTokens tokens() const { return {text("accessToken"), text("refreshToken")}; }
    void keep(const Cloud& cloud);
    void forget() { m_file.clear(); }

private:
    StateFile m_file;
};

}  // namespace torvi
