#include "state.h"

#include <fcntl.h>
#include <pwd.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QCryptographicHash>
#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "failure.h"
#include "jobs.h"
#include "partial.h"
#include "signals.h"

namespace torvi {
namespace {

constexpr off_t kLargest = 1 << 20;

}  // namespace

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

std::filesystem::path makeStateFolder(const std::string& name) {
    std::filesystem::path folder = stateFolder();
    std::error_code ignored;
    std::filesystem::create_directories(folder.parent_path(), ignored);
    const auto make = [&folder] {
        if (::mkdir(folder.c_str(), 0700) != 0 && errno != EEXIST)
            throw localFailure(QStringLiteral("cannot write"), folder.string(), errno);
    };
    make();
    if (!name.empty()) {
        folder /= name;
        make();
    }
    return folder;
}

Descriptor::~Descriptor() {
    reset(-1);
}

void Descriptor::reset(int fd) {
    if (m_fd >= 0) ::close(m_fd);
    m_fd = fd;
}

std::string readAll(int fd, size_t size, const std::function<void()>& failed) {
    std::string text(size, '\0');
    size_t done = 0;
    while (done < text.size()) {
        const ssize_t n = ::read(fd, text.data() + done, text.size() - done);
        if (n < 0 && errno == EINTR) continue;
        if (n < 0) failed();
        if (n <= 0) break;
        done += static_cast<size_t>(n);
    }
    text.resize(done);
    return text;
}

void writeAll(int fd, const std::string& text, const std::function<void()>& failed) {
    size_t done = 0;
    while (done < text.size()) {
        const ssize_t n = ::write(fd, text.data() + done, text.size() - done);
        if (n < 0 && errno == EINTR) continue;
        if (n < 0) return failed();
        done += static_cast<size_t>(n);
    }
}

void replaceFile(const std::filesystem::path& path, const std::string& text, Descriptor& file,
                 const std::function<void()>& failed) {
    std::string temporary = path.string() + ".XXXXXX";
    const int fd = ::mkostemp(temporary.data(), O_CLOEXEC);
    if (fd < 0) return failed();
    file.reset(fd);
    try {
        // Nobody finds it unlocked.
        if (::fchmod(fd, 0600) != 0 || ::flock(fd, LOCK_EX | LOCK_NB) != 0) failed();
        writeAll(fd, text, failed);
        if (::fsync(fd) != 0 || ::rename(temporary.c_str(), path.c_str()) != 0) failed();
    } catch (...) {
        ::unlink(temporary.c_str());
        throw;
    }
    // Its name has to outlast a power failure, too, as far as the file system can tell.
    const Descriptor folder(::open(path.parent_path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    ::fsync(folder.get());
}

StateFile::StateFile(const std::string& kind, const QByteArray& key, const QString& busy) {
    m_path = makeStateFolder(kind) / nameOf(key);
    if (!open(true)) throw Failure(Exit::Local, busy);
    load();
}

StateFile::StateFile(const std::string& kind, const QByteArray& key) {
    constexpr int kBetweenTriesMs = 20;
    m_path = makeStateFolder(kind) / nameOf(key);
    while (!open(true)) {
        pause(kBetweenTriesMs);
        if (interrupted()) throwCancelled(QString::fromStdString(m_path.string()));
    }
    load();
}

StateFile::StateFile(const std::filesystem::path& path) : m_path(path) {
    if (open(false)) load();
}

StateFile::~StateFile() {
    if (held() && m_content.empty()) ::unlink(m_path.c_str());
}

bool StateFile::open(bool create) {
    for (;;) {
        m_file.reset(::open(m_path.c_str(), O_RDWR | O_CLOEXEC | O_NOFOLLOW | (create ? O_CREAT : 0), 0600));
        if (!held()) {
            if (create) fail("cannot write");
            return false;
        }
        if (::flock(m_file.get(), LOCK_EX | LOCK_NB) != 0) {
            m_file.reset(-1);
            return false;
        }
        // The process that had it may have removed it meanwhile.
        struct stat status = {};
        if (::fstat(m_file.get(), &status) != 0 || !S_ISREG(status.st_mode)) fail("cannot read");
        if (status.st_nlink > 0) return true;
    }
}

void StateFile::load() {
    struct stat status = {};
    if (::fstat(m_file.get(), &status) != 0) fail("cannot read");
    if (status.st_size > kLargest) return;
    const std::string text =
        readAll(m_file.get(), static_cast<size_t>(status.st_size), [this] { fail("cannot read"); });
    m_content = Json::parse(text, nullptr, false);
    // What anybody else has left there isn't one.
    if (!m_content.is_object()) m_content = Json::object();
}

void StateFile::save(const Json& content) {
    // The old file stays locked until the new one is in its place.
    Descriptor file;
    replaceFile(m_path, content.dump(2) + "\n", file, [this] { fail("cannot write"); });
    m_file.reset(file.release());
    m_content = content;
}

void StateFile::clear() {
    if (::ftruncate(m_file.get(), 0) != 0) fail("cannot write");
    m_content = Json::object();
}

bool StateFile::exists(const std::string& kind, const QByteArray& key) {
    std::error_code ignored;
    // An empty one was left by a program that was killed before it had anything to keep.
    const auto size = std::filesystem::file_size(stateFolder() / kind / nameOf(key), ignored);
    return size != static_cast<std::uintmax_t>(-1) && size > 0;
}

std::string StateFile::nameOf(const QByteArray& key) {
    return QCryptographicHash::hash(key, QCryptographicHash::Sha1).toHex().toStdString() + ".json";
}

std::vector<std::filesystem::path> StateFile::all(const std::string& kind) {
    std::vector<std::filesystem::path> paths;
    std::error_code ignored;
    for (const auto& file : std::filesystem::directory_iterator(stateFolder() / kind, ignored)) {
        if (file.path().extension() == ".json") paths.push_back(file.path());
    }
    return paths;
}

void StateFile::fail(const char* what) const {
    throw localFailure(QLatin1String(what), m_path.string(), errno);
}

}  // namespace torvi
