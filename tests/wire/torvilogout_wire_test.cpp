// Beyond logouts_wire_test.cpp.

#include <gtest/gtest.h>

#include "support/session.h"
#include "support/wire.h"

using namespace wire;

TEST(TorviLogoutWire, AsksTheFcgiOfASessionThatHasIt) {
    const RawServer server({Reply::json(R"({"status":1,"success":"true"})")});
    SessionOptions options;
    options.fcgi = true;
    const SessionPtr session = makeSession(options);
    EXPECT_EQ(TorviLogout(kServer, server.port(), false, session.get()), 0u);
    expectGet(server.onlyRequest(), "/cgi-bin/torvi/torvisrv.fcgi?func=logout&sid=sid123&logout=1",
              baseHeaders(server));
}
