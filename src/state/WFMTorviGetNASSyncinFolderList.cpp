#include "core/callframe.h"
#include "core/handover.h"
#include "state/GetClusterSyncingFolderListJson.h"
#include "state/GetSyncingFolderListJson.h"

using namespace Lattice;

namespace {

constexpr int kFullPrivilege = 2;
/// The list of a cluster is asked of the sync service, whatever the session speaks to.
constexpr wchar_t kClusterList[] =
    L"/cgi-bin/torvi/torvisrv.cgi?func=nubo_get_cluster_node_list&sid=%ls%ls%ls";

}  // namespace

uint32_t WFMTorviGetNASSyncinFolderList(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                                        bool detail, bool refresh, bool* /*cancel*/, uint32_t* resultWord,
                                        uint32_t* count, _NAS_SYNCING_FOLDER_INFORMATION*** list) {
    // The missing letter must stay.
    static constexpr auto rules = CallRules("[WFM] WFMTorviGetNASSyncingolderList");
    Call call(rules, context, server, port);
    if (!call.accepts(count, list)) return call.refuse();
    call.begin(resultWord);
    *count = 0;
    *list = nullptr;

    const wchar_t* const withDetail = detail ? L"&detail=1" : L"";
    const wchar_t* const withRefresh = refresh ? L"&refresh=1" : L"";
    CGetSyncingFolderListJson single;
    CGetClusterSyncingFolderListJson cluster;
    const bool isCluster = context->szSlaveID[0] != L'\0';
    if (isCluster)
        call.getAt(kClusterList, call.sid(), withDetail, withRefresh);
    else
        call.get(L"func=nubo_get_syncing_folder_list&sid=%ls%ls%ls", call.sid(), withDetail, withRefresh);
    CGetSyncingFolderListBaseJson& reply =
        isCluster ? static_cast<CGetSyncingFolderListBaseJson&>(cluster) : single;
    if (!call.ask(reply)) return call.end();

    if (reply.status != -1) call.setResult(reply.status);
    for (const _NAS_SYNCING_FOLDER_INFORMATION& folder : reply.folders)
        if (folder.nPrivilege != kFullPrivilege)
            call.debugLine("[WFM] WFMTorviGetNASSyncingolderList: Folder(%ls)(%ls)(%d)", folder.szName,
                           folder.szPath, folder.nPrivilege);
    *list = HandOver(reply.folders);
    *count = static_cast<uint32_t>(reply.folders.size());
    return call.end();
}
