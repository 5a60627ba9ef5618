#pragma once

#include "commands.h"

namespace torvi {

// The commands below `torvi team`, by who gives them.
void addTeamReceiverCommands(const Commands& commands);
void addTeamOwnerCommands(const Commands& commands);

}  // namespace torvi
