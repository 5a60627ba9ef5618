// <upload|download> <port> <http|tls> <local file> <remote path>: one transfer; prints the peak memory in
// KiB.
#include <QCoreApplication>
#include <QFile>
#include <cstdio>
#include <fstream>
#include <string>

#include "WebFileManAPI.h"

namespace {

std::string peakKiB() {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.rfind("VmHWM:", 0) == 0) return line.substr(line.find_first_of("0123456789"));
    }
    return "0";
}

uint32_t goOn(int64_t, int64_t, int64_t, int64_t, uint32_t, uint32_t, void*, void*, void*) {
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    if (argc != 6) return 2;
    const auto port = static_cast<uint32_t>(std::stoul(argv[2]));
    wchar_t name[260];
    bool isAdmin = false, isSlave = false;
    uint32_t result = 0;
    _WFM_AUTH_CONTEXT* context = nullptr;
    uint32_t status = TorviLogin(L"127.0.0.1", static_cast<int32_t>(port), L"anna", L"secret",
                                 std::string(argv[3]) == "tls", L"pc", L"uid", L"child", 1, 260, 0, nullptr,
                                 nullptr, nullptr, nullptr, L"1.0", 0, nullptr, false, name, &isAdmin,
                                 &isSlave, &result, &context, 0, nullptr);
    if (status != 0 || context == nullptr) return 3;
    QFile file(QString::fromLocal8Bit(argv[4]));
    const std::wstring remote = QString::fromLocal8Bit(argv[5]).toStdWString();
    if (std::string(argv[1]) == "upload") {
        if (!file.open(QIODevice::ReadOnly)) return 4;
        status = WFMUploadFilewithHandle(context, L"127.0.0.1", port, nullptr, &file, remote.c_str(), nullptr,
                                         goOn, 1, nullptr, &result);
    } else {
        status = WFMDownloadFileToHandle(context, L"127.0.0.1", port, nullptr, remote.c_str(), &file, nullptr,
                                         nullptr, nullptr, goOn, nullptr, &result);
    }
    WFMFreeAuthContext(context);
    std::printf("%s\n", peakKiB().c_str());
    return status == 0 && result == 0 ? 0 : 5;
}
