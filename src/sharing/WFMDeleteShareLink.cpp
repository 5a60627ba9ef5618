#include "WebFileManShareAPI.h"
#include "core/ShareJson.h"
#include "core/callframe.h"
#include "files/MapTeamFolderPath.h"
#include "sharing/linkplace.h"

using namespace Lattice;

uint32_t WFMDeleteShareLink(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                            const wchar_t* slaveID, const wchar_t* path, const wchar_t* downloadLink,
                            const wchar_t* ssids, void* /*reserved*/, uint32_t* resultWord) {
    static constexpr auto rules = CallRules("[WFMShare] WFMDeleteShareLink").withEndpoint(kLinkPlace);
    Call call(rules, context, server, port);
    if (!call.accepts(path, resultWord) || (!IsGiven(downloadLink) && !IsGiven(ssids))) return call.refuse();
    call.begin(resultWord);

    // The path is sent as it stands; where it is mapped to tells the node only.
    call.route(slaveID, SlaveOfTeamFolder(*context, path));
    if (IsGiven(ssids))
        call.get(L"func=delete_share&sid=%ls&ssids=%ls&file_total=%d", call.sid(), Encoded(ssids), 1);
    else
        call.get(L"func=delete_share&sid=%ls&filename=%ls&download_link=%ls&file_total=%d", call.sid(),
                 Encoded(path), Encoded(downloadLink), 1);
    CShareJson reply;
    if (!call.ask(reply)) return call.end();

    if (reply.GetStatus() != 0)
        return call.answer(-1, "[WFMShare] WFMDeleteShareLink: get error status=%d", reply.GetStatus());
    return call.answer(0);
}
