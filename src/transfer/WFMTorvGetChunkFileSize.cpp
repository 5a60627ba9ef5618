#include "core/callframe.h"
#include "transfer/GetChunkFileSizeJson.h"

using namespace Lattice;

namespace {

/// The server's own statuses.
enum ChunkStatus { kHeld = 0, kNoUploadID = -4, kFailed = 5 };

}  // namespace

uint32_t WFMTorvGetChunkFileSize(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                                 const wchar_t* slaveID, const wchar_t* uploadID, const wchar_t* uploadRoot,
                                 void* /*reserved*/, int64_t* size, uint32_t* resultWord) {
    static constexpr auto rules = CallRules("[WFM] WFMTorvGetChunkFileSize");
    Call call(rules, context, server, port);
    if (!call.accepts(uploadID, uploadRoot, size, resultWord)) return call.refuse();
    call.begin(resultWord);

    call.route(slaveID);
    call.get(L"func=get_chunked_upload_status&sid=%ls&upload_id=%ls&upload_root_dir=%ls", call.sid(),
             Encoded(uploadID), Encoded(uploadRoot));
    CGetChunkFileSizeJson reply;
    if (!call.ask(reply)) return call.end();

    if (reply.GetStatus() != kHeld)
        call.line("[WFM] WFMTorvGetChunkFileSize: get error status = %d", reply.GetStatus());
    switch (reply.GetStatus()) {
        case kHeld:
            *size = reply.GetSize();
            return call.answer(0);
        case kNoUploadID:
            return call.answer(WFM_NO_SUCH_UPLOAD);
        case kFailed:
            return call.answer(WFM_STATUS_FAILED);
        default:
            return call.answer(-1);
    }
}
