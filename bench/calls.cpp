// What a call costs beyond the exchange itself: the library's call next to a bare QNetworkAccessManager and
// to libcurl, which send the same request to the same server. Each opens a connection of its own per call,
// as a call of the library does.

#include <benchmark/benchmark.h>
#include <curl/curl.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QEventLoop>
#include <QtNetwork/QNetworkAccessManager>
#include <QtNetwork/QNetworkReply>
#include <QtNetwork/QNetworkRequest>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>

#include "WebFileManAPI.h"
#include "loopback.h"
#include "ratios.h"

namespace {

constexpr int kIterations = 100;

Reply answer(const Request& request) {
    const std::string& target = request.target;
    if (target.find("login.cgi") != std::string::npos)
        return {R"({"status":1,"sid":"0123456789abcdef","admingroup":"1","servername":"bench"})"};
    if (target.find("func=properties") != std::string::npos) return {R"({"status":1,"size":"4711"})"};
    return {R"({"version":"5.1.0","build":"20240101"})"};
}

/// A request as the library sent it, without what a client adds by itself.
struct Exchange {
    std::string url;
    std::map<std::string, std::string> headers;
};

Exchange replay_of(const Request& request, uint16_t port) {
    Exchange exchange{"http://127.0.0.1:" + std::to_string(port) + request.target, request.headers};
    for (const char* own : {"host", "accept-encoding", "accept-language", "content-length"})
        exchange.headers.erase(own);
    return exchange;
}

bool with_bare_qt(const Exchange& exchange) {
    QNetworkAccessManager manager;
    QNetworkRequest request(QUrl(QString::fromStdString(exchange.url)));
    for (const auto& [name, value] : exchange.headers)
        request.setRawHeader(QByteArray::fromStdString(name), QByteArray::fromStdString(value));
    const std::unique_ptr<QNetworkReply> reply(manager.get(request));
    QEventLoop loop;
    QObject::connect(reply.get(), &QNetworkReply::finished, &loop, &QEventLoop::quit);
    if (!reply->isFinished()) loop.exec();
    return reply->error() == QNetworkReply::NoError && !reply->readAll().isEmpty();
}

size_t append(char* data, size_t, size_t size, void* text) {
    static_cast<std::string*>(text)->append(data, size);
    return size;
}

bool with_curl(const Exchange& exchange) {
    const std::unique_ptr<CURL, void (*)(CURL*)> curl(curl_easy_init(), curl_easy_cleanup);
    curl_slist* list = nullptr;
    for (const auto& [name, value] : exchange.headers)
        list = curl_slist_append(list, (name + ": " + value).c_str());
    const std::unique_ptr<curl_slist, void (*)(curl_slist*)> headers(list, curl_slist_free_all);
    std::string body;
    curl_easy_setopt(curl.get(), CURLOPT_URL, exchange.url.c_str());
    curl_easy_setopt(curl.get(), CURLOPT_HTTPHEADER, headers.get());
    curl_easy_setopt(curl.get(), CURLOPT_PROXY, "");
    curl_easy_setopt(curl.get(), CURLOPT_WRITEFUNCTION, append);
    curl_easy_setopt(curl.get(), CURLOPT_WRITEDATA, &body);
    return curl_easy_perform(curl.get()) == CURLE_OK && !body.empty();
}

template <typename Call>
void add(const std::string& what, const std::string& who, Call call) {
    add_to_table(what, who);
    benchmark::RegisterBenchmark((what + "/" + who).c_str(),
                                 [call](benchmark::State& state) {
                                     for (auto _ : state)
                                         if (!call()) state.SkipWithError("the exchange failed");
                                 })
        ->Iterations(kIterations)
        ->Repetitions(15)
        ->UseRealTime();
}

/// Runs `call` once, learns what it sends, and has the others send the same.
template <typename Call>
void compare(const std::string& what, const Loopback& server, Call call) {
    if (!call()) {
        std::fprintf(stderr, "%s doesn't succeed against the server here\n", what.c_str());
        std::exit(1);
    }
    const Exchange exchange = replay_of(server.last(), server.port());
    add(what, "bare Qt", [exchange] { return with_bare_qt(exchange); });
    add(what, "libTorviAPI", call);
    add(what, "libcurl", [exchange] { return with_curl(exchange); });
}

}  // namespace

int main(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    curl_global_init(CURL_GLOBAL_ALL);
    const Loopback server(answer);
    const uint32_t port = server.port();
    const wchar_t* host = L"127.0.0.1";

    compare("WFMGetVersion", server, [=] {
        uint32_t result = 0;
        _WFM_VERSION_INFORMATION version = {};
        return WFMGetVersion(host, port, L"bench", false, 0, nullptr, nullptr, nullptr, nullptr, 0, &result,
                             &version) == 0 &&
               result == 0;
    });

    wchar_t server_name[64] = {};
    bool is_admin = false;
    bool is_slave = false;
    uint32_t result = 0;
    _WFM_AUTH_CONTEXT* context = nullptr;
    if (TorviLogin(host, static_cast<int32_t>(port), L"bench", L"bench", false, L"bench", L"bench", L"bench",
                   1, 64, 0, nullptr, nullptr, nullptr, nullptr, L"1.0", 0, nullptr, false, server_name,
                   &is_admin, &is_slave, &result, &context, 0, nullptr) != 0) {
        std::fprintf(stderr, "the log-in doesn't succeed against the server here\n");
        return 1;
    }
    compare("WFMGetFolderSize", server, [=] {
        uint32_t word = 0;
        int64_t size = 0;
        return WFMGetFolderSize(context, host, port, nullptr, L"folder", L"/home", nullptr, &word, &size) ==
                   0 &&
               size == 4711;
    });

    const int outcome = run_interleaved(argv[0]);
    WFMFreeAuthContext(context);
    curl_global_cleanup();
    return outcome;
}
