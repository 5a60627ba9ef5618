#pragma once

#include "commands.h"

namespace torvi {

// The commands below `torvi team`.
void addTeamReceiverCommands(const Commands& commands);
void addTeamShareCommand(const Commands& commands);
void addTeamMembersCommand(const Commands& commands);
void addTeamSetMemberCommand(const Commands& commands);
void addTeamKickCommand(const Commands& commands);
void addTeamUnshareCommand(const Commands& commands);

}  // namespace torvi
