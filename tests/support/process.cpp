#include "support/process.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <pty.h>
#include <sys/eventfd.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utmp.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <condition_variable>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <stdexcept>
#include <thread>

extern char** environ;

namespace {

class Fd {
public:
    explicit Fd(int fd = -1) : m_fd(fd) {}
    Fd(Fd&& other) noexcept : m_fd(other.m_fd) { other.m_fd = -1; }
    Fd& operator=(Fd&& other) noexcept {
        std::swap(m_fd, other.m_fd);
        return *this;
    }
    ~Fd() { close(); }
    int get() const { return m_fd; }
    void close() {
        if (m_fd >= 0) ::close(m_fd);
        m_fd = -1;
    }

private:
    int m_fd;
};

std::array<Fd, 2> makePipe() {
    int fds[2];
    if (::pipe2(fds, O_CLOEXEC) != 0) throw std::runtime_error("pipe2");
    return {Fd(fds[0]), Fd(fds[1])};
}

std::vector<std::string> mergedEnvironment(const std::map<std::string, std::string>& changes) {
    std::vector<std::string> result;
    for (char** entry = environ; *entry != nullptr; ++entry) {
        const std::string text = *entry;
        if (changes.count(text.substr(0, text.find('='))) == 0) result.push_back(text);
    }
    for (const auto& [name, value] : changes) {
        if (!value.empty()) result.push_back(name + "=" + value);
    }
    return result;
}

std::vector<char*> pointers(std::vector<std::string>& texts) {
    std::vector<char*> result;
    for (std::string& text : texts) result.push_back(text.data());
    result.push_back(nullptr);
    return result;
}

}  // namespace

struct Process::State {
    pid_t pid = -1;
    Fd input, output, error, wake;
    std::thread reader;

    std::mutex mutex;
    std::condition_variable changed;
    std::string out, err;
    bool outputEnded = false;
    std::optional<int> status;

    void read(Fd& fd, std::string& to, bool& open) {
        char buffer[16 << 10];
        const ssize_t count = ::read(fd.get(), buffer, sizeof(buffer));
        if (count < 0 && errno == EINTR) return;
        std::lock_guard lock(mutex);
        if (count > 0) {
            to.append(buffer, static_cast<std::size_t>(count));
        } else {
            open = false;  // a terminal whose other side is gone says EIO
        }
        changed.notify_all();
    }

    void readAll() {
        bool outOpen = output.get() >= 0, errOpen = error.get() >= 0;
        while (outOpen || errOpen) {
            pollfd fds[3] = {{outOpen ? output.get() : -1, POLLIN, 0},
                             {errOpen ? error.get() : -1, POLLIN, 0},
                             {wake.get(), POLLIN, 0}};
            if (::poll(fds, 3, -1) < 0) continue;
            if (fds[0].revents != 0) read(output, out, outOpen);
            if (fds[1].revents != 0) read(error, err, errOpen);
            if (fds[2].revents != 0 && fds[0].revents == 0 && fds[1].revents == 0) break;
        }
        std::lock_guard lock(mutex);
        outputEnded = true;
        changed.notify_all();
    }

    /// Takes the exit status if there is one.
    bool reap(bool block) {
        if (status) return true;
        int value = 0;
        pid_t got;
        do {
            got = ::waitpid(pid, &value, block ? 0 : WNOHANG);
        } while (got < 0 && errno == EINTR);
        if (got != pid) return false;
        status = WIFEXITED(value) ? WEXITSTATUS(value) : 128 + WTERMSIG(value);
        return true;
    }
};

Process::Process(const std::string& program, Options options) : m_state(std::make_unique<State>()) {
    State& state = *m_state;
    std::array<Fd, 2> in, out, err;
    Fd terminal;
    std::string terminalName;
    if (options.terminal) {
        int primary = -1, secondary = -1;
        if (::openpty(&primary, &secondary, nullptr, nullptr, nullptr) != 0)
            throw std::runtime_error("openpty");
        ::fcntl(primary, F_SETFD, FD_CLOEXEC);
        ::fcntl(secondary, F_SETFD, FD_CLOEXEC);
        state.output = Fd(primary);
        state.input = Fd(::fcntl(primary, F_DUPFD_CLOEXEC, 0));
        terminal = Fd(secondary);
    } else {
        in = makePipe();
        out = makePipe();
        err = makePipe();
    }

    // Everything that allocates comes before the fork: other threads may hold the allocator's locks.
    std::vector<std::string> arguments{program};
    arguments.insert(arguments.end(), options.arguments.begin(), options.arguments.end());
    std::vector<std::string> environment = mergedEnvironment(options.environment);
    const std::vector<char*> argv = pointers(arguments);
    const std::vector<char*> envp = pointers(environment);
    const pid_t parent = ::getpid();
    const bool isTerminal = options.terminal;
    const int childIn = isTerminal ? terminal.get() : in[0].get();
    const int childOut = isTerminal ? terminal.get() : out[1].get();
    const int childErr = isTerminal ? terminal.get() : err[1].get();

    state.pid = ::fork();
    if (state.pid < 0) throw std::runtime_error("fork");
    if (state.pid == 0) {
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        if (::getppid() != parent) ::_exit(127);
        if (isTerminal) {
            ::login_tty(childIn);
        } else {
            ::setpgid(0, 0);
            ::dup2(childIn, 0);
            ::dup2(childOut, 1);
            ::dup2(childErr, 2);
        }
        std::signal(SIGPIPE, SIG_DFL);
        if (!options.workingDirectory.empty() && ::chdir(options.workingDirectory.c_str()) != 0) ::_exit(127);
        ::execve(program.c_str(), argv.data(), envp.data());
        ::_exit(127);
    }
    if (!isTerminal) {
        ::setpgid(state.pid, state.pid);  // here as well: whoever is first
        state.input = std::move(in[1]);
        state.output = std::move(out[0]);
        state.error = std::move(err[0]);
    }
    state.wake = Fd(::eventfd(0, EFD_CLOEXEC));
    state.reader = std::thread([&state] { state.readAll(); });
    if (!options.input.empty()) write(options.input);
    if (!options.keepInputOpen && !isTerminal) closeInput();
}

