#pragma once

#include <fstream>
#include <sstream>
#include <string>

#include "support/programs.h"

/// The configuration that a front end of a cluster is meant to have, with its names not filled in.
inline std::string clusterTemplate() {
    std::ifstream in(kClusterTemplate);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}
