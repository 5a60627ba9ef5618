#pragma once

#include <memory>

#include "cloud.h"
#include "cloudtokens.h"
#include "options.h"
#include "output.h"

namespace torvi {

/// The commands of `torvi cloud` that ask for devices and addresses.
void addCloudDeviceCommands(const Commands& commands, const std::shared_ptr<CloudOptions>& options);

}  // namespace torvi
