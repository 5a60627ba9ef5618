#include "secondstep.h"

#include <QUrl>
#include <iterator>

#include "failure.h"
#include "output.h"
#include "password.h"
#include "signals.h"
#include "status.h"

namespace torvi {
namespace {

// How logins tell of a second step.
enum SecondStepWord : uint32_t {
    kUnknownStep = 14,
    kCodeStep = 16,
    kQuestionStep = 17,
    kMailStep = 18,
    kNoTriesLeft = 19,
};

constexpr uint32_t kTextCapacity = 260;
constexpr const wchar_t* kLanguage = L"en";

/// A text that is sent as it stands in a URL.
std::wstring inUrl(const QString& text) {
    return wide(QString::fromLatin1(QUrl::toPercentEncoding(text)));
}

Failure refused(const QString& what, const QString& why) {
    return Failure(Exit::NotAuthenticated, QStringLiteral("%1: %2").arg(what, why))
        .withNumbers(kRefusedLogin, std::nullopt);
}

Failure noTriesLeft(const QString& what) {
    return refused(what, QStringLiteral("a second factor is wanted, and the tries are used up"));
}

class SecondStep {
public:
    SecondStep(const Connection& connection, const QString& what)
        : m_connection(connection),
          m_what(what),
          m_server(wide(connection.server)),
          m_port(static_cast<uint32_t>(connection.port)),
          m_user(wide(connection.user)),
          m_password(wide(connection.password.text())) {}

    Entrance withCode(const QString& code) const { return finish(false, code); }
    Entrance withAnswer(const QString& answer) const { return finish(true, answer); }

    QString question() const {
        // A question that fills the capacity has no terminator.
        wchar_t text[kTextCapacity + 1] = {};
        const uint32_t dwStatus =
            WFM2SVGetQuestion(m_server.c_str(), m_port, m_user.c_str(), m_password.c_str(), kLanguage,
                              m_connection.tls, kTextCapacity, text);
        check(dwStatus, QStringLiteral("security question"));
        return QString::fromWCharArray(text);
    }
    /// A mail that the server refused isn't told.
    void sendMail() const {
        const uint32_t dwStatus =
            WFM2SVSendEmail(m_server.c_str(), m_port, m_user.c_str(), m_password.c_str(), m_connection.tls);
        check(dwStatus, QStringLiteral("emergency mail"));
    }

private:
    Entrance finish(bool isAnswer, const QString& code) const {
        Entrance entrance;
        entrance.service = Service::Older;
        entrance.secondStep = true;
        wchar_t serverName[kTextCapacity] = {};
        uint32_t word = 0;
        _WFM_AUTH_CONTEXT* context = nullptr;
        bool reserved = false;
        const uint32_t dwStatus =
            WFMLoginStep2(m_server.c_str(), m_port, m_user.c_str(), m_password.c_str(), isAnswer,
                          inUrl(code).c_str(), m_connection.tls, agentName(), kTextCapacity, 0, 0,
                          &m_connection.timeoutMs, serverName, &entrance.admin, &word, &context, &reserved);
        entrance.context.reset(context);
        entrance.serverName = QString::fromWCharArray(serverName);
        if (context == nullptr) {
            if (interrupted()) throwCancelled(m_what);
            if (dwStatus == kRefusedLogin && word == kNoTriesLeft) throw noTriesLeft(m_what);
            if (dwStatus == kRefusedLogin && word == kUnknownStep) {
                throw refused(m_what, isAnswer ? QStringLiteral("the server refused the answer")
                                               : QStringLiteral("the server refused the code"));
            }
            throw aroundProxy(loginFailure(m_what, dwStatus, word));
        }
        WFMSetProxyContext(context, m_connection.proxyMode, 0, wide(m_connection.proxyHost).c_str(), L"",
                           wide(m_connection.proxyUser).c_str(), wide(m_connection.proxyPassword).c_str());
        return entrance;
    }

    void check(uint32_t dwStatus, const QString& thing) const {
        if (dwStatus == 0) return;
        if (interrupted()) throwCancelled(m_what);
        throw aroundProxy(statusFailure(QStringLiteral("%1: %2").arg(m_what, thing), dwStatus));
    }

    Failure aroundProxy(const Failure& failure) const {
        if (m_connection.proxyMode == 0 || failure.exit() != Exit::CannotConnect) return failure;
        return failure.withAdvice(QStringLiteral("the second step of a login does not go through the proxy"));
    }

    const Connection& m_connection;
    QString m_what;
    std::wstring m_server;
    uint32_t m_port;
    std::wstring m_user;
    std::wstring m_password;
};

/// Until the user has given one, by whichever way.
Entrance askUser(const SecondStep& step, uint32_t word) {
    bool asksQuestion = word == kQuestionStep;
    if (word == kMailStep) step.sendMail();
    QString hint =
        word == kMailStep ? QStringLiteral("An emergency code is on its way by mail.\n") : QString();
    for (;;) {
        if (asksQuestion) {
            const QString answer = askOnTerminal(printable(step.question()) + QLatin1Char(' '),
                                                 QStringLiteral("answer"), Echo::Off);
            if (!answer.isEmpty()) return step.withAnswer(answer);
            asksQuestion = false;
        }
        const QString given = askOnTerminal(
            hint + QStringLiteral("Security code (m: have one mailed, q: answer the question instead): "),
            QStringLiteral("code"), Echo::On);
        hint.clear();
        if (given == QLatin1String("m")) {
            step.sendMail();
            hint = QStringLiteral("An emergency code is on its way by mail.\n");
        } else if (given == QLatin1String("q")) {
            asksQuestion = true;
        } else if (!given.isEmpty()) {
            return step.withCode(given);
        }
    }
}

QString wantedText(uint32_t word) {
    switch (word) {
        case kQuestionStep:
            return QStringLiteral("the answer to the security question is wanted");
        case kMailStep:
            return QStringLiteral("an emergency code is wanted");
        default:
            return QStringLiteral("a security code is wanted");
    }
}

}  // namespace

bool wantsSecondStep(uint32_t resultWord) {
    return resultWord == kUnknownStep || (resultWord >= kCodeStep && resultWord <= kNoTriesLeft);
}

Entrance takeSecondStep(const Connection& connection, const QString& what, uint32_t resultWord) {
    if (resultWord == kNoTriesLeft) throw noTriesLeft(what);
    const SecondStep step(connection, what);
    const SecondFactor& given = connection.secondFactor;
    if (!given.code.isEmpty()) return step.withCode(given.code);
    if (!given.answer.isEmpty()) return step.withAnswer(given.answer);
    if (hasTerminal()) return askUser(step, given.mail ? kMailStep : resultWord);
    if (given.mail) {
        step.sendMail();
        throw refused(what, QStringLiteral("the server was asked to mail an emergency code"))
            .withAdvice(QStringLiteral("run it again with that as --code"));
    }
    QString question;
    if (resultWord == kQuestionStep) question = QStringLiteral(": ") + step.question();
    throw refused(what, wantedText(resultWord) + question)
        .withAdvice(QStringLiteral("give --code, --answer or --mail"));
}

}  // namespace torvi
