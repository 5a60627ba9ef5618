#pragma once

#include <gmock/gmock.h>

#include <filesystem>
#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <thread>
#include <vector>

#include "files.h"
#include "support/nas.h"
#include "support/process.h"
#include "support/tempdir.h"

/// The command line with a state folder, a working folder and a server of its own.
class Cli {
public:
    explicit Cli(Nas& nas) : m_nas(nas) {}

    const TempDir& work() const { return m_work; }
    const TempDir& state() const { return m_state; }
    std::string profile() const { return m_state.file("torvi/profile.json"); }

    Process::Options options() const {
        Process::Options options;
        options.workingDirectory = m_work.string();
        options.environment = {{"XDG_STATE_HOME", m_state.string()},
                               {"TORVI_PASSWORD", "secret"},
                               {"TORVI_SERVER", ""},
                               {"TORVI_PORT", ""},
                               {"TORVI_USER", ""},
                               {"TZ", "UTC"},
                               {"LC_ALL", "C"}};
        return options;
    }
    Process::Options withoutPassword() const {
        Process::Options result = options();
        result.environment["TORVI_PASSWORD"] = "";
        return result;
    }

    /// With the options that name the server and the user.
    std::vector<std::string> connected(std::vector<std::string> arguments, bool tls = false) const {
        arguments.insert(arguments.end(), {"--server", "127.0.0.1", "--user", "anna", "--port",
                                           std::to_string(tls ? m_nas.tlsPort() : m_nas.port())});
        if (tls) arguments.push_back("--tls");
        return arguments;
    }

    ProcessResult run(std::vector<std::string> arguments, bool tls = false) const {
        return runProcess(TORVI_PATH, connected(std::move(arguments), tls), options());
    }
    /// With nothing added to the command line.
    ProcessResult runBare(std::vector<std::string> arguments) const {
        return runProcess(TORVI_PATH, std::move(arguments), options());
    }
    /// With no password anywhere, nor a terminal to ask on.
    ProcessResult runWithoutPassword(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), {"--wait", TORVI_PATH});
        return runProcess(findProgram("setsid"), std::move(arguments), withoutPassword());
    }
    std::unique_ptr<Process> start(std::vector<std::string> arguments, bool terminal = false) const {
        Process::Options all = options();
        all.arguments = connected(std::move(arguments));
        all.terminal = terminal;
        return std::make_unique<Process>(TORVI_PATH, std::move(all));
    }

    /// The only partial download in the working folder, empty if there is none.
    std::string partial() const {
        for (const auto& file : std::filesystem::directory_iterator(m_work.path())) {
            if (file.path().extension() == ".torvi-part") return file.path().string();
        }
        return {};
    }

private:
    Nas& m_nas;
    TempDir m_state, m_work;
};

class CliTest : public testing::Test {
protected:
    Nas nas;
    Cli cli{nas};
    /// Waits until the fault has taken effect on the process's request.
    void waitForHit(int fault, Process& process) {
        while (nas.hits(fault) == 0 && process.running())
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }

    // Where the server keeps the folder that anna sees as /home.
    const std::string home = "homes/anna/";
};
