#include <gtest/gtest.h>

#include <algorithm>

#include "support/logcapture.h"
#include "support/session.h"
// What no request shows is read where it lies.
#include "../../src/core/authcontext.h"

using namespace wire;

namespace {

SessionPtr withProxy(uint32_t mode, const wchar_t* host, const wchar_t* bypass, uint32_t flags = 5) {
    SessionPtr session = makeSession();
    WFMSetProxyContext(session.get(), mode, flags, host, bypass, L"own user", L"own password");
    return session;
}

_WFM_AUTO_PROXY_INFORMATION strange() {
    _WFM_AUTO_PROXY_INFORMATION information;
    information.dwReserved = 77;
    information.dwProxyFlags = 88;
    for (auto* field : {&information.szProxyHost, &information.szProxyBypass})
        std::fill(std::begin(*field), std::end(*field), L'#');
    return information;
}

}  // namespace

TEST(WFMSetAutoProxyContextWire, ANullContextIs1AndNothingIsDone) {
    const SessionPtr session = withProxy(1, L"p:1", L"b");
    _WFM_AUTO_PROXY_INFORMATION information = strange();
    LogCapture log;
    EXPECT_EQ(WFMSetAutoProxyContext(nullptr, session.get(), &information), 1u);
    EXPECT_EQ(WFMSetAutoProxyContext(session.get(), nullptr, &information), 1u);
    EXPECT_EQ(WFMSetAutoProxyContext(nullptr, nullptr, &information), 1u);
    EXPECT_EQ(WFMSetAutoProxyContext(nullptr, nullptr, nullptr), 1u);
    EXPECT_STREQ(session->szProxyHost, L"p:1");
    EXPECT_EQ(information.dwProxyFlags, 88u);
    EXPECT_EQ(information.szProxyHost[0], L'#');
    log.expectNoLines();
}

TEST(WFMSetAutoProxyContextWire, UnlessBothTakeTheSystemsProxyItIs0AndNothingIsDone) {
    for (const auto& [to, from] :
         {std::pair{0U, 1U}, {2U, 1U}, {1U, 0U}, {1U, 2U}, {0U, 0U}, {2U, 2U}, {3U, 1U}}) {
        const SessionPtr destination = withProxy(to, L"old:1", L"old");
        const SessionPtr source = withProxy(from, L"new:1", L"new", 9);
        _WFM_AUTO_PROXY_INFORMATION information = strange();
        EXPECT_EQ(WFMSetAutoProxyContext(destination.get(), source.get(), &information), 0u);
        EXPECT_STREQ(destination->szProxyHost, L"old:1");
        EXPECT_STREQ(destination->szProxyBypass, L"old");
        EXPECT_EQ(information.dwProxyFlags, 88u);
        EXPECT_EQ(information.szProxyHost[0], L'#');
        EXPECT_EQ(information.szProxyBypass[0], L'#');
    }
}

TEST(WFMSetAutoProxyContextWire, HandsOnHostAndBypassAlone) {
    const SessionPtr destination = withProxy(1, L"old:1", L"old", 5);
    SessionPtr source = makeSession();
    WFMSetProxyContext(source.get(), 1, 9, L"new:1", L"new", L"user", L"password");
    _WFM_AUTO_PROXY_INFORMATION information = strange();
    LogCapture log;
    EXPECT_EQ(WFMSetAutoProxyContext(destination.get(), source.get(), &information), 1u);
    log.expectNoLines();
    EXPECT_STREQ(destination->szProxyHost, L"new:1");
    EXPECT_STREQ(destination->szProxyBypass, L"new");
    EXPECT_EQ(destination->dwProxyMode, 1u);
    EXPECT_EQ(destination->dwProxyFlags, 5u);
    EXPECT_STREQ(destination->szProxyUser, L"own user");
    EXPECT_STREQ(destination->szProxyPassword, L"own password");
    EXPECT_EQ(information.dwReserved, 77u);
    EXPECT_EQ(information.dwProxyFlags, 9u);
    EXPECT_STREQ(information.szProxyHost, L"new:1");
    EXPECT_STREQ(information.szProxyBypass, L"new");
}

TEST(WFMSetAutoProxyContextWire, EmptyTextsLeaveTheDestinationsAsTheyAre) {
    const SessionPtr destination = withProxy(1, L"old:1", L"old");
    const SessionPtr source = withProxy(1, L"", L"");
    EXPECT_EQ(WFMSetAutoProxyContext(destination.get(), source.get(), nullptr), 1u);
    EXPECT_STREQ(destination->szProxyHost, L"old:1");
    EXPECT_STREQ(destination->szProxyBypass, L"old");
}

TEST(WFMSetAutoProxyContextWire, EachTextIsHandedOnByItself) {
    const std::pair<const wchar_t*, const wchar_t*> rows[] = {{L"new:1", L""}, {L"", L"new"}, {L"", L""}};
    for (const auto& [host, bypass] : rows) {
        const SessionPtr destination = withProxy(1, L"old:1", L"old");
        const SessionPtr source = withProxy(1, host, bypass);
        _WFM_AUTO_PROXY_INFORMATION information = strange();
        EXPECT_EQ(WFMSetAutoProxyContext(destination.get(), source.get(), &information), 1u);
        EXPECT_STREQ(destination->szProxyHost, *host != L'\0' ? host : L"old:1");
        EXPECT_STREQ(destination->szProxyBypass, *bypass != L'\0' ? bypass : L"old");
        EXPECT_STREQ(information.szProxyHost, host);
        EXPECT_STREQ(information.szProxyBypass, bypass);
    }
}

TEST(WFMSetAutoProxyContextWire, TheLongestTextsFit) {
    const std::wstring host(259, L'h'), bypass(259, L'b');
    const SessionPtr destination = withProxy(1, L"old:1", L"old");
    const SessionPtr source = withProxy(1, host.c_str(), bypass.c_str());
    _WFM_AUTO_PROXY_INFORMATION information = strange();
    EXPECT_EQ(WFMSetAutoProxyContext(destination.get(), source.get(), &information), 1u);
    EXPECT_EQ(destination->szProxyHost, host);
    EXPECT_EQ(destination->szProxyBypass, bypass);
    EXPECT_EQ(information.szProxyHost, host);
    EXPECT_EQ(information.szProxyBypass, bypass);
}

TEST(WFMSetAutoProxyContextWire, ASessionMayHandOnToItself) {
    const SessionPtr session = withProxy(1, L"p:1", L"b");
    EXPECT_EQ(WFMSetAutoProxyContext(session.get(), session.get(), nullptr), 1u);
    EXPECT_STREQ(session->szProxyHost, L"p:1");
    EXPECT_STREQ(session->szProxyBypass, L"b");
}
