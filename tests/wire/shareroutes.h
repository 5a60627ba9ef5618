#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "lines.h"
#include "routes.h"
#include "support/logcapture.h"

namespace wire {

/// The ways of a share's call, which names no node: those of one service, for calls that ask the two in
/// different words or one of them not at all.
inline std::vector<Route> shareRoutes(bool ofFileManager) {
    std::vector<Route> all = routesWithoutNode();
    all.erase(std::remove_if(all.begin(), all.end(),
                             [=](const Route& route) { return route.isFileManager != ofFileManager; }),
              all.end());
    return all;
}

/// A refused call touches nothing and sends nothing. `Arguments` are good but for the session's service.
template <class Arguments>
void expectRefusedAtTheService(const std::string& function, bool fileManager) {
    const RawServer server({Reply::json("{}")});
    Arguments call(server);
    if (fileManager) useFileManager(*call.session);
    LogCapture log;
    EXPECT_EQ(call.run(), 8u);
    EXPECT_TRUE(call.isUntouched());
    EXPECT_EQ(server.connectionCount(), 0u);
    log.expectLines({refusedLine(function, server.port(), kSharePrefix)});
}

}  // namespace wire
