#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "support/process.h"

/// A stand-in server as a process of its own, with what all of them offer to tests.
class StandIn {
public:
    StandIn(const StandIn&) = delete;
    StandIn& operator=(const StandIn&) = delete;

    const std::string& address() const { return m_address; }
    std::uint16_t port() const { return m_port; }
    std::uint16_t tlsPort() const { return m_tlsPort; }

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

protected:
    StandIn() = default;
    ~StandIn();

    /// Starts the program on the ports that it had, or on free ones, and waits until it is ready.
    void run(const std::string& name, const std::string& program, const std::string& address, bool tls,
             std::vector<std::string> arguments);

    /// Zero takes a free one.
    std::uint16_t m_port = 0, m_tlsPort = 0;

private:
    std::string m_address;
    std::unique_ptr<Process> m_process;
};
