#pragma once

#include <QString>
#include <cstdint>
#include <optional>

#include "options.h"
#include "progress.h"
#include "remote.h"
#include "session.h"
#include "source.h"
#include "state.h"

namespace torvi {

/// What the state folder keeps of an upload that the server has begun to take: enough to go on with it after
/// this program was killed.
class UploadRecord {
public:
    UploadRecord(const Session& session, const QString& path, const Source& source);

    /// Whether there is an upload to go on with.
    bool begun() const { return !id().isEmpty(); }
    QString id() const;
    QString root() const;
    void keep(const QString& id, const QString& root);
    void forget();

    /// Uploads of other content to the same path, which nobody will go on with: id and root of each. They are
    /// forgotten.
    struct Outdated {
        QString id;
        QString root;
    };
    std::vector<Outdated> takeOutdated() const;

    /// Whether such a record is there; opens nothing.
    static bool exists(const Session& session, const QString& path, const Source& source);

private:
    QString m_server;
    QString m_path;
    QString m_version;
    std::string m_local;
    StateFile m_file;
};

/// Sends one file in slices, which the server keeps when the connection breaks or this program ends.
class SlicedUpload {
public:
    struct Target {
        QString path;
        QString rename;
        QString root;
        bool overwrite = false;
        bool restart = false;
    };

    SlicedUpload(const GlobalOptions& global, const Session& session, const QString& what, Source& source,
                 const Target& target);

    /// Gives the byte at which it went on, 0 for a new one. Nothing if the file was in its place already.
    std::optional<int64_t> run();

private:
    struct Outcome;

    bool inPlace() const;
    void note(const QString& text) const;
    void begin();
    std::optional<int64_t> held() const;
    void discard(const QString& id, const QString& root) const;
    void abandon();
    std::optional<int64_t> whereToGoOn();
    Outcome send(int64_t offset, Progress& progress) const;
    bool isDoneAfterAll(const Outcome& outcome);
    [[noreturn]] void endBetweenSlices(int64_t offset);
    [[noreturn]] void cancel(bool kept) const;
    [[noreturn]] void end(const Outcome& outcome);

    const GlobalOptions& m_global;
    const Session& m_session;
    QString m_what;
    Source& m_source;
    Target m_target;
    std::wstring m_node;
    UploadRecord m_record;
};

}  // namespace torvi
