#pragma once

#include <QString>
#include <cstdint>
#include <exception>
#include <optional>

#include "exitcodes.h"

namespace torvi {

/// Ends a command: one line for the user, an exit code for the script, and the library's numbers where a
/// call gave them. Never thrown inside a callback: it must not pass through the library.
class Failure : public std::exception {
public:
    Failure(Exit exit, const QString& message) : m_exit(exit), m_message(message), m_utf8(message.toUtf8()) {}

    [[nodiscard]] Failure withNumbers(uint32_t dwStatus, std::optional<int32_t> resultWord) const {
        Failure same = *this;
        same.m_dwStatus = dwStatus;
        same.m_resultWord = resultWord;
        return same;
    }
    /// And what the user may do next.
    [[nodiscard]] Failure withAdvice(const QString& advice) const {
        Failure same = *this;
        same.m_message += QStringLiteral("; ") + advice;
        same.m_utf8 = same.m_message.toUtf8();
        return same;
    }

    const char* what() const noexcept override { return m_utf8.constData(); }
    Exit exit() const { return m_exit; }
    const QString& message() const { return m_message; }
    std::optional<uint32_t> dwStatus() const { return m_dwStatus; }
    std::optional<int32_t> resultWord() const { return m_resultWord; }

private:
    Exit m_exit;
    QString m_message;
    QByteArray m_utf8;
    std::optional<uint32_t> m_dwStatus;
    std::optional<int32_t> m_resultWord;
};

/// Ends a command whose failure the user has been told.
class AlreadyReported : public std::exception {
public:
    explicit AlreadyReported(Exit exit) : m_exit(exit) {}
    Exit exit() const { return m_exit; }

private:
    Exit m_exit;
};

/// Writes the one line to stderr and, with --json, the object to stdout.
void reportFailure(const Failure& failure, bool json);

}  // namespace torvi
