#include <algorithm>

#include "files/RouteTo.h"
#include "transfer/GetUploadIDJson.h"

using namespace Lattice;

namespace {

/// The server's own statuses.
enum UploadIDStatus { kStarted = 0, kNoUploadRoot = -4, kDenied = 4, kNotAvailable = 7 };

}  // namespace

uint32_t WFMGetUploadID(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                        const wchar_t* slaveID, uint32_t* capacity, wchar_t* uploadID,
                        const wchar_t* uploadRoot, const wchar_t* folder, void* /*reserved*/,
                        uint32_t* resultWord, uint32_t* detail) {
    static constexpr auto rules = CallRules("[WFM] WFMGetUploadID").withoutAddressCheck();
    Call call(rules, context, server, port);
    if (!call.accepts(capacity, Given{uploadID}, uploadRoot, folder, resultWord, detail) || *capacity == 0)
        return call.refuse();
    call.begin(resultWord);
    *detail = static_cast<uint32_t>(-1);

    // Here the caller's node goes before that of the team folder.
    const RemotePath target = MapTeamFolderPath(*context, folder);
    call.route(IsGiven(slaveID) ? slaveID : target.slaveID.c_str());
    call.get(L"func=start_chunked_upload&sid=%ls&upload_root_dir=%ls", call.sid(), Encoded(uploadRoot));
    CGetUploadIDJson reply;
    if (!call.ask(reply)) return call.end();

    if (reply.GetStatus() != kStarted)
        call.line("[WFM] WFMGetUploadID: get error status = %d", reply.GetStatus());
    const std::wstring& id = reply.GetUploadID();
    switch (reply.GetStatus()) {
        case kStarted:
            if (id.empty()) return call.answer(0);
            if (id.size() > *capacity) {
                *capacity = static_cast<uint32_t>(id.size() + 1);
                *detail = ERROR_INSUFFICIENT_BUFFER;
                return call.answer(0, "[WFM] WFMGetUploadID: ERROR_INSUFFICIENT_BUFFER");
            }
            // An id as long as the capacity has its terminator behind the buffer, and that must stay.
            std::copy_n(id.c_str(), id.size() + 1, uploadID);
            *detail = 0;
            return call.answer(0);
        case kNoUploadRoot:
            return call.answer(WFM_NO_SUCH_UPLOAD);
        case kDenied:
            return call.answer(WFM_PERMISSION_DENY);
        case kNotAvailable:
            if (reply.IsHomeFolderAvailable()) return call.answer(WFM_NOT_MADE);
            return call.answer(WFM_HOME_FOLDER_NOT_AVAIL, "[WFM] WFMGetUploadID: WFM_HOME_FOLDER_NOT_AVAIL");
        default:
            return call.answer(-1);
    }
}
