#include <gmock/gmock.h>

#include <QCoreApplication>
#include <csignal>
#include <cstdio>
#include <cstdlib>

namespace {

/// The library writes its log lines to Qt's debug output. They are noise, unless someone looks for them.
void quietHandler(QtMsgType type, const QMessageLogContext&, const QString& message) {
    if (type == QtDebugMsg || type == QtInfoMsg) return;
    std::fprintf(stderr, "%s\n", message.toUtf8().constData());
}

}  // namespace

int main(int argc, char** argv) {
    // The tests' traffic stays on this machine, whatever the environment says.
    for (const char* name : {"http_proxy", "https_proxy", "all_proxy", "no_proxy", "HTTP_PROXY",
                             "HTTPS_PROXY", "ALL_PROXY", "NO_PROXY"}) {
        unsetenv(name);
    }
    // Qt names the locale in "Accept-Language", and its rules can switch debug output off.
    setenv("LC_ALL", "C.UTF-8", 1);
    unsetenv("LANGUAGE");
    unsetenv("QT_LOGGING_RULES");
    unsetenv("QT_MESSAGE_PATTERN");
    std::signal(SIGPIPE, SIG_IGN);
    if (std::getenv("TORVI_TEST_VERBOSE") == nullptr) qInstallMessageHandler(quietHandler);
    QCoreApplication application(argc, argv);
    testing::InitGoogleMock(&argc, argv);
    return RUN_ALL_TESTS();
}
