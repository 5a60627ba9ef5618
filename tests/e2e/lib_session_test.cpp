#include "lib_support.h"

using namespace e2e;

namespace {

class LibSession : public LibRoad {};
class LibLogin : public testing::TestWithParam<Road> {
protected:
    Login loginTo(const Nas& nas) {
        Login login;
        login.road = GetParam();
        login.port = portOf(nas, GetParam());
        return login;
    }
};

/// Every call once, on what the server's home has.
std::vector<std::pair<std::string, Numbers>> everyCall(const Client& client) {
    std::vector<Entry> entries;
    bool answer = false;
    std::int64_t size = 0;
    Pages pages;
    Upload plain{"bytes", L"/home/new"};
    Upload moved = plain;
    moved.move = true;
    Download known{L"/home/a.txt"};
    known.size = 5;
    Download unknown{L"/home/a.txt"};
    return {{"list", client.page(pages, entries)},
            {"folders", client.folders(L"/home", entries)},
            {"folder", client.folder(L"/home", L"d")},
            {"stat", client.stat(L"/home", L"a.txt")},
            {"isDirectory", client.isDirectory(L"/home/d", answer)},
            {"isPresent", client.isPresent(L"/home/a.txt", false, answer)},
            {"folderSize", client.folderSize(L"/home", L"d", size)},
            {"createFile", client.createFile(L"/home/e")},
            {"upload", client.upload(plain)},
            {"uploadAndMove", client.upload(moved)},
            {"mayUpload", client.mayUpload(L"/home", L"x")},
            {"download", client.download(known)},
            {"downloadOfAnySize", client.download(unknown)}};
}

}  // namespace

TEST_P(LibSession, TheRightPasswordOpensASessionThatServesEveryCallUntilTheLogout) {
    put("a.txt", "bytes");
    put("d/b.txt", "more");
    for (const auto& [call, numbers] : everyCall(client)) EXPECT_EQ(numbers, kDone) << call;
    EXPECT_EQ(client.logout(), 0u);
    EXPECT_EQ(client.stat(L"/home", L"a.txt"), (Numbers{0, -1}));
    EXPECT_EQ(client.logout(), 14u);
    EXPECT_EQ(nas.requestCount("refused"), 0) << nas.log();
}

TEST_P(LibSession, AnEndedSessionShowsInEachCallsOwnWay) {
    put("a.txt", "bytes");
    put("d/b.txt", "more");
    nas.expireSessions();
    const std::map<std::string, Numbers> expected = {{"list", {0, 18}},
                                                     {"folders", {0, 1244}},
                                                     {"folder", {0, 3}},
                                                     {"stat", {0, -1}},
                                                     {"isDirectory", {0, -1}},
                                                     {"isPresent", {0, -1}},
                                                     {"folderSize", {0, -1}},
                                                     {"createFile", {0, -1}},
                                                     {"upload", {0, -1}},
                                                     {"uploadAndMove", {0, -29}},
                                                     {"mayUpload", {0, 0}},
                                                     {"download", {0, 13}},
                                                     {"downloadOfAnySize", {0, -1}}};
    for (const auto& [call, numbers] : everyCall(client)) EXPECT_EQ(numbers, expected.at(call)) << call;
    EXPECT_EQ(client.logout(), 14u);
    EXPECT_FALSE(std::filesystem::exists(onDisk("new")));
    EXPECT_FALSE(std::filesystem::exists(onDisk("e")));
}

TEST_P(LibSession, TwoUsersSeeTheirOwnHomes) {
    put("a.txt", "anna's");
    const Client ben(nas, GetParam(), L"ben", L"hidden");
    EXPECT_EQ(client.stat(L"/home", L"a.txt"), kDone);
    EXPECT_EQ(ben.stat(L"/home", L"a.txt"), (Numbers{0, 3}));
    EXPECT_EQ(ben.upload({"ben's", L"/home/a.txt"}), kDone);
    std::string bytes;
    EXPECT_EQ(client.download(L"/home/a.txt", bytes), kDone);
    EXPECT_EQ(bytes, "anna's");
    EXPECT_EQ(nas.folder().read("homes/ben/a.txt"), "ben's");
}

