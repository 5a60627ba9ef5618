#pragma once

#include "WebFileManShareAPI.h"
#include "core/ShareJson.h"
#include "core/callframe.h"
#include "sharing/optionalkey.h"

namespace Lattice {

/// Ends an action on a share. The server's number is only logged; 1 is a failure here, and that must stay.
inline uint32_t AnswerAction(Call& call, const CShareJson& reply, const char* refused) {
    if (reply.GetStatus() != 0) {
        call.line(refused, reply.GetStatus());
        return call.answer(-1);
    }
    return call.answer(0);
}

}  // namespace Lattice
