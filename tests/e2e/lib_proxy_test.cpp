#include "lib_login.h"
#include "support/proxy.h"
#include "support/systemproxy.h"

using namespace e2e;

namespace {

class LibProxy : public testing::TestWithParam<Road> {
protected:
    Login loginWith(const std::wstring& user, const std::wstring& password) {
        Login login;
        login.road = GetParam();
        login.port = portOf(nas, GetParam());
        login.proxyMode = 2;
        login.proxyHost = proxy.hostAndPort();
        login.proxyUser = user;
        login.proxyPassword = password;
        return login;
    }

    Nas nas;
    TinyProxy proxy{"jo", "letmein"};
};

}  // namespace

TEST_P(LibProxy, WithTheRightCredentialsEveryCallGoesThrough) {
    const Client client(loginWith(L"jo", L"letmein"));
    const std::string bytes = randomBytes(1 << 20);
    EXPECT_EQ(client.upload({bytes, L"/home/a b"}), kDone);
    Upload moved{bytes, L"/home/書類"};
    moved.move = true;
    EXPECT_EQ(client.upload(moved), kDone);
    EXPECT_EQ(client.createFile(L"/home/new"), kDone);
    std::vector<Entry> entries;
    EXPECT_EQ(client.list({}, entries), kDone);
    EXPECT_THAT(names(entries), testing::UnorderedElementsAre("a b", "書類", "new"));
    std::string back;
    EXPECT_EQ(client.download(L"/home/書類", back), kDone);
    EXPECT_TRUE(back == bytes);
    std::int64_t size = 0;
    std::filesystem::create_directory(nas.folder().file("homes/anna/d"));
    EXPECT_EQ(client.folderSize(L"/home", L"d", size), kDone);
    EXPECT_EQ(client.mayUpload(L"/home", L"x"), kDone);
    // A clone keeps the proxy.
    EXPECT_EQ(client.clone().stat(L"/home", L"new"), kDone);
    EXPECT_EQ(client.logout(), 0u);
    EXPECT_TRUE(proxy.waitForLog(GetParam().tls ? "CONNECT 127.0.0.1:" + std::to_string(nas.tlsPort())
                                                : "POST http://127.0.0.1:" + std::to_string(nas.port())));
    EXPECT_EQ(nas.requestCount("refused"), 0) << nas.log();
}

TEST_P(LibProxy, WithWrongOrNoCredentialsTheProxyIsToBlame) {
    for (const auto& [user, password] :
         {std::pair(L"jo", L"wrong"), std::pair(L"al", L"letmein"), std::pair(L"", L"")}) {
        Login login = loginWith(user, password);
        EXPECT_EQ(login.run(), (Numbers{11, -1})) << utf8(user);
        EXPECT_EQ(login.session, nullptr);
    }
    EXPECT_EQ(nas.requestCount(), 0);
}

TEST_P(LibProxy, ASessionChangesItsProxyFromCallToCall) {
    const Client client(nas, GetParam()), copy = client.clone();
    const auto useProxy = [&](std::uint32_t mode, const wchar_t* user, const wchar_t* password) {
        EXPECT_EQ(
            WFMSetProxyContext(client.context(), mode, 0, proxy.hostAndPort().c_str(), L"", user, password),
            0u);
    };
    EXPECT_EQ(client.createFile(L"/home/direct"), kDone);
    EXPECT_EQ(proxy.log().find("Request"), std::string::npos) << proxy.log();
    useProxy(2, L"jo", L"letmein");
    EXPECT_EQ(client.createFile(L"/home/through"), kDone);
    EXPECT_TRUE(proxy.waitForLog(GetParam().tls ? "CONNECT 127.0.0.1:" : "POST http://127.0.0.1:"));
    useProxy(2, L"jo", L"wrong");
    nas.forgetRequests();
    EXPECT_EQ(client.createFile(L"/home/refused"), (Numbers{11, -1}));
    EXPECT_EQ(nas.requestCount(), 0);
    // The clone has kept what it was made with.
    EXPECT_EQ(copy.createFile(L"/home/copy"), kDone);
    useProxy(0, L"jo", L"wrong");
    EXPECT_EQ(client.createFile(L"/home/again"), kDone);
    EXPECT_EQ(client.logout(), 0u);
}

