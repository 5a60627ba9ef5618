#include "core/GetResultJson.h"
#include "files/ProfileCheck.h"
#include "files/TwoPaths.h"

using namespace Lattice;

uint32_t WFMRenamePathwithCheckProfile(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                                       const wchar_t* slaveID, const wchar_t* oldPath, const wchar_t* newPath,
                                       int64_t time, int64_t size, bool isFolder, bool* /*cancel*/,
                                       uint32_t* resultWord) {
    static constexpr auto rules = CallRules("[WFM] WFMRenamePathwithCheckProfile").withTimeout(30000);
    Call call(rules, context, server, port);
    if (!call.accepts(oldPath, newPath, time, resultWord)) return call.refuse();
    call.begin(resultWord);

    const TwoPaths paths = MapTwoPaths(*context, oldPath, newPath);
    if (paths.denied) {
        call.setResult(ERROR_ACCESS_DENIED);
        return call.fail(WFM_PARSE_XML_FAIL, "[WFM] WFMRenamePathwithCheckProfile: ERROR_ACCESS_DENIED");
    }
    if (paths.source.parent != paths.destination.parent) {
        call.setResult(ERROR_INVALID_PARAMETER);
        return call.fail(WFM_PARSE_XML_FAIL,
                         "[WFM] WFMRenamePathwithCheckProfile: WFM_PARSE_XML_INVALID_PARAMETER");
    }

    call.route(slaveID, paths.source.slaveID);
    call.post(L"func=rename&sid=%ls", call.sid());
    call.field("path", paths.source.parent);
    call.field("source_name", paths.source.name);
    call.field("dest_name", paths.destination.name);
    AddProfileCheck(call, {paths.source.parent + L"/" + paths.source.name, time, size, isFolder});
    if (!call.exchange()) return call.end();

    const wchar_t* const from = paths.sourcePlace.c_str();
    const wchar_t* const to = paths.destinationPlace.c_str();
    CWebFileManGetResultJson reply;
    const int parsed = call.parse(reply);
    if (parsed != 1 || !reply.GetResult())
        return call.fail(
            WFM_PARSE_XML_FAIL,
            "[WFM] WFMRenamePathwithCheckProfile: WFM_PARSE_XML_FAIL(nParseResult=%d)(Result=%d)", parsed,
            reply.GetResult());
    const int status = reply.GetStatus();
    if (IsProfileRefusal(status))
        return call.answer(ERROR_INVALID_DATA,
                           "[WFM] WFMRenamePathwithCheckProfile: ERROR_INVALID_DATA(%ls)(%ls)(%d)", from, to,
                           status);
    switch (status) {
        case 0:
            return call.answer(0);
        case WFM_ALREADY_EXISTS:
            return call.answer(
                ERROR_DEPENDENCY_ALREADY_EXISTS,
                "[WFM] WFMRenamePathwithCheckProfile: ERROR_DEPENDENCY_ALREADY_EXISTS(%ls)(%ls)", from, to);
        case WFM_PERMISSION_DENY:
            return call.answer(ERROR_ACCESS_DENIED,
                               "[WFM] WFMRenamePathwithCheckProfile: ERROR_ACCESS_DENIED(%ls)(%ls)", from,
                               to);
        default:
            return call.answer(-1, "[WFM] WFMRenamePathwithCheckProfile: ERROR_UNKNOWN(%ls)(%ls)(%d)", from,
                               to, status);
    }
}
