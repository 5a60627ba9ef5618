#include <memory>

#include "commands.h"
#include "failure.h"
#include "listing.h"
#include "output.h"
#include "progress.h"
#include "session.h"
#include "signals.h"
#include "status.h"

namespace torvi {
namespace {

struct MoveOptions {
    std::string source;
    std::string destination;
    bool check = false;
    bool dryRun = false;
};

/// From one path to another, all that speaks against it having been looked at.
class Move {
public:
    Move(const GlobalOptions& global, const Session& session, const MoveOptions& options)
        : m_global(global), m_session(session), m_check(options.check) {
        m_source = remotePath(QString::fromStdString(options.source));
        m_what = QStringLiteral("mv %1").arg(m_source);
        m_entry = require(session, m_what, m_source);
        findTarget(QString::fromStdString(options.destination));
        refuseWhatCannotBe();
        if (m_check) requireCheckable(m_what, m_entry);
    }

    bool renames() const { return parentOf(m_source) == parentOf(m_target); }

    QString text(bool done) const {
        const QString verb = renames() ? QStringLiteral("rename") : QStringLiteral("move");
        return QStringLiteral("%1 %2 to %3")
            .arg(done ? verb + QLatin1Char('d') : QStringLiteral("would ") + verb, m_source, m_target);
    }

    Json json(bool done) const {
        return Json{{"source", utf8(m_source)},
                    {"destination", utf8(m_target)},
                    {"operation", renames() ? "rename" : "move"},
                    {"type", utf8(typeText(m_entry))},
                    {"done", done}};
    }

    void run() const {
        uint32_t word = 0;
        const uint32_t dwStatus = renames() ? rename(word) : move(word);
        if (dwStatus == 0 && word == 0) return;
        if (interrupted()) {
            throw Failure(
                Exit::Cancelled,
                QStringLiteral("%1: cancelled, but the server may go on with it: look at both paths")
                    .arg(m_what));
        }
        throw checkedFailure(m_what, dwStatus, word).withAdvice(whereItIs());
    }

private:
    void findTarget(const QString& given) {
        const bool folder = given.endsWith(QLatin1Char('/'));
        m_target = remotePath(given);
        if (folder) m_target = joined(m_target, leafOf(m_source));
        m_what += QStringLiteral(" to %1").arg(m_target);
        m_there = lookUp(m_session, m_target);
        if (m_there && m_there->folder && !folder && m_target != m_source) {
            m_target = joined(m_target, leafOf(m_source));
            m_there = lookUp(m_session, m_target);
        }
    }

    void refuseWhatCannotBe() const {
        if (m_target == m_source) {
            throw Failure(Exit::Usage, QStringLiteral("%1: it is there already").arg(m_what));
        }
        if (m_target.startsWith(m_source + QLatin1Char('/'))) {
            throw Failure(Exit::Usage, QStringLiteral("%1: a folder can't go into itself").arg(m_what));
        }
        if (m_there) {
            throw Failure(
                Exit::AlreadyExists,
                QStringLiteral("%1: %2 exists already; remove or rename it first").arg(m_what, m_target));
        }
        const std::optional<Entry> parent = lookUp(m_session, parentOf(m_target));
        if (!parent || !parent->folder) {
            throw Failure(Exit::NotFound,
                          QStringLiteral("%1: there is no folder %2; `torvi mkdir -p` makes it")
                              .arg(m_what, parentOf(m_target)));
        }
        // It arrives under its old name. Were that taken, the clean-up after the failure would delete what is
        // there.
        if (!renames() && underOldName() != m_target && lookUp(m_session, underOldName())) {
            throw Failure(
                Exit::AlreadyExists,
                QStringLiteral("%1: on its way it needs the name %2, which exists already; rename it "
                               "first, then move it")
                    .arg(m_what, underOldName()));
        }
    }

    QString underOldName() const { return joined(parentOf(m_target), leafOf(m_source)); }

    uint32_t rename(uint32_t& word) const {
        const std::wstring source = wide(m_source);
        const std::wstring target = wide(m_target);
        if (!m_check) {
            return WFMRenamePath(m_session.context(), m_session.server(), m_session.port(), m_session.node(),
                                 source.c_str(), target.c_str(), cancelFlag(), &word);
        }
        return WFMRenamePathwithCheckProfile(
            m_session.context(), m_session.server(), m_session.port(), m_session.node(), source.c_str(),
            target.c_str(), m_entry.modified, m_entry.size, m_entry.folder, cancelFlag(), &word);
    }

    /// The call follows the job to its end and tells nothing meanwhile.
    uint32_t move(uint32_t& word) const {
        const std::wstring source = wide(m_source);
        const std::wstring target = wide(m_target);
        const Activity activity(QStringLiteral("moving %1 to %2").arg(m_source, m_target), m_global.quiet);
        if (!m_check) {
            return WFMMovePath(m_session.context(), m_session.server(), m_session.port(), m_session.node(),
                               source.c_str(), target.c_str(), cancelFlag(), &word);
        }
        return WFMMovePathwithCheckProfile(m_session.context(), m_session.server(), m_session.port(),
                                           m_session.node(), source.c_str(), target.c_str(), m_entry.modified,
                                           m_entry.size, m_entry.folder, cancelFlag(), &word);
    }

    /// For a move that stopped half-way.
    QString whereItIs() const {
        try {
            if (lookUp(m_session, m_source)) return QStringLiteral("it is still at %1").arg(m_source);
            if (lookUp(m_session, m_target)) return QStringLiteral("but it is at %1 now").arg(m_target);
            if (lookUp(m_session, underOldName())) {
                return QStringLiteral("it is at %1 now: `torvi mv` it from there").arg(underOldName());
            }
            return QStringLiteral("it is at neither path now: `torvi trash` may have it");
        } catch (const Failure&) {
            return QStringLiteral("look at both paths before you try again");
        }
    }

    const GlobalOptions& m_global;
    const Session& m_session;
    bool m_check;
    QString m_source;
    QString m_target;
    QString m_what;
    Entry m_entry;
    std::optional<Entry> m_there;
};

void moveCommand(const GlobalOptions& global, const MoveOptions& options) {
    Json json;
    QString text;
    {
        const Session session(resolveConnection(global, Needs::Login));
        const Move move(global, session, options);
        if (!options.dryRun) move.run();
        json = move.json(!options.dryRun);
        text = move.text(!options.dryRun);
    }
    if (global.json) return printJson(json);
    if (!global.quiet || options.dryRun) printLine(text);
}

}  // namespace

void addMoveCommand(const Commands& commands) {
    const GlobalOptions& global = commands.global;
    Action& action = commands.action;
    CLI::App* command = commands.app.add_subcommand("mv", "Rename or move a file or a folder");
    auto options = std::make_shared<MoveOptions>();
    command->add_option("source", options->source, "What to move")->type_name("")->required();
    command->add_option("destination", options->destination, "Its new path, or the folder to put it in")
        ->type_name("")
        ->required();
    command->add_flag("--check", options->check,
                      "Let the server refuse if it has changed since it was looked at");
    command->add_flag("--dry-run", options->dryRun, "Only tell what would be done");
    command->callback(
        [&global, &action, options] { action = [&global, options] { moveCommand(global, *options); }; });
}

}  // namespace torvi
