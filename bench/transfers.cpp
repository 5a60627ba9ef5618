// Upload and download of one large file: the library next to a bare QNetworkAccessManager and to libcurl, on
// the same server. Each transfer runs in a process of its own, so that its peak memory is its own.
//
//   torvi-bench-transfers [--size MiB] [--rounds N] [--dir SCRATCH]

#include <curl/curl.h>
#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QEventLoop>
#include <QtCore/QFile>
#include <QtNetwork/QNetworkAccessManager>
#include <QtNetwork/QNetworkReply>
#include <QtNetwork/QNetworkRequest>
#include <algorithm>
#include <chrono>
#include <cinttypes>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "WebFileManAPI.h"
#include "loopback.h"
#include "ratios.h"

namespace {

constexpr int64_t kMiB = 1 << 20;
constexpr qint64 kReadBuffer = 1 * kMiB;  // what the library allows its own downloads

const char* const kWays[] = {"upload", "download"};
const char* const kWhos[] = {"bare Qt", "libTorviAPI", "libcurl"};

struct Job {
    std::string way;
    std::string who;
    std::string url;
    std::string path;
    uint32_t port = 0;
    int64_t size = 0;
};

bool wait_for(QNetworkReply* reply) {
    QEventLoop loop;
    QObject::connect(reply, &QNetworkReply::finished, &loop, &QEventLoop::quit);
    if (!reply->isFinished()) loop.exec();
    return reply->error() == QNetworkReply::NoError;
}

bool upload_with_qt(const Job& job) {
    QFile file(QString::fromStdString(job.path));
    if (!file.open(QIODevice::ReadOnly)) return false;
    QNetworkAccessManager manager;
    QNetworkRequest request(QUrl(QString::fromStdString(job.url)));
    request.setHeader(QNetworkRequest::ContentTypeHeader, "application/octet-stream");
    const std::unique_ptr<QNetworkReply> reply(manager.post(request, &file));
    return wait_for(reply.get());
}

bool download_with_qt(const Job& job) {
    QFile file(QString::fromStdString(job.path));
    if (!file.open(QIODevice::ReadWrite | QIODevice::Unbuffered)) return false;
    QNetworkAccessManager manager;
    const std::unique_ptr<QNetworkReply> reply(
        manager.get(QNetworkRequest(QUrl(QString::fromStdString(job.url)))));
    reply->setReadBufferSize(kReadBuffer);
    QObject::connect(reply.get(), &QNetworkReply::readyRead, &file, [&] { file.write(reply->readAll()); });
    const bool good = wait_for(reply.get());
    file.write(reply->readAll());
    return good;
}

bool with_curl(const Job& job, bool upload) {
    const std::unique_ptr<CURL, void (*)(CURL*)> curl(curl_easy_init(), curl_easy_cleanup);
    const std::unique_ptr<FILE, int (*)(FILE*)> file(std::fopen(job.path.c_str(), upload ? "rb" : "wb"),
                                                     std::fclose);
    const std::unique_ptr<curl_slist, void (*)(curl_slist*)> headers(
        curl_slist_append(curl_slist_append(nullptr, "Content-Type: application/octet-stream"), "Expect:"),
        curl_slist_free_all);
    if (!file) return false;
    curl_easy_setopt(curl.get(), CURLOPT_URL, job.url.c_str());
    curl_easy_setopt(curl.get(), CURLOPT_PROXY, "");
    if (upload) {
        curl_easy_setopt(curl.get(), CURLOPT_POST, 1L);
        curl_easy_setopt(curl.get(), CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(job.size));
        curl_easy_setopt(curl.get(), CURLOPT_READDATA, file.get());
        curl_easy_setopt(curl.get(), CURLOPT_HTTPHEADER, headers.get());
    }
    const std::unique_ptr<FILE, int (*)(FILE*)> nowhere(std::fopen("/dev/null", "wb"), std::fclose);
    curl_easy_setopt(curl.get(), CURLOPT_WRITEDATA, upload ? nowhere.get() : file.get());
    return curl_easy_perform(curl.get()) == CURLE_OK;
}

uint32_t go_on(int64_t, int64_t, int64_t, int64_t, uint32_t, uint32_t, void*, void*, void*) {
    return 0;
}

bool with_library(const Job& job, _WFM_AUTH_CONTEXT* context, bool upload) {
    QFile file(QString::fromStdString(job.path));
    uint32_t result = 0;
    if (upload)
        return file.open(QIODevice::ReadOnly) &&
               WFMUploadFilewithHandle(context, L"127.0.0.1", job.port, nullptr, &file, L"/home/bench",
                                       nullptr, go_on, 1, nullptr, &result) == 0 &&
               result == 0;
    bool stop = false;
    return WFMDownloadFileToHandle(context, L"127.0.0.1", job.port, nullptr, L"/home/bench", &file, nullptr,
                                   &job.size, nullptr, go_on, &stop, &result) == 0 &&
           result == 0;
}

_WFM_AUTH_CONTEXT* log_in(uint32_t port) {
    wchar_t server_name[64] = {};
    bool is_admin = false;
    bool is_slave = false;
    uint32_t result = 0;
    _WFM_AUTH_CONTEXT* context = nullptr;
    TorviLogin(L"127.0.0.1", static_cast<int32_t>(port), L"bench", L"bench", false, L"bench", L"bench",
               L"bench", 1, 64, 0, nullptr, nullptr, nullptr, nullptr, L"1.0", 0, nullptr, false, server_name,
               &is_admin, &is_slave, &result, &context, 0, nullptr);
    return context;
}

/// Peak resident memory in KiB. Not ru_maxrss: that one begins with what the parent had.
int64_t peak_memory() {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);)
        if (line.rfind("VmHWM:", 0) == 0) return std::atoll(line.c_str() + 6);
    return 0;
}

