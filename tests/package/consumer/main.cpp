// What a newcomer's first program does: open the log, ask a server that isn't there, close the log.
#include <WebFileManAPI.h>
#include <WebFileManShareAPI.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QFile>
#include <cstdio>

int main(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    const QString folder = QString::fromLocal8Bit(argc > 1 ? argv[1] : ".");
    WFMInitialization(32, folder, true, false);

    _WFM_VERSION_INFORMATION version = {};
    uint32_t result = 0;
    // Port 1 of this host: nobody listens there.
    const uint32_t status = WFMGetVersion(L"127.0.0.1", 1, L"consumer", false, 0, nullptr, nullptr, nullptr,
                                          nullptr, 0, &result, &version);
    WFMUnInitialization();

    QFile log(folder + "/TorviWFMLibLog.log");
    const bool logged = log.open(QIODevice::ReadOnly) && log.readAll().contains("127.0.0.1:1");
    std::printf("status %u, logged %d\n", status, logged);
    return status != 0 && logged ? 0 : 1;
}
