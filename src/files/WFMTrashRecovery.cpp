#include "core/callframe.h"
#include "files/GetTrashRecoveryJson.h"
#include "files/MapTeamFolderPath.h"

using namespace Lattice;

namespace {

constexpr wchar_t kRecycle[] = L"/@Recycle";
constexpr wchar_t kHomeRecycle[] = L"/home/@Recycle/";
constexpr wchar_t kTeamRecycle[] = L"/home/@Recycle/.Torvi/";

/// Whether a deleted file came from a team folder of somebody else's: it isn't the receiver's to recover.
bool IsFromTeamFolder(const _WFM_AUTH_CONTEXT& context, const std::wstring& path) {
    if (!context.bUseNuboCGI || context.nTeamFolderCount <= 0 || context.lppTeamFolderPathList == nullptr ||
        context.lppOriPathList == nullptr)
        return false;
    if (path.size() <= std::wstring(kTeamRecycle).size() || !BeginsWith(path, kHomeRecycle)) return false;
    std::wstring before = path;
    before.erase(before.find(kRecycle), std::wstring(kRecycle).size());
    return IndexOfTeamFolder(context, before) >= 0;
}

}  // namespace

uint32_t WFMTrashRecovery(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                          const wchar_t* slaveID, uint32_t mode, const wchar_t* path, const wchar_t* file,
                          void* /*reserved*/, wchar_t* pid, uint32_t pidCapacity, uint32_t* resultWord) {
    static constexpr auto rules = CallRules("[WFMShare] WFMTrashRecovery");
    Call call(rules, context, server, port);
    if (!call.accepts(path, file, Given{pid}, pidCapacity, resultWord)) return call.refuse();
    call.begin(resultWord);

    if (IsFromTeamFolder(*context, WithTrailingSlash(WithTrailingSlash(path) + file)))
        return call.fail(WFM_PARSE_XML_FAIL,
                         "[WFMShare] WFMTrashRecovery: Receiver team folder not support recovery "
                         "file(path=%ls)(file=%ls)",
                         path, file);
    call.route(slaveID);
    call.get(L"func=trash_recovery&sid=%ls&source_file=%ls&mode=%d&source_total=1&source_path=%ls",
             call.sid(), Encoded(file), mode, Encoded(path));
    if (!call.exchange()) return call.end();

    CGetTrashRecoveryJson reply;
    if (call.parse(reply) != 1)
        return call.fail(WFM_PARSE_XML_FAIL,
                         "[WFMShare] WFMTrashRecovery: WFM_PARSE_XML_FAIL(path=%ls)(file=%ls)", path, file);
    if (!CopyText(pid, pidCapacity, reply.GetPid()))
        return call.answer(WFM_INSUFFICIENT_BUFFER,
                           "[WFMShare] WFMTrashRecovery: WFM_INSUFFICIENT_BUFFER(path=%ls)(file=%ls)", path,
                           file);
    return call.answer(reply.GetStatus());
}
