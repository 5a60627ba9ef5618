#pragma once

#include <WebFileManShareAPI.h>

#include "commands.h"
#include "session.h"

namespace torvi {

/// The commands of `torvi device config` that only tell: list, acl and notify.
void addDeviceNewsCommands(const Commands& commands);

/// What the user may set.
WFM_TORVI_CONFIG_ACL_INFO configAcl(const Session& session, const QString& what);

}  // namespace torvi
