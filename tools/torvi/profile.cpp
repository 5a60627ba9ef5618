#include "profile.h"

#include <fcntl.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>

#include "failure.h"
#include "output.h"

namespace torvi {
namespace {

constexpr off_t kLargestProfile = 1 << 20;

class Descriptor {
public:
    explicit Descriptor(int fd) : m_fd(fd) {}
    ~Descriptor() {
        if (m_fd >= 0) ::close(m_fd);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    int get() const { return m_fd; }

private:
    int m_fd;
};

std::filesystem::path stateFolder() {
    // Only an absolute path counts in this variable.
    if (const char* state = std::getenv("XDG_STATE_HOME"); state != nullptr && state[0] == '/') {
        return std::filesystem::path(state) / "torvi";
    }
    const char* home = std::getenv("HOME");
    if (home == nullptr || home[0] != '/') {
        const passwd* user = ::getpwuid(::getuid());
        home = user != nullptr ? user->pw_dir : "/";
    }
    return std::filesystem::path(home) / ".local" / "state" / "torvi";
}

std::string profileFile() {
    return (stateFolder() / "profile.json").string();
}

Failure localFailure(const char* what) {
    return Failure(Exit::Local, QStringLiteral("%1 %2: %3")
                                    .arg(QLatin1String(what), profilePath(),
                                         QString::fromLocal8Bit(std::strerror(errno))));
}

std::string readAll(int fd, off_t size) {
    std::string text(static_cast<size_t>(size), '\0');
    size_t done = 0;
    while (done < text.size()) {
        const ssize_t n = ::read(fd, text.data() + done, text.size() - done);
        if (n < 0 && errno == EINTR) continue;
        if (n < 0) throw localFailure("cannot read");
        if (n == 0) break;
        done += static_cast<size_t>(n);
    }
    text.resize(done);
    return text;
}

void writeAll(int fd, const std::string& text) {
    size_t done = 0;
    while (done < text.size()) {
        const ssize_t n = ::write(fd, text.data() + done, text.size() - done);
        if (n < 0 && errno == EINTR) continue;
        if (n < 0) throw localFailure("cannot write");
        done += static_cast<size_t>(n);
    }
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
        const Json json = Json::parse(readAll(file.get(), status.st_size));
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

    const std::filesystem::path folder = stateFolder();
    std::error_code ignored;
    std::filesystem::create_directories(folder.parent_path(), ignored);
    if (::mkdir(folder.c_str(), 0700) != 0 && errno != EEXIST) throw localFailure("cannot write");

    // A new file beside the old one, so that neither a wider mode nor half a profile is ever there.
    std::string temporary = profileFile() + ".XXXXXX";
    const Descriptor file(::mkostemp(temporary.data(), O_CLOEXEC));
    if (file.get() < 0) throw localFailure("cannot write");
    try {
        if (::fchmod(file.get(), 0600) != 0) throw localFailure("cannot write");
        writeAll(file.get(), json.dump(2) + "\n");
        if (::fsync(file.get()) != 0) throw localFailure("cannot write");
        if (::rename(temporary.c_str(), profileFile().c_str()) != 0) throw localFailure("cannot write");
    } catch (...) {
        ::unlink(temporary.c_str());
        throw;
    }
}

bool removeProfile() {
    if (::unlink(profileFile().c_str()) == 0) return true;
    if (errno == ENOENT || errno == ENOTDIR) return false;
    throw localFailure("cannot remove");
}

}  // namespace torvi
