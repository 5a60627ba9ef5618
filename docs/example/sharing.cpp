// Lists users, team folders and shares, and frees what the library has allocated for them: there are no
// functions for that, but plain delete.
#include <WebFileManShareAPI.h>

#include <QtCore/QCoreApplication>
#include <cstdio>
#include <vector>

namespace {

constexpr const wchar_t* kServer = L"127.0.0.1";
constexpr uint32_t kPort = 8080;

// Zeroed records of ours, and the pointers to them that a list wants.
template <class Record>
struct List {
    explicit List(uint32_t size) : records(size) {
        for (Record& record : records) pointers.push_back(&record);
    }
    std::vector<Record> records;
    std::vector<Record*> pointers;
};

// A call is done if both its numbers are 0. Only then is there something in its records.
bool failed(const char* what, uint32_t status, uint32_t word) {
    if (status == 0 && word == 0) return false;
    std::fprintf(stderr, "%s: %u, %u\n", what, status, word);
    return true;
}

void listUsers(_WFM_AUTH_CONTEXT* session) {
    uint32_t word = 0, total = 0, count = 100;
    List<_WFM_USER_INFORMATION> users(count);
    const uint32_t status =
        WebFileManGetUserList(session, kServer, kPort, 1, nullptr, nullptr, nullptr, 0, count, true, false,
                              nullptr, &word, &total, &count, users.pointers.data());
    if (failed("users", status, word)) return;
    for (uint32_t i = 0; i < count; ++i) {
        const wchar_t* description = users.records[i].pszDescription;
        std::printf("user %ls (%ls)\n", users.records[i].szName, description ? description : L"-");
    }
    // The records are ours, the descriptions were the library's.
    for (_WFM_USER_INFORMATION& user : users.records) delete[] user.pszDescription;
}

void listTeamFolders(_WFM_AUTH_CONTEXT* session) {
    uint32_t word = 0, total = 0, count = 20;
    List<_WFM_TORVI_TEAM_FOLDER_INFORMATION> folders(count);
    // Type 0: whatever the server has.
    const uint32_t status =
        WebFileManNuboGetTeamFolder(session, kServer, kPort, 0, nullptr, nullptr, 0, count, 0, &total, &count,
                                    folders.pointers.data(), &word);
    if (failed("team folders", status, word)) return;
    for (_WFM_TORVI_TEAM_FOLDER_INFORMATION& folder : folders.records) {
        // The records are ours, their receivers and the arrays of them were the library's.
        for (uint32_t i = 0; i < folder.dwReceiverCount; ++i) {
            std::printf("team folder %ls for %ls\n", folder.szName, folder.lppReceivers[i]->szName);
            delete folder.lppReceivers[i];
        }
        delete[] folder.lppReceivers;
    }
}

void listShares(_WFM_AUTH_CONTEXT* session) {
    uint32_t word = 0, count = 0;
    _WFM_TORVI_SHARE_INFORMATION** shares = nullptr;
    const uint32_t status =
        WFMTorviFindShare(session, kServer, kPort, L"/home", 0, 100, &word, &count, &shares);
    if (failed("shares", status, word)) return;
    // All of it was the library's, and none of it is there if no share was found.
    for (uint32_t i = 0; i < count; delete shares[i++]) std::printf("share %ls\n", shares[i]->szFile);
    delete[] shares;
}

}  // namespace

int main(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    wchar_t name[260] = {};
    bool isAdmin, isSlave;
    uint32_t word = 0;
    _WFM_AUTH_CONTEXT* session = nullptr;
    const uint32_t status = TorviLogin(kServer, kPort, L"ann", L"secret", false, L"my-pc", L"my-pc-1",
                                       L"example", 0, 260, 0, nullptr, nullptr, nullptr, nullptr, L"1.0", 0,
                                       nullptr, false, name, &isAdmin, &isSlave, &word, &session, 0, nullptr);
    if (failed("login", status, word)) return 1;
    listUsers(session);
    listTeamFolders(session);
    listShares(session);
    TorviLogout(kServer, kPort, false, session);
    WFMFreeAuthContext(session);
}
