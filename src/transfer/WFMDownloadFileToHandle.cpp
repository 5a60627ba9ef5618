#include <QFile>

#include "files/PathRecord.h"
#include "files/RouteTo.h"

using namespace Lattice;

namespace {

constexpr uint32_t kTransferStopped = 1237;

}  // namespace

uint32_t WFMDownloadFileToHandle(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                                 const wchar_t* slaveID, const wchar_t* remotePath, QFile* file,
                                 const int64_t* offset, const int64_t* size, void* lpData,
                                 WFMProgressCallback callback, bool* stop, uint32_t* resultWord) {
    static constexpr auto rules =
        CallRules("[WFM] WFMDownloadFileToHandle").withReason("{call} {word}").withTimeout(kNoTimeout);
    Call call(rules, context, server, port);
    const bool beyondEnd = offset != nullptr && size != nullptr && *size < *offset;
    if (!call.accepts(remotePath, resultWord) || beyondEnd) return call.refuse();
    call.begin(resultWord);

    const SplitPath split = *remotePath == L'/' ? SplitAtLastSlash(remotePath) : SplitPath{};
    const RemotePath source = RouteTo(call, slaveID, split.parent, split.name);
    if (source.parent.empty() || source.name.empty()) {
        call.setResult(ERROR_FILE_NOT_FOUND);
        return call.fail(WFM_PARSE_XML_FAIL, "[WFM] WFMDownloadFileToHandle: ERROR_FILE_NOT_FOUND(%ls)(%ls)",
                         source.name.c_str(), source.parent.c_str());
    }

    _WFM_PATH_INFORMATION information;
    const auto askServer = [&](uint32_t* result) {
        return WFMGetPathInformation(context, server, port, slaveID, split.name.c_str(), split.parent.c_str(),
                                     kFieldSize, kTypeFiles, false, stop, result, &information);
    };
    int64_t total;
    if (size != nullptr) {
        call.setResult(0);
        total = *size;
    } else {
        call.setStatus(askServer(resultWord));
        if (call.status() != 0) return call.answer(-1);
        total = information.llSize;
    }
    if (total < 1) return call.end();  // nothing to fetch
    call.setResult(-1);

    call.post(L"func=download");
    call.field("isfolder", "0");
    call.field("sid", call.sid());
    call.field("source_total", "1");
    call.field("source_path", source.parent);
    call.field("source_file", source.name);
    if (offset != nullptr) call.field("offset", *offset);

    const int64_t from = offset != nullptr && *offset > 0 ? *offset : 0;
    HttpRequestWorker& worker = call.worker();
    const int started = worker.download(call.request(), total, from, callback, lpData, file);
    if (worker.dwProgress == 2) return call.answer(ERROR_INVALID_DATA);
    if (worker.dwProgress == 1 || IsSet(stop)) return call.answer(kTransferStopped);
    // The transport doesn't report what the network did: the caller compares the file with the size it
    // expected.
    if (call.judge(started)) return call.answer(0);

    if (call.status() == WFM_PARSE_XML_HTTPTRAN_RECEIVE_FAIL) {
        call.line("[WFM] WFMDownloadFileToHandle ERROR_INVALID_DATA(%ls) llResponseFileSize=0",
                  source.name.c_str());
        uint32_t asked = 0;
        if (askServer(&asked) == 0 && asked == 0) {
            call.debugLine("[WFM] WFMDownloadFileToHandle: WFMGetPathInformation(%ls) filesize(%lld)",
                           split.name.c_str(), static_cast<long long>(information.llSize));
            if (information.llSize != 0) {
                call.line("[WFM] WFMDownloadFileToHandle: (%ls) ACCESS_DENIED", split.name.c_str());
                call.setResult(ERROR_ACCESS_DENIED);
            }
        }
    }
    return call.end();
}
