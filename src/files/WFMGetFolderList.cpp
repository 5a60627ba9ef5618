#include "core/callframe.h"
#include "files/GetFolderInfoJson.h"
#include "files/PathRecord.h"

using namespace Lattice;

uint32_t WFMGetFolderList(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                          const wchar_t* slaveID, uint32_t fieldMask, const wchar_t* node, bool* /*cancel*/,
                          uint32_t* resultWord, uint32_t* count, _WFM_PATH_INFORMATION*** list) {
    static constexpr auto rules = CallRules("[WFM] WFMGetFolderList");
    Call call(rules, context, server, port);
    if (!call.accepts(node, resultWord, count, list)) return call.refuse();
    call.begin(resultWord);
    *count = 0;
    *list = nullptr;

    call.route(slaveID);
    call.get(L"func=get_tree&sid=%ls&is_iso=0&node=%ls", call.sid(), Encoded(node));
    CGetFolderInfoJson reply(L"*", fieldMask);
    if (!call.ask(reply)) return call.end();

    switch (reply.GetStatus()) {
        case WFM_PERMISSION_DENY:
            return call.answer(ERROR_ACCESS_DENIED);
        case WFM_NOT_AUTHENTICATED:
            return call.answer(ERROR_NOT_AUTHENTICATED, "[WFM] WFMGetFolderList: ERROR_NOT_AUTHENTICATED");
        default:
            *list = HandOverList(reply.records);
            *count = static_cast<uint32_t>(reply.records.size());
            return call.answer(0);
    }
}
