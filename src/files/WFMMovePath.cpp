#include "core/FileProcessJson.h"
#include "files/MoveSteps.h"

using namespace Lattice;

namespace {

constexpr MoveLines kLines{
    "[WFM] WFMMovePath WFMGetProgress WFM_PARSE_XML_HTTPTRAN_QUERY_HTTP_HEADER_FAIL retry",
    "[WFM] WFMMovePath: WFMGetProgress failed(%d)",
    "[WFM] WFMMovePath: WFMRenamePath strOldPath(%ls) strNewpath(%ls)",
    "[WFM] WFMMovePath: WFMRenamePath failed(%d)(%d)",
    "[WFM] WFMMovePath: WFMDeletePath strMovePathName(%ls)",
};

}  // namespace

uint32_t WFMMovePath(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port, const wchar_t* slaveID,
                     const wchar_t* source, const wchar_t* destination, bool* cancel, uint32_t* resultWord) {
    static constexpr auto rules = CallRules("[WFM] WFMMovePath");
    Call call(rules, context, server, port);
    if (!call.accepts(source, destination, resultWord)) return call.refuse();
    call.begin(resultWord);

    const TwoPaths paths = MapTwoPaths(*context, source, destination);
    if (paths.denied) return call.fail(ERROR_ACCESS_DENIED, "[WFM] WFMMovePath: ERROR_ACCESS_DENIED");
    if (paths.source.parent == paths.destination.parent) return call.leave(ERROR_INVALID_PARAMETER);

    // The request goes to the source's node, wherever the destination lies.
    call.route(slaveID, paths.source.slaveID);
    if (call.usesSyncService())
        call.post(L"func=move&sid=%ls&no_fork=%d", call.sid(), 0);
    else
        call.post(L"func=move&sid=%ls", call.sid());
    AddMoveFields(call, paths);
    if (!call.exchange()) return call.end();

    const wchar_t* const from = paths.sourcePlace.c_str();
    const wchar_t* const to = paths.destinationPlace.c_str();
    CWebFileManFileProcessJson reply;
    const int parsed = call.parse(reply);
    const int pid = reply.GetPid();
    if (parsed != 1 || (!reply.GetResult() && pid == 0))
        return call.fail(WFM_PARSE_XML_FAIL,
                         "[WFM] WFMMovePath WFM_PARSE_XML_FAIL nParseResult(%d), Result(%d), Pid(%d)", parsed,
                         reply.GetResult(), pid);
    if (reply.GetStatus() == WFM_PERMISSION_DENY)
        return call.answer(ERROR_ACCESS_DENIED, "[WFM] WFMMovePath: ERROR_ACCESS_DENIED(%ls)(%ls)", from, to);
    if (reply.GetStatus() != 0 || pid <= 0)
        return call.answer(-1, "[WFM] WFMMovePath: ERROR_UNKNOWN(%ls)(%ls) dwResult(%d) nPid(%d)", from, to,
                           reply.GetStatus(), pid);
    call.setResult(0);

    call.release();
    const Move move{call, kLines, context, server, port, slaveID, paths, cancel, resultWord};
    if (!FollowJob(move, pid, NodeOf(paths.source, slaveID))) return call.end();
    return FinishMove(move);
}
