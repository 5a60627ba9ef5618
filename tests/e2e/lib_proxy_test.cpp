#include "lib_support.h"
#include "support/proxy.h"

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

TEST_P(LibProxy, AServerThatIsGoneIsNotTheProxysFault) {
    Login login = loginWith(L"jo", L"letmein");
    nas.stop();
    const Numbers numbers = login.run();
    EXPECT_NE(numbers.dwStatus, 0u);
    EXPECT_NE(numbers.dwStatus, 11u);
    EXPECT_EQ(numbers.result, -1);
}

E2E_ON_ALL_ROADS(LibProxy);
