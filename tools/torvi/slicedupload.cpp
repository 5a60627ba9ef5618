#include "slicedupload.h"

#include <QDateTime>
#include <algorithm>

#include "failure.h"
#include "progress.h"
#include "signals.h"
#include "status.h"

namespace torvi {
namespace {

const std::string kFolder = "uploads";
const QString kAgain = QStringLiteral("run it again to go on");
/// What one call sends while there is more than that.
constexpr int64_t kSlice = 1073741824;

constexpr int32_t kSliceLanded = -43;
// Servers differ in what they say of an id that they don't know (any more).
constexpr int32_t kUnknownIds[] = {-4, -11};
constexpr int32_t kVoid = -31;

QByteArray keyOf(const QString& server, const QString& path, const QString& version) {
    return QStringLiteral("%1\n%2\n%3").arg(server, path, version).toUtf8();
}

QString textOf(const Json& json, const char* key) {
    const auto found = json.find(key);
    return found != json.end() && found->is_string() ? QString::fromStdString(found->get<std::string>())
                                                     : QString();
}

/// The transfer that a callback belongs to.
struct Slice {
    Progress* progress;
    bool stop = false;
};

uint32_t onSlice(int64_t, int64_t transferred, int64_t, int64_t, uint32_t, uint32_t reason, void*, void*,
                 void* data) {
    // A stop in the opening call would cost the upload id, for no byte is counted yet.
    constexpr uint32_t kOpening = 1;
    if (reason == kOpening) return 0;
    auto* slice = static_cast<Slice*>(data);
    slice->progress->update(transferred);
    if (!interrupted()) return 0;
    slice->stop = true;
    return 1;
}

}  // namespace

UploadRecord::UploadRecord(const Session& session, const QString& path, const Source& source)
    : m_server(session.identity()),
      m_path(path),
      m_version(source.version()),
      m_local(source.path()),
      m_file(kFolder, keyOf(m_server, m_path, m_version),
             QStringLiteral("%1 is being sent to %2 by another torvi")
                 .arg(QString::fromStdString(source.path()), path)) {}

bool UploadRecord::exists(const Session& session, const QString& path, const Source& source) {
    return StateFile::exists(kFolder, keyOf(session.identity(), path, source.version()));
}

QString UploadRecord::id() const {
    return textOf(m_file.content(), "uploadId");
}

QString UploadRecord::root() const {
    return textOf(m_file.content(), "uploadRoot");
}

void UploadRecord::keep(const QString& id, const QString& root) {
    m_file.save(Json{{"server", utf8(m_server)},
                     {"path", utf8(m_path)},
                     {"version", utf8(m_version)},
                     {"local", m_local},
                     {"uploadId", utf8(id)},
                     {"uploadRoot", utf8(root)},
                     {"begun", isoTime(QDateTime::currentSecsSinceEpoch())}});
}

void UploadRecord::forget() {
    m_file.clear();
}

std::vector<UploadRecord::Outdated> UploadRecord::takeOutdated() const {
    std::vector<Outdated> outdated;
    for (const auto& path : StateFile::all(kFolder)) {
        StateFile other(path);
        // This one's own is locked already, as is that of a program that runs now.
        if (!other.held() || textOf(other.content(), "server") != m_server ||
            textOf(other.content(), "path") != m_path) {
            continue;
        }
        const Outdated one = {textOf(other.content(), "uploadId"), textOf(other.content(), "uploadRoot")};
        if (!one.id.isEmpty() && !one.root.isEmpty()) outdated.push_back(one);
        other.clear();
    }
    return outdated;
}

struct SlicedUpload::Outcome {
    uint32_t dwStatus = 0;
    uint32_t word = 0;
    bool stopped = false;
    bool resume = false;
    bool deleteId = false;

