#pragma once

#include <cstdint>
#include <string>

namespace wire {

/// The lines that most calls share, of a call to 127.0.0.1.
inline std::string refusedLine(const std::string& function, uint32_t port) {
    return "[WFM] " + function + "(127.0.0.1:" + std::to_string(port) + "): WFM_PARSE_XML_INVALID_PARAMETER";
}

inline std::string summaryLine(const std::string& function, uint32_t port, uint32_t dwStatus) {
    return "[WFM] " + function + "(127.0.0.1:" + std::to_string(port) + ") failed dwStatus(" +
           std::to_string(dwStatus) + ")";
}

}  // namespace wire
