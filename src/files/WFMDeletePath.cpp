#include "core/GetResultJson.h"
#include "files/RouteTo.h"

using namespace Lattice;

uint32_t WFMDeletePath(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                       const wchar_t* slaveID, const wchar_t* path, bool* /*cancel*/, uint32_t* resultWord) {
    static constexpr auto rules = CallRules("[WFM] WFMDeletePath");
    Call call(rules, context, server, port);
    if (!call.accepts(path, resultWord)) return call.refuse();
    call.begin(resultWord);

    // Neither a share at the top nor a team folder's root can be deleted.
    const std::wstring whole = WithLeadingSlash(path);
    const RemotePath target = RouteTo(call, slaveID, whole.c_str());
    if (target.parent.empty() || target.name.empty()) return call.leave(ERROR_ACCESS_DENIED);
    call.post(L"func=delete&sid=%ls", call.sid());
    call.field("file_name", target.name);
    call.field("file_total", L"1");
    call.field("path", target.parent);
    if (!call.exchange()) return call.end();

    // The other function's name in these two lines must stay.
    CWebFileManGetResultJson reply;
    const int parsed = call.parse(reply);
    if (parsed != 1 || !reply.GetResult())
        return call.fail(WFM_PARSE_XML_FAIL,
                         "[WFM] WFMGetSid: WFM_PARSE_XML_FAIL nParseResult(%d) Result(%d)", parsed,
                         reply.GetResult());
    switch (reply.GetStatus()) {
        case WFM_PERMISSION_DENY:
            return call.answer(ERROR_ACCESS_DENIED, "[WFM] WFMGetSid: ERROR_ACCESS_DENIED(%ls)",
                               PlaceOf(target, whole.c_str()).c_str());
        case WFM_NOT_DONE:
            return call.answer(ERROR_FILE_NOT_FOUND);
        case WFM_FILE_NO_EXIST:
            return call.answer(ERROR_PATH_NOT_FOUND);
        default:
            // Any other refusal passes as a success, and that must stay.
            return call.answer(0);
    }
}
