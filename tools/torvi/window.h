#pragma once

#include <cstdint>

namespace CLI {
class App;
}

namespace torvi {

/// Which part of a list is wanted, and how much of it at a time.
struct Window {
    uint32_t offset = 0;
    uint32_t limit = 0;  ///< 0 for all that there is
    uint32_t pageSize = 100;

    void addTo(CLI::App& command);
    /// `records` says what one request asks for.
    void addPagesTo(CLI::App& command, const char* records);
};

}  // namespace torvi
