#pragma once

#include <QString>

#include "cloud.h"
#include "failure.h"

namespace torvi {

/// Whom an access token stands for.
struct TokenOwner {
    QString refusal;  ///< the service's words, if it doesn't take the token; the rest is empty then
    QString userId;   ///< empty for the application itself
    QString email;
    QString displayName;
    int32_t expiresIn = 0;  ///< seconds

    /// As people call them.
    QString name() const;
};

// These throw when the service refuses, in its words. A Ctrl-C doesn't cost the tokens that have come.
CloudTokens signInApplication(const Cloud& cloud, const QString& what);
CloudTokens refreshTokens(const Cloud& cloud, const QString& what);
/// Throws only when the service can't be asked.
TokenOwner tokenOwner(const Cloud& cloud, const QString& what);
/// The library's status: 0 if the service took it.
uint32_t endToken(const Cloud& cloud);

/// The failure of an access token that the service doesn't take.
Failure tokenFailure(const QString& what, const QString& refusal);
/// With what helps where no token does any more.
Failure withSigninAdvice(const Failure& failure);

}  // namespace torvi
