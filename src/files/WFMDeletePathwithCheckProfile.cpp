#include "core/GetResultJson.h"
#include "files/ProfileCheck.h"
#include "files/RouteTo.h"

using namespace Lattice;

uint32_t WFMDeletePathwithCheckProfile(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                                       const wchar_t* slaveID, const wchar_t* path, int64_t time,
                                       int64_t size, bool isFolder, bool cleanThumbnails, bool* /*cancel*/,
                                       uint32_t* resultWord) {
    static constexpr auto rules = CallRules("[WFM] WFMDeletePathwithCheckProfile");
    Call call(rules, context, server, port);
    if (!call.accepts(path, time, resultWord)) return call.refuse();
    call.begin(resultWord);

    const RemotePath target = RouteTo(call, slaveID, WithLeadingSlash(path).c_str());
    const std::wstring place = PlaceOf(target, path);
    if (target.isTeamRoot) {
        call.setResult(ERROR_NOT_SUPPORTED);
        return call.fail(
            WFM_PARSE_XML_FAIL,
            "[WFM] WFMDeletePathwithCheckProfile: Not support to delete team folder root folder(%ls)",
            place.c_str());
    }
    if (target.parent.empty() || target.name.empty()) return call.leave(ERROR_ACCESS_DENIED);
    call.post(L"func=delete&sid=%ls", call.sid());
    call.field("file_name", target.name);
    call.field("file_total", L"1");
    call.field("path", target.parent);
    AddProfileCheck(call, {place, time, size, isFolder});
    if (cleanThumbnails) call.field("clean_thumb", L"1");
    if (!call.exchange()) return call.end();

    CWebFileManGetResultJson reply;
    const int parsed = call.parse(reply);
    if (parsed != 1 || !reply.GetResult())
        return call.fail(
            WFM_PARSE_XML_FAIL,
            "[WFM] WFMDeletePathwithCheckProfile: WFM_PARSE_XML_FAIL nParseResult(%d) Result(%d)", parsed,
            reply.GetResult());
    const int status = reply.GetStatus();
    if (status == 0) return call.answer(0);
    call.line("[WFM] WFMDeletePathwithCheckProfile: %ls (dwResult=%d)", place.c_str(), status);
    if (status == WFM_PERMISSION_DENY)
        return call.answer(ERROR_ACCESS_DENIED,
                           "[WFM] WFMDeletePathwithCheckProfile: ERROR_ACCESS_DENIED(%ls)", place.c_str());
    // A folder that isn't there any more is gone, as was wished.
    if (status == WFM_PROFILE_PATH && isFolder) return call.answer(0);
    if (IsProfileRefusal(status))
        return call.answer(ERROR_INVALID_DATA,
                           "[WFM] WFMDeletePathwithCheckProfile: ERROR_INVALID_DATA(%ls)(%d)", place.c_str(),
                           status);
    return call.answer(-1);
}
