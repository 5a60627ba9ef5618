#include "failure.h"
#include "linkcommands.h"
#include "linkrecords.h"
#include "linkupdate.h"
#include "output.h"

namespace torvi {
namespace {

struct UpdateOptions {
    std::vector<std::string> links;
    LinkTermOptions terms;
    bool noCode = false;
    std::string name;

    /// Whether anything but the name is to change.
    bool changesTerms() const {
        return noCode || !terms.code.empty() || !terms.expires.empty() || !terms.host.empty() ||
               terms.https.has_value() || terms.local;
    }
};

/// The server is told all terms at once, and tells none of them: what isn't given would be lost unseen.
void requireWhole(const QString& what, const UpdateOptions& options) {
    if (!options.changesTerms() && options.name.empty())
        throw Failure(Exit::Usage, QStringLiteral("%1: what is to change?").arg(what));
    const bool codeSaid = options.noCode || !options.terms.code.empty();
    if (options.changesTerms() && !(codeSaid && !options.terms.expires.empty())) {
        throw Failure(Exit::Usage,
                      QStringLiteral("%1: access code and end are set together: give --code or --no-code, "
                                     "and --expires")
                          .arg(what));
    }
    if (!options.name.empty() && options.links.size() > 1)
        throw Failure(Exit::Usage, QStringLiteral("%1: --name is for one link").arg(what));
}

void update(const GlobalOptions& global, const UpdateOptions& options) {
    const QString what = QStringLiteral("link update");
    requireWhole(what, options);
    const LinkEnd end = parseLinkEnd(what, QString::fromStdString(options.terms.expires));
    std::vector<LinkRecord> links;
    {
        const Session session(resolveConnection(global, Needs::Login));
        const std::wstring node = session.node();
        const QString ids = joinedIds(idsOf(requireLinks(session, what, options.links)));
        if (options.changesTerms())
            updateLinks(session, what, node, ids, LinkTerms(session, options.terms, end, node));
        if (!options.name.empty()) nameLink(session, what, node, ids, QString::fromStdString(options.name));
        links = requireLinks(session, what, options.links);
    }
    if (global.json) {
        Json json{{"links", toJson(links)}};
        if (options.changesTerms()) {
            json["accessCode"] = !options.noCode;
            json["expires"] = end.text().isEmpty() ? Json(nullptr) : Json(utf8(end.text()));
        }
        return printJson(json);
    }
    if (global.quiet) return;
    for (const LinkRecord& link : links)
        printLine(QStringLiteral("changed link %1 %2, %3").arg(link.id, link.name, link.url));
}

}  // namespace

void addLinkUpdateCommand(const Commands& commands) {
    CLI::App* command = commands.app.add_subcommand("update", "Change links, or the name of one");
    auto options = std::make_shared<UpdateOptions>();
    command->add_option("links", options->links, "Their ids or addresses")->type_name("")->required();
    options->terms.addTo(*command);
    command->add_flag("--no-code", options->noCode, "Without an access code from now on")->excludes("--code");
    command->add_option("--name", options->name, "What the link is called from now on")->type_name("NAME");
    runs(commands, command, options, update);
}

}  // namespace torvi
