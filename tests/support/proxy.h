#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "support/process.h"
#include "support/tempdir.h"

/// A real tinyproxy on a port of its own.
class TinyProxy {
public:
    TinyProxy() : TinyProxy("", "") {}
    /// Wants these credentials, unless the user is empty.
    enum Via { WithoutVia, WithVia };  ///< whether it names itself in what it passes on
    TinyProxy(const std::string& user, const std::string& password, Via via = WithoutVia);

    std::uint16_t port() const { return m_port; }
    /// "127.0.0.1:<port>", as the calls want it.
    std::wstring hostAndPort() const { return L"127.0.0.1:" + std::to_wstring(m_port); }
    /// What it logged so far; tells which requests really went through it.
    std::string log() const;
    bool waitForLog(const std::string& text) const;
    static bool installed() { return !findProgram("tinyproxy").empty(); }

private:
    TempDir m_dir;
    std::uint16_t m_port = 0;
    std::unique_ptr<Process> m_process;
};
