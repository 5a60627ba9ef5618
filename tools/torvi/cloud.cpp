#include "cloud.h"

#include <CLI/CLI.hpp>
#include "address.h"
#include "failure.h"
#include "keptcloud.h"
#include "password.h"

namespace torvi {
namespace {

const char* const kSecret = "client secret";

QString text(const std::optional<std::string>& value) {
    return QString::fromStdString(value.value_or(""));
}

/// The client secret or a token, of which no good one is empty.
QString fromFile(const std::optional<std::string>& file, const char* what) {
    return readTokenFile(text(file), QLatin1String(what));
}

Cloud namedCloud(const GlobalOptions& global, const CloudOptions& options) {
    const auto host = [](const char* what, const std::optional<std::string>& value) {
        return value ? parseHost(QLatin1String(what), text(value)) : QString();
    };
    Cloud cloud;
    cloud.host = host("--cloud", options.host);
    cloud.remoteHost = host("--remote-access", options.remoteHost);
    cloud.clientId = text(options.clientId);
    cloud.tls = global.tls.value_or(true);
    return cloud;
}

/// Whether the options name another application, or another service.
bool namesAnother(const Cloud& cloud, const CloudOptions& options, const KeptCloud& kept) {
    return (options.host && cloud.host != kept.text("cloud")) ||
           (options.clientId && cloud.clientId != kept.text("clientId"));
}

/// What stands there already, as far as nothing else was said.
void takeKept(Cloud& cloud, const CloudOptions& options, const GlobalOptions& global, const KeptCloud& kept,
              StoredProxy& proxy) {
    if (kept.empty() || namesAnother(cloud, options, kept)) return;
    cloud.host = kept.text("cloud");
    cloud.clientId = kept.text("clientId");
    if (!options.remoteHost) cloud.remoteHost = kept.text("remoteAccess");
    cloud.tls = global.tls.value_or(kept.tls());
    if (!kept.belongsTo(cloud)) return;
    cloud.clientSecret = kept.text("clientSecret");
    cloud.tokens = kept.tokens();
    cloud.kept = true;
    proxy = {kept.text("proxy"), kept.text("proxyUser"), std::nullopt};
}

/// With what stands nowhere but in files and the environment, or has to be asked for.
void complete(Cloud& cloud, const CloudOptions& options, const GlobalOptions& global,
              const StoredProxy& proxy) {
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
    if (options.accessTokenFile) {
        cloud.tokens = {fromFile(options.accessTokenFile, "access token"), QString()};
        cloud.kept = false;
    }
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
    command.add_option("--access-token-file", accessTokenFile, "Read an access token so")
        ->type_name("FILE")
        ->group(group);
}

Cloud resolveCloud(const GlobalOptions& global, const CloudOptions& options) {
    Cloud cloud = namedCloud(global, options);
    StoredProxy proxy;
    if (KeptCloud::exists()) takeKept(cloud, options, global, KeptCloud(), proxy);
    complete(cloud, options, global, proxy);
    return cloud;
}

Cloud resolveCloud(const GlobalOptions& global, const CloudOptions& options, const KeptCloud& kept) {
    Cloud cloud = namedCloud(global, options);
    StoredProxy proxy;
    takeKept(cloud, options, global, kept, proxy);
    complete(cloud, options, global, proxy);
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

}  // namespace torvi
