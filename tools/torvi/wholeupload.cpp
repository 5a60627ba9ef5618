#include "wholeupload.h"

#include "failure.h"
#include "output.h"
#include "progress.h"
#include "remote.h"
#include "signals.h"
#include "status.h"
#include "transfer.h"

namespace torvi {

QString shareOf(const QString& path) {
    const int second = path.indexOf(QLatin1Char('/'), 1);
    return second < 0 ? QStringLiteral("/") : path.left(second);
}

void sendWhole(const GlobalOptions& global, const Session& session, const QString& what, Source& source,
               const WholeUpload& upload) {
    Progress progress(leafOf(upload.path), source.size(), 0, global.quiet);
    const std::wstring target = wide(upload.path);
    const uint32_t overwrite = upload.overwrite ? 1 : 0;
    uint32_t word = 0;
    uint32_t dwStatus = 0;
    if (upload.plain) {
        dwStatus = WFMUploadFilewithHandle(session.context(), session.server(), session.port(),
                                           session.node(), source.file(), target.c_str(), &progress,
                                           onProgress, overwrite, nullptr, &word);
    } else {
        dwStatus = WFMTorviUploadandMovewithHandle(
            session.context(), session.server(), session.port(), session.node(), source.file(),
            target.c_str(), wide(upload.root).c_str(), wide(upload.rename).c_str(), source.size(),
            source.modified(), &progress, onProgress, overwrite, nullptr, &word);
    }
    const bool done = dwStatus == 0 && word == 0;
    if (!done && interrupted()) throwCancelled(what);
    // Stopped, but not by the user: the server hung up in the middle.
    if (dwStatus == 0 && word == 1235) {
        throw Failure(Exit::Incomplete,
                      QStringLiteral("%1: the server did not take all of the file").arg(what))
            .withNumbers(dwStatus, 1235);
    }
    if (!done) throw callFailure(what, dwStatus, word);
    progress.finish();
}

}  // namespace torvi
