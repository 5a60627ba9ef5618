#include "linkcommands.h"
#include "linkmaker.h"
#include "output.h"

namespace torvi {
namespace {

QString codeText(const LinkTermOptions& terms) {
    return terms.code.empty() ? QStringLiteral("no access code") : QStringLiteral("with an access code");
}

QString lifeText(const LinkEnd& end) {
    if (end.text().isEmpty()) return QStringLiteral("no end");
    return (end.isPeriod() ? QStringLiteral("it ends in %1") : QStringLiteral("it ends %1")).arg(end.text());
}

void print(const GlobalOptions& global, const LinkRequest& request, const MadeLink& made,
           const QString& verb) {
    if (global.json) {
        Json json{{"id", utf8(made.id)}, {"url", utf8(made.url)}, {"paths", request.paths}};
        if (!made.name.isEmpty()) json["name"] = utf8(made.name);
        if (made.isNew) json["new"] = *made.isNew;
        json["accessCode"] = !request.terms.code.empty();
        json["expires"] = request.end.text().isEmpty() ? Json(nullptr) : Json(utf8(request.end.text()));
        json["mailedTo"] = request.mail.to.empty() ? Json(nullptr) : Json(request.mail.to);
        return printJson(json);
    }
    // The address stands alone in its line, for copying.
    printLine(made.url);
    if (global.quiet) return;
    QString line = QStringLiteral("%1 link %2, %3, %4")
                       .arg(verb, made.id, codeText(request.terms), lifeText(request.end));
    if (!request.mail.to.empty())
        line += QStringLiteral(", mailed to %1").arg(QString::fromStdString(request.mail.to));
    printLine(line);
}

/// What can be wrong without a server is found before one is asked.
LinkRequest checked(const QString& what, LinkRequest request) {
    request.end = parseLinkEnd(what, QString::fromStdString(request.terms.expires));
    requireLinkable(what, request);
    return request;
}

void create(const GlobalOptions& global, const LinkRequest& options) {
    const QString what = QStringLiteral("link create");
    const LinkRequest request = checked(what, options);
    MadeLink made;
    {
        const Session session(resolveConnection(global, Needs::Login));
        made = LinkMaker(session, what, request).create();
    }
    print(global, request, made, *made.isNew ? QStringLiteral("made") : QStringLiteral("changed"));
}

void get(const GlobalOptions& global, const LinkRequest& options) {
    const QString what = QStringLiteral("link get");
    const LinkRequest request = checked(what, options);
    MadeLink made;
    {
        const Session session(resolveConnection(global, Needs::Login));
        made = LinkMaker(session, what, request).get();
    }
    print(global, request, made, QStringLiteral("it is"));
}

void addMailOptions(CLI::App& command, LinkMail& mail) {
    command.add_option("--mail", mail.to, "Have the server mail the link to this address")
        ->type_name("ADDRESS");
    mail.addTextTo(command);
}

}  // namespace

void addLinkMakeCommands(const Commands& commands) {
    CLI::App* createCommand = commands.app.add_subcommand("create", "Make a link of files or folders");
    auto request = std::make_shared<LinkRequest>();
    createCommand->add_option("paths", request->paths, "What it is to hold, of one folder")
        ->type_name("")
        ->required();
    request->terms.addTo(*createCommand);
    createCommand
        ->add_option("--name", request->name, "What the link is called; as its first file if not given")
        ->type_name("NAME");
    addMailOptions(*createCommand, request->mail);
    runs(commands, createCommand, request, create);

    CLI::App* getCommand =
        commands.app.add_subcommand("get",
                                    "Tell the link of one path, made if there is none. It takes the "
                                    "access code and the end that stand here, or loses them");
    auto wanted = std::make_shared<LinkRequest>();
    getCommand->add_option("path", wanted->paths, "The path on the server")
        ->type_name("")
        ->required()
        ->expected(1);
    wanted->terms.addTo(*getCommand);
    addMailOptions(*getCommand, wanted->mail);
    runs(commands, getCommand, wanted, get);
}

}  // namespace torvi
