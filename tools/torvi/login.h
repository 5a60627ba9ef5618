#pragma once

#include "context.h"

namespace torvi {

/// Opens a session with user and password: at the sync service, or, where the server has none, at the older
/// one, with a second step if the server wants one. `connection` then says how the server was reached.
Entrance logIn(Connection& connection);

/// Goes on with a session that was opened earlier. Without a context if the server doesn't take it up (any
/// more); throws if it can't be asked. Sessions of the older service can't be taken up.
Entrance takeUp(const Connection& connection, const std::wstring& sid, const std::wstring& slaveId);

/// By which a server tells this machine from others: the same for this user every time, and it tells nobody
/// which machine that is.
QString installationId();

}  // namespace torvi
