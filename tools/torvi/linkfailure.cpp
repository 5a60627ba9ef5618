#include "linkfailure.h"

#include "signals.h"
#include "status.h"

namespace torvi {

Failure linkFailure(const QString& what, uint32_t dwStatus, uint32_t resultWord) {
    constexpr uint32_t kMailFailed = 6;
    constexpr uint32_t kNoTime = 7;
    if (dwStatus != 0 || (resultWord != kMailFailed && resultWord != kNoTime))
        return callFailure(what, dwStatus, resultWord);
    const QString reason = resultWord == kMailFailed
                               ? QStringLiteral("the server could not send the mail")
                               : QStringLiteral("the server does not take that end of the link");
    return Failure(Exit::Refused, QStringLiteral("%1: %2 (result %3)").arg(what, reason).arg(resultWord))
        .withNumbers(dwStatus, static_cast<int32_t>(resultWord));
}

void checkLink(const QString& what, uint32_t dwStatus, uint32_t resultWord) {
    if (interrupted()) throwCancelled(what);
    if (dwStatus != 0 || resultWord != 0) throw linkFailure(what, dwStatus, resultWord);
}

}  // namespace torvi
