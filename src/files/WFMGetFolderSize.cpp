#include "files/GetFolderSizeJson.h"
#include "files/RouteTo.h"

using namespace Lattice;

uint32_t WFMGetFolderSize(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                          const wchar_t* slaveID, const wchar_t* name, const wchar_t* parent,
                          bool* /*cancel*/, uint32_t* resultWord, int64_t* size) {
    // The doubled W must stay.
    static constexpr auto rules = CallRules("[WFM] WWFMGetFolderSize");
    Call call(rules, context, server, port);
    if (!call.accepts(name, parent, resultWord, size)) return call.refuse();
    call.begin(resultWord);

    const RemotePath path = RouteTo(call, slaveID, WithLeadingSlash(parent), name);
    call.get(L"func=properties&sid=%ls&path=%ls&total=1&name=%ls", call.sid(), Encoded(path.parent),
             Encoded(path.name));
    CGetFolderSizeJson reply;
    if (!call.ask(reply)) return call.end();

    switch (reply.GetStatus()) {
        case 0:
            if (!reply.IsValid())
                return call.answer(ERROR_INVALID_PARAMETER,
                                   "[WFM] WWFMGetFolderSize: ERROR_INVALID_PARAMETER");
            *size = reply.GetSize();
            return call.answer(0);
        case WFM_PERMISSION_DENY:
            return call.answer(ERROR_ACCESS_DENIED);
        case WFM_FILE_NO_EXIST:
            return call.answer(ERROR_PATH_NOT_FOUND);
        default:
            return call.answer(-1, "[WFM] WWFMGetFolderSize: ERROR_UNKNOWN Status(%d)", reply.GetStatus());
    }
}
