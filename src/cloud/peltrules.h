#pragma once

#include "cloud/cloudcall.h"

namespace Lattice {

/// How the lines of the remote-access calls go: one word has the colon, the others don't, and that must stay.
constexpr CallRules PeltRules(const char* callName) {
    return CloudRules(callName)
        .withReason(kWithoutColon)
        .withOutcomes({{kProxyRefused,
                        {kServiceUnavailable.httpStatus, kServiceUnavailable.dwStatus,
                         kServiceUnavailable.word, "{call}: {word}"}},
                       2});
}

}  // namespace Lattice