TEST_P(LibProxy, TheSystemsProxyServesASessionThatUsesIt) {
    const Client client(nas, GetParam());
    EXPECT_EQ(WFMSetProxyContext(client.context(), 1, 0, L"", L"", L"", L""), 0u);
    const SystemProxy system(proxy.port(), "jo", "letmein");
    // This machine, by an address for which the system's proxy isn't left out.
    EXPECT_EQ(numbersOf([&](std::uint32_t* result) {
                  return WFMCreateFile(client.context(), L"0.0.0.0", client.port(), nullptr, L"/home/a",
                                       nullptr, result);
              }),
              kDone);
    EXPECT_TRUE(std::filesystem::exists(nas.folder().file("homes/anna/a")));
    EXPECT_TRUE(proxy.waitForLog(GetParam().tls ? "CONNECT 0.0.0.0:" : "POST http://0.0.0.0:"));
}

TEST_P(LibProxy, AProxyFoundForOneSessionIsHandedToAnother) {
    const Client one(nas, GetParam()), two(nas, GetParam());
    _WFM_AUTO_PROXY_INFORMATION found = {};
    EXPECT_EQ(WFMSetAutoProxyContext(two.context(), one.context(), &found), 0u);
    EXPECT_EQ(WFMSetProxyContext(two.context(), 1, 3, L"", L"", L"", L""), 0u);
    EXPECT_EQ(WFMSetProxyContext(one.context(), 1, 5, proxy.hostAndPort().c_str(), L"*.local", L"", L""), 0u);
    EXPECT_EQ(WFMSetAutoProxyContext(two.context(), one.context(), &found), 1u);
    EXPECT_EQ(found.dwProxyFlags, 5u);
    EXPECT_EQ(found.szProxyHost, proxy.hostAndPort());
    EXPECT_STREQ(found.szProxyBypass, L"*.local");
    EXPECT_EQ(WFMAutoProxyContextUpdate(two.context()), 0u);
    EXPECT_EQ(WFMSetProxyContext(two.context(), 2, found.dwProxyFlags, found.szProxyHost, found.szProxyBypass,
                                 L"jo", L"letmein"),
              0u);
    EXPECT_EQ(two.createFile(L"/home/a"), kDone);
    EXPECT_TRUE(proxy.waitForLog(GetParam().tls ? "CONNECT 127.0.0.1:" : "POST http://127.0.0.1:"));
}

TEST_P(LibProxy, ASessionFromATokenKeepsTheProxyThatItCameThrough) {
    const Client client(nas, GetParam());
    Activation activation;
    activation.port = client.port();
    activation.tls = GetParam().tls;
    activation.token = client.sid();
    activation.proxyMode = 2;
    activation.proxyHost = proxy.hostAndPort();
    activation.proxyUser = L"jo";
    activation.proxyPassword = L"wrong";
    nas.forgetRequests();
    EXPECT_EQ(activation.run(), (Numbers{11, -1}));
    EXPECT_EQ(activation.session, nullptr);
    EXPECT_EQ(nas.requestCount(), 0);
    activation.proxyPassword = L"letmein";
    EXPECT_EQ(activation.run(), kDone);
    const Client again(activation.port, std::move(activation.session));
    EXPECT_EQ(again.createFile(L"/home/a"), kDone);
    EXPECT_TRUE(proxy.waitForLog(GetParam().tls ? "CONNECT 127.0.0.1:" : "POST http://127.0.0.1:"));
}

TEST_P(LibProxy, AProxyThatIsGoneIsNotConnected) {
    const Client client(nas, GetParam());
    const std::wstring gone = L"127.0.0.1:" + std::to_wstring(wire::freePort());
    EXPECT_EQ(WFMSetProxyContext(client.context(), 2, 0, gone.c_str(), L"", L"", L""), 0u);
    EXPECT_EQ(client.createFile(L"/home/a"), (Numbers{2, -1}));
    EXPECT_FALSE(std::filesystem::exists(nas.folder().file("homes/anna/a")));
}

TEST_P(LibProxy, AServerThatIsGoneIsNotTheProxysFault) {
    Login login = loginWith(L"jo", L"letmein");
    nas.stop();
    const Numbers numbers = login.run();
    EXPECT_NE(numbers.dwStatus, 0u);
    EXPECT_NE(numbers.dwStatus, 11u);
    EXPECT_EQ(numbers.result, -1);
}

E2E_ON_ALL_ROADS(LibProxy);
