#include "core/FileProcessJson.h"
#include "files/MoveSteps.h"
#include "files/ProfileCheck.h"

using namespace Lattice;

namespace {

constexpr MoveLines kLines{
    "[WFM] WFMMovePathwithCheckProfile WFMGetProgress WFM_PARSE_XML_HTTPTRAN_QUERY_HTTP_HEADER_FAIL retry)",
    "[WFM] WFMMovePathwithCheckProfile: WFMGetProgress failed(%d)",
    "[WFM] WFMMovePathwithCheckProfile: WFMRenamePath strOldPath(%ls) strNewpath(%ls)",
    "[WFM] WFMMovePathwithCheckProfile: WFMRenamePath failed(%d)(%d)",
    "[WFM]WFMMovePathwithCheckProfile: WFMDeletePath strMovePathName(%ls)",
};

/// What the server said of the request, with its line if it refused.
uint32_t Result(const Call& call, const TwoPaths& paths, int status, int pid) {
    const wchar_t* const from = paths.sourcePlace.c_str();
    const wchar_t* const to = paths.destinationPlace.c_str();
    if (status == 0 && (call.usesSyncService() || pid > 0)) return 0;
    if (status == WFM_PERMISSION_DENY) {
        call.line("[WFM] WFMMovePathwithCheckProfile: ERROR_ACCESS_DENIED(%ls)(%ls)", from, to);
        return ERROR_ACCESS_DENIED;
    }
    if (IsProfileRefusal(status)) {
        call.line("[WFM] WFMMovePathwithCheckProfile: ERROR_INVALID_DATA(%ls)(%ls)(%d)", from, to, status);
        return ERROR_INVALID_DATA;
    }
    call.line("[WFM] WFMMovePathwithCheckProfile: ERROR_UNKNOWN(%ls)(%ls)(%d)", from, to, status);
    return static_cast<uint32_t>(-1);
}

}  // namespace

uint32_t WFMMovePathwithCheckProfile(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                                     const wchar_t* slaveID, const wchar_t* source,
                                     const wchar_t* destination, int64_t time, int64_t size, bool isFolder,
                                     bool* cancel, uint32_t* resultWord) {
    static constexpr auto rules = CallRules("[WFM] WFMMovePathwithCheckProfile");
    Call call(rules, context, server, port);
    if (!call.accepts(source, destination, time, resultWord)) return call.refuse();
    call.begin(resultWord);

    const TwoPaths paths = MapTwoPaths(*context, source, destination);
    const auto deny = [&](uint32_t result, const char* word) {
        call.setResult(result);
        return call.fail(WFM_PARSE_XML_FAIL, "[WFM] WFMMovePathwithCheckProfile(%ls:%d): %s(%ls)(%ls)",
                         server, static_cast<int>(port), word, paths.sourcePlace.c_str(),
                         paths.destinationPlace.c_str());
    };
    if (!IsSameNode(paths.source.slaveID, paths.destination.slaveID))
        return deny(ERROR_WRONG_DISK, "ERROR_WRONG_DISK");
    if (paths.denied) return deny(ERROR_ACCESS_DENIED, "ERROR_ACCESS_DENIED");
    if (paths.source.parent == paths.destination.parent)
        return deny(ERROR_INVALID_PARAMETER, "ERROR_INVALID_PARAMETER");

    // A file moves inside the request, a folder as a job. The file manager knows jobs alone.
    call.route(slaveID, paths.destination.slaveID);
    if (call.usesSyncService())
        call.post(L"func=move&sid=%ls&no_fork=%d", call.sid(), isFolder ? 0 : 1);
    else
        call.post(L"func=move&sid=%ls", call.sid());
    AddMoveFields(call, paths);
    AddProfileCheck(call, {WithTrailingSlash(paths.source.parent) + paths.source.name, time, size, isFolder});
    if (!call.exchange()) return call.end();

    CWebFileManFileProcessJson reply;
    const int parsed = call.parse(reply);
    const int pid = reply.GetPid();
    if (parsed != 1 || (!reply.GetResult() && pid == 0))
        return call.fail(
            WFM_PARSE_XML_FAIL,
            "[WFM] WFMMovePathwithCheckProfile: WFM_PARSE_XML_FAIL nParseResult(%d) Result(%d) Pid(%d)",
            parsed, reply.GetResult(), pid);
    call.setResult(Result(call, paths, reply.GetStatus(), pid));
    if (call.result() != 0) return call.end();

    call.release();
    const Move move{call, kLines, context, server, port, slaveID, paths, cancel, resultWord};
    const bool isJob = isFolder || !call.usesSyncService();
    if (isJob && !FollowJob(move, pid, NodeOf(paths.destination, slaveID))) return call.end();
    return FinishMove(move);
}
