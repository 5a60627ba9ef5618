#include "cloud.h"

#include "failure.h"
#include "output.h"
#include "password.h"

namespace torvi {
namespace {

const char* const kFolder = "cloud";
const char* const kName = "session";
const char* const kSecret = "client secret";

QString text(const std::optional<std::string>& value) {
    return QString::fromStdString(value.value_or(""));
}

QString fromFile(const std::optional<std::string>& file, const char* what) {
    return file ? readSecretFile(text(file), QLatin1String(what)) : QString();
}

/// What stands there already, as far as nothing else was said.
void takeKept(Cloud& cloud, const CloudOptions& options, const GlobalOptions& global, StoredProxy& proxy) {
    if (!KeptCloud::exists()) return;
    const KeptCloud kept;
    if (!options.host) cloud.host = kept.text("cloud");
    if (!options.clientId) cloud.clientId = kept.text("clientId");
    if (!kept.belongsTo(cloud)) return;
    if (!options.remoteHost) cloud.remoteHost = kept.text("remoteAccess");
    cloud.tls = global.tls.value_or(kept.tls());
    // What went over TLS doesn't go in clear.
    if (kept.tls() && !cloud.tls) return;
    cloud.clientSecret = kept.text("clientSecret");
    cloud.tokens = kept.tokens();
    cloud.kept = true;
    proxy = {kept.text("proxy"), kept.text("proxyUser"), std::nullopt};
}

}  // namespace

void CloudOptions::addTo(CLI::App& command) {
    const char* group = "Cloud";
    command
        .add_option("--cloud", host, "Host name of the account service. Its port is 443, or 80 with --no-tls")
        ->envname("TORVI_CLOUD")
        ->type_name("HOST")
        ->group(group);
    command
        .add_option("--remote-access", remoteHost, "Host name of the remote-access service, if it is another")
        ->type_name("HOST")
        ->group(group);
    command.add_option("--client-id", clientId, "As which application")
        ->envname("TORVI_CLIENT_ID")
        ->type_name("ID")
        ->group(group);
    command
        .add_option("--client-secret-file", clientSecretFile,
                    "Read the application's secret from the file's first line; - is stdin")
        ->type_name("FILE")
        ->group(group);
    auto* access = command.add_option("--access-token-file", accessTokenFile, "Read an access token so")
                       ->type_name("FILE")
                       ->group(group);
    command
        .add_option("--refresh-token-file", refreshTokenFile,
                    "Read a refresh token so, which an application gets when a user lets it in")
        ->excludes(access)
        ->type_name("FILE")
        ->group(group);
}

Cloud resolveCloud(const GlobalOptions& global, const CloudOptions& options) {
    Cloud cloud;
    cloud.host = text(options.host);
    cloud.remoteHost = text(options.remoteHost);
    cloud.clientId = text(options.clientId);
    cloud.tls = global.tls.value_or(true);
    StoredProxy proxy;
    takeKept(cloud, options, global, proxy);
    if (cloud.host.isEmpty() || cloud.clientId.isEmpty()) {
        throw Failure(Exit::Usage,
                      QStringLiteral("no cloud: give --cloud and --client-id, or sign in with `torvi "
                                     "cloud signin`"));
    }
    if (cloud.remoteHost.isEmpty()) cloud.remoteHost = cloud.host;
    resolveProxy(cloud.way, global, proxy);
    if (options.clientSecretFile) {
        cloud.clientSecret = fromFile(options.clientSecretFile, kSecret);
    } else if (!qEnvironmentVariableIsEmpty("TORVI_CLIENT_SECRET")) {
        cloud.clientSecret = QString::fromUtf8(qgetenv("TORVI_CLIENT_SECRET"));
    }
    if (options.accessTokenFile || options.refreshTokenFile) {
        cloud.tokens = {fromFile(options.accessTokenFile, "access token"),
                        fromFile(options.refreshTokenFile, "refresh token")};
        cloud.kept = false;
    }
    return cloud;
}

void requireClientSecret(Cloud& cloud) {
    if (!cloud.clientSecret.isEmpty()) return;
    if (!hasTerminal()) {
        throw Failure(Exit::Usage, QStringLiteral("no client secret: give --client-secret-file or "
                                                  "TORVI_CLIENT_SECRET, or run on a terminal"));
    }
    cloud.clientSecret = askOnTerminal(QStringLiteral("Secret of the application %1: ").arg(cloud.clientId),
                                       QLatin1String(kSecret), Echo::Off);
}

KeptCloud::KeptCloud() : m_file(kFolder, kName) {}

bool KeptCloud::exists() {
    return StateFile::exists(kFolder, kName);
}

QString KeptCloud::text(const char* key) const {
    const Json& json = m_file.content();
    const auto value = json.find(key);
    if (value == json.end() || !value->is_string()) return {};
    return QString::fromStdString(value->get<std::string>());
}

bool KeptCloud::tls() const {
    const Json& json = m_file.content();
    const auto value = json.find("tls");
    return value == json.end() || !value->is_boolean() || value->get<bool>();
}

bool KeptCloud::belongsTo(const Cloud& cloud) const {
    return !cloud.host.isEmpty() && cloud.host == text("cloud") && cloud.clientId == text("clientId");
}

void KeptCloud::keep(const Cloud& cloud) {
    m_file.save(Json{{"cloud", utf8(cloud.host)},
                     {"remoteAccess", utf8(cloud.remoteHost)},
                     {"tls", cloud.tls},
                     {"clientId", utf8(cloud.clientId)},
                     {"clientSecret", utf8(cloud.clientSecret)},
                     {"accessToken", utf8(cloud.tokens.access)},
                     {"refreshToken", utf8(cloud.tokens.refresh)},
                     {"proxy", utf8(cloud.way.proxy)},
                     {"proxyUser", utf8(cloud.way.proxyUser)}});
}

}  // namespace torvi
