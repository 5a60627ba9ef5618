#pragma once

#include <string>
#include <vector>

#include "options.h"

namespace torvi {

/// Sends many small files into one folder, several in a request.
void putBatch(const GlobalOptions& global, const std::vector<std::string>& files, const std::string& folder,
              bool overwrite, bool dryRun);

}  // namespace torvi
