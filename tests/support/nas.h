#pragma once

#include <string>
#include <vector>

#include "support/programs.h"
#include "support/standin.h"
#include "support/tempdir.h"

/// The built torvi-nas on free ports and a folder of its own.
class Nas : public StandIn {
public:
    struct Options {
        /// "name:password" or "name:password:admin".
        std::vector<std::string> users = {"anna:secret:admin", "ben:hidden"};
        bool tls = true;
        /// More of the command line, such as {"--slave-id", "node2"}.
        std::vector<std::string> arguments;
        /// Another folder to serve, for a second node of a cluster; the NAS's own if empty.
        std::string root;
        std::string address = "127.0.0.1";
    };

    Nas();
    explicit Nas(Options options);
    ~Nas();

    static bool built() { return std::string(kTorviNas) != ""; }

    /// The served folder: its subfolders are the shares, homes/<user> the homes.
    const TempDir& folder() const { return m_folder; }
    const std::string& root() const { return m_root; }

    void expireSessions();
    /// Starts it again after stop() or kill(): the same folder, the same ports, no faults armed.
    void startAgain();

private:
    void start();

    Options m_options;
    TempDir m_folder;
    std::string m_root;
};
