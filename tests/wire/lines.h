#pragma once

#include <cstdint>
#include <string>

namespace wire {

/// How the lines of the sharing family begin.
inline constexpr const char* kSharePrefix = "[WFMShare] ";

/// The lines that most calls share, of a call to 127.0.0.1.
inline std::string refusedLine(const std::string& function, uint32_t port,
                               const std::string& prefix = "[WFM] ") {
    return prefix + function + "(127.0.0.1:" + std::to_string(port) + "): WFM_PARSE_XML_INVALID_PARAMETER";
}

inline std::string summaryLine(const std::string& function, uint32_t port, uint32_t dwStatus,
                               const std::string& prefix = "[WFM] ") {
    return prefix + function + "(127.0.0.1:" + std::to_string(port) + ") failed dwStatus(" +
           std::to_string(dwStatus) + ")";
}

}  // namespace wire
