#include "WebFileManShareAPI.h"
#include "core/ShareJson.h"
#include "core/callframe.h"

using namespace Lattice;

namespace {

constexpr uint32_t kTypeOnSyncService = 4;
constexpr uint32_t kTypeOnFileManager = 8;
constexpr int kFixed = 1;

}  // namespace

uint32_t WFMFixTeamFolderLink(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                              void* /*reserved*/, uint32_t type, const wchar_t* path, uint32_t* fixed) {
    static constexpr auto rules = CallRules("[WFMShare] WFMFixTeamFolderLink").withOutcomes(kShareOutcomes);
    Call call(rules, context, server, port);
    if (!call.accepts(path, fixed)) return call.refuse();
    if (type != (call.usesSyncService() ? kTypeOnSyncService : kTypeOnFileManager)) return call.refuse();

    call.get(call.usesSyncService() ? L"func=nubo_fix_team_folder_link&sid=%ls&path=%ls&type=4"
                                    : L"func=nubo_fix_team_folder_link&sid=%ls&path=%ls",
             call.sid(), Encoded(path));
    CShareJson reply;
    if (!call.ask(reply)) return call.end();

    if (reply.GetSuccess() && reply.GetStatus() == kFixed) {
        call.debugLine("[WFMShare] WFMFixTeamFolderLink: Team folder link had been fixed(%ls)", path);
        *fixed = 1;
    }
    return call.end();
}
