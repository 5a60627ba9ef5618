#include "password.h"

#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <string>

#include "failure.h"
#include "signals.h"

namespace torvi {
namespace {

constexpr size_t kLongestPassword = 4096;

class Terminal {
public:
    explicit Terminal(Echo echo) : m_fd(::open("/dev/tty", O_RDWR | O_CLOEXEC | O_NOCTTY)) {
        m_good = m_fd >= 0 && ::tcgetattr(m_fd, &m_saved) == 0;
        if (!m_good || echo == Echo::On) return;
        termios silent = m_saved;
        silent.c_lflag &= ~static_cast<tcflag_t>(ECHO);
        silent.c_lflag |= ECHONL;
        m_silenced = ::tcsetattr(m_fd, TCSAFLUSH, &silent) == 0;
        m_good = m_silenced;
    }
    ~Terminal() {
        if (m_silenced) ::tcsetattr(m_fd, TCSAFLUSH, &m_saved);
        if (m_fd >= 0) ::close(m_fd);
    }
    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;
    /// Below 0 if there is none, or one that can't be silenced.
    int fd() const { return m_good ? m_fd : -1; }

private:
    int m_fd;
    termios m_saved = {};
    bool m_good = false;
    bool m_silenced = false;
};

/// Waits for input, and looks up now and then: a signal that came just before a wait would not end it.
bool waitForInput(int fd) {
    constexpr int kLookUpMs = 100;
    pollfd waiting = {fd, POLLIN, 0};
    for (;;) {
        if (interrupted()) return false;
        const int ready = ::poll(&waiting, 1, kLookUpMs);
        if (ready > 0) return true;
        if (ready < 0 && errno != EINTR) return false;
    }
}

/// False if the input can't be read.
bool readLine(int fd, std::string& line) {
    char c = 0;
    while (line.size() < kLongestPassword) {
        if (!waitForInput(fd)) return false;
        const ssize_t n = ::read(fd, &c, 1);
        if (n < 0 && errno == EINTR) continue;
        if (n < 0) return false;
        if (n == 0 || c == '\n') break;
        line.push_back(c);
    }
    if (!line.empty() && line.back() == '\r') line.pop_back();
    return true;
}

}  // namespace

QString readSecretFile(const QString& path, const QString& what) {
    const bool standardInput = path == QLatin1String("-");
    const int fd = standardInput ? STDIN_FILENO : ::open(path.toUtf8().constData(), O_RDONLY | O_CLOEXEC);
    std::string line;
    const bool good = fd >= 0 && readLine(fd, line);
    const int error = errno;
    if (!standardInput && fd >= 0) ::close(fd);
    if (interrupted()) throwCancelled(what);
    if (!good) {
        throw Failure(Exit::Local, QStringLiteral("cannot read the %1 from %2: %3")
                                       .arg(what, path, QString::fromLocal8Bit(std::strerror(error))));
    }
    return QString::fromStdString(line);
}

QString readPasswordFile(const QString& path) {
    return readSecretFile(path, QStringLiteral("password"));
}

QString readTokenFile(const QString& path, const QString& what) {
    const QString secret = readSecretFile(path, what);
    if (!secret.isEmpty()) return secret;
    throw Failure(Exit::Local,
                  QStringLiteral("cannot read the %1 from %2: the first line is empty").arg(what, path));
}

QString askPassword(const QString& prompt) {
    if (!hasTerminal()) {
        throw Failure(Exit::Usage,
                      QStringLiteral("no password: give --password-file or TORVI_PASSWORD, or run on a "
                                     "terminal"));
    }
    return askOnTerminal(prompt, QStringLiteral("password"), Echo::Off);
}

bool hasTerminal() {
    return Terminal(Echo::On).fd() >= 0;
}

QString askOnTerminal(const QString& prompt, const QString& what, Echo echo) {
    const Terminal terminal(echo);
    const QByteArray text = prompt.toUtf8();
    std::string line;
    const bool good = terminal.fd() >= 0 &&
                      ::write(terminal.fd(), text.constData(), static_cast<size_t>(text.size())) >= 0 &&
                      readLine(terminal.fd(), line);
    if (interrupted()) throwCancelled(what);
    if (!good) throw Failure(Exit::Local, QStringLiteral("cannot read the %1 from the terminal").arg(what));
    return QString::fromStdString(line);
}

}  // namespace torvi
