#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QString>
#include <cstdint>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "WebFileManAPI.h"
#include "files.h"
#include "support/nas.h"
#include "support/session.h"
#include "support/tempdir.h"

/// The library as a client uses it, against a real server.
namespace e2e {

enum class Service { Sync, Fcgi, FileManager };

/// How a session reaches its server.
struct Road {
    Service service = Service::Sync;
    bool tls = false;
};
const std::vector<Road>& allRoads();
/// Those that know team folders.
std::vector<Road> syncRoads();
std::vector<Road> fileManagerRoads();
std::string name(const Road& road);
std::string roadName(const testing::TestParamInfo<Road>& info);
void PrintTo(const Road& road, std::ostream* out);

/// The two numbers of a call.
struct Numbers {
    std::uint32_t dwStatus = 0;
    std::int32_t result = 0;
    bool operator==(const Numbers& other) const {
        return dwStatus == other.dwStatus && result == other.result;
    }
};
std::ostream& operator<<(std::ostream& out, const Numbers& numbers);
inline constexpr Numbers kDone{0, 0};
/// Runs a call that is given the place of its result word.
template <class Call>
Numbers numbersOf(Call call) {
    std::uint32_t result = 0xABCD;
    const std::uint32_t status = call(&result);
    return {status, static_cast<std::int32_t>(result)};
}
inline constexpr const wchar_t* kServer = L"127.0.0.1";
inline constexpr const wchar_t* kAgent = L"e2e";

std::string utf8(const std::wstring& text);
std::wstring wide(const std::string& text);

/// At the service of its road: the file manager has a login of its own.
struct Login {
    std::uint16_t port = 0;
    Road road;
    std::wstring user = L"anna", password = L"secret", computer = L"computer";
    std::uint32_t proxyMode = 0;
    std::wstring proxyHost, proxyUser, proxyPassword;
    std::uint32_t timeoutMs = 0;

    Numbers run();

    wire::SessionPtr session;
    std::wstring serverName;
    bool isAdmin = false;
    // The file manager's doesn't tell these.
    bool isSlave = false;
    _WFM_NETWORK_INFORMATION network = {};
};

/// What a record tells, without its 17 KB.
struct Entry {
    std::string name;
    bool isFolder = false, hasChild = false;
    std::int64_t size = 0, time = 0;
    std::uint32_t access = 0, type = 0;
    std::int32_t privilege = -1;
};
std::vector<std::string> names(const std::vector<Entry>& entries);

/// A listing between two pages.
struct Pages {
    std::wstring path = L"/home";
    std::wstring pattern = L"*";
    std::uint32_t typeFilter = 3;
    std::uint32_t limit = 100;
    bool sorted = true;
    bool* cancel = nullptr;
    std::uint32_t total = 0, start = 0, teamIndex = 0, teamCount = 0;
};

struct Upload {
    std::string bytes;
    std::wstring to;
    bool move = false;  ///< the sync client's upload, which sets the time
    std::int64_t time = 1500000000;
    std::wstring rename = {};
    std::uint32_t overwrite = 1;
    WFMProgressCallback callback = nullptr;
    void* data = nullptr;
};

struct Download {
    std::wstring from;
    std::optional<std::int64_t> offset = {}, size = {};
    std::string have = {};  ///< what the local file holds before
    WFMProgressCallback callback = nullptr;
    void* data = nullptr;

    std::string bytes = {};  ///< what it holds afterwards
};

/// What a client believes of an object that it is about to change.
struct Profile {
    std::int64_t time = 0, size = 0;
    bool isFolder = false;
};

/// What a job says of itself when it is asked once.
struct JobState {
    Numbers numbers;
    std::uint32_t percent = 0;
    std::int32_t error = 0;
};

/// A slice of a file: from the offset on, as much as one request carries.
struct Slice {
    std::string bytes = {};  ///< of the whole file
    std::wstring id, to;
    std::int64_t offset = 0;
    std::wstring root = L"/home/.up", rename = {};
    std::int64_t time = 1500000000;
    std::uint32_t overwrite = 1;
    WFMProgressCallback callback = nullptr;
    void* data = nullptr;
    bool* stop = nullptr;
    std::string local = {};  ///< the whole file, in place of the bytes
};

/// What became of a slice: the two numbers and the two flags.
struct Sliced {
    Numbers numbers;
    bool resume = false, deleteID = false;
    bool operator==(const Sliced& other) const {
        return numbers == other.numbers && resume == other.resume && deleteID == other.deleteID;
    }
};
std::ostream& operator<<(std::ostream& out, const Sliced& sliced);

/// One file of a batch, with what became of it.
struct BatchFile {
    std::wstring name;
    std::string bytes;
    std::int64_t time = 1500000000;
    std::int32_t result = -77;
};

/// A session with the place of its server. It may be used by one thread at a time.
class Client {
public:
    Client(std::uint16_t port, wire::SessionPtr session);
    /// Logs in and throws if that fails.
    Client(const Nas& nas, const Road& road, const std::wstring& user = L"anna",
           const std::wstring& password = L"secret");
    explicit Client(Login login);

    _WFM_AUTH_CONTEXT* context() const { return m_session.get(); }
    std::uint16_t port() const { return m_port; }
    void setPort(std::uint16_t port) { m_port = port; }
    Client clone() const;

    /// Tells the session the team folders that the server has, by the name that ends their owner's path.
    void learnTeamFolders(Nas& nas, const std::wstring& slaveID = {});

