#pragma once

#include "core/ShareJson.h"
#include "core/callframe.h"

namespace Lattice {

/// Ends a signal about a sync run: the server must have said yes twice. The line names the stop for both, and
/// that must stay.
inline uint32_t AnswerSignal(Call& call, const CShareJson& reply) {
    if (TranslateWFMErrorCode(reply.GetStatus()) == 0 && reply.GetSuccess()) return call.answer(0);
    return call.answer(-1, "[WFMShare] WFMGetTorviSyncStop: get error status = %d", reply.GetStatus());
}

}  // namespace Lattice
