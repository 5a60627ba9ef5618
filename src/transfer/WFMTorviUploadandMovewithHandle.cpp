#include <QFile>

#include "files/RouteTo.h"
#include "transfer/GetUploadChunkResultJson.h"
#include "transfer/filepart.h"

using namespace Lattice;

namespace {

// The missing W of the first word must stay.
constexpr HttpOutcomes kOutcomes{
    {{407, WFM_PARSE_XML_HTTPTRAN_PROXY_AUTH_REQ, "FM_PARSE_XML_HTTPTRAN_PROXY_AUTH_REQ"},
     kServiceUnavailable},
    2};

/// What the server said of a finished upload; the result word carries its client code.
void Judge(Call& call, const wchar_t* destination) {
    CGetUploadChunkResultJson reply;
    if (!call.understands(reply)) return;
    call.setResult(reply.GetStatus());
    if (reply.GetStatus() == 0) return;
    call.line("[WFM] WFMTorviUploadandMovewithHandle(%ls): get error status(%d)", destination,
              reply.GetStatus());
    if (reply.GetStatus() == WFM_STATUS_FAILED && !reply.IsHomeFolderAvailable()) {
        call.setResult(WFM_HOME_FOLDER_NOT_AVAIL);
        call.line(
            "[WFM] WFMTorviUploadandMovewithHandle(%ls): home folder not available "
            "(WFM_HOME_FOLDER_NOT_AVAIL)",
            destination);
    }
}

}  // namespace

uint32_t WFMTorviUploadandMovewithHandle(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                                         const wchar_t* slaveID, QFile* file, const wchar_t* destination,
                                         const wchar_t* uploadRoot, const wchar_t* renameTarget,
                                         int64_t fileSize, int64_t modifiedTime, void* lpData,
                                         WFMProgressCallback callback, uint32_t overwrite, void* /*reserved*/,
                                         uint32_t* resultWord) {
    static constexpr auto rules =
        CallRules("[WFM] WFMTorviUploadandMovewithHandle")
            .withRefused("{call}({server}:{port}): WFM_PARSE_XML_INVALID_PARAMETER({subject})")
            .withReason("{call}({subject}): {word}")
            .withSummary("{call}({server}:{port}): ({subject})failed ({status})({subject})")
            .withOutcomes(kOutcomes)
            .withTimeout(kNoTimeout);
    Call call(rules, context, server, port);
    call.about(destination);
    if (!call.accepts(destination, uploadRoot, resultWord) || !IsReadableFile(file)) return call.refuse();
    call.begin(resultWord);

    const RemotePath target = RouteTo(call, slaveID, destination);
    const std::wstring rename = IsGiven(renameTarget) ? L"&rename_dest=" + Encoded(renameTarget) : L"";
    call.post(
        L"func=upload_and_move&sid=%ls&settime=1&mtime=%ls&filesize=%ls&dest_path=%ls&overwrite=%d%ls&upload_"
        L"root_dir=%ls",
        call.sid(), std::to_wstring(modifiedTime), std::to_wstring(fileSize), Encoded(target.parent),
        overwrite & 0xFFU, rename, Encoded(uploadRoot));
    AddFilePart(call, target.name, LocalPath(*file), fileSize);

    HttpRequestWorker& worker = call.worker();
    if (call.judge(worker.upload(call.request(), "upload_and_move", false, callback, lpData)))
        Judge(call, destination);
    if (worker.dwProgress == 2) call.setResult(WFM_INVALID_DATA);
    return call.end();
}
