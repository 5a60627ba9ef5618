#pragma once

#include <initializer_list>

#include "lines.h"
#include "support/logcapture.h"
#include "support/rawserver.h"
#include "support/session.h"

namespace wire {

/// Each spoilt set of arguments is refused with 8, one line and no request, and nothing that the caller gave
/// is touched. `Arguments` are good until they are spoilt.
template <class Arguments>
void expectRefusals(LogCapture& log, _WFM_AUTH_CONTEXT* session, const std::string& function,
                    std::initializer_list<void (*)(Arguments&)> spoilers,
                    const std::string& prefix = "[WFM] ") {
    const RawServer server({Reply::json("{}")});
    const uint32_t port = server.port();
    int number = 0;
    for (const auto& spoil : spoilers) {
        SCOPED_TRACE(number++);
        log.clear();
        Arguments arguments;
        spoil(arguments);
        EXPECT_EQ(arguments.run(session, port), 8u);
        EXPECT_TRUE(arguments.isUntouched());
        log.expectLines({refusedLine(function, port, prefix)});
    }
    EXPECT_EQ(server.connectionCount(), 0u);
}

}  // namespace wire
