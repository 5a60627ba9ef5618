#include <QFile>
#include <QFileInfo>
#include <algorithm>
#include <iterator>

#include "files/RouteTo.h"
#include "transfer/GetUploadMultiPartResultJson.h"
#include "transfer/filepart.h"

using namespace Lattice;

namespace {

/// The transport leaves out what it can't open, and the times of the files behind it would move up.
bool CanBeSent(const QFile* file) {
    if (!IsReadableFile(file)) return false;
    const QFileInfo info(LocalPath(*file));
    return info.isFile() && info.isReadable();
}

/// The records of a batch with their times written out; empty if one of them can't be sent.
std::vector<_WFM_MULTI_PART_FILE_INFO*> Prepare(_WFM_MULTI_PART_FILE_INFO** files, int32_t count) {
    std::vector<_WFM_MULTI_PART_FILE_INFO*> batch;
    for (int32_t i = 0; i < count; ++i) {
        _WFM_MULTI_PART_FILE_INFO* const file = files[i];
        if (file == nullptr || file->szName[0] == L'\0' || !CanBeSent(file->pFile)) return {};
        std::fill(std::begin(file->szModifiedTime), std::end(file->szModifiedTime), L'\0');
        CopyTextCut(file->szModifiedTime, std::to_wstring(file->llModifiedTime));
        batch.push_back(file);
    }
    return batch;
}

/// What became of one file; one that the server doesn't speak of keeps what it held.
void TakeResult(const Call& call, const CGetUploadMultiPartResultJson& reply,
                _WFM_MULTI_PART_FILE_INFO& file) {
    const _MULTI_PART_FILE_INFO* const said = reply.GetMultiPartFileInfo(file.szName);
    if (said == nullptr) return;
    if (said->llSize != file.llSize) {
        // The missing W of the name must stay.
        call.line("[WFM] FMTorviUploadandMoveMultiPartwithHandle: ERROR_INVALID_DATA(%ls)(%lld)(%lld)",
                  file.szName, static_cast<long long>(file.llSize), static_cast<long long>(said->llSize));
        file.nResult = ERROR_INVALID_DATA;
        return;
    }
    file.nResult = said->nStatus;
    if (file.nResult != 0)
        call.line("[WFM] WFMTorviUploadandMoveMultiPartwithHandle: upload failed(%ls)(%d)", file.szName,
                  file.nResult);
}

}  // namespace

uint32_t WFMTorviUploadandMoveMultiPartwithHandle(_WFM_AUTH_CONTEXT* context, const wchar_t* server,
                                                  uint32_t port, const wchar_t* slaveID,
                                                  _WFM_MULTI_PART_FILE_INFO** files, int32_t count,
                                                  const wchar_t* folder, void* /*reserved1*/,
                                                  void* /*reserved2*/, void* /*reserved3*/,
                                                  void* /*reserved4*/, uint32_t* resultWord) {
    static constexpr auto rules =
        CallRules("[WFM] WFMTorviUploadandMoveMultiPartwithHandle")
            .withReason("{call} {word}")
            .withNotUnderstood("{call}: {word}")
            .withSummary("{call}({server}:{port}) failed dwStatus({status}) ({subject})")
            .withEndpoint(kUploadPhp);
    Call call(rules, context, server, port);
    call.about(folder);
    if (!call.accepts(files, folder, resultWord) || count < 1) return call.refuse();
    call.begin(resultWord);

    const RemotePath target = MapTeamFolderPath(*context, WithTrailingSlash(folder));
    const std::vector<_WFM_MULTI_PART_FILE_INFO*> batch = Prepare(files, count);
    if (batch.empty()) {
        call.setStatus(ERROR_INVALID_PARAMETER);
        return call.end();
    }

    call.route(slaveID, target.slaveID);
    call.post();
    call.field("sid", call.sid());
    for (size_t i = 0; i < batch.size(); ++i) call.field("dest_path[]", target.parent);
    for (const _WFM_MULTI_PART_FILE_INFO* file : batch) call.field("mtime[]", file->szModifiedTime);
    for (const _WFM_MULTI_PART_FILE_INFO* file : batch)
        call.addFile("files[]", LocalPath(*file->pFile), file->szName, file->llSize);
    CGetUploadMultiPartResultJson reply;
    if (!call.ask(reply)) return call.end();

    if (reply.GetStatus() != 0)
        return call.answer(reply.GetStatus(),
                           "[WFM] WFMTorviUploadandMoveMultiPartwithHandle: get error status(%d)",
                           reply.GetStatus());
    for (_WFM_MULTI_PART_FILE_INFO* file : batch) TakeResult(call, reply, *file);
    return call.answer(0);
}
