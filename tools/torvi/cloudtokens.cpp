#include "cloudtokens.h"

#include <WebFileManAPI.h>

#include <memory>

#include "output.h"
#include "signals.h"
#include "status.h"

namespace torvi {
namespace {

/// Why the service refused, in its words; empty if it didn't.
QString refusalOf(const _CLOUD_TOKEN_INFORMATION& record) {
    const QString error = text(record.error);
    const QString description = text(record.error_description);
    if (error.isEmpty() || description.isEmpty()) return error + description;
    return QStringLiteral("%1 (%2)").arg(description, error);
}

/// The tokens of an answer.
CloudTokens tokensOf(const QString& what, uint32_t dwStatus, const _CLOUD_TOKEN_INFORMATION& record) {
    const QString refusal = refusalOf(record);
    const CloudTokens tokens = {text(record.access_token), text(record.refresh_token)};
    // What was given for them may be used up: whoever is to stop puts them away first.
    if (dwStatus == 0 && refusal.isEmpty() && !tokens.access.isEmpty()) return tokens;
    if (interrupted()) throwCancelled(what);
    if (!refusal.isEmpty()) {
        throw Failure(Exit::NotAuthenticated, QStringLiteral("%1: the cloud refused: %2").arg(what, refusal))
            .withNumbers(dwStatus, std::nullopt);
    }
    if (dwStatus != 0) throw statusFailure(what, dwStatus);
    throw Failure(Exit::Refused, QStringLiteral("%1: the cloud gave no token").arg(what));
}

}  // namespace

QString TokenOwner::name() const {
    if (userId.isEmpty()) return QStringLiteral("the application itself");
    if (displayName.isEmpty()) return email.isEmpty() ? userId : email;
    return email.isEmpty() ? displayName : QStringLiteral("%1 <%2>").arg(displayName, email);
}

CloudTokens signInApplication(const Cloud& cloud, const QString& what) {
    const auto record = std::make_unique<_CLOUD_TOKEN_INFORMATION>();
    const uint32_t dwStatus = ZenoAPIAPPSignin(
        wide(cloud.host).c_str(), agentName(), kAppVersion, wide(cloud.clientId).c_str(),
        wide(cloud.clientSecret).c_str(), cloud.tls, cloud.way.proxyMode, wide(cloud.way.proxyHost).c_str(),
        wide(cloud.way.proxyUser).c_str(), wide(cloud.way.proxyPassword).c_str(), nullptr, record.get());
    return tokensOf(what, dwStatus, *record);
}

CloudTokens refreshTokens(const Cloud& cloud, const QString& what) {
    const auto record = std::make_unique<_CLOUD_TOKEN_INFORMATION>();
    const uint32_t dwStatus = ZenoAPIAPPRefreshToken(
        wide(cloud.host).c_str(), agentName(), wide(cloud.tokens.refresh).c_str(), kAppVersion,
        wide(cloud.clientId).c_str(), wide(cloud.clientSecret).c_str(), cloud.tls, cloud.way.proxyMode,
        wide(cloud.way.proxyHost).c_str(), wide(cloud.way.proxyUser).c_str(),
        wide(cloud.way.proxyPassword).c_str(), nullptr, record.get());
    CloudTokens tokens = tokensOf(what, dwStatus, *record);
    // A service that sends no other goes on with this one.
    if (tokens.refresh.isEmpty()) tokens.refresh = cloud.tokens.refresh;
    return tokens;
}

TokenOwner tokenOwner(const Cloud& cloud, const QString& what) {
    const auto record = std::make_unique<_CLOUD_TOKEN_INFORMATION>();
    const uint32_t dwStatus = ZenoAPIGetTokenInfo(
        wide(cloud.host).c_str(), agentName(), wide(cloud.tokens.access).c_str(), kAppVersion,
        wide(cloud.clientId).c_str(), nullptr, cloud.tls, cloud.way.proxyMode,
        wide(cloud.way.proxyHost).c_str(), wide(cloud.way.proxyUser).c_str(),
        wide(cloud.way.proxyPassword).c_str(), nullptr, record.get());
    if (interrupted()) throwCancelled(what);
    TokenOwner owner;
    owner.refusal = refusalOf(*record);
    if (!owner.refusal.isEmpty()) return owner;
    if (dwStatus != 0) throw statusFailure(what, dwStatus);
    owner.userId = text(record->user_id);
    owner.email = text(record->email);
    owner.displayName = text(record->display_name);
    owner.expiresIn = record->expires_in;
    return owner;
}

uint32_t endToken(const Cloud& cloud) {
    return ZenoAPIAPPSignOut(wide(cloud.host).c_str(), wide(cloud.tokens.access).c_str(), agentName(),
                             kAppVersion, wide(cloud.clientId).c_str(), cloud.tls, cloud.way.proxyMode,
                             wide(cloud.way.proxyHost).c_str(), wide(cloud.way.proxyUser).c_str(),
                             wide(cloud.way.proxyPassword).c_str());
}

Failure tokenFailure(const QString& what, const QString& refusal) {
    return withSigninAdvice(
        Failure(Exit::NotAuthenticated,
                QStringLiteral("%1: the cloud doesn't take the access token: %2").arg(what, refusal)));
}

Failure withSigninAdvice(const Failure& failure) {
    return failure.withAdvice(QStringLiteral("sign in with `torvi cloud signin`"));
}

}  // namespace torvi
