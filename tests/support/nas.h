#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "support/process.h"
#include "support/tempdir.h"

/// The built torvi-nas on free ports and a folder of its own.
class Nas {
public:
    struct Options {
        /// "name:password" or "name:password:admin".
        std::vector<std::string> users = {"anna:secret:admin", "ben:hidden"};
        bool tls = true;
        /// More of the command line, such as {"--slave-id", "node2"}.
        std::vector<std::string> arguments;
        /// Another folder to serve, for a second node of a cluster; the NAS's own if empty.
        std::string root;
    };

    Nas();
    explicit Nas(Options options);
    ~Nas();
    Nas(const Nas&) = delete;
    Nas& operator=(const Nas&) = delete;

    static bool built() { return std::string(TORVI_NAS_PATH) != ""; }

    std::uint16_t port() const { return m_port; }
    std::uint16_t tlsPort() const { return m_tlsPort; }
    /// The served folder: its subfolders are the shares, homes/<user> the homes.
    const TempDir& folder() const { return m_folder; }
    const std::string& root() const { return m_root; }

    /// Arms a fault by the words of the command line, "close-before-reply,match=upload,count=1", and gives
    /// its number.
    int arm(const std::string& rule);
    void disarm();
    /// How often that fault took effect.
    std::int64_t hits(int fault);
    /// How many requests came for that func, or in all if it is empty; control requests don't count,
    /// nor those that a fault answered.
    std::int64_t requestCount(const std::string& func = {});
    void forgetRequests();
    void expireSessions();
    /// The reply to "<method> /control/<what>" as text.
    std::string control(const std::string& method, const std::string& what, const std::string& body = {});

    /// One line for each request.
    std::string log() const;
    bool waitForLog(const std::string& text) const;
    int pid() const { return m_process->pid(); }
    /// Ends it in order and gives the exit code.
    int stop();
    /// Kills it as a power failure would.
    void kill();
    /// Starts it again after stop() or kill(): the same folder, the same ports, no faults armed.
    void startAgain();

private:
    void start();

    Options m_options;
    TempDir m_folder;
    std::string m_root;
    std::uint16_t m_port = 0, m_tlsPort = 0;
    std::unique_ptr<Process> m_process;
};
