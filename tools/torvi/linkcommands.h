#pragma once

#include "commands.h"

namespace torvi {

// The parts of `torvi link`.
void addLinkListCommands(const Commands& commands);
void addLinkMakeCommands(const Commands& commands);
void addLinkUpdateCommand(const Commands& commands);
void addLinkMailCommand(const Commands& commands);
void addSharedFolderCommands(const Commands& commands);

}  // namespace torvi
