#include <memory>

#include "failure.h"
#include "options.h"
#include "output.h"
#include "remote.h"
#include "session.h"
#include "signals.h"
#include "status.h"

namespace torvi {
namespace {

void touch(const GlobalOptions& global, const std::string& given) {
    const QString path = remotePath(QString::fromStdString(given));
    const QString what = QStringLiteral("touch %1").arg(path);
    {
        const Session session(resolveConnection(global, Needs::Login));
        // Creating a file that is there already would empty it.
        if (lookUp(session, path)) {
            throw Failure(Exit::AlreadyExists, QStringLiteral("%1: it exists already").arg(what));
        }
        uint32_t word = 0;
        const uint32_t dwStatus = WFMCreateFile(session.context(), session.server(), session.port(),
                                                session.node(), wide(path).c_str(), cancelFlag(), &word);
        if (dwStatus != 0 || word != 0) {
            if (interrupted()) throwCancelled(what);
            throw callFailure(what, dwStatus, word);
        }
    }
    if (global.json) return printJson(Json{{"path", utf8(path)}, {"created", true}});
}

void canUpload(const GlobalOptions& global, const std::string& given) {
    const QString path = remotePath(QString::fromStdString(given));
    const QString what = QStringLiteral("can-upload %1").arg(path);
    uint32_t word = 0;
    {
        const Session session(resolveConnection(global, Needs::Login));
        const uint32_t dwStatus =
            WFMTorviCheckPermission(session.context(), session.server(), session.port(), session.node(),
                                    wide(parentOf(path)).c_str(), wide(leafOf(path)).c_str(), nullptr, &word);
        const bool answered = dwStatus == 0 && (word == 0 || word == 5);
        if (!answered) {
            if (interrupted()) throwCancelled(what);
            throw callFailure(what, dwStatus, word);
        }
    }
    if (word != 0) throw callFailure(what, 0, word);
    if (global.json) return printJson(Json{{"path", utf8(path)}, {"allowed", true}});
    if (!global.quiet) printLine(QStringLiteral("%1: allowed").arg(path));
}

}  // namespace

void addFileCommands(const Commands& commands) {
    addPathCommand(commands, "touch", "Create an empty file; one that exists is left as it is", touch);
    addPathCommand(commands, "can-upload", "Ask whether an upload to the path would be allowed", canUpload);
}

}  // namespace torvi
