#include <memory>

#include "commands.h"
#include "output.h"
#include "people.h"
#include "session.h"

namespace torvi {
namespace {

struct UserOptions {
    std::string filter;
    std::string directory;
    bool directories = false;
    bool all = false;
    bool refresh = false;
    Window window;
};

void listDirectories(const GlobalOptions& global, const Session& session) {
    const std::vector<Domain> domains = directoryDomains(session, QStringLiteral("users: directories"));
    if (global.json) {
        Json all = Json::array();
        for (const Domain& domain : domains)
            all.push_back(Json{{"netbios", utf8(domain.netbios)}, {"domain", utf8(domain.name)}});
        return printJson(Json{{"count", domains.size()}, {"directories", all}});
    }
    if (domains.empty()) {
        if (!global.quiet) printLine(QStringLiteral("The server knows no directory"));
        return;
    }
    Table table;
    table.addColumn(QStringLiteral("NETBIOS"));
    table.addColumn(QStringLiteral("DOMAIN"));
    for (const Domain& domain : domains) table.addRow({domain.netbios, domain.name});
    table.print(stdout);
}

void printUsers(const GlobalOptions& global, const UserOptions& options, const People& users) {
    const size_t count = users.people.size();
    if (count > 0) {
        Table table;
        for (const char* title : {"USER", "SYNC", "INVITATIONS", "DESCRIPTION"})
            table.addColumn(QLatin1String(title));
        for (const Person& user : users.people)
            table.addRow({user.name, syncText(user.sync), policyText(user.policy), user.description});
        table.print(stdout);
    }
    if (global.quiet) return;
    if (count == 0 && users.total == 0) return printLine(QStringLiteral("There are none"));
    if (count < users.total) {
        printLine(count == 0 ? QStringLiteral("None of %1").arg(users.total)
                             : QStringLiteral("%1 to %2 of %3")
                                   .arg(options.window.offset + 1)
                                   .arg(options.window.offset + count)
                                   .arg(users.total));
    }
}

void listUsers(const GlobalOptions& global, const Session& session, const UserOptions& options) {
    PeopleQuery query;
    const QString what = QStringLiteral("users");
    if (!options.directory.empty())
        query.domain = findDomain(session, what, QString::fromStdString(options.directory));
    query.filter = QString::fromStdString(options.filter);
    query.all = options.all;
    query.refresh = options.refresh;
    query.window = options.window;
    const People users = userList(session, what, query);
    if (!global.json) return printUsers(global, options, users);
    Json all = Json::array();
    for (const Person& user : users.people) {
        Json json = {{"name", utf8(user.name)}, {"sync", user.sync}, {"policy", utf8(user.policy)}};
        json["description"] = user.description.isEmpty() ? Json(nullptr) : Json(utf8(user.description));
        all.push_back(json);
    }
    printJson(Json{{"directory", query.domain ? Json(utf8(query.domain->netbios)) : Json(nullptr)},
                   {"total", users.total},
                   {"offset", options.window.offset},
                   {"count", users.people.size()},
                   {"users", all}});
}

void users(const GlobalOptions& global, const UserOptions& options) {
    const Session session(resolveConnection(global, Needs::Login));
    if (options.directories) {
        listDirectories(global, session);
    } else {
        listUsers(global, session, options);
    }
}

}  // namespace

void addUsersCommand(const Commands& commands) {
    CLI::App* command =
        commands.app.add_subcommand("users", "List the people whom a folder can be shared with");
    auto options = std::make_shared<UserOptions>();
    command->add_option("--filter", options->filter, "Only those in whose name this is, in any case")
        ->type_name("TEXT");
    auto* directory =
        command
            ->add_option("--directory", options->directory,
                         "Those of this directory domain, by either of its names; not the server's own")
            ->type_name("NAME");
    command->add_flag("--directories", options->directories, "List the directory domains in their place")
        ->excludes(directory);
    command->add_flag("--all", options->all, "Those, too, who may not sync");
    command->add_flag("--refresh", options->refresh, "Have the server look anew");
    options->window.addTo(*command);
    options->window.addPagesTo(*command, "Users");
    runs(commands, command, options, users);
}

}  // namespace torvi
