// Finds a NAS of a user through the cloud and logs in there over the first address that came back. Frees what
// the library has allocated: the cloud's lists have functions for that. Arguments: the cloud's host, the
// application's id; from standard input its secret and a refresh token of the user, a line each.
#include <WebFileManAPI.h>

#include <QtCore/QCoreApplication>
#include <cstdio>
#include <iostream>
#include <memory>
#include <string>

namespace {

constexpr const wchar_t* kAgent = L"example";
constexpr const wchar_t* kVersion = L"1.0";

// Who asks whom, as all calls on the cloud want it: over HTTPS and without a proxy.
struct Application {
    std::wstring host, id, secret;
};

bool failed(const char* what, uint32_t status, int32_t word = 0) {
    if (status == 0 && word == 0) return false;
    std::fprintf(stderr, "%s: %u, %d\n", what, status, word);
    return true;
}

// An access token of the user; empty if the cloud refuses.
std::wstring accessToken(const Application& app, const std::wstring& refreshToken) {
    const auto token = std::make_unique<_CLOUD_TOKEN_INFORMATION>();
    const uint32_t status =
        ZenoAPIAPPRefreshToken(app.host.c_str(), kAgent, refreshToken.c_str(), kVersion, app.id.c_str(),
                               app.secret.c_str(), true, 0, nullptr, nullptr, nullptr, nullptr, token.get());
    // The cloud gives its reasons in words, with an HTTP error or without one.
    if (token->error[0] != 0) std::fprintf(stderr, "token: %ls\n", token->error_description);
    return failed("token", status) ? std::wstring() : token->access_token;
}

// The id of the user's first device; empty if there is none.
std::wstring firstDevice(const Application& app, const std::wstring& token) {
    uint32_t word = 0;
    int32_t count = 0;
    _NAS_DEVICE_INFORMATION_API_V11** devices = nullptr;
    const uint32_t status =
        ZenoAPIGetAllDeviceInfo(app.host.c_str(), kAgent, kVersion, app.id.c_str(), token.c_str(), true, 0,
                                nullptr, nullptr, nullptr, nullptr, &word, &count, &devices);
    if (failed("devices", status, static_cast<int32_t>(word))) return {};
    for (int32_t i = 0; i < count; ++i) std::printf("device %ls\n", devices[i]->szDeviceName);
    const std::wstring id = count > 0 ? devices[0]->szDeviceID : L"";
    ZenoFreeDeviceInfo(count, &devices);
    return id;
}

// "address:port" in the device's own network; empty if the cloud knows none.
std::wstring localAddress(const Application& app, const std::wstring& token, const std::wstring& device) {
    const auto link = std::make_unique<_CLOUD_LINK_INFORMATION>();
    const uint32_t status =
        ZenoAPIGetCloudLinkSetting(app.host.c_str(), kAgent, kVersion, app.id.c_str(), token.c_str(),
                                   device.c_str(), true, 0, nullptr, nullptr, nullptr, nullptr, link.get());
    if (failed("addresses", status, link->nResultCode)) return {};
    const std::wstring address = link->nLanIPCount > 0 ? link->lppLanIPs[0] : L"";
    ZenoFreeCloudInfo(link.get());
    return address;
}

bool logIn(const std::wstring& address) {
    const size_t colon = address.rfind(L':');
    // Without a port there is no telling where to go, and of an IPv6 address where it ends.
    if (colon == std::wstring::npos || address.find(L':') != colon) {
        std::fprintf(stderr, "no address to log in at: \"%ls\"\n", address.c_str());
        return false;
    }
    const std::wstring server = address.substr(0, colon);
    const auto port = static_cast<int32_t>(std::stoi(address.substr(colon + 1)));
    wchar_t name[260] = {};
    bool isAdmin, isSlave;
    uint32_t word = 0;
    _WFM_AUTH_CONTEXT* session = nullptr;
    const uint32_t status = TorviLogin(server.c_str(), port, L"ann", L"secret", false, L"my-pc", L"my-pc-1",
                                       kAgent, 0, 260, 0, nullptr, nullptr, nullptr, nullptr, kVersion, 0,
                                       nullptr, false, name, &isAdmin, &isSlave, &word, &session, 0, nullptr);
    if (failed("login", status, static_cast<int32_t>(word))) return false;
    std::printf("logged in to %ls at %ls\n", name, address.c_str());
    TorviLogout(server.c_str(), static_cast<uint32_t>(port), false, session);
    WFMFreeAuthContext(session);
    return true;
}

}  // namespace

int main(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    const auto wide = [](const std::string& text) { return QString::fromStdString(text).toStdWString(); };
    if (argc != 3) return 2;
    std::string secret, refreshToken;
    std::getline(std::cin, secret);
    std::getline(std::cin, refreshToken);
    const Application app = {wide(argv[1]), wide(argv[2]), wide(secret)};
    const std::wstring token = accessToken(app, wide(refreshToken));
    if (token.empty()) return 1;
    const std::wstring device = firstDevice(app, token);
    const bool done = logIn(device.empty() ? device : localAddress(app, token, device));
    ZenoAPIAPPSignOut(app.host.c_str(), token.c_str(), kAgent, kVersion, app.id.c_str(), true, 0, nullptr,
                      nullptr, nullptr);
    return done ? 0 : 1;
}
