// noapp_child <port> <folder>
// Calls the library in a process that has no QCoreApplication, on the main thread and on another one. Prints
// each call's name with its `dwStatus` and the result word that it left; the log goes to standard error.

#include <QFile>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>

// No login can succeed here, so the session is made by hand.
#include "../../../src/core/authcontext.h"

namespace {

constexpr const wchar_t* kServer = L"127.0.0.1";

void Print(const char* name, uint32_t dwStatus, uint32_t resultWord) {
    std::printf("%s %u %X\n", name, dwStatus, resultWord);
}

void CallEach(uint32_t port, QFile& file) {
    uint32_t result = 0xABCD;
    _WFM_VERSION_INFORMATION version;
    Print("WFMGetVersion",
          WFMGetVersion(kServer, port, L"", false, 0, L"", L"", L"", L"", 0, &result, &version), result);

    result = 0xABCD;
    wchar_t name[260];
    bool isAdmin = false;
    bool isSlave = false;
    _WFM_AUTH_CONTEXT* made = nullptr;
    const uint32_t login = TorviLogin(kServer, static_cast<int32_t>(port), L"user", L"pw", false, L"pc",
                                      L"uid", L"", 1, 260, 0, L"", L"", L"", L"", L"1.0", 0, nullptr, false,
                                      name, &isAdmin, &isSlave, &result, &made, 0, nullptr);
    Print("TorviLogin", login, made == nullptr ? result : 0);

    wchar_t sid[] = L"sid123";
    _WFM_AUTH_CONTEXT session{};
    session.bUseNuboCGI = true;
    session.pszSid = sid;

    result = 0xABCD;
    const int64_t size = 10;
    Print("WFMDownloadFileToHandle",
          WFMDownloadFileToHandle(&session, kServer, port, L"", L"/home/a", &file, nullptr, &size, nullptr,
                                  nullptr, nullptr, &result),
          result);

    result = 0xABCD;
    file.open(QIODevice::ReadOnly);
    Print("WFMUploadFilewithHandle",
          WFMUploadFilewithHandle(&session, kServer, port, L"", &file, L"/home/a", nullptr, nullptr, 1,
                                  nullptr, &result),
          result);
    file.close();
}

void Handler(QtMsgType, const QMessageLogContext&, const QString& message) {
    std::fprintf(stderr, "%s\n", message.toUtf8().constData());
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) return 2;
    qInstallMessageHandler(Handler);
    const uint32_t port = static_cast<uint32_t>(std::atoi(argv[1]));
    QFile file(QString::fromUtf8(argv[2]) + "/file");
    CallEach(port, file);
    std::thread([&] { CallEach(port, file); }).join();
    WFMUnInitialization();
    return 0;
}
