#include "linkcommands.h"
#include "linkmaker.h"
#include "output.h"

namespace torvi {
namespace {

QString codeText(const LinkTermOptions& terms) {
    return terms.code.empty() ? QStringLiteral("no access code") : QStringLiteral("with an access code");
}

QString lifeText(const QString& end) {
    if (end.isEmpty()) return QStringLiteral("no end");
    return QStringLiteral("it ends %1").arg(end);
}

void print(const GlobalOptions& global, const LinkRequest& request, const MadeLink& made,
           const QString& verb) {
    if (global.json) {
        Json json{{"id", utf8(made.id)}, {"url", utf8(made.url)}, {"paths", request.paths}};
        if (!made.name.isEmpty()) json["name"] = utf8(made.name);
        json["new"] = made.isNew;
        json["accessCode"] = !request.terms.code.empty();
        json["expires"] = made.end.isEmpty() ? Json(nullptr) : Json(utf8(made.end));
        json["mailedTo"] = request.mail.to.empty() ? Json(nullptr) : Json(request.mail.to);
        return printJson(json);
    }
    // The address stands alone in its line, for copying.
    printLine(made.url);
    if (global.quiet) return;
    QString line =
        QStringLiteral("%1 link %2, %3, %4").arg(verb, made.id, codeText(request.terms), lifeText(made.end));
    if (!request.mail.to.empty())
        line += QStringLiteral(", mailed to %1").arg(QString::fromStdString(request.mail.to));
    printLine(line);
}

void create(const GlobalOptions& global, const LinkRequest& request) {
    MadeLink made;
    {
        const Session session(resolveConnection(global, Needs::Login));
        made = LinkMaker(session, QStringLiteral("link create"), request).create();
    }
    print(global, request, made, made.isNew ? QStringLiteral("made") : QStringLiteral("changed"));
}

struct GetOptions {
    std::string path;
    LinkTermOptions terms;
    std::string mailTo;
};

void get(const GlobalOptions& global, const GetOptions& options) {
    LinkRequest request;
    request.paths = {options.path};
    request.terms = options.terms;
    request.mail.to = options.mailTo;
    MadeLink made;
    {
        const Session session(resolveConnection(global, Needs::Login));
        made = LinkMaker(session, QStringLiteral("link get"), request).get();
    }
    print(global, request, made, QStringLiteral("it is"));
}

CLI::Option* addMailOption(CLI::App& command, std::string& to) {
    return command.add_option("--mail", to, "Have the server mail the link to this address")
        ->type_name("ADDRESS");
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
    addMailOption(*createCommand, request->mail.to);
    request->mail.addTextTo(*createCommand);
    runs(commands, createCommand, request, create);

    CLI::App* getCommand =
        commands.app.add_subcommand("get",
                                    "Tell the link of one path, made if there is none. It takes the "
                                    "access code and the end that stand here, or loses them");
    auto options = std::make_shared<GetOptions>();
    getCommand->add_option("path", options->path, "The path on the server")->type_name("")->required();
    options->terms.addTo(*getCommand);
    addMailOption(*getCommand, options->mailTo);
    runs(commands, getCommand, options, get);
}

}  // namespace torvi
