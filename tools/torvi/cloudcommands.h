#pragma once

#include <memory>

#include "cloud.h"
#include "commands.h"

namespace torvi {

// Commands of `torvi cloud`.
/// devices, device and public-ip.
void addCloudDeviceCommands(const Commands& commands, const std::shared_ptr<CloudOptions>& options);
void addCloudReachCommand(const Commands& commands, const std::shared_ptr<CloudOptions>& options);

}  // namespace torvi
