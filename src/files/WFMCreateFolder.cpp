#include "core/GetResultJson.h"
#include "files/RouteTo.h"

using namespace Lattice;

uint32_t WFMCreateFolder(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                         const wchar_t* slaveID, const wchar_t* parent, const wchar_t* name, bool* /*cancel*/,
                         uint32_t* resultWord) {
    static constexpr auto rules = CallRules("[WFM] WFMCreateFolder");
    Call call(rules, context, server, port);
    if (!call.accepts(parent, name, resultWord)) return call.refuse();
    call.begin(resultWord);

    const RemotePath folder = RouteTo(call, slaveID, WithLeadingSlash(parent), name);
    if (folder.isTeamRoot) return call.answer(ERROR_ALREADY_EXISTS);
    call.get(L"func=createdir&sid=%ls&dest_folder=%ls&dest_path=%ls", call.sid(), Encoded(folder.name),
             Encoded(folder.parent));
    if (!call.exchange()) return call.end();

    CWebFileManGetResultJson reply;
    const int parsed = call.parse(reply);
    if (parsed != 1 || !reply.GetResult())
        return call.fail(WFM_PARSE_XML_FAIL,
                         "[WFM] WFMCreateFolder: WFM_PARSE_XML_FAIL(nParseResult=%d)(Result=%d)", parsed,
                         reply.GetResult());
    switch (reply.GetStatus()) {
        case 0:
            return call.answer(0);
        case WFM_ALREADY_EXISTS:
            return call.answer(ERROR_ALREADY_EXISTS);
        case WFM_FILE_NO_EXIST:
            return call.answer(ERROR_PATH_NOT_FOUND);
        case WFM_NAME_TOO_LONG:
            return call.answer(ERROR_NAME_TOO_LONG);
        case WFM_PERMISSION_DENY:
            return call.answer(ERROR_ACCESS_DENIED, "[WFM] WFMCreateFolder: (%ls)(%ls)ERROR_ACCESS_DENIED",
                               folder.parent.c_str(), folder.name.c_str());
        default:
            return call.answer(-1, "[WFM] WFMCreateFolder: (%ls)(%ls)ERROR_UNKNOWN(%d)",
                               folder.parent.c_str(), folder.name.c_str(), reply.GetStatus());
    }
}
