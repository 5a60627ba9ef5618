#pragma once

#include "core/ShareToJson.h"
#include "core/callframe.h"

namespace Lattice {

/// The lines of a call that starts a job of the server's, where it names none or one that doesn't fit.
struct ShareJobLines {
    const char* invalid;
    const char* tooLong;
};

/// Ends such a call: hands out the job's process id.
inline uint32_t AnswerJob(Call& call, const CShareToJson& reply, const ShareJobLines& lines, wchar_t* pid,
                          uint32_t capacity) {
    call.setResult(reply.GetFound() ? 0 : -1);
    const std::wstring id = reply.GetPid();
    if (id.empty()) {
        call.line("%s", lines.invalid);
    } else if (!CopyText(pid, capacity, id)) {
        call.line("%s", lines.tooLong);
        call.setResult(ERROR_INSUFFICIENT_BUFFER);
    }
    return call.end();
}

}  // namespace Lattice