    int32_t code() const { return static_cast<int32_t>(word); }
    /// It ended without a word of the server.
    bool broken() const { return dwStatus != 0 && dwStatus != 8 && dwStatus != 14 && code() == -1; }
};

SlicedUpload::SlicedUpload(const GlobalOptions& global, const Session& session, const QString& what,
                           Source& source, const Target& target)
    : m_global(global),
      m_session(session),
      m_what(what),
      m_source(source),
      m_target(target),
      m_node(session.nodeOf(target.path)),
      m_record(session, target.path, source) {}

std::optional<int64_t> SlicedUpload::run() {
    for (const auto& outdated : m_record.takeOutdated()) discard(outdated.id, outdated.root);
    if (m_target.restart && m_record.begun()) abandon();
    const std::optional<int64_t> resumedAt = whereToGoOn();
    if (!resumedAt) return std::nullopt;
    if (!m_record.begun()) begin();

    Progress progress(leafOf(m_target.path), m_source.size(), *resumedAt, m_global.quiet);
    for (int64_t offset = *resumedAt;; offset += kSlice) {
        if (!m_source.unchanged()) {
            abandon();
            throw Failure(Exit::Incomplete,
                          QStringLiteral("%1: the file changed while it was sent; run it again").arg(m_what));
        }
        if (interrupted()) endBetweenSlices(offset);
        const Outcome outcome = send(offset, progress);
        if (outcome.dwStatus == 0 && outcome.code() == kSliceLanded) continue;
        if (outcome.dwStatus == 0 && outcome.word == 0) break;
        if (isDoneAfterAll(outcome)) break;
        end(outcome);
    }
    progress.finish();
    m_record.forget();
    if (!m_source.unchanged()) {
        throw Failure(Exit::Incomplete, QStringLiteral("%1: the file changed while it was sent, the server "
                                                       "has a mixture; run it again with --overwrite")
                                            .arg(m_what));
    }
    return resumedAt;
}

void SlicedUpload::note(const QString& text) const {
    if (m_global.quiet) return;
    Progress::endLine();
    std::fprintf(stderr, "%s\n", utf8(printable(QStringLiteral("%1: %2").arg(m_what, text))).c_str());
}

/// The last reply may have been lost after the server had put the file in its place.
bool SlicedUpload::inPlace() const {
    QString path = m_target.path;
    if (m_target.rename.contains(QLatin1Char('/'))) path = remotePath(m_target.rename);
    if (!m_target.rename.contains(QLatin1Char('/')) && !m_target.rename.isEmpty())
        path = joined(parentOf(path), m_target.rename);
    const std::optional<Entry> entry = lookUp(m_session, path);
    return entry && !entry->folder && entry->size == m_source.size() &&
           entry->modified == m_source.modified();
}

/// Nothing if there is nothing to do any more.
std::optional<int64_t> SlicedUpload::whereToGoOn() {
    if (!m_record.begun()) return 0;
    std::optional<int64_t> size = held();
    if (!size) {
        m_record.forget();
        if (inPlace()) return std::nullopt;
        note(QStringLiteral("the server has dropped what it had of it; starting over"));
        return 0;
    }
    if (*size > m_source.size()) {
        note(QStringLiteral("the server has more than the whole file; starting over"));
        abandon();
        return 0;
    }
    if (*size > 0) {
        note(QStringLiteral("resuming at byte %1 of %2")
                 .arg(QString::number(*size), QString::number(m_source.size())));
    }
    return size;
}

void SlicedUpload::begin() {
    uint32_t capacity = 260;
    std::wstring id;
    uint32_t dwStatus = 0, word = 0, detail = 0;
    for (int attempt = 0; attempt < 2; ++attempt) {
        // The terminator may come one place behind the capacity.
        id.assign(capacity + 1, L'\0');
        dwStatus = WFMGetUploadID(m_session.context(), m_session.server(), m_session.port(), m_node.c_str(),
                                  &capacity, id.data(), wide(m_target.root).c_str(),
                                  wide(parentOf(m_target.path)).c_str(), nullptr, &word, &detail);
        if (dwStatus != 0 || word != 0 || detail != 122) break;
    }
    if (dwStatus != 0 || word != 0) {
        if (interrupted()) throwCancelled(m_what);
        throw callFailure(m_what, dwStatus, word);
    }
    if (detail != 0) {
        throw Failure(Exit::Refused, QStringLiteral("%1: the server gave no id for the upload; --no-resume "
                                                    "sends the file without one")
                                         .arg(m_what));
    }
    // Before the first byte goes out.
    m_record.keep(QString::fromWCharArray(id.c_str()), m_target.root);
}

/// What the server has of it; nothing if it knows nothing of it.
std::optional<int64_t> SlicedUpload::held() const {
    int64_t size = 0;
    uint32_t word = 0;
    const uint32_t dwStatus = WFMTorvGetChunkFileSize(
        m_session.context(), m_session.server(), m_session.port(), m_node.c_str(),
        wide(m_record.id()).c_str(), wide(m_record.root()).c_str(), nullptr, &size, &word);
    if (dwStatus == 0 && word == 0) return size;
    const bool unknown = std::find(std::begin(kUnknownIds), std::end(kUnknownIds),
                                   static_cast<int32_t>(word)) != std::end(kUnknownIds);
    if (dwStatus == 0 && unknown) return std::nullopt;
    if (interrupted()) throwCancelled(m_what);
    throw callFailure(m_what, dwStatus, word)
        .withAdvice(QStringLiteral("run it again later, or with --restart to begin anew"));
}

/// What the server has is of no more use. Where it can't be told, it drops it by itself in time.
void SlicedUpload::discard(const QString& id, const QString& root) const {
    uint32_t word = 0;
    WFMTorviDeleteChunkFile(m_session.context(), m_session.server(), m_session.port(), m_node.c_str(),
                            wide(id).c_str(), wide(root).c_str(), nullptr, &word);
}

void SlicedUpload::abandon() {
    discard(m_record.id(), m_record.root());
    m_record.forget();
}

SlicedUpload::Outcome SlicedUpload::send(int64_t offset, Progress& progress) const {
    Slice slice{&progress};
    Outcome outcome;
    outcome.dwStatus = WFMTorviChunckUploadwithHandle(
        m_session.context(), m_session.server(), m_session.port(), m_node.c_str(), m_source.file(),
        wide(m_record.id()).c_str(), wide(m_record.root()).c_str(), wide(m_target.path).c_str(),
        wide(m_target.rename).c_str(), offset, m_source.size(), m_source.modified(), &slice, onSlice,
        m_target.overwrite ? 1 : 0, &slice.stop, &outcome.resume, &outcome.deleteId, &outcome.word);
    outcome.stopped = slice.stop;
    return outcome;
}

/// The connection was lost when the file was in its place already.
bool SlicedUpload::isDoneAfterAll(const Outcome& outcome) {
    if (!outcome.broken() || outcome.stopped) return false;
    try {
        return !held() && inPlace();
    } catch (const Failure&) {
        return false;
    }
}

void SlicedUpload::endBetweenSlices(int64_t offset) {
    if (offset == 0) abandon();
    cancel(offset > 0);
}

void SlicedUpload::cancel(bool kept) const {
    Failure failure(Exit::Cancelled, QStringLiteral("%1: cancelled").arg(m_what));
    if (kept) failure = failure.withAdvice(QStringLiteral("the server keeps what it has, %1").arg(kAgain));
    throw failure;
}

/// A slice that didn't land: the library's flags tell what becomes of the id.
void SlicedUpload::end(const Outcome& outcome) {
    const auto incomplete = [&](const QString& why) {
        return Failure(Exit::Incomplete, QStringLiteral("%1: %2").arg(m_what, why))
            .withNumbers(outcome.dwStatus, outcome.code());
    };
    const bool kept = outcome.resume || (outcome.broken() && !outcome.stopped);
    if (interrupted()) {
        if (!kept) abandon();
        cancel(kept);
    }
    if (outcome.resume) throw incomplete(QStringLiteral("the server failed for the moment; %1").arg(kAgain));
    if (!outcome.deleteId) {
        throw callFailure(m_what, outcome.dwStatus, outcome.word)
            .withAdvice(QStringLiteral("the server keeps what it has: clear the cause, then %1").arg(kAgain));
    }
    // A connection that was lost says nothing about what arrived before: the server does.
    if (outcome.broken()) {
        std::optional<int64_t> size;
        try {
            size = held();
        } catch (const Failure&) {
            throw incomplete(QStringLiteral("the server went away; %1").arg(kAgain));
        }
        if (size) {
            throw incomplete(QStringLiteral("the connection broke, the server has %1 of %2 bytes; %3")
                                 .arg(QString::number(*size), QString::number(m_source.size()), kAgain));
        }
    }
    abandon();
    if (outcome.code() == kVoid) {
        throw incomplete(
            m_source.unchanged()
                ? QStringLiteral("the server did not get all of a slice, and what it has can't be "
                                 "trusted; run it again to start over")
                : QStringLiteral("the file changed while it was sent; run it again"));
    }
    throw callFailure(m_what, outcome.dwStatus, outcome.word);
}

}  // namespace torvi
