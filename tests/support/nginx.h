#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>

#include "support/process.h"
#include "support/tempdir.h"

/// A real nginx, unprivileged, with everything that it writes in a folder of its own.
class Nginx {
public:
    /// In the configuration "@PORT@" and "@TLS_PORT@" are free ports, "@DIR@" is the folder, "@CERT@" and
    /// "@KEY@" are files of a self-signed certificate; `values` adds names, without their "@". It must say
    /// "daemon off".
    explicit Nginx(std::string configuration, std::map<std::string, std::string> values = {});

    std::uint16_t port() const { return m_port; }
    std::uint16_t tlsPort() const { return m_tlsPort; }
    std::string read(const std::string& name) const { return m_dir.read(name); }
    std::string output() const { return m_process->out() + m_process->err(); }
    static bool installed() { return !findProgram("nginx").empty(); }

    /// A whole configuration around the content of its "http" block.
    static std::string configuration(const std::string& http);

private:
    TempDir m_dir;
    std::uint16_t m_port = 0, m_tlsPort = 0;
    std::unique_ptr<Process> m_process;
};
