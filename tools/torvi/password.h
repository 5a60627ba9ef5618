#pragma once

#include <QString>

namespace torvi {

/// The first line of the file, "-" being standard input. `what` names it in failures.
QString readSecretFile(const QString& path, const QString& what);
QString readPasswordFile(const QString& path);
/// Of a secret that is never empty: an empty line is as good as no file.
QString readTokenFile(const QString& path, const QString& what);
/// Asks on the terminal, with no echo. Fails as wrong usage where there is no terminal.
QString askPassword(const QString& prompt);

bool hasTerminal();
enum class Echo { Off, On };
/// Asks on a terminal that is there. `what` names the thing in failures.
QString askOnTerminal(const QString& prompt, const QString& what, Echo echo);

}  // namespace torvi
