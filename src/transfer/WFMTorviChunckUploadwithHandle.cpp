#include <QFile>

#include "files/RouteTo.h"
#include "transfer/GetUploadChunkResultJson.h"
#include "transfer/filepart.h"
#include "transfer/upfile.h"

using namespace Lattice;

namespace {

/// What becomes of the upload id, as the caller learns it.
struct Flags {
    bool* bResume;
    bool* bDeleteUploadID;

    void goOn() const { set(true, false); }
    void giveUp() const { set(false, true); }
    void keep() const { set(false, false); }

private:
    void set(bool resume, bool deleteUploadID) const {
        *bResume = resume;
        *bDeleteUploadID = deleteUploadID;
    }
};

/// What the server said of the slice. The two blanks in some of the lines must stay.
void Judge(Call& call, const wchar_t* destination, bool continues, const Flags& flags) {
    CGetUploadChunkResultJson reply;
    if (!call.understands(reply)) return;
    const int status = reply.GetStatus();
    call.setResult(status);
    switch (status) {
        case 0:
            flags.keep();
            if (continues) call.setResult(WFM_SLICE_SENT);
            return;
        case WFM_QUOTA_ERROR:
            call.line("[WFM] WFMTorviChunckUploadwithHandle:  WFM_QUOTA_ERROR(%ls)", destination);
            return flags.keep();
        case WFM_NOT_DONE:
        case WFM_FILE_NO_EXIST:
            call.line("[WFM] WFMTorviChunckUploadwithHandle:  WFM_STATUS_FAILED||WFM_FILE_NO_EXIST(%d)(%ls)",
                      status, destination);
            if (status == WFM_NOT_DONE || reply.IsHomeFolderAvailable()) return flags.goOn();
            call.line("[WFM] WFMTorviChunckUploadwithHandle: WFM_HOME_FOLDER_NOT_AVAIL(%ls)", destination);
            return flags.keep();
        case WFM_NOT_MADE:
        case WFM_ILLEGAL_NAME:
            call.line(
                "[WFM] WFMTorviChunckUploadwithHandle:  WFM_OPEN_FILE_FAILED||WFM_ILLEGAL_NAME(%d)(%ls)",
                status, destination);
            return;
        default:
            call.line("[WFM] WFMTorviChunckUploadwithHandle: ERROR_UNKNOWN (%d)(%ls)", status, destination);
    }
}

}  // namespace

uint32_t WFMTorviChunckUploadwithHandle(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                                        const wchar_t* slaveID, QFile* file, const wchar_t* uploadID,
                                        const wchar_t* uploadRoot, const wchar_t* destination,
                                        const wchar_t* renameTarget, int64_t offset, int64_t fileSize,
                                        int64_t modifiedTime, void* lpData, WFMProgressCallback callback,
                                        uint32_t overwrite, bool* stop, bool* bResume, bool* bDeleteUploadID,
                                        uint32_t* resultWord) {
    static constexpr auto rules = CallRules("[WFM] WFMTorviChunckUploadwithHandle")
                                      .withNotUnderstood("{call}({subject}): {word}")
                                      .withSummary("")  // two texts: written below
                                      .withTimeout(kNoTimeout);
    Call call(rules, context, server, port);
    call.about(destination);
    if (!call.accepts(uploadID, uploadRoot, destination, bResume, bDeleteUploadID, resultWord) ||
        !IsReadableFile(file) || fileSize < offset)
        return call.refuse();
    call.begin(resultWord);
    const Flags flags{bResume, bDeleteUploadID};
    flags.giveUp();

    const RemotePath target = RouteTo(call, slaveID, destination);
    const std::wstring rename = IsGiven(renameTarget) ? L"&rename_dest=" + Encoded(renameTarget) : L"";
    const bool continues =
        static_cast<uint64_t>(fileSize) - static_cast<uint64_t>(offset) > WFM_UPLOAD_SLICE_LIMIT;
    call.post(
        L"func=chunked_upload&sid=%ls&upload_id=%ls&settime=1&mtime=%ls&offset=%ls&filesize=%ls&dest_path=%"
        L"ls&overwrite=%d%ls&upload_root_dir=%ls%ls",
        call.sid(), Encoded(uploadID), std::to_wstring(modifiedTime), std::to_wstring(offset),
        std::to_wstring(fileSize), Encoded(target.parent), overwrite & 0xFFU, rename, Encoded(uploadRoot),
        continues ? L"&multipart=1" : L"");
    AddFilePart(call, target.name, LocalPath(*file), fileSize, offset, continues);

    HttpRequestWorker& worker = call.worker();
    const int error = worker.upload(call.request(), "chunked_upload", false, callback, lpData);
    const bool stopped = IsSet(stop);  // once: another thread may set it at any time
    // A stop outweighs the server's answer, even a good one.
    if (!stopped && error == 0 && worker.dwProgress == 0)
        Judge(call, destination, continues, flags);
    else
        call.failByHttp(error);

    if (worker.dwProgress == 2) {
        call.setResult(WFM_INVALID_DATA);
        flags.giveUp();
        call.debugLine("[WFM] WFMTorviChunckUploadwithHandle: WFM_INVALID_DATA, !Resume, DeleteUploadID");
    } else if ((stopped || worker.dwProgress == 1) && worker.llTotalBytesTransferred > 0) {
        flags.goOn();
        call.debugLine("[WFM] WFMTorviChunckUploadwithHandle: PROGRESS_STOP Resume, !DeleteUploadID");
    }
    if (call.status() != 0)
        call.line("[WFM] WFMTorviChunckUploadwithHandle(%ls:%d): (%ls)(%ls)failed (%d) (%ls)", server,
                  static_cast<int>(port), uploadRoot, destination, static_cast<int>(call.status()),
                  destination);
    return call.end();
}
