#include <memory>

#include "cloudcommands.h"
#include "cloudsession.h"
#include "output.h"

namespace torvi {
namespace {

constexpr const char* kFooter =
    "Options of the cloud (--cloud, --client-id, ...) may stand here too: see torvi cloud --help. So may "
    "proxy and output options: see torvi --help";

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

/// With a token that a user's consent brought, else as the application.
CloudTokens tokensOfSignin(const Cloud& cloud, const QString& what) {
    if (!cloud.tokens.access.isEmpty()) return cloud.tokens;
    if (!cloud.tokens.refresh.isEmpty()) return refreshTokens(cloud, what);
    return signInApplication(cloud, what);
}

void signin(const GlobalOptions& global, const CloudOptions& options) {
    const QString what = QStringLiteral("cloud signin");
    Cloud cloud = resolveCloud(global, options);
    // One begins anew, whatever is kept.
    if (cloud.kept) cloud.tokens = {};
    if (cloud.tokens.access.isEmpty()) requireClientSecret(cloud);
    cloud.tokens = tokensOfSignin(cloud, what);
    const TokenOwner owner = tokenOwner(cloud, what);
    if (!owner.refusal.isEmpty()) throw tokenFailure(what, owner.refusal);
    KeptCloud().keep(cloud);
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
    if (session.cloud().tokens.refresh.isEmpty()) {
        throw Failure(Exit::NotAuthenticated, QStringLiteral("%1: there is no refresh token").arg(what))
            .withAdvice(QStringLiteral("sign in with `torvi cloud signin`"));
    }
    session.refresh(what);
    const TokenOwner owner = session.owner(what);
    if (global.json) return printJson(toJson(session.cloud(), owner));
    if (!global.quiet) printLine(QStringLiteral("Good for %1 seconds").arg(owner.expiresIn));
}

void signout(const GlobalOptions& global, const CloudOptions& options) {
    const bool known = KeptCloud::exists() || options.host;
    const Cloud cloud = known ? resolveCloud(global, options) : Cloud();
    const bool was = !cloud.tokens.access.isEmpty();
    const bool ended = was && endToken(cloud);
    if (cloud.kept) KeptCloud().forget();
    if (global.json) return printJson(Json{{"cloud", utf8(cloud.host)}, {"signedIn", was}, {"ended", ended}});
    if (global.quiet) return;
    printLine(!was    ? QStringLiteral("Nobody is signed in")
              : ended ? QStringLiteral("Signed out")
                      : QStringLiteral("Forgotten; the cloud did not take the sign-out"));
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
    add("signin", "Sign in for later commands: as a user who gave a token, or as the application", signin);
    add("refresh", "Get other tokens by means of the refresh token", refresh);
    add("whoami", "Tell who is signed in", whoami);
    add("signout", "End the access token and forget what is kept", signout);
    addCloudDeviceCommands(own, options);
}

}  // namespace torvi
