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
#include "support/programs.h"
#include "support/tempdir.h"

/// How the command line reaches its server.
struct CliRoad {
    bool tls = false;
    bool fcgi = false;
    bool older = false;  ///< the server has the older service alone
};
inline std::vector<CliRoad> syncRoads() {
    return {{false, false}, {true, false}, {false, true}, {true, true}};
}
inline std::vector<CliRoad> cliRoads() {
    std::vector<CliRoad> roads = syncRoads();
    roads.insert(roads.end(), {{false, false, true}, {true, false, true}});
    return roads;
}
inline std::string nameOf(const CliRoad& road) {
    return std::string(road.older ? "Older" : road.fcgi ? "Fcgi" : "Sync") + (road.tls ? "Tls" : "Http");
}
inline void PrintTo(const CliRoad& road, std::ostream* out) {
    *out << nameOf(road);
}

/// The command line with a state folder, a working folder and a server of its own.
class Cli {
public:
    explicit Cli(Nas& nas, const CliRoad& road = {}) : m_nas(nas), m_road(road) {}

    const TempDir& work() const { return m_work; }
    const TempDir& state() const { return m_state; }
    std::string profile() const { return m_state.file("torvi/profile.json"); }

    Process::Options options() const {
        Process::Options options;
        options.workingDirectory = m_work.string();
        options.environment = {{"XDG_STATE_HOME", m_state.string()},
                               {"TORVI_PASSWORD", m_password},
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
        tls = tls || m_road.tls;
        arguments.insert(arguments.end(), {"--server", "127.0.0.1", "--user", m_user, "--port",
                                           std::to_string(m_front != 0 ? m_front
                                                          : tls        ? m_nas.tlsPort()
                                                                       : m_nas.port())});
        if (tls) arguments.push_back("--tls");
        if (m_road.fcgi) arguments.push_back("--fcgi");
        return arguments;
    }
    /// Through a front end on that port.
    void goThrough(std::uint16_t port) { m_front = port; }
    void become(const std::string& user, const std::string& password) {
        m_user = user;
        m_password = password;
    }

    ProcessResult run(std::vector<std::string> arguments, bool tls = false) const {
        return runProcess(kTorvi, connected(std::move(arguments), tls), options());
    }
    /// With nothing added to the command line.
    ProcessResult runBare(std::vector<std::string> arguments) const {
        return runProcess(kTorvi, std::move(arguments), options());
    }
    /// With no password anywhere, nor a terminal to ask on.
    ProcessResult runWithoutPassword(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), {"--wait", kTorvi});
        return runProcess(findProgram("setsid"), std::move(arguments), withoutPassword());
    }
    std::unique_ptr<Process> start(std::vector<std::string> arguments, bool terminal = false) const {
        Process::Options all = options();
        all.arguments = connected(std::move(arguments));
        all.terminal = terminal;
        return std::make_unique<Process>(kTorvi, std::move(all));
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
    CliRoad m_road;
    std::uint16_t m_front = 0;
    std::string m_user = "anna", m_password = "secret";
    TempDir m_state, m_work;
};

/// Runs a command that must succeed, and gives its document.
inline nlohmann::json jsonOf(const Cli& who, std::vector<std::string> arguments) {
    arguments.insert(arguments.end(), {"--json", "--quiet"});
    const ProcessResult result = who.run(arguments);
    EXPECT_EQ(result.exitCode, 0) << arguments[0] << ": " << result.err;
    return nlohmann::json::parse(result.out, nullptr, false);
}

/// A server with these options, too.
inline Nas::Options nasWith(std::vector<std::string> arguments) {
    Nas::Options options;
    options.arguments = std::move(arguments);
    return options;
}

class CliTest : public testing::Test {
protected:
    CliTest() : CliTest(Nas::Options()) {}
    explicit CliTest(Nas::Options options, const CliRoad& road = {})
        : nas(std::move(options)), cli(nas, road) {}

    Nas nas;
    Cli cli;
    /// Waits until the fault has taken effect on the process's request.
    void waitForHit(int fault, Process& process) {
        while (nas.hits(fault) == 0 && process.running())
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }

    nlohmann::json runJson(std::vector<std::string> arguments) { return jsonOf(cli, std::move(arguments)); }
    /// The next request for that func gets this reply, and isn't served.
    int answer(const std::string& func, const std::string& reply) {
        const nlohmann::json fault = {{"name", "reply"}, {"match", func}, {"content", reply}};
        return nlohmann::json::parse(nas.control("POST", "faults", fault.dump()))["id"];
    }
    /// A file on the server.
    std::string serve(const std::string& name, const std::string& content, std::int64_t time = kTime) {
        const std::string path = nas.folder().write(home + name, content);
        setModifiedTime(path, time);
        return path;
    }
    /// A file on this machine.
    std::string keep(const std::string& name, const std::string& content, std::int64_t time = kTime) {
        const std::string path = cli.work().write(name, content);
        setModifiedTime(path, time);
        return path;
    }
    bool served(const std::string& name) const {
        return std::filesystem::exists(nas.folder().path() / home / name);
    }

    static constexpr std::int64_t kTime = 1234567890;
    // Where the server keeps the folder that anna sees as /home.
    const std::string home = "homes/anna/";
};

/// The same on each road.
class CliOnRoads : public CliTest, public testing::WithParamInterface<CliRoad> {
protected:
    explicit CliOnRoads(Nas::Options options = Nas::Options())
        : CliTest(onRoad(std::move(options)), GetParam()) {}

private:
    static Nas::Options onRoad(Nas::Options options) {
        if (GetParam().older) options.arguments.push_back("--no-sync-service");
        return options;
    }
};

#define CLI_ON_ROADS(suite, roads)                                   \
    INSTANTIATE_TEST_SUITE_P(Roads, suite, testing::ValuesIn(roads), \
                             [](const auto& info) { return nameOf(info.param); })
#define CLI_ON_ALL_ROADS(suite) CLI_ON_ROADS(suite, cliRoads())
