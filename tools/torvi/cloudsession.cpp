#include "cloudsession.h"

#include "failure.h"
#include "keptcloud.h"
#include "password.h"
#include "signals.h"
#include "status.h"

namespace torvi {
namespace {

Failure directoryFailure(const QString& what, int32_t word) {
    return Failure(Exit::Refused, QStringLiteral("%1: the cloud refused (result %2)").arg(what).arg(word))
        .withNumbers(0, std::nullopt);
}

CloudTokens newTokens(const Cloud& cloud, const QString& what) {
    try {
        return refreshTokens(cloud, what);
    } catch (const Failure& failure) {
        if (failure.exit() != Exit::NotAuthenticated) throw;
        throw withSigninAdvice(failure);
    }
}

}  // namespace

CloudSession::CloudSession(const GlobalOptions& global, const CloudOptions& options)
    : m_cloud(resolveCloud(global, options)) {
    if (m_cloud.tokens.access.isEmpty()) {
        throw withSigninAdvice(Failure(Exit::NotAuthenticated,
                                       QStringLiteral("not signed in to the cloud %1").arg(m_cloud.host)));
    }
}

void CloudSession::refresh(const QString& what) {
    if (m_cloud.tokens.refresh.isEmpty()) {
        throw withSigninAdvice(
            Failure(Exit::NotAuthenticated, QStringLiteral("%1: there is no refresh token").arg(what)));
    }
    refreshUnless(what, QString());
}

void CloudSession::refreshUnless(const QString& what, const QString& useless) {
    requireClientSecret(m_cloud);
    KeptCloud kept;
    if (!kept.belongsTo(m_cloud)) {
        throw withSigninAdvice(
            Failure(Exit::NotAuthenticated, QStringLiteral("%1: the session is there no more").arg(what)));
    }
    const CloudTokens others = kept.tokens();
    const bool replaced = !useless.isEmpty() && others.access != useless;
    m_cloud.tokens = others;
    if (replaced) return;
    m_cloud.tokens = newTokens(m_cloud, what);
    kept.keep(m_cloud.tokens);
    if (interrupted()) throwCancelled(what);
}

void CloudSession::renew(const QString& what, const QString& refusal) {
    const bool able = !m_cloud.tokens.refresh.isEmpty() && (!m_cloud.clientSecret.isEmpty() || hasTerminal());
    if (m_renewed || !able) throw tokenFailure(what, refusal);
    m_renewed = true;
    refreshUnless(what, m_cloud.tokens.access);
}

TokenOwner CloudSession::owner(const QString& what) {
    TokenOwner owner = tokenOwner(m_cloud, what);
    if (owner.refusal.isEmpty()) return owner;
    renew(what, owner.refusal);
    owner = tokenOwner(m_cloud, what);
    if (!owner.refusal.isEmpty()) throw tokenFailure(what, owner.refusal);
    return owner;
}

void CloudSession::ask(const QString& what, const std::function<CloudAnswer(const Cloud&)>& call) {
    CloudAnswer answer = call(m_cloud);
    if (interrupted()) throwCancelled(what);
    if (answer.dwStatus == kHttpError) {
        const QString refusal = tokenOwner(m_cloud, what).refusal;
        if (!refusal.isEmpty()) {
            renew(what, refusal);
            answer = call(m_cloud);
            if (interrupted()) throwCancelled(what);
        }
    }
    if (answer.dwStatus != 0) throw statusFailure(what, answer.dwStatus);
    if (answer.word != 0) throw directoryFailure(what, answer.word);
}

}  // namespace torvi
