#include <sys/stat.h>

#include <QFile>
#include <QTimer>
#include <algorithm>
#include <filesystem>
#include <memory>

#include "commands.h"
#include "failure.h"
#include "output.h"
#include "partial.h"
#include "progress.h"
#include "remote.h"
#include "session.h"
#include "signals.h"
#include "status.h"
#include "transfer.h"

namespace torvi {
namespace {

struct GetOptions {
    std::string remote;
    std::string local;
    bool overwrite = false;
    bool restart = false;
};

constexpr uint32_t kSizeMismatch = 13;
constexpr int kPollMs = 200;

std::string targetOf(const GetOptions& options, const QString& path) {
    std::string leaf = utf8(leafOf(path));
    if (options.local.empty()) return leaf;
    std::error_code ignored;
    if (options.local.back() == '/' || std::filesystem::is_directory(options.local, ignored)) {
        return (std::filesystem::path(options.local) / leaf).string();
    }
    return options.local;
}

/// Where a download can go on when `have` of `size` bytes are here. A resumed reply announces what is left,
/// the library compares that with the size that it was passed, and it takes no size below the offset: so what
/// is left must be passed, and must be at least half of the file.
int64_t resumeOffset(int64_t have, int64_t size) {
    return std::min(have, size / 2);
}

class Download {
public:
    Download(const GlobalOptions& global, const Session& session, const QString& path, const Entry& remote,
             PartialFile& partial)
        : m_global(global),
          m_session(session),
          m_path(path),
          m_remote(remote),
          m_partial(partial),
          m_what(QStringLiteral("get %1").arg(path)) {}

    /// Brings what is missing. Gives the offset from which bytes were fetched.
    int64_t run(bool restart) {
        if (restart || m_partial.size() > m_remote.size) m_partial.truncate(0);
        const int64_t have = m_partial.size();
        if (have == m_remote.size) return have;
        const int64_t offset = resumeOffset(have, m_remote.size);
        tellResume(have, offset);
        if (fetch(offset) == kSizeMismatch) {
            explainMismatch();
            // What is here may well be good: a lost connection looks the same.
            throw incomplete(offset == 0
                                 ? QStringLiteral("the server did not send the file")
                                 : QStringLiteral("the server did not go on at byte %1; run it again, "
                                                  "or with --restart to fetch all of it")
                                       .arg(offset));
        }
        // A transfer that broke off is reported as a success.
        if (m_partial.size() != m_remote.size) {
            throw incomplete(QStringLiteral("%1 of %2 bytes arrived, run it again to go on")
                                 .arg(m_partial.size())
                                 .arg(m_remote.size));
        }
        return offset;
    }

private:
    void note(const QString& text) const {
        if (!m_global.quiet) std::fprintf(stderr, "%s\n", utf8(printable(text)).c_str());
    }

    Failure incomplete(const QString& reason) const {
        return Failure(Exit::Incomplete, QStringLiteral("%1: %2").arg(m_what, reason));
    }

    void tellResume(int64_t have, int64_t offset) const {
        if (have == 0) return;
        if (offset == have) {
            note(QStringLiteral("%1: resuming at byte %2 of %3")
                     .arg(m_what, QString::number(have), QString::number(m_remote.size)));
            return;
        }
        note(
            QStringLiteral("%1: %2 of %3 bytes are here, but a transfer can't be resumed beyond its half: "
                           "going on at byte %4")
                .arg(m_what, QString::number(have), QString::number(m_remote.size), QString::number(offset)));
    }

