#include "profile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <string>

#include "failure.h"
#include "output.h"
#include "state.h"

namespace torvi {
namespace {

constexpr off_t kLargestProfile = 1 << 20;

std::string profileFile() {
    return (stateFolder() / "profile.json").string();
}

Failure localFailure(const char* what) {
    return Failure(Exit::Local, QStringLiteral("%1 %2: %3")
                                    .arg(QLatin1String(what), profilePath(),
                                         QString::fromLocal8Bit(std::strerror(errno))));
}

QString text(const Json& json, const char* key) {
    return QString::fromStdString(json.value(key, std::string()));
}

std::optional<QString> optionalText(const Json& json, const char* key) {
    if (!json.contains(key)) return std::nullopt;
    return text(json, key);
}

}  // namespace

QString profilePath() {
    return QString::fromStdString(profileFile());
}

std::optional<Profile> loadProfile() {
    const Descriptor file(::open(profileFile().c_str(), O_RDONLY | O_CLOEXEC));
    if (file.get() < 0) {
        if (errno == ENOENT || errno == ENOTDIR) return std::nullopt;
        throw localFailure("cannot read");
    }
    struct stat status = {};
    if (::fstat(file.get(), &status) != 0) throw localFailure("cannot read");
    if ((status.st_mode & 077) != 0) {
        throw Failure(Exit::Local,
                      QStringLiteral("%1 is open to other users: run `chmod 600` on it").arg(profilePath()));
    }
    try {
        if (!S_ISREG(status.st_mode) || status.st_size > kLargestProfile)
            throw std::invalid_argument("no profile");
        const Json json = Json::parse(readAll(file.get(), static_cast<size_t>(status.st_size),
                                              [] { throw localFailure("cannot read"); }));
        Profile profile;
        profile.server = text(json, "server");
        profile.port = json.value("port", 0);
        profile.tls = json.value("tls", false);
        profile.user = text(json, "user");
        profile.password = optionalText(json, "password");
        profile.proxy = text(json, "proxy");
        profile.proxyUser = text(json, "proxyUser");
        profile.proxyPassword = optionalText(json, "proxyPassword");
        profile.node = text(json, "node");
        profile.fcgi = json.value("fcgi", false);
        profile.olderService = json.value("olderService", false);
        profile.uid = text(json, "uid");
        for (const std::string& team : json.value("teams", std::vector<std::string>()))
            profile.teams.push_back(parseTeamFolder(QString::fromStdString(team)));
        return profile;
    } catch (const Failure&) {
        throw;
    } catch (const std::exception&) {
        throw Failure(
            Exit::Local,
            QStringLiteral("%1 is not a profile: run `torvi logout` to remove it").arg(profilePath()));
    }
}

void saveProfile(const Profile& profile) {
    Json json;
    json["server"] = utf8(profile.server);
    json["port"] = profile.port;
    json["tls"] = profile.tls;
    json["user"] = utf8(profile.user);
    if (profile.password) json["password"] = utf8(*profile.password);
    json["proxy"] = utf8(profile.proxy);
    json["proxyUser"] = utf8(profile.proxyUser);
    if (profile.proxyPassword) json["proxyPassword"] = utf8(*profile.proxyPassword);
    json["node"] = utf8(profile.node);
    json["fcgi"] = profile.fcgi;
    json["olderService"] = profile.olderService;
    json["uid"] = utf8(profile.uid);
    for (const TeamFolder& team : profile.teams) json["teams"].push_back(utf8(team.text()));

    makeStateFolder();
    Descriptor file;
    replaceFile(profileFile(), json.dump(2) + "\n", file, [] { throw localFailure("cannot write"); });
}

bool removeProfile() {
    if (::unlink(profileFile().c_str()) == 0) return true;
    if (errno == ENOENT || errno == ENOTDIR) return false;
    throw localFailure("cannot remove");
}

}  // namespace torvi
