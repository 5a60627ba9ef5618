#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>

#include "support/process.h"
#include "support/rawserver.h"

/// Starts a server program that must be told its port: another process may take the port between the search
/// and the start, so a few ports are tried. `start` gets the port and makes the process.
inline std::unique_ptr<Process> startOnFreePort(
    std::uint16_t& port, const std::function<std::unique_ptr<Process>(std::uint16_t)>& start) {
    std::string reason;
    for (int attempt = 0; attempt < 5; ++attempt) {
        port = wire::freePort();
        std::unique_ptr<Process> process = start(port);
        const auto deadline = std::chrono::steady_clock::now() + Process::kPatience;
        while (process->running() && std::chrono::steady_clock::now() < deadline) {
            if (accepts(port)) {
                // It is ours only if it didn't fall over the port that answers.
                process->waitFor([](const auto&, const auto&) { return false; },
                                 std::chrono::milliseconds(50));
                if (process->running()) return process;
                break;
            }
            process->waitFor([](const auto&, const auto&) { return false; }, std::chrono::milliseconds(5));
        }
        reason = process->out() + process->err();
    }
    throw std::runtime_error("the server doesn't start: " + reason);
}
