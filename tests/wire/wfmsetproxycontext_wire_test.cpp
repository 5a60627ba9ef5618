#include <gtest/gtest.h>

#include <algorithm>

#include "loginargs.h"
#include "support/logcapture.h"
#include "support/proxy.h"
// What no request shows is read where it lies.
#include "../../src/core/authcontext.h"

using namespace wire;

namespace {

uint32_t setProxy(_WFM_AUTH_CONTEXT* session, uint32_t mode, const std::wstring& host,
                  const wchar_t* user = L"", const wchar_t* password = L"") {
    return WFMSetProxyContext(session, mode, 0, host.c_str(), L"", user, password);
}

uint32_t folderSize(_WFM_AUTH_CONTEXT* session, uint32_t port) {
    uint32_t result = 0;
    int64_t size = 0;
    return WFMGetFolderSize(session, kServer, port, L"", L"a", L"/home", nullptr, &result, &size);
}

Reply size() {
    return Reply::json(R"({"status":1,"size":"10"})");
}

bool isClear(const wchar_t (&field)[260], size_t from) {
    return std::all_of(field + from, field + 260, [](wchar_t character) { return character == L'\0'; });
}

}  // namespace

TEST(WFMSetProxyContextWire, ANullContextOrOneWithoutASidIsLeftAlone) {
    const SessionPtr session = makeSession();
    session->pszSid[0] = L'\0';
    LogCapture log;
    EXPECT_EQ(WFMSetProxyContext(nullptr, 2, 1, L"p:1", L"b", L"u", L"p"), 0u);
    EXPECT_EQ(WFMSetProxyContext(session.get(), 2, 1, L"p:1", L"b", L"u", L"p"), 0u);
    EXPECT_EQ(session->dwProxyMode, 0u);
    EXPECT_EQ(session->dwProxyFlags, 0u);
    for (const auto* field :
         {&session->szProxyHost, &session->szProxyBypass, &session->szProxyUser, &session->szProxyPassword})
        EXPECT_TRUE(isClear(*field, 0));
    log.expectNoLines();
}

TEST(WFMSetProxyContextWire, KeepsEachValueInItsPlaceAndTheLastOneCounts) {
    const SessionPtr session = makeSession();
    EXPECT_EQ(WFMSetProxyContext(session.get(), 2, 0xFFFFFFFF, L"p\x4E2D:1", L"local", L"pu", L"pp"), 0u);
    EXPECT_EQ(session->dwProxyMode, 2u);
    EXPECT_EQ(session->dwProxyFlags, 0xFFFFFFFFu);
    EXPECT_STREQ(session->szProxyHost, L"p\x4E2D:1");
    EXPECT_STREQ(session->szProxyBypass, L"local");
    EXPECT_STREQ(session->szProxyUser, L"pu");
    EXPECT_STREQ(session->szProxyPassword, L"pp");

    EXPECT_EQ(WFMSetProxyContext(session.get(), 1, 7, L"x", L"", L"y", L""), 0u);
    EXPECT_EQ(session->dwProxyMode, 1u);
    EXPECT_EQ(session->dwProxyFlags, 7u);
    EXPECT_STREQ(session->szProxyHost, L"x");
    EXPECT_TRUE(isClear(session->szProxyHost, 1));
    EXPECT_TRUE(isClear(session->szProxyBypass, 0));
    EXPECT_STREQ(session->szProxyUser, L"y");
    EXPECT_TRUE(isClear(session->szProxyUser, 1));
    EXPECT_TRUE(isClear(session->szProxyPassword, 0));
}

TEST(WFMSetProxyContextWire, CutsItsTextsAt259) {
    const SessionPtr session = makeSession();
    const std::wstring longest(259, L'a'), longer(260, L'b'), huge(100000, L'c');
    EXPECT_EQ(WFMSetProxyContext(session.get(), 2, 0, longest.c_str(), longer.c_str(), huge.c_str(),
                                 longer.c_str()),
              0u);
    EXPECT_EQ(session->szProxyHost, longest);
    EXPECT_EQ(session->szProxyBypass, std::wstring(259, L'b'));
    EXPECT_EQ(session->szProxyUser, std::wstring(259, L'c'));
    EXPECT_EQ(session->szProxyPassword, std::wstring(259, L'b'));
}

TEST(WFMSetProxyContextWire, TheNextRequestGoesThroughTheProxy) {
    if (!TinyProxy::installed()) GTEST_SKIP() << "tinyproxy isn't installed";
    const TinyProxy proxy("pu", "pp");
    const RawServer server({size()});
    const SessionPtr session = makeSession();
    LogCapture log;
    setProxy(session.get(), 2, proxy.hostAndPort(), L"pu", L"pp");
    EXPECT_EQ(folderSize(session.get(), server.port()), 0u);
    EXPECT_TRUE(proxy.waitForLog("func=properties"));
    log.expectNoLines();

    setProxy(session.get(), 2, proxy.hostAndPort(), L"pu", L"wrong");
    EXPECT_EQ(folderSize(session.get(), server.port()), 11u);
    setProxy(session.get(), 2, proxy.hostAndPort());
    EXPECT_EQ(folderSize(session.get(), server.port()), 11u);
    EXPECT_EQ(server.requestCount(), 1u);
}

TEST(WFMSetProxyContextWire, Mode2IsTheOnlyOneThatUsesTheHost) {
    const RefusedPort nobody;
    const std::wstring host = L"127.0.0.1:" + std::to_wstring(nobody.port());
    const RawServer server({size()});
    const SessionPtr session = makeSession();
    for (const auto& [mode, dwStatus] : {std::pair{0U, 0U}, {1U, 0U}, {2U, 2U}}) {
        setProxy(session.get(), mode, host);
        EXPECT_EQ(folderSize(session.get(), server.port()), dwStatus) << mode;
    }
    EXPECT_EQ(server.requestCount(), 2u);
}

TEST(WFMSetProxyContextWire, ACloneTakesTheProxyAlong) {
    const SessionPtr session = makeSession();
    WFMSetProxyContext(session.get(), 2, 5, L"p:1", L"local", L"pu", L"pp");
    _WFM_AUTH_CONTEXT* made = nullptr;
    ASSERT_EQ(WFMCloneAuthContext(session.get(), &made), 1u);
    const SessionPtr clone(made);
    EXPECT_EQ(clone->dwProxyMode, 2u);
    EXPECT_EQ(clone->dwProxyFlags, 5u);
    EXPECT_STREQ(clone->szProxyBypass, L"local");
}
