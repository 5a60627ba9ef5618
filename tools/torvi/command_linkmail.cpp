#include "linkcommands.h"
#include "linkmail.h"
#include "linkrecords.h"
#include "output.h"
#include "session.h"

namespace torvi {
namespace {

struct MailOptions {
    std::vector<std::string> links;
    LinkMail mail;
};

void mailLinks(const GlobalOptions& global, const MailOptions& options) {
    const QString to = QString::fromStdString(options.mail.to);
    const QString what = QStringLiteral("link mail to %1").arg(to);
    QStringList ids;
    {
        const Session session(resolveConnection(global, Needs::Login));
        ids = idsOf(requireLinks(session, what, options.links));
        sendMail(session, what, session.node(), options.mail, ids);
    }
    if (global.json) {
        Json all = Json::array();
        for (const QString& id : ids) all.push_back(utf8(id));
        return printJson(Json{{"to", utf8(to)}, {"ids", all}, {"mailed", true}});
    }
    if (!global.quiet) printLine(QStringLiteral("mailed %1 to %2").arg(ids.join(QStringLiteral(", ")), to));
}

}  // namespace

void addLinkMailCommand(const Commands& commands) {
    CLI::App* command = commands.app.add_subcommand("mail", "Have the server mail links to somebody");
    auto options = std::make_shared<MailOptions>();
    command->add_option("links", options->links, "Their ids or addresses")->type_name("")->required();
    command->add_option("--to", options->mail.to, "Whom to mail them to")->type_name("ADDRESS")->required();
    options->mail.addTextTo(*command);
    command->add_option("--code", options->mail.code, "The access code that the mail tells")
        ->type_name("CODE");
    runs(commands, command, options, mailLinks);
}

}  // namespace torvi
