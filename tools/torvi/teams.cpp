#include "teams.h"

#include "failure.h"

namespace torvi {
namespace {

const QLatin1String kArea("/home/.Torvi/");
const QLatin1String kScheme("vtf://");
const QLatin1Char kSlash('/');

/// The prefix test of the mapping wants it at the end.
QString withSlash(const QString& path) {
    return path.endsWith(kSlash) ? path : path + kSlash;
}

}  // namespace

QString TeamFolder::text() const {
    return client + QLatin1Char('=') + server + (node.isEmpty() ? QString() : QLatin1Char('@') + node);
}

TeamFolder parseTeamFolder(const QString& text) {
    const int equals = text.indexOf(QLatin1Char('='));
    TeamFolder team;
    team.client = withSlash(text.left(equals));
    QString place = text.mid(equals + 1);
    // A node's name has no "/"; a "@" further left belongs to the path.
    const int at = place.lastIndexOf(QLatin1Char('@'));
    if (at > place.lastIndexOf(kSlash)) {
        team.node = place.mid(at + 1);
        place.truncate(at);
    }
    team.server = withSlash(place);
    if (equals < 0 || !team.client.startsWith(kArea) || team.client.size() == kArea.size() ||
        !team.server.startsWith(kScheme) || team.server.size() <= kScheme.size() + 1) {
        throw Failure(Exit::Usage, QStringLiteral("--team: %1 is not CLIENTPATH=SERVERPATH[@NODE], such as "
                                                  "/home/.Torvi/Plans=vtf://anna-Plans")
                                       .arg(text));
    }
    return team;
}

std::vector<TeamFolder> parseTeamFolders(const std::vector<std::string>& texts) {
    std::vector<TeamFolder> teams;
    if (texts.size() == 1 && texts.front() == "none") return teams;
    for (const std::string& text : texts) teams.push_back(parseTeamFolder(QString::fromStdString(text)));
    return teams;
}

const TeamFolder* teamFolderOf(const std::vector<TeamFolder>& teams, const QString& path) {
    for (const TeamFolder& team : teams) {
        if (withSlash(path).startsWith(team.client)) return &team;
    }
    return nullptr;
}

}  // namespace torvi
