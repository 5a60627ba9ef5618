#include "cloudsession.h"

#include <optional>

#include "failure.h"
#include "password.h"
#include "signals.h"
#include "status.h"

namespace torvi {
namespace {

/// How a refused token looks, and every other HTTP error.
constexpr uint32_t kHttpError = 6;

Failure directoryFailure(const QString& what, int32_t word) {
    return Failure(Exit::Refused, QStringLiteral("%1: the cloud refused (result %2)").arg(what).arg(word))
        .withNumbers(0, std::nullopt);
}

}  // namespace

CloudSession::CloudSession(const GlobalOptions& global, const CloudOptions& options)
    : m_cloud(resolveCloud(global, options)) {
    if (m_cloud.tokens.access.isEmpty() && m_cloud.tokens.refresh.isEmpty()) {
        throw Failure(Exit::NotAuthenticated,
                      QStringLiteral("not signed in to the cloud %1").arg(m_cloud.host))
            .withAdvice(QStringLiteral("sign in with `torvi cloud signin`"));
    }
    if (m_cloud.tokens.access.isEmpty()) refresh(QStringLiteral("cloud"));
}

void CloudSession::refresh(const QString& what) {
    refreshUnless(what, QString());
}

void CloudSession::refreshUnless(const QString& what, const QString& useless) {
    requireClientSecret(m_cloud);
    if (!m_cloud.kept) {
        m_cloud.tokens = refreshTokens(m_cloud, what);
        return;
    }
    KeptCloud kept;
    const bool same = kept.belongsTo(m_cloud) && !kept.tokens().refresh.isEmpty();
    if (same) {
        m_cloud.tokens = kept.tokens();
        if (!useless.isEmpty() && m_cloud.tokens.access != useless) return;
    }
    m_cloud.tokens = refreshTokens(m_cloud, what);
    if (same) kept.keep(m_cloud);
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