TEST_P(LibLogin, TellsTheServersNameAndWhoIsAnAdministrator) {
    Nas nas(withArguments({"--server-name", "Büro 書類"}));
    Login anna = loginTo(nas), ben = loginTo(nas);
    ben.user = L"ben";
    ben.password = L"hidden";
    EXPECT_EQ(anna.run(), kDone);
    EXPECT_EQ(ben.run(), kDone);
    EXPECT_EQ(utf8(anna.serverName), "Büro 書類");
    EXPECT_TRUE(anna.isAdmin);
    EXPECT_FALSE(ben.isAdmin);
    EXPECT_NE(anna.session, nullptr);
    if (GetParam().service == Service::FileManager) return;
    EXPECT_FALSE(anna.isSlave);
    EXPECT_EQ(utf8(anna.network.szLocalIP), "127.0.0.1");
    EXPECT_EQ(anna.network.nPort, nas.port());
    EXPECT_EQ(anna.network.nSslPort, nas.tlsPort());
}

TEST_P(LibLogin, EachLoginHasASessionOfItsOwnThatKnowsItsService) {
    Nas nas;
    const Client one(nas, GetParam()), two(nas, GetParam());
    EXPECT_EQ(one.sid().size(), 32u);
    EXPECT_NE(one.sid(), two.sid());
    bool isSync = GetParam().service == Service::FileManager;
    EXPECT_EQ(WFMGetUseNuboCGI(one.context(), &isSync), 0u);
    EXPECT_EQ(isSync, GetParam().service != Service::FileManager);
    EXPECT_EQ(one.logout(), 0u);
    EXPECT_EQ(one.stat(L"/home", L"a"), (Numbers{0, -1}));
    EXPECT_EQ(two.stat(L"/home", L"a"), (Numbers{0, 3}));
}

TEST_P(LibLogin, AWrongPasswordOrUserIsRefusedWithItsCodeAndNoContext) {
    Nas nas;
    const std::pair<const wchar_t*, const wchar_t*> rows[] = {
        {L"anna", L"Secret"}, {L"anna", L""}, {L"nobody", L"secret"}, {L"anna", L"秘密😀"}};
    for (const auto& [user, password] : rows) {
        Login login = loginTo(nas);
        login.user = user;
        login.password = password;
        EXPECT_EQ(login.run(), (Numbers{14, -29})) << utf8(user) << " " << utf8(password);
        EXPECT_EQ(login.session, nullptr);
        EXPECT_EQ(login.serverName, L"");
        EXPECT_FALSE(login.isAdmin);
    }
    EXPECT_EQ(nas.requestCount("login"), 4);
}

TEST_P(LibLogin, APasswordOfAnyScriptArrivesWhole) {
    Nas::Options options;
    options.users = {"anna:p w+%&\"秘密😀"};
    Nas nas(options);
    Login login = loginTo(nas);
    login.password = wide("p w+%&\"秘密😀");
    EXPECT_EQ(login.run(), kDone);
}

TEST_P(LibLogin, AServerWithoutTheServiceIsToldApart) {
    Nas nas(withArguments({GetParam().service == Service::Fcgi ? "--no-fcgi" : "--no-sync-service"}));
    const bool isThere = GetParam().service == Service::FileManager;
    EXPECT_EQ(loginTo(nas).run(), (isThere ? kDone : Numbers{10, -1}));
}

TEST_P(LibLogin, AServerThatIsGoneIsNotConnected) {
    Nas nas;
    Login login = loginTo(nas);
    nas.stop();
    EXPECT_EQ(login.run(), (Numbers{2, -1}));
}

TEST_P(LibLogin, TheVersionNeedsNoSession) {
    Nas nas(withArguments({"--server-version", "5.2.1", "--server-build", "b 7"}));
    auto version = std::make_unique<_WFM_VERSION_INFORMATION>();
    std::uint32_t result = 0xABCD;
    EXPECT_EQ(WFMGetVersion(L"127.0.0.1", portOf(nas, GetParam()), nullptr, GetParam().tls, 0, nullptr,
                            nullptr, nullptr, nullptr, 0, &result, version.get()),
              0u);
    EXPECT_EQ(result, 0u);
    EXPECT_EQ(utf8(version->szVersion), "5.2.1");
    EXPECT_EQ(utf8(version->szBuildNumber), "b 7");
    EXPECT_EQ(nas.requestCount("version"), 1);
}

TEST_P(LibLogin, TheOtherKindOfPortEndsWithTheTimeOutAtTheLatest) {
    Nas nas;
    Login login = loginTo(nas);
    login.port = GetParam().tls ? nas.port() : nas.tlsPort();
    login.timeoutMs = 300;
    const Numbers numbers = login.run();
    EXPECT_NE(numbers.dwStatus, 0u);
    EXPECT_EQ(numbers.result, -1);
    EXPECT_EQ(login.session, nullptr);
}

E2E_ON_ALL_ROADS(LibSession);
E2E_ON_ALL_ROADS(LibLogin);