Process::~Process() {
    State& state = *m_state;
    closeInput();
    ::kill(-state.pid, SIGKILL);
    if (!state.status) ::kill(state.pid, SIGKILL);
    state.reap(true);
    const std::uint64_t one = 1;
    if (::write(state.wake.get(), &one, sizeof(one)) != sizeof(one)) std::abort();
    state.reader.join();
}

int Process::pid() const {
    return m_state->pid;
}

bool Process::running() {
    return !m_state->reap(false);
}

void Process::sendSignal(int signal) {
    if (running()) ::kill(m_state->pid, signal);
}

bool Process::write(std::string_view text) {
    while (!text.empty()) {
        const ssize_t count = ::write(m_state->input.get(), text.data(), text.size());
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return false;
        text.remove_prefix(static_cast<std::size_t>(count));
    }
    return true;
}

void Process::closeInput() {
    m_state->input.close();
}

std::string Process::out() const {
    std::lock_guard lock(m_state->mutex);
    return m_state->out;
}

std::string Process::err() const {
    std::lock_guard lock(m_state->mutex);
    return m_state->err;
}

bool Process::waitFor(const std::function<bool(const std::string&, const std::string&)>& condition,
                      std::chrono::milliseconds patience) {
    std::unique_lock lock(m_state->mutex);
    bool met = false;
    m_state->changed.wait_for(lock, patience, [&] {
        met = condition(m_state->out, m_state->err);
        return met || m_state->outputEnded;
    });
    return met;
}

std::optional<std::string> Process::waitForLine(const std::string& beginning,
                                                std::chrono::milliseconds patience) {
    std::optional<std::string> line;
    waitFor(
        [&](const std::string& out, const std::string&) {
            for (std::size_t at = 0; at < out.size();) {
                const auto end = out.find('\n', at);
                if (end == std::string::npos) return false;
                if (out.compare(at, beginning.size(), beginning) == 0) {
                    line = out.substr(at, end - at);
                    return true;
                }
                at = end + 1;
            }
            return false;
        },
        patience);
    return line;
}

int Process::wait(std::chrono::milliseconds patience) {
    State& state = *m_state;
    if (!state.status) {
        // The end of the output isn't the end of the process, nor the other way round.
        const auto deadline = std::chrono::steady_clock::now() + patience;
        while (!state.reap(false)) {
            if (std::chrono::steady_clock::now() >= deadline) {
                ::kill(-state.pid, SIGKILL);
                ::kill(state.pid, SIGKILL);
                state.reap(true);
                return -1;
            }
            std::unique_lock lock(state.mutex);
            state.changed.wait_for(lock, std::chrono::milliseconds(2));
        }
    }
    // What it wrote last may still be on its way here, unless a child of its own holds the output open.
    std::unique_lock lock(state.mutex);
    state.changed.wait_for(lock, std::chrono::milliseconds(500), [&] { return state.outputEnded; });
    return *state.status;
}

ProcessResult runProcess(const std::string& program, std::vector<std::string> arguments,
                         Process::Options options, std::chrono::milliseconds patience) {
    options.arguments = std::move(arguments);
    Process process(program, std::move(options));
    ProcessResult result;
    result.exitCode = process.wait(patience);
    result.out = process.out();
    result.err = process.err();
    return result;
}

std::string findProgram(const std::string& name) {
    const char* path = std::getenv("PATH");
    std::string folders =
        (path != nullptr ? std::string(path) : std::string()) + ":/usr/sbin:/sbin:/usr/bin:/bin";
    for (std::size_t at = 0; at <= folders.size();) {
        const auto end = std::min(folders.find(':', at), folders.size());
        const std::string candidate = folders.substr(at, end - at) + "/" + name;
        if (end > at && ::access(candidate.c_str(), X_OK) == 0) return candidate;
        at = end + 1;
    }
    return {};
}

bool accepts(std::uint16_t port) {
    const Fd fd(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return ::connect(fd.get(), reinterpret_cast<sockaddr*>(&address), sizeof(address)) == 0;
}
