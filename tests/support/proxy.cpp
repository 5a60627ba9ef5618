#include "support/proxy.h"

#include "support/service.h"

TinyProxy::TinyProxy(const std::string& user, const std::string& password, Via via) {
    const std::string program = findProgram("tinyproxy");
    if (program.empty()) throw std::runtime_error("tinyproxy isn't installed");
    m_process = startOnFreePort(m_port, [&](std::uint16_t port) {
        std::string config = "Port " + std::to_string(port) +
                             "\nListen 127.0.0.1\nAllow 127.0.0.1\nTimeout 600\nMaxClients 100\n"
                             "LogLevel Connect\n";
        if (via == WithoutVia) config += "DisableViaHeader Yes\n";
        if (!user.empty()) config += "BasicAuth " + user + " " + password + "\n";
        Process::Options options;
        options.arguments = {"-d", "-c", m_dir.write("tinyproxy.conf", config)};
        return std::make_unique<Process>(program, std::move(options));
    });
}

std::string TinyProxy::log() const {
    return m_process->out() + m_process->err();
}

bool TinyProxy::waitForLog(const std::string& text) const {
    return m_process->waitFor([&](const std::string& out, const std::string& err) {
        return out.find(text) != std::string::npos || err.find(text) != std::string::npos;
    });
}
