#include "address.h"

#include <QRegularExpression>

#include "failure.h"

namespace torvi {

Address parseAddress(const QString& what, const QString& text) {
    static const QRegularExpression form(QStringLiteral(R"(^(\[[^\]]+\]|[^:]+)(?::(\d{1,5}))?$)"));
    const QRegularExpressionMatch match = form.match(text);
    Address address{match.captured(1), std::nullopt};
    if (!match.captured(2).isEmpty()) address.port = match.captured(2).toInt();
    const int port = address.port.value_or(1);
    if (!match.hasMatch() || port < 1 || port > 65535)
        throw Failure(Exit::Usage, QStringLiteral("%1: %2 is not HOST or HOST:PORT").arg(what, text));
    return address;
}

QString parseHost(const QString& what, const QString& text) {
    const Address address = parseAddress(what, text);
    if (address.port)
        throw Failure(Exit::Usage, QStringLiteral("%1: %2 is not a HOST without a port").arg(what, text));
    return address.host;
}

Address namedServer(const GlobalOptions& options) {
    if (!options.server || options.server->empty()) return {};
    return parseAddress(QStringLiteral("--server"), QString::fromStdString(*options.server));
}

}  // namespace torvi
