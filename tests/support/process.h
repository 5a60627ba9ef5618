#pragma once

#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// A child process with all of its output. It dies with the object, and with the test program.
class Process {
public:
    struct Options {
        std::vector<std::string> arguments;
        /// Added to this process's environment; an empty value takes the name out.
        std::map<std::string, std::string> environment;
        std::string workingDirectory;
        /// Written to its standard input, which is then closed.
        std::string input;
        /// Standard input, output and error are one terminal; its output is in out().
        bool terminal = false;
        /// Standard input stays open for write().
        bool keepInputOpen = false;
    };

    static constexpr std::chrono::milliseconds kPatience{30000};

    Process(const std::string& program, Options options);
    /// Kills what still runs, with the processes that it started.
    ~Process();
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

    int pid() const;
    bool running();
    void sendSignal(int signal);
    bool write(std::string_view text);
    void closeInput();

    /// What has come out so far.
    std::string out() const;
    std::string err() const;
    /// Waits until both outputs together satisfy the condition; false if the process ends or time runs out
    /// first.
    bool waitFor(const std::function<bool(const std::string& out, const std::string& err)>& condition,
                 std::chrono::milliseconds patience = kPatience);
    /// The first whole line of the output that begins with that text; nothing if it doesn't come.
    std::optional<std::string> waitForLine(const std::string& beginning,
                                           std::chrono::milliseconds patience = kPatience);
    /// The exit code, or 128 + the signal that ended it. Kills it when time runs out and gives -1.
    int wait(std::chrono::milliseconds patience = kPatience);

private:
    struct State;
    std::unique_ptr<State> m_state;
};

struct ProcessResult {
    int exitCode = -1;  ///< as Process::wait() has it
    std::string out, err;
};

/// Runs a program to its end.
ProcessResult runProcess(const std::string& program, std::vector<std::string> arguments,
                         Process::Options options = {},
                         std::chrono::milliseconds patience = Process::kPatience);

/// The program's path by PATH and the system folders, empty if it isn't installed.
std::string findProgram(const std::string& name);

/// Whether somebody listens on that port of this machine.
bool accepts(std::uint16_t port);
