#pragma once

#include "core/callframe.h"

namespace Lattice {

/// What an activation that the server refused comes back as.
enum ActivationResult : int32_t {
    kActivationRefused = -2,
    kActivationNotReady = -38,
    kActivationNeedsTls = -39,
};

/// The lines of an activation; bad arguments give 87, not 8.
constexpr CallRules ActivationRules(const char* call) {
    return CallRules(call).withTimeout(30000);
}

/// The result word of the server's answer.
inline int64_t ActivationResultOf(int status) {
    switch (status) {
        case 0:
            return 0;
        case WFM_NOT_MADE:
            return kActivationNotReady;
        case WFM_FORCE_HTTPS_REDIRECT:
            return kActivationNeedsTls;
        default:
            return kActivationRefused;
    }
}

}  // namespace Lattice
