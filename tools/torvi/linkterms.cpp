#include "linkterms.h"

#include <CLI/CLI.hpp>
#include "output.h"

namespace torvi {

void LinkTermOptions::addTo(CLI::App& command) {
    command.add_option("--code", code, "The access code that a visitor must give; none if not given")
        ->type_name("CODE");
    command
        .add_option("--expires", expires,
                    "never, a period (12h, 7d, 2w), or a date with or without a time, by the server's clock")
        ->type_name("END");
    command
        .add_option("--host", host,
                    "What the address names, as HOST or HOST:PORT; the server as it was reached if not given")
        ->type_name("HOST");
    command.add_flag_function(
        "--https,!--http", [this](int64_t count) { https = count > 0; },
        "Whether the address is of HTTPS; as the connection is if not given");
    command.add_flag("--local", local, "The link is for the local network alone");
}

LinkTerms::LinkTerms(const Session& session, const LinkTermOptions& options, const LinkEnd& until,
                     const std::wstring& node)
    : code(wide(QString::fromStdString(options.code))),
      end(until),
      secure(options.https.value_or(session.connection().tls)),
      host(session, options.host, secure, node),
      networkType(options.local ? 2 : 1) {}

}  // namespace torvi
