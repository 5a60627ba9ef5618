#pragma once

#include <initializer_list>

#include "lines.h"
#include "support/logcapture.h"
#include "support/session.h"

namespace wire {

/// Each spoilt set of arguments is refused with 8 and one line, and nothing that the caller gave is touched.
/// `Arguments` are good until they are spoilt.
template <class Arguments>
void expectRefusals(LogCapture& log, _WFM_AUTH_CONTEXT* session, const std::string& function,
                    std::initializer_list<void (*)(Arguments&)> spoilers,
                    const std::string& prefix = "[WFM] ") {
    constexpr uint32_t port = 80;
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
}

}  // namespace wire
