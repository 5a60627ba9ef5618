#pragma once

#include <gtest/gtest.h>

#include <string>

#include "WebFileManAPI.h"
#include "support/proxy.h"
#include "support/wire.h"

namespace wire {

/// A real proxy that knows "pu" with "pp" alone, and the logins and sessions that go through it.
class LoginProxy {
public:
    template <typename Arguments>
    void lead(Arguments& call, const wchar_t* password = L"pp") const {
        call.proxyMode = 2;
        call.proxyHost = m_host.c_str();
        call.proxyUser = L"pu";
        call.proxyPassword = password;
    }
    bool passedOn(const std::string& cgi) const { return m_proxy.waitForLog(cgi); }

private:
    TinyProxy m_proxy{"pu", "pp"};
    std::wstring m_host = m_proxy.hostAndPort();
};

using EndSession = decltype(WFMLogout);

/// A session that was made through a proxy ends through it as well.
template <typename Login>
void expectSessionKeepsItsProxy(const char* good, const char* loginCgi, EndSession* end, const char* endCgi) {
    if (!TinyProxy::installed()) GTEST_SKIP() << "tinyproxy isn't installed";
    const LoginProxy proxy;
    const RawServer server({Reply::json(good), Reply::json(R"({"status":1,"success":"true"})")});
    Login login(server);
    proxy.lead(login);
    ASSERT_EQ(login.run(), 0u);
    EXPECT_EQ(end(kServer, server.port(), true, login.made), 0u);
    EXPECT_EQ(server.requestCount(), 2u);
    EXPECT_TRUE(proxy.passedOn(loginCgi));
    EXPECT_TRUE(proxy.passedOn(endCgi));
}

}  // namespace wire
