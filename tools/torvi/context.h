#pragma once

#include <WebFileManAPI.h>

#include <QString>
#include <memory>

#include "connection.h"

namespace torvi {

struct FreeContext {
    void operator()(_WFM_AUTH_CONTEXT* context) const { WFMFreeAuthContext(context); }
};
using Context = std::unique_ptr<_WFM_AUTH_CONTEXT, FreeContext>;

/// Which of a server's two services a session speaks to.
enum class Service { Sync, Older };

/// What a login left behind, or a session that was taken up.
struct Entrance {
    Context context;
    Service service = Service::Sync;
    QString serverName;
    bool admin = false;
    bool slave = false;
    bool secondStep = false;  ///< its context names no agent, which listings of files need
};

std::wstring sidOf(const Entrance& entrance);
std::wstring slaveIdOf(const Entrance& entrance);

/// Ends the session at the server. False if it may live on there.
bool logOut(const Connection& connection, const Entrance& entrance, bool force);

}  // namespace torvi