double cpu_seconds() {
    rusage usage = {};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<double>(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
           static_cast<double>(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) * 1e-6;
}

/// The child: one transfer, timed without the start of the process; the figures go to standard output.
int transfer(const Job& job, int argc, char** argv) {
    QCoreApplication application(argc, argv);
    const bool upload = job.way == "upload";
    _WFM_AUTH_CONTEXT* context = job.who == "libTorviAPI" ? log_in(job.port) : nullptr;
    const double cpu_before = cpu_seconds();
    const auto start = std::chrono::steady_clock::now();
    bool good = false;
    if (job.who == "libTorviAPI")
        good = context && with_library(job, context, upload);
    else if (job.who == "libcurl")
        good = with_curl(job, upload);
    else
        good = upload ? upload_with_qt(job) : download_with_qt(job);
    const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
    std::printf("%.6f %.6f %" PRId64 "\n", seconds.count(), cpu_seconds() - cpu_before, peak_memory());
    WFMFreeAuthContext(context);
    std::error_code unused;
    return good && std::filesystem::file_size(job.path, unused) == static_cast<uintmax_t>(job.size) ? 0 : 1;
}

struct Figures {
    std::vector<double> seconds;
    std::vector<double> cpu;
    int64_t peak = 0;
};

/// Runs this program as the child that `job` needs.
bool run_child(const Job& job, Figures& figures) {
    const std::string program = std::filesystem::read_symlink("/proc/self/exe");
    const std::string port = std::to_string(job.port);
    const std::string size = std::to_string(job.size);
    std::vector<std::string> words = {program, "--child", job.way, job.who, job.url, job.path, port, size};
    std::vector<char*> arguments;
    for (std::string& word : words) arguments.push_back(word.data());
    arguments.push_back(nullptr);

    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) return false;
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
    pid_t child = 0;
    const int failed = posix_spawn(&child, program.c_str(), &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    close(ends[1]);
    const std::unique_ptr<FILE, int (*)(FILE*)> output(fdopen(ends[0], "r"), std::fclose);
    if (failed) return false;
    double seconds = 0;
    double cpu = 0;
    int64_t peak = 0;
    const int read = std::fscanf(output.get(), "%lf %lf %" SCNd64, &seconds, &cpu, &peak);
    int status = 0;
    waitpid(child, &status, 0);
    if (read != 3 || !WIFEXITED(status) || WEXITSTATUS(status) != 0) return false;
    figures.seconds.push_back(seconds);
    figures.cpu.push_back(cpu);
    figures.peak = std::max(figures.peak, peak);
    return true;
}

void print_table(const std::string& way, int64_t size, std::map<std::string, Figures>& figures) {
    char title[64];
    std::snprintf(title, sizeof title, "%s of %" PRId64 " MiB", way.c_str(), size / kMiB);
    std::printf("\n%-34s %12s %8s %12s %8s %10s %12s\n", title, "median", "ratio", "best", "ratio",
                "CPU ratio", "peak memory");
    const Figures& first = figures[kWhos[0]];
    for (const char* who : kWhos) {
        const Figures& own = figures[who];
        if (own.seconds.empty() || first.seconds.empty()) {
            std::printf("  %-32s did not run\n", who);
            continue;
        }
        const double best = *std::min_element(own.seconds.begin(), own.seconds.end());
        const double first_best = *std::min_element(first.seconds.begin(), first.seconds.end());
        std::printf("  %-32s %10.3f s %8.3f %10.3f s %8.3f %10.3f %8.1f MiB\n", who, median(own.seconds),
                    median(own.seconds) / median(first.seconds), best, best / first_best,
                    median(own.cpu) / median(first.cpu), static_cast<double>(own.peak) / 1024);
    }
    std::fflush(stdout);
}

bool write_source(const std::string& path, int64_t size) {
    std::ofstream file(path, std::ios::binary);
    const std::string piece(static_cast<size_t>(kMiB), 't');
    for (int64_t left = size; left > 0 && file; left -= kMiB)
        file.write(piece.data(), static_cast<std::streamsize>(std::min(left, kMiB)));
    return file.good();
}

int compare(int64_t size, int rounds, const std::string& parent) {
    std::string scratch = parent + "/torvi-bench-XXXXXX";
    if (!mkdtemp(scratch.data())) {
        std::perror(scratch.c_str());
        return 1;
    }
    const std::string source = scratch + "/source";
    const std::string target = scratch + "/target";
    int outcome = 0;
    {
        const Loopback server([size](const Request& request) -> Reply {
            if (request.target.find("login.cgi") != std::string::npos)
                return {R"({"status":1,"sid":"0123456789abcdef","admingroup":"1","servername":"bench"})"};
            if (request.target.find("download") != std::string::npos) return {"", size};
            return {R"({"status":1,"success":"true"})"};
        });
        if (!write_source(source, size)) {
            std::fprintf(stderr, "no room for %s\n", source.c_str());
            outcome = 1;
        }
        for (const char* way : kWays) {
            const std::string name = way;
            std::map<std::string, Figures> figures;
            for (int round = 0; round < rounds && outcome == 0; ++round)
                for (const char* who : kWhos) {
                    const std::string url = "http://127.0.0.1:" + std::to_string(server.port()) + "/" + name;
                    if (!run_child({name, who, url, name == "upload" ? source : target, server.port(), size},
                                   figures[who])) {
                        std::fprintf(stderr, "%s by %s failed\n", way, who);
                        outcome = 1;
                    }
                    std::filesystem::remove(target);
                }
            print_table(name, size, figures);
        }
    }
    std::filesystem::remove_all(scratch);
    return outcome;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc == 8 && std::strcmp(argv[1], "--child") == 0)
        return transfer({argv[2], argv[3], argv[4], argv[5], static_cast<uint32_t>(std::atoi(argv[6])),
                         std::atoll(argv[7])},
                        argc, argv);
    int64_t size = 1024 * kMiB;
    int rounds = 5;
    std::string parent = std::filesystem::temp_directory_path();
    for (int i = 1; i < argc; i += 2) {
        const std::string option = argv[i];
        const char* value = i + 1 < argc ? argv[i + 1] : "";
        if (option == "--dir")
            parent = value;
        else if (option == "--size" && std::atoll(value) > 0)
            size = std::atoll(value) * kMiB;
        else if (option == "--rounds" && std::atoi(value) > 0)
            rounds = std::atoi(value);
        else {
            std::fprintf(stderr, "usage: %s [--size MiB] [--rounds N] [--dir SCRATCH]\n", argv[0]);
            return 2;
        }
    }
    return compare(size, rounds, parent);
}
