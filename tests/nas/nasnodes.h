#pragma once

#include <string>
#include <vector>

#include "support/nas.h"

/// A node of a cluster: the nodes with one session folder know each other's sessions.
inline Nas::Options nodeOptions(const std::string& id, const std::string& sessions,
                                const std::vector<std::string>& more = {}) {
    Nas::Options options;
    options.arguments = {"--slave-id", id, "--session-dir", sessions};
    options.arguments.insert(options.arguments.end(), more.begin(), more.end());
    return options;
}
