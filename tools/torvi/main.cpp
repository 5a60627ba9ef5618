#include <langinfo.h>

#include <QCoreApplication>
#include <QTextCodec>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "commands.h"
#include "failure.h"
#include "progress.h"
#include "session.h"
#include "signals.h"

namespace {

constexpr uint32_t kAllLevels = 63;
constexpr uint32_t kDebugLevel = 4;

/// Names and paths are UTF-8 on the wire; so they are here, whatever the locale.
void useUtf8() {
    if (std::strcmp(nl_langinfo(CODESET), "UTF-8") != 0) std::setlocale(LC_CTYPE, "C.UTF-8");
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));
}

void writeToStderr(QtMsgType, const QMessageLogContext&, const QString& message) {
    std::fprintf(stderr, "%s\n", message.toUtf8().constData());
}

void writeNothing(QtMsgType, const QMessageLogContext&, const QString&) {}

void startLog(bool verbose, uint32_t levels) {
    qInstallMessageHandler(verbose ? writeToStderr : writeNothing);
    if (verbose) {
        WFMInitialization(levels, QString(), false, false);
    } else {
        WFMUpdateDebugLevel(0);
    }
}

int run(const torvi::GlobalOptions& global, const torvi::Action& action) {
    using namespace torvi;
    const InterruptWatch watch([&global] {
        Progress::endLine();
        reportFailure(Failure(Exit::Cancelled, QStringLiteral("cancelled")), global.json);
        // Nothing below this timer can be unwound. The server gets a short while to hear of it.
        QTimer::singleShot(3000, [] { std::_Exit(static_cast<int>(Exit::Cancelled)); });
        Session::endCurrent();
        std::fflush(nullptr);
        std::_Exit(static_cast<int>(Exit::Cancelled));
    });
    try {
        action();
        if (std::fflush(stdout) != 0)
            throw Failure(Exit::Local, QStringLiteral("cannot write to standard output"));
        return static_cast<int>(Exit::Ok);
    } catch (const AlreadyReported& reported) {
        return static_cast<int>(reported.exit());
    } catch (const Failure& failure) {
        reportFailure(failure, global.json);
        return static_cast<int>(failure.exit());
    } catch (const std::exception& error) {
        reportFailure(Failure(Exit::Local, QString::fromUtf8(error.what())), global.json);
        return static_cast<int>(Exit::Local);
    }
}

}  // namespace

int main(int argc, char** argv) {
    // The arguments are the command line parser's alone.
    int qtArgc = 1;
    QCoreApplication application(qtArgc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("torvi"));
    useUtf8();

    torvi::GlobalOptions global;
    torvi::Action action;
    CLI::App app("Talks to a NAS: lists folders, changes them, moves files in both directions.", "torvi");
    torvi::addGlobalOptions(app, global);
    const torvi::Commands commands{app, global, action};
    torvi::addSessionCommands(commands);
    torvi::addProbeCommands(commands);
    torvi::addProxyCommand(commands);
    torvi::addStateCommands(commands);
    torvi::addLogCommand(commands);
    torvi::addListCommands(commands);
    torvi::addPutCommand(commands);
    torvi::addGetCommand(commands);
    torvi::addFileCommands(commands);
    torvi::addMoveCommand(commands);
    torvi::addTrashCommands(commands);
    torvi::addJobCommand(commands);
    torvi::addVersionCommands(commands);
    torvi::addTeamCommands(commands);
    torvi::addUsersCommand(commands);
    torvi::addLinkCommand(commands);
    torvi::addSettingsCommand(commands);
    torvi::addDeviceCommand(commands);
    torvi::addCloudCommand(commands);
    torvi::addFooter(app);
    try {
        app.parse(argc, argv);
    } catch (const CLI::CallForHelp& help) {
        if (app.remaining_size() == 0 || torvi::namesCommand(app)) return app.exit(help);
        std::fprintf(stderr, "torvi: %s: no such command\nRun torvi --help for more information.\n",
                     app.remaining().front().c_str());
        return static_cast<int>(torvi::Exit::Usage);
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? static_cast<int>(torvi::Exit::Ok)
                                    : static_cast<int>(torvi::Exit::Usage);
    }

    torvi::installInterruptHandlers();
    // The cloud's debug lines tell the tokens.
    startLog(global.verbose, app.got_subcommand("cloud") ? kAllLevels - kDebugLevel : kAllLevels);
    const int code = run(global, action);
    // Writes out what the log still holds.
    WFMUnInitialization();
    return code;
}
