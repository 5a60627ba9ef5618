#include "core/GetResultJson.h"
#include "core/callframe.h"
#include "files/TwoPaths.h"

using namespace Lattice;

uint32_t WFMRenamePath(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                       const wchar_t* slaveID, const wchar_t* oldPath, const wchar_t* newPath,
                       bool* /*cancel*/, uint32_t* resultWord) {
    static constexpr auto rules = CallRules("[WFM] WFMRenamePath");
    Call call(rules, context, server, port);
    if (!call.accepts(oldPath, newPath, resultWord)) return call.refuse();
    call.begin(resultWord);

    const TwoPaths paths = MapTwoPaths(*context, oldPath, newPath);
    if (paths.denied) return call.fail(ERROR_ACCESS_DENIED, "[WFM] WFMRenamePath: ERROR_ACCESS_DENIED");
    if (paths.source.parent != paths.destination.parent)
        return call.fail(ERROR_INVALID_PARAMETER, "[WFM] WFMRenamePath: ERROR_INVALID_PARAMETER");

    call.route(slaveID, paths.source.slaveID);
    call.post(L"func=rename&sid=%ls", call.sid());
    call.field("path", paths.source.parent);
    call.field("source_name", paths.source.name);
    call.field("dest_name", paths.destination.name);
    if (!call.exchange()) return call.end();

    const wchar_t* const from = paths.sourcePlace.c_str();
    const wchar_t* const to = paths.destinationPlace.c_str();
    CWebFileManGetResultJson reply;
    const int parsed = call.parse(reply);
    if (parsed != 1 || !reply.GetResult())
        return call.fail(WFM_PARSE_XML_FAIL,
                         "[WFM] WFMRenamePath: WFM_PARSE_XML_FAIL(%ls)(%ls) nParseResult(%d)Result(%d)", from,
                         to, parsed, reply.GetResult());
    switch (reply.GetStatus()) {
        case 0:
            return call.answer(0);
        case WFM_ALREADY_EXISTS:
            return call.answer(ERROR_DEPENDENCY_ALREADY_EXISTS);
        case WFM_PERMISSION_DENY:
            return call.answer(ERROR_ACCESS_DENIED, "[WFM] WFMRenamePath: ERROR_ACCESS_DENIED(%ls)(%ls)",
                               from, to);
        default:
            return call.answer(-1, "[WFM] WFMRenamePath: ERROR_UNKNOWN(%ls)(%ls)(%d)", from, to,
                               reply.GetStatus());
    }
}
