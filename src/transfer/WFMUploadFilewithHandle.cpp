#include <QFile>

#include "core/GetResultJson.h"
#include "files/RouteTo.h"
#include "transfer/filepart.h"

using namespace Lattice;

namespace {

/// What the server said of a finished upload.
void Judge(Call& call) {
    CWebFileManGetResultJson reply;
    if (call.parse(reply) != 1 || !reply.GetResult()) return call.failNotUnderstood();
    if (reply.GetStatus() == 0) return call.setResult(0);
    call.line("[WFM] WFMUploadFilewithHandle: get error status = %d", reply.GetStatus());
    if (reply.GetStatus() == WFM_PERMISSION_DENY) call.setResult(ERROR_ACCESS_DENIED);
    if (reply.GetStatus() == WFM_QUOTA_ERROR) call.setResult(ERROR_DISK_FULL);
}

}  // namespace

uint32_t WFMUploadFilewithHandle(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                                 const wchar_t* slaveID, QFile* file, const wchar_t* destination,
                                 void* lpData, WFMProgressCallback callback, uint32_t overwrite,
                                 void* /*reserved*/, uint32_t* resultWord) {
    static constexpr auto rules =
        CallRules("[WFM] WFMUploadFilewithHandle")
            .withRefused("{call}: WFM_PARSE_XML_INVALID_PARAMETER")
            .withReason("{call} {word}")
            .withNotUnderstood("{call}: {word}")
            .withSummary("{call}({server}:{port}): ({subject})failed ({status}) ({subject})")
            .withTimeout(kNoTimeout);
    Call call(rules, context, server, port);
    call.about(destination);
    if (!call.accepts(destination, resultWord) || !IsReadableFile(file)) return call.refuse();
    call.begin(resultWord);

    const RemotePath target = RouteTo(call, slaveID, destination);
    call.post(L"func=upload&sid=%ls&dest_path=%ls&overwrite=%d", call.sid(), Encoded(target.parent),
              overwrite & 0xFFU);
    AddFilePart(call, target.name, LocalPath(*file), file->size());

    HttpRequestWorker& worker = call.worker();
    if (call.judge(worker.upload(call.request(), "Upload", false, callback, lpData))) Judge(call);

    // A stopped or short transfer outweighs what the server said.
    const bool isShort = worker.llTotalFileSize != worker.llTotalBytesTransferred;
    if (worker.dwProgress == 1)
        call.setResult(ERROR_REQUEST_ABORTED);
    else if (worker.dwProgress == 2)
        call.setResult(ERROR_INVALID_DATA);
    else if (call.result() == 0 && isShort)
        call.setResult(ERROR_REQUEST_ABORTED);
    return call.end();
}
