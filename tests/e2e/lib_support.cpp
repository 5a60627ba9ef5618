#include "lib_support.h"

#include <QFile>
#include <cstring>
#include <nlohmann/json.hpp>
#include <stdexcept>

namespace e2e {

namespace {

Entry entryOf(const _WFM_PATH_INFORMATION& record) {
    Entry entry;
    entry.name = utf8(record.szPathName);
    entry.isFolder = record.bIsFolder;
    entry.hasChild = record.bHasChild;
    entry.size = record.llSize;
    entry.time = record.llModifiedTime;
    entry.access = record.dwAccess;
    entry.type = record.dwNuboType;
    entry.privilege = record.nPrivilegeEx;
    return entry;
}

/// Takes over a list of the library.
void take(std::uint32_t count, _WFM_PATH_INFORMATION** list, std::vector<Entry>& entries) {
    for (std::uint32_t i = 0; i < count; ++i) {
        entries.push_back(entryOf(*list[i]));
        delete list[i];
    }
    delete[] list;
}

template <class Call>
Numbers answerOf(bool& answer, Call call) {
    answer = false;
    return numbersOf(call);
}

}  // namespace

const std::vector<Road>& allRoads() {
    static const std::vector<Road> roads = {{Service::Sync, false},        {Service::Sync, true},
                                            {Service::Fcgi, false},        {Service::Fcgi, true},
                                            {Service::FileManager, false}, {Service::FileManager, true}};
    return roads;
}

std::vector<Road> syncRoads() {
    std::vector<Road> roads;
    for (const Road& road : allRoads()) {
        if (road.service != Service::FileManager) roads.push_back(road);
    }
    return roads;
}

std::vector<Road> fileManagerRoads() {
    return {{Service::FileManager, false}, {Service::FileManager, true}};
}

std::string name(const Road& road) {
    const char* const service = road.service == Service::Sync   ? "Sync"
                                : road.service == Service::Fcgi ? "Fcgi"
                                                                : "FileManager";
    return std::string(service) + (road.tls ? "Tls" : "Http");
}

std::string roadName(const testing::TestParamInfo<Road>& info) {
    return name(info.param);
}

void PrintTo(const Road& road, std::ostream* out) {
    *out << name(road);
}

std::ostream& operator<<(std::ostream& out, const Numbers& numbers) {
    return out << "dwStatus " << numbers.dwStatus << ", result " << numbers.result;
}

std::string utf8(const std::wstring& text) {
    return QString::fromStdWString(text).toStdString();
}

std::wstring wide(const std::string& text) {
    return QString::fromStdString(text).toStdWString();
}

std::vector<std::string> names(const std::vector<Entry>& entries) {
    std::vector<std::string> result;
    for (const Entry& entry : entries) result.push_back(entry.name);
    return result;
}

Numbers Login::run() {
    wchar_t nameField[260] = {};
    _WFM_AUTH_CONTEXT* context = nullptr;
    const Numbers numbers = numbersOf([&](std::uint32_t* result) {
        return road.service == Service::FileManager
                   ? WFMLogin(kServer, port, user.c_str(), password.c_str(), road.tls, computer.c_str(),
                              L"uid", kAgent, 1, 260, proxyMode, proxyHost.c_str(), proxyUser.c_str(),
                              proxyPassword.c_str(), nullptr, L"1.0", 0, &timeoutMs, nameField, &isAdmin,
                              result, &context)
                   : TorviLogin(kServer, port, user.c_str(), password.c_str(), road.tls, computer.c_str(),
                                L"uid", kAgent, 1, 260, proxyMode, proxyHost.c_str(), proxyUser.c_str(),
                                proxyPassword.c_str(), nullptr, L"1.0", 0, &timeoutMs,
                                road.service == Service::Fcgi, nameField, &isAdmin, &isSlave, result,
                                &context, 0, &network);
    });
    serverName = nameField;
    session.reset(context);
    return numbers;
}

Client::Client(std::uint16_t port, wire::SessionPtr session) : m_port(port), m_session(std::move(session)) {}

Client::Client(Login login) : m_port(login.port) {
    const Numbers numbers = login.run();
    m_session = std::move(login.session);
    if (!(numbers == kDone) || !m_session) throw std::runtime_error("the login failed");
}

Client::Client(const Nas& nas, const Road& road, const std::wstring& user, const std::wstring& password)
    : Client([&] {
          Login login;
          login.port = portOf(nas, road);
          login.road = road;
          login.user = user;
          login.password = password;
          return login;
      }()) {}

Client Client::clone() const {
    _WFM_AUTH_CONTEXT* copy = nullptr;
    WFMCloneAuthContext(context(), &copy);
    if (copy == nullptr) throw std::runtime_error("no clone");
    return {m_port, wire::SessionPtr(copy)};
}

void Client::learnTeamFolders(Nas& nas, const std::wstring& slaveID) {
    const nlohmann::json state = nlohmann::json::parse(nas.control("GET", "state"));
    std::vector<std::wstring> texts[3];
    for (const auto& team : state.at("teams")) {
        const std::string path = team.at("owner_path");
        texts[0].push_back(L"/home/.Torvi/" + wide(path.substr(path.rfind('/') + 1)) + L"/");
        texts[1].push_back(wide(team.at("path").get<std::string>()));
        texts[2].push_back(slaveID);
    }
    std::vector<wchar_t*> lists[3];
    for (int i = 0; i < 3; ++i) {
        for (std::wstring& text : texts[i]) lists[i].push_back(text.data());
    }
    const std::uint32_t status =
        WFMUpdateTeamFolderInfo(context(), static_cast<std::int32_t>(lists[0].size()), lists[0].data(),
                                lists[1].data(), slaveID.empty() ? nullptr : lists[2].data());
    if (status != 0) throw std::runtime_error("the team folders are refused");
}

Numbers Client::page(Pages& pages, std::vector<Entry>& entries) const {
    std::uint32_t count = 0;
    _WFM_PATH_INFORMATION** list = nullptr;
    const Numbers numbers = numbersOf([&](std::uint32_t* result) {
        return WFMGetNodeList(context(), kServer, m_port, nullptr, pages.pattern.c_str(), pages.path.c_str(),
                              pages.typeFilter, 0x27f, pages.cancel, pages.limit, pages.sorted, result,
                              &pages.total, &pages.start, &count, &pages.teamIndex, &pages.teamCount, &list);
    });
    take(count, list, entries);
    return numbers;
}

Numbers Client::list(Pages pages, std::vector<Entry>& entries) const {
    for (;;) {
        const std::uint32_t before = pages.start + pages.teamIndex;
        const Numbers numbers = page(pages, entries);
        if (numbers.dwStatus != 0 || (numbers.result != 0 && numbers.result != -1)) return numbers;
        if (pages.start + pages.teamIndex == before) return kDone;
    }
}

Numbers Client::folders(const std::wstring& node, std::vector<Entry>& entries) const {
    std::uint32_t count = 0;
    _WFM_PATH_INFORMATION** list = nullptr;
    const Numbers numbers = numbersOf([&](std::uint32_t* result) {
        return WFMGetFolderList(context(), kServer, m_port, nullptr, 0x39, node.c_str(), nullptr, result,
                                &count, &list);
    });
    take(count, list, entries);
    return numbers;
}

Numbers Client::folder(const std::wstring& parent, const std::wstring& name, Entry* entry) const {
    auto record = std::make_unique<_WFM_PATH_INFORMATION>();
    const Numbers numbers = numbersOf([&](std::uint32_t* result) {
        return WFMGetFolderInformation(context(), kServer, m_port, nullptr, parent.c_str(), name.c_str(),
                                       0x39, false, nullptr, result, record.get());
    });
    if (entry != nullptr) *entry = entryOf(*record);
    return numbers;
}

Numbers Client::stat(const std::wstring& parent, const std::wstring& name, Entry* entry, std::uint32_t mask,
                     std::uint32_t typeFilter, bool serverSide) const {
    auto record = std::make_unique<_WFM_PATH_INFORMATION>();
    const Numbers numbers = numbersOf([&](std::uint32_t* result) {
        return WFMGetPathInformation(context(), kServer, m_port, nullptr, name.c_str(), parent.c_str(), mask,
                                     typeFilter, serverSide, nullptr, result, record.get());
    });
    if (entry != nullptr) *entry = entryOf(*record);
    return numbers;
}

Numbers Client::isDirectory(const std::wstring& path, bool& answer) const {
    return answerOf(answer, [&](std::uint32_t* result) {
        return WFMIsPathDirectory(context(), kServer, m_port, nullptr, path.c_str(), nullptr, result,
                                  &answer);
    });
}

Numbers Client::isPresent(const std::wstring& path, bool wantFolder, bool& answer) const {
    return answerOf(answer, [&](std::uint32_t* result) {
        return WFMIsPathPresent(context(), kServer, m_port, nullptr, path.c_str(), wantFolder, false, nullptr,
                                result, &answer);
    });
}

Numbers Client::folderSize(const std::wstring& parent, const std::wstring& name, std::int64_t& size) const {
    size = -1;
    return numbersOf([&](std::uint32_t* result) {
        return WFMGetFolderSize(context(), kServer, m_port, nullptr, name.c_str(), parent.c_str(), nullptr,
                                result, &size);
    });
}

Numbers Client::createFile(const std::wstring& path) const {
    return numbersOf([&](std::uint32_t* result) {
        return WFMCreateFile(context(), kServer, m_port, nullptr, path.c_str(), nullptr, result);
    });
}

Numbers Client::mayUpload(const std::wstring& folder, const std::wstring& name) const {
    return numbersOf([&](std::uint32_t* result) {
        return WFMTorviCheckPermission(context(), kServer, m_port, nullptr, folder.c_str(), name.c_str(),
                                       nullptr, result);
    });
}

Numbers Client::upload(const Upload& upload) const {
    const TempDir folder;
    QFile file(QString::fromStdString(folder.write("local name.bin", upload.bytes)));
    if (!file.open(QIODevice::ReadOnly)) throw std::runtime_error("the local file can't be opened");
    return numbersOf([&](std::uint32_t* result) {
        return upload.move
                   ? WFMTorviUploadandMovewithHandle(context(), kServer, m_port, nullptr, &file,
                                                     upload.to.c_str(), L"/home", upload.rename.c_str(),
                                                     file.size(), upload.time, upload.data, upload.callback,
                                                     upload.overwrite, nullptr, result)
                   : WFMUploadFilewithHandle(context(), kServer, m_port, nullptr, &file, upload.to.c_str(),
                                             upload.data, upload.callback, upload.overwrite, nullptr, result);
    });
}

Numbers Client::download(Download& download) const {
    const TempDir folder;
    QFile file(QString::fromStdString(folder.write("local name.bin", download.have)));
    const Numbers numbers = numbersOf([&](std::uint32_t* result) {
        return WFMDownloadFileToHandle(context(), kServer, m_port, nullptr, download.from.c_str(), &file,
                                       download.offset ? &*download.offset : nullptr,
                                       download.size ? &*download.size : nullptr, download.data,
                                       download.callback, nullptr, result);
    });
    download.bytes = folder.read("local name.bin");
    return numbers;
}

Numbers Client::download(const std::wstring& from, std::string& bytes) const {
    Download whole;
    whole.from = from;
    const Numbers numbers = download(whole);
    bytes = std::move(whole.bytes);
    return numbers;
}

std::uint32_t Client::logout() const {
    bool isSync = false;
    WFMGetUseNuboCGI(context(), &isSync);
    return (isSync ? TorviLogout : WFMLogout)(kServer, m_port, false, context());
}

std::wstring Client::sid() const {
    wchar_t text[260] = {};
    std::uint32_t capacity = 260;
    if (WFMGetSid(context(), &capacity, text) != 0) throw std::runtime_error("no session id");
    return text;
}

Nas::Options withArguments(std::vector<std::string> arguments) {
    Nas::Options options;
    options.arguments = std::move(arguments);
    return options;
}

std::uint16_t portOf(const Nas& nas, const Road& road) {
    return road.tls ? nas.tlsPort() : nas.port();
}

}  // namespace e2e