    /// One request. Gives the result word, 0 or kSizeMismatch; everything else ends the command.
    uint32_t fetch(int64_t offset) {
        m_partial.truncate(offset);
        const int64_t announced = m_remote.size - offset;
        QFile file(localName(m_partial.path()));
        uint32_t word = 0;
        uint32_t dwStatus = 0;
        {
            Progress progress(leafOf(m_path), m_remote.size, offset, m_global.quiet);
            // The callback falls silent in the last part of a resumed transfer; the file's size tells as
            // well.
            QTimer poll;
            QObject::connect(&poll, &QTimer::timeout, &poll, [&] { progress.update(m_partial.size()); });
            poll.start(kPollMs);
            dwStatus = WFMDownloadFileToHandle(m_session.context(), m_session.server(), m_session.port(),
                                               m_session.node(), wide(m_path).c_str(), &file, &offset,
                                               &announced, &progress, onProgress, nullptr, &word);
            if (dwStatus == 0 && word == 0 && m_partial.size() == m_remote.size) progress.finish();
        }
        // What came with a wrong size is not the file's: an error page, say.
        if (dwStatus == 0 && word == kSizeMismatch) m_partial.truncate(offset);
        const bool stopped = dwStatus != 0 || word != 0 || m_partial.size() != m_remote.size;
        if (interrupted() && stopped) throw cancelled();
        if (dwStatus == 0 && (word == 0 || word == kSizeMismatch)) return word;
        if (dwStatus == 6) {
            // A download never ends so for what the server does, only when its target can't be written.
            throw Failure(Exit::Local, QStringLiteral("%1: cannot write %2").arg(m_what, file.fileName()))
                .withNumbers(dwStatus, static_cast<int32_t>(word));
        }
        throw callFailure(m_what, dwStatus, word);
    }

    Failure cancelled() const {
        const int64_t kept = m_partial.size();
        QString text = QStringLiteral("%1: cancelled").arg(m_what);
        if (kept > 0) {
            text += QStringLiteral(", %1 of %2 bytes are kept in %3")
                        .arg(QString::number(kept), QString::number(m_remote.size),
                             QString::fromStdString(m_partial.path()));
        }
        return Failure(Exit::Cancelled, text);
    }

    /// The size is wrong for many reasons, from a lost connection to a refusal. Asking for the file tells
    /// most.
    void explainMismatch() const {
        const Entry now = require(m_session, m_what, m_path);
        if (now.size != m_remote.size || now.modified != m_remote.modified) {
            throw incomplete(QStringLiteral("the file changed on the server meanwhile"));
        }
    }

    const GlobalOptions& m_global;
    const Session& m_session;
    QString m_path;
    Entry m_remote;
    PartialFile& m_partial;
    QString m_what;
};

/// Names one version of one remote file.
QByteArray identityOf(const Session& session, const QString& path, const Entry& remote) {
    return QStringLiteral("%1\n%2\n%3\n%4")
        .arg(session.identity(), path, QString::number(remote.size), QString::number(remote.modified))
        .toUtf8();
}

void get(const GlobalOptions& global, const GetOptions& options) {
    const QString path = remotePath(QString::fromStdString(options.remote));
    const QString what = QStringLiteral("get %1").arg(path);
    const std::string target = targetOf(options, path);
    struct stat status = {};
    const bool exists = ::lstat(target.c_str(), &status) == 0;
    if (exists && !options.overwrite) {
        throw Failure(Exit::AlreadyExists, QStringLiteral("%1: %2 exists already; --overwrite replaces it")
                                               .arg(what, QString::fromStdString(target)));
    }
    Entry remote;
    int64_t offset = 0;
    {
        const Session session(resolveConnection(global, Needs::Login));
        remote = require(session, what, path);
        if (remote.folder)
            throw Failure(Exit::Usage, QStringLiteral("%1 is a folder; get fetches one file").arg(what));
        PartialFile partial(target, identityOf(session, path, remote));
        Download download(global, session, path, remote, partial);
        offset = download.run(options.restart);
        partial.commit(options.overwrite, remote.modified);
    }
    if (!global.json) return;
    printJson(Json{{"remote", utf8(path)},
                   {"local", target},
                   {"size", remote.size},
                   {"mtime", remote.modified},
                   {"resumedAt", offset}});
}

}  // namespace

void addGetCommand(const Commands& commands) {
    const GlobalOptions& global = commands.global;
    Action& action = commands.action;
    CLI::App* command = commands.app.add_subcommand(
        "get", "Download a file; run it again to go on with one that was stopped");
    auto options = std::make_shared<GetOptions>();
    command->add_option("remote", options->remote, "The file on the server")->type_name("")->required();
    command->add_option("local", options->local, "Where to put it: a file or a folder (the current folder)")
        ->type_name("");
    command->add_flag("--overwrite,-f", options->overwrite, "Replace a file that exists");
    command->add_flag("--restart", options->restart, "Drop what is left of an earlier try");
    command->callback(
        [&global, &action, options] { action = [&global, options] { get(global, *options); }; });
}

}  // namespace torvi
