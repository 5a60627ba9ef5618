#pragma once

#include <QString>
#include <cstdint>
#include <functional>

#include "cloud.h"
#include "cloudtokens.h"

namespace torvi {

/// The two numbers of a call on the directory.
struct CloudAnswer {
    uint32_t dwStatus = 0;
    int32_t word = 0;  ///< 0 also of a call that has none
};

/// Somebody who is signed in. An access token that the service doesn't take any more is replaced by means of
/// the refresh token, once.
class CloudSession {
public:
    CloudSession(const GlobalOptions& global, const CloudOptions& options);

    const Cloud& cloud() const { return m_cloud; }
    /// Throws unless both numbers are 0.
    void ask(const QString& what, const std::function<CloudAnswer(const Cloud&)>& call);
    TokenOwner owner(const QString& what);
    /// Other tokens in place of those of the kept session, whatever they are worth.
    void refresh(const QString& what);

private:
    void renew(const QString& what, const QString& refusal);
    /// Unless another command has got other tokens meanwhile, in place of the one that is of no use.
    void refreshUnless(const QString& what, const QString& useless);

    Cloud m_cloud;
    bool m_renewed = false;
};

}  // namespace torvi
