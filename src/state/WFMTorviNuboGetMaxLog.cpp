#include <algorithm>

#include "core/callframe.h"
#include "state/GetMaxLogJson.h"

using namespace Lattice;

namespace {

bool AllFoldersGiven(const _TORVI_MAX_LOG_INFORMATION& record) {
    return record.dwFolderCount >= 1 && record.lppFolders != nullptr &&
           std::all_of(record.lppFolders, record.lppFolders + record.dwFolderCount,
                       [](const _TORVI_MAX_LOG_FOLDER* folder) {
                           return folder != nullptr && folder->szPath[0] != L'\0';
                       });
}

}  // namespace

uint32_t WFMTorviNuboGetMaxLog(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                               const wchar_t* slaveID, void* /*reserved*/, _TORVI_MAX_LOG_INFORMATION* record,
                               uint32_t* resultWord) {
    static constexpr auto rules = CallRules("[WFMShare] WFMTorviNuboGetMaxLog");
    Call call(rules, context, server, port);
    if (!call.accepts(record, resultWord) || !AllFoldersGiven(*record)) return call.refuse();
    call.begin(resultWord);
    record->llMaxLog = record->llNotify = record->llGlobalNotify = -1;
    for (uint32_t i = 0; i < record->dwFolderCount; ++i) record->lppFolders[i]->llMaxLog = -1;

    // The same place whatever the session speaks to.
    call.route(slaveID);
    call.postAt(L"/%lscgi-bin/torvi/torvisrvPrepare.cgi?func=nubo_get_max_log&sid=%ls", call.slavePrefix(),
                call.sid());
    call.field("folder_number", record->dwFolderCount);
    for (uint32_t i = 0; i < record->dwFolderCount; ++i)
        call.field(("folder" + std::to_string(i)).c_str(), record->lppFolders[i]->szPath);
    CTorviGetMaxLogJson reply(record->dwFolderCount);
    if (!call.ask(reply)) return call.end();

    if (reply.GetStatus() != 0)
        return call.answer(reply.GetStatus(), "[WFMShare] WFMTorviNuboGetMaxLog: Get error status=%d",
                           reply.GetStatus());
    TakeLogNumber(record->llMaxLog, reply.maxLog);
    TakeLogNumber(record->llNotify, reply.notify);
    TakeLogNumber(record->llGlobalNotify, reply.globalNotify);
    for (const _TORVI_MAX_LOG_JSON_INFO& folder : reply.folders)
        if (folder.nFolderIndex >= 0)
            TakeLogNumber(record->lppFolders[folder.nFolderIndex]->llMaxLog, folder.llMaxLog);
    return call.answer(0);
}
