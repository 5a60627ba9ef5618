#pragma once

#include <QString>
#include <optional>

#include "options.h"

namespace torvi {

/// A server as it is named on the command line. An IPv6 address stands in brackets.
struct Address {
    QString host;
    std::optional<int> port;
};

/// HOST or HOST:PORT. Throws the usage failure of `what` for anything else.
Address parseAddress(const QString& what, const QString& text);
/// HOST alone, of something whose port isn't anybody's choice.
QString parseHost(const QString& what, const QString& text);
/// The server that is named, empty if none is.
Address namedServer(const GlobalOptions& options);

}  // namespace torvi
