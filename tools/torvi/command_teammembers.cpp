#include <memory>

#include "output.h"
#include "people.h"
#include "session.h"
#include "teamcommands.h"
#include "teamowner.h"
#include "teamrecords.h"

namespace torvi {
namespace {

struct MembersOptions {
    std::string folder;
    std::string directory;
    std::string filter;
    bool candidates = false;
    bool all = false;
    bool refresh = false;
};

/// The server's own users come first.
std::vector<std::optional<Domain>> placesOf(const Session& session, const QString& what,
                                            const std::string& directory) {
    if (!directory.empty()) return {findDomain(session, what, QString::fromStdString(directory))};
    std::vector<std::optional<Domain>> places = {std::nullopt};
    for (const Domain& domain : directoryDomains(session, what)) places.emplace_back(domain);
    return places;
}

std::vector<SharePerson> askMembers(const Session& session, const QString& what, const TeamRecord& folder,
                                    const MembersOptions& options) {
    PeopleQuery query;
    query.filter = QString::fromStdString(options.filter);
    // A member stays one who may not sync any more.
    query.all = options.all || !options.candidates;
    query.refresh = options.refresh;
    std::vector<SharePerson> people;
    for (const auto& place : placesOf(session, what, options.directory)) {
        query.domain = place;
        const auto some =
            sharePeople(session, what, folder.nasId, folder.shareId, query, !options.candidates);
        people.insert(people.end(), some.begin(), some.end());
    }
    return people;
}

Json memberJson(const SharePerson& one, int32_t permission) {
    Json json = {{"name", utf8(one.person.name)}, {"member", one.member}};
    json["state"] = one.member ? Json(one.state) : Json(nullptr);
    json["stateName"] = one.member ? Json(utf8(memberStateText(one.state))) : Json(nullptr);
    json["permission"] = permission == 0 ? Json(nullptr) : Json(permission);
    json["sync"] = one.person.sync;
    json["description"] =
        one.person.description.isEmpty() ? Json(nullptr) : Json(utf8(one.person.description));
    json["event"] = one.event == 0 ? Json(nullptr) : Json(one.event);
    return json;
}

void members(const GlobalOptions& global, const MembersOptions& options) {
    const QString what = QStringLiteral("team members %1").arg(QString::fromStdString(options.folder));
    const Session session(resolveConnection(global, Needs::Login));
    const TeamRecord folder = findOwn(session, what, options.folder);
    const std::vector<SharePerson> people = askMembers(session, what, folder, options);
    const auto permissionOf = [&](const SharePerson& one) {
        const TeamMember* member = folder.member(one.person.name);
        return member != nullptr ? member->permission : 0;
    };
    if (global.json) {
        Json all = Json::array();
        for (const SharePerson& one : people) all.push_back(memberJson(one, permissionOf(one)));
        return printJson(Json{{"shareId", utf8(folder.shareId)},
                              {"path", utf8(folder.path)},
                              {"count", people.size()},
                              {"members", all}});
    }
    if (people.empty()) {
        if (!global.quiet) printLine(QStringLiteral("There are none"));
        return;
    }
    Table table;
    for (const char* title : {"USER", "STATE", "ACCESS", "SYNC", "DESCRIPTION"})
        table.addColumn(QLatin1String(title));
    for (const SharePerson& one : people) {
        table.addRow({one.person.name, one.member ? memberStateText(one.state) : QStringLiteral("-"),
                      permissionText(permissionOf(one)), syncText(one.person.sync), one.person.description});
    }
    table.print(stdout);
}

}  // namespace

void addTeamMembersCommand(const Commands& commands) {
    CLI::App* command = commands.app.add_subcommand("members", "List who has a folder, or is invited to it");
    auto options = std::make_shared<MembersOptions>();
    addFolder(command, options->folder);
    auto* candidates =
        command->add_flag("--candidates", options->candidates, "Those, too, whom it could be shared with");
    command->add_flag("--all", options->all, "And of them those, too, who may not sync")->needs(candidates);
    command->add_option("--filter", options->filter, "Only those in whose name this is, in any case")
        ->type_name("TEXT");
    command
        ->add_option("--directory", options->directory,
                     "Only those of this directory domain, by either of its names")
        ->type_name("NAME");
    command->add_flag("--refresh", options->refresh, "Have the server look anew");
    runs(commands, command, options, members);
}

}  // namespace torvi
