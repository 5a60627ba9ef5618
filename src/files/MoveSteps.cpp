#include "files/MoveSteps.h"

#include <QThread>

namespace Lattice {

namespace {

constexpr unsigned long kBeforePollMs = 500;
constexpr int kPollTries = 3;

bool IsWorthRetrying(uint32_t dwStatus) {
    return dwStatus == WFM_PARSE_XML_HTTPTRAN_QUERY_HTTP_HEADER_FAIL ||
           dwStatus == WFM_PARSE_XML_HTTPTRAN_SERVICE_UNAVAIL;
}

uint32_t Poll(const Move& move, int32_t pid, const wchar_t* node) {
    for (int tries = kPollTries;;) {
        const uint32_t dwStatus =
            WFMGetProgress(move.context, move.server, move.port, node, move.paths.source.name.c_str(), pid,
                           move.cancel, move.resultWord);
        if (!IsWorthRetrying(dwStatus)) return dwStatus;
        if (IsSet(move.cancel) || !IsNetworkAlive() || --tries == 0) return dwStatus;
        move.call.line("%s", move.lines.retry);
    }
}

}  // namespace

void AddMoveFields(Call& call, const TwoPaths& paths) {
    call.field("source_file", paths.source.name);
    call.field("source_total", L"1");
    call.field("source_path", paths.source.parent);
    call.field("dest_path", paths.destination.parent);
    call.field("mode", L"0");
}

bool FollowJob(const Move& move, int32_t pid, const wchar_t* node) {
    QThread::msleep(kBeforePollMs);
    const uint32_t dwStatus = Poll(move, pid, node);
    if (dwStatus != 0) {
        move.call.line(move.lines.pollFailed, static_cast<int>(dwStatus));
        move.call.setStatus(dwStatus);
        return false;
    }
    // Only the file manager keeps a job that has ended.
    if (!move.call.usesSyncService() && move.call.result() == 0)
        WFMDeleteProgress(move.context, move.server, move.port, node, pid, move.cancel);
    return true;
}

uint32_t FinishMove(const Move& move) {
    const std::wstring& oldName = move.paths.source.name;
    const std::wstring& newName = move.paths.destination.name;
    if (oldName == newName || move.call.result() != 0) return move.call.end();

    const std::wstring folder = WithTrailingSlash(move.paths.destination.parent);
    const std::wstring moved = folder + oldName;
    const std::wstring wanted = folder + newName;
    move.call.debugLine(move.lines.renaming, moved.c_str(), wanted.c_str());
    const uint32_t dwStatus = WFMRenamePath(move.context, move.server, move.port, move.slaveID, moved.c_str(),
                                            wanted.c_str(), move.cancel, move.resultWord);
    if (dwStatus == 0 && move.call.result() == 0) return move.call.end();

    move.call.line(move.lines.renameFailed, static_cast<int>(dwStatus), static_cast<int>(move.call.result()));
    move.call.debugLine(move.lines.deleting, moved.c_str());
    uint32_t deleted = 0;
    WFMDeletePath(move.context, move.server, move.port, move.slaveID, moved.c_str(), move.cancel, &deleted);
    move.call.setStatus(dwStatus);
    return move.call.answer(-1);
}

}  // namespace Lattice
