#include <memory>

#include "cloudcommands.h"
#include "cloudsession.h"
#include "keptcloud.h"
#include "output.h"
#include "password.h"
#include "signals.h"
#include "status.h"

namespace torvi {
namespace {

constexpr const char* kFooter =
    "Options of the cloud (--cloud, --client-id, ...) may stand here too: see torvi cloud --help. So may "
    "proxy and output options: see torvi --help";

struct SigninOptions {
    std::shared_ptr<CloudOptions> cloud;
    std::optional<std::string> refreshTokenFile;
};

Json toJson(const Cloud& cloud, const TokenOwner& owner) {
    const auto orNull = [](const QString& text) { return text.isEmpty() ? Json(nullptr) : Json(utf8(text)); };
    return Json{{"cloud", utf8(cloud.host)},
                {"clientId", utf8(cloud.clientId)},
                {"userId", orNull(owner.userId)},
                {"email", orNull(owner.email)},
                {"displayName", orNull(owner.displayName)},
                {"expiresIn", owner.expiresIn},
                {"refreshable", !cloud.tokens.refresh.isEmpty()}};
}

/// By a refresh token that a user's consent brought, else as the application.
CloudTokens newTokens(Cloud& cloud, const SigninOptions& options, const QString& what) {
    if (!options.refreshTokenFile) return signInApplication(cloud, what);
    cloud.tokens.refresh =
        readTokenFile(QString::fromStdString(*options.refreshTokenFile), QStringLiteral("refresh token"));
    return refreshTokens(cloud, what);
}

void signin(const GlobalOptions& global, const SigninOptions& options) {
    const QString what = QStringLiteral("cloud signin");
    const bool given = options.cloud->accessTokenFile.has_value();
    Cloud cloud = resolveCloud(global, *options.cloud);
    if (!given) {
        requireClientSecret(cloud);
        KeptCloud kept;
        cloud.tokens = newTokens(cloud, options, what);
        // Before anything can fail: the refresh token was perhaps good for this once.
        kept.keep(cloud);
    }
    if (interrupted()) throwCancelled(what);
    const TokenOwner owner = tokenOwner(cloud, what);
    if (!owner.refusal.isEmpty()) throw tokenFailure(what, owner.refusal);
    if (given) KeptCloud().keep(cloud);
    if (global.json) return printJson(toJson(cloud, owner));
    if (!global.quiet) printLine(QStringLiteral("Signed in to %1 as %2").arg(cloud.host, owner.name()));
}

void whoami(const GlobalOptions& global, const CloudOptions& options) {
    CloudSession session(global, options);
    const TokenOwner owner = session.owner(QStringLiteral("cloud whoami"));
    const Cloud& cloud = session.cloud();
    if (global.json) return printJson(toJson(cloud, owner));
    printLine(QStringLiteral("%1 by way of %2 at %3, for %4 seconds")
                  .arg(owner.name(), cloud.clientId, cloud.host)
                  .arg(owner.expiresIn));
}

void refresh(const GlobalOptions& global, const CloudOptions& options) {
    const QString what = QStringLiteral("cloud refresh");
    CloudSession session(global, options);
    session.refresh(what);
    const TokenOwner owner = session.owner(what);
    if (global.json) return printJson(toJson(session.cloud(), owner));
    if (!global.quiet) printLine(QStringLiteral("Good for %1 seconds").arg(owner.expiresIn));
}

/// Why the cloud hasn't ended the tokens; empty if it has.
QString endTokens(const QString& what, Cloud& cloud, KeptCloud& kept) {
    uint32_t dwStatus = endToken(cloud);
    const bool renewable = cloud.kept && !cloud.tokens.refresh.isEmpty() && !cloud.clientSecret.isEmpty();
    try {
        // An access token that is over doesn't lead to the refresh token behind it; a new one does.
        if (dwStatus == kHttpError && renewable && !tokenOwner(cloud, what).refusal.isEmpty()) {
            cloud.tokens = refreshTokens(cloud, what);
            kept.keep(cloud.tokens);
            dwStatus = endToken(cloud);
        }
    } catch (const Failure& failure) {
        if (failure.exit() == Exit::Cancelled) throw;
        return failure.message();
    }
    if (dwStatus == 0) return {};
    if (interrupted()) throwCancelled(what);
    return statusFailure(what, dwStatus).message();
}

void signout(const GlobalOptions& global, const CloudOptions& options) {
    const QString what = QStringLiteral("cloud signout");
    // From the first look to the end, so that nobody signs in in between.
    KeptCloud kept;
    GlobalOptions way = global;
    // What is kept goes the way that it came.
    if (!options.accessTokenFile) way.tls.reset();
    Cloud cloud = kept.empty() && !options.host ? Cloud() : resolveCloud(way, options, kept);
    const bool was = !cloud.tokens.access.isEmpty();
    const QString loss = was ? endTokens(what, cloud, kept) : QString();
    if (cloud.kept) kept.forget();
    if (global.json) {
        return printJson(
            Json{{"cloud", utf8(cloud.host)}, {"signedIn", was}, {"ended", was && loss.isEmpty()}});
    }
    if (global.quiet) return;
    printLine(!was             ? QStringLiteral("Nobody is signed in")
              : loss.isEmpty() ? QStringLiteral("Signed out")
                               : QStringLiteral("Forgotten, but not ended: %1").arg(loss));
}

void addSigninCommand(const Commands& commands, const std::shared_ptr<CloudOptions>& cloud) {
    CLI::App* command = commands.app.add_subcommand(
        "signin", "Sign in for later commands: as a user who gave a token, or as the application");
    auto options = std::make_shared<SigninOptions>();
    options->cloud = cloud;
    command
        ->add_option("--refresh-token-file", options->refreshTokenFile,
                     "Read a refresh token so, which an application gets when a user lets it in")
        ->excludes(commands.app.get_option("--access-token-file"))
        ->type_name("FILE");
    runs(commands, command, options, signin);
}

}  // namespace

void addCloudCommand(const Commands& commands) {
    CLI::App* cloud = commands.app.add_subcommand("cloud", "Find NAS through the maker's cloud");
    cloud->require_subcommand(1);
    cloud->footer(kFooter);
    auto options = std::make_shared<CloudOptions>();
    options->addTo(*cloud);
    const Commands own{*cloud, commands.global, commands.action};
    const auto add = [&](const char* name, const char* help, auto run) {
        runs(own, cloud->add_subcommand(name, help), options, run);
    };
    addSigninCommand(own, options);
    add("refresh", "Get other tokens by means of the refresh token", refresh);
    add("whoami", "Tell who is signed in", whoami);
    add("signout", "End the access token and forget what is kept", signout);
    addCloudDeviceCommands(own, options);
    addCloudReachCommand(own, options);
}

}  // namespace torvi