    /// The next page.
    Numbers page(Pages& pages, std::vector<Entry>& entries) const;
    /// All pages.
    Numbers list(Pages pages, std::vector<Entry>& entries) const;
    Numbers folders(const std::wstring& node, std::vector<Entry>& entries) const;
    Numbers folder(const std::wstring& parent, const std::wstring& name, Entry* entry = nullptr) const;
    Numbers stat(const std::wstring& parent, const std::wstring& name, Entry* entry = nullptr,
                 std::uint32_t mask = 0x3f, std::uint32_t typeFilter = 0, bool serverSide = false) const;
    Numbers isDirectory(const std::wstring& path, bool& answer) const;
    Numbers isPresent(const std::wstring& path, bool wantFolder, bool& answer) const;
    Numbers folderSize(const std::wstring& parent, const std::wstring& name, std::int64_t& size) const;
    Numbers createFile(const std::wstring& path) const;
    Numbers mayUpload(const std::wstring& folder, const std::wstring& name) const;
    Numbers upload(const Upload& upload) const;
    Numbers download(Download& download) const;
    /// The whole file.
    Numbers download(const std::wstring& from, std::string& bytes) const;
    /// At the service that opened the session.
    std::uint32_t logout() const;
    std::wstring sid() const;

    Numbers makeFolder(const std::wstring& parent, const std::wstring& name) const;
    Numbers remove(const std::wstring& path) const;
    Numbers removeChecked(const std::wstring& path, const Profile& profile,
                          bool cleanThumbnails = false) const;
    Numbers setTime(const std::wstring& parent, const std::wstring& name, std::int64_t time) const;
    Numbers rename(const std::wstring& from, const std::wstring& to) const;
    Numbers renameChecked(const std::wstring& from, const std::wstring& to, const Profile& profile) const;
    Numbers move(const std::wstring& from, const std::wstring& to, bool* cancel = nullptr) const;
    Numbers moveChecked(const std::wstring& from, const std::wstring& to, const Profile& profile,
                        bool* cancel = nullptr) const;
    /// What the server says of the path now.
    Profile profile(const std::wstring& path) const;

    Numbers followJob(std::int32_t pid, bool* cancel = nullptr) const;
    JobState askJob(const std::wstring& pid) const;
    std::uint32_t clearJob(std::int32_t pid) const;
    Numbers restore(const std::wstring& folder, const std::wstring& name, std::wstring& pid,
                    std::uint32_t mode = 0, std::uint32_t capacity = 260) const;

    Numbers uploadID(std::wstring& id, const std::wstring& folder = L"/home",
                     const std::wstring& root = L"/home/.up") const;
    Numbers heldBytes(const std::wstring& id, std::int64_t& size, const std::wstring& root = L"/home/.up",
                      const std::wstring& node = {}) const;
    Numbers forgetUpload(const std::wstring& id, const std::wstring& root = L"/home/.up") const;
    Sliced send(const Slice& slice) const;
    Numbers sendBatch(const std::wstring& folder, std::vector<BatchFile>& files) const;

    Numbers probe(std::wstring& version) const;
    Numbers lock(const std::wstring& path, WFM_VERSIONING_LOCK& lock) const;
    Numbers unlock(const std::wstring& path, const WFM_VERSIONING_LOCK& lock) const;
    Numbers cleanVersion(const std::wstring& path, const WFM_VERSIONING_LOCK& lock) const;
    Numbers makeSignature(const std::wstring& path, const WFM_VERSIONING_LOCK& lock, std::wstring& pid) const;
    Numbers makeDelta(const std::wstring& path, const WFM_VERSIONING_LOCK& lock, std::wstring& pid) const;
    Numbers commitVersion(const std::wstring& path, const WFM_VERSIONING_LOCK& lock, std::int64_t time,
                          std::wstring& pid) const;
    /// It has no result word.
    std::uint32_t statDelta(const std::wstring& path, const WFM_VERSIONING_LOCK& lock,
                            WFM_VERSIONING_DELTA_STAT& stat) const;

private:
    std::uint16_t m_port;
    wire::SessionPtr m_session;
};

Nas::Options withArguments(std::vector<std::string> arguments);
std::uint16_t portOf(const Nas& nas, const Road& road);

/// A server, and a client on the road of the parameter.
class LibRoad : public testing::TestWithParam<Road> {
protected:
    LibRoad() : LibRoad(Nas::Options()) {}
    explicit LibRoad(Nas::Options options) : nas(std::move(options)), client(nas, GetParam()) {}

    bool isSync() const { return GetParam().service != Service::FileManager; }
    bool isFcgi() const { return GetParam().service == Service::Fcgi; }
    /// Where the server keeps an entry of anna's home.
    std::string onDisk(const std::string& name) const { return nas.folder().file("homes/anna/" + name); }
    std::string put(const std::string& name, const std::string& bytes, std::int64_t time = 1400000000) {
        const std::string path = nas.folder().write("homes/anna/" + name, bytes);
        setModifiedTime(path, time);
        return path;
    }

    Nas nas;
    Client client;
};

}  // namespace e2e

/// The suite runs on every road; its name must be the fixture's.
#define E2E_ON_ALL_ROADS(suite) \
    INSTANTIATE_TEST_SUITE_P(Roads, suite, testing::ValuesIn(e2e::allRoads()), e2e::roadName)
