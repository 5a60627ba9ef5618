#include <gtest/gtest.h>

#include <vector>

// The record's content shows in what calls do; what a clone holds is read where it lies.
#include "../../src/core/authcontext.h"
#include "support/logcapture.h"
#include "support/session.h"
#include "support/wire.h"

using namespace wire;

namespace {

wchar_t* text(const wchar_t* literal) {
    return const_cast<wchar_t*>(literal);
}

/// Three lists as a caller gives them.
struct Lists {
    std::vector<wchar_t*> ori{text(L"/home/.Torvi/A/"), text(L"/home/.Torvi/B/"), text(L"/home/.Torvi/C/")};
    std::vector<wchar_t*> team{text(L"vtf://a/"), text(L"vtf://b/"), text(L"vtf://c/")};
    std::vector<wchar_t*> slaves{text(L"n1"), text(L"n2"), text(L"n3")};

    uint32_t give(_WFM_AUTH_CONTEXT* context, bool withSlaves = true) {
        return WFMUpdateTeamFolderInfo(context, 3, ori.data(), team.data(),
                                       withSlaves ? slaves.data() : nullptr);
    }
};

SessionPtr nodeSession() {
    SessionOptions options;
    options.slaveID = "node0";
    return makeSession(options);
}

void expectEmptyLists(const _WFM_AUTH_CONTEXT& context) {
    EXPECT_EQ(context.nTeamFolderCount, 0);
    EXPECT_EQ(context.lppOriPathList, nullptr);
    EXPECT_EQ(context.lppTeamFolderPathList, nullptr);
    EXPECT_EQ(context.lppTeamFolderSlaveIDList, nullptr);
}

}  // namespace

TEST(AuthContextWire, FreeingNullIsNothing) {
    EXPECT_EQ(WFMFreeAuthContext(nullptr), 0u);
}

TEST(AuthContextWire, UseNuboCgiTellsTheService) {
    const SessionPtr session = makeSession();
    bool sync = false;
    EXPECT_EQ(WFMGetUseNuboCGI(session.get(), &sync), 0u);
    EXPECT_TRUE(sync);
    useFileManager(*session);
    EXPECT_EQ(WFMGetUseNuboCGI(session.get(), &sync), 0u);
    EXPECT_FALSE(sync);
}

TEST(AuthContextWire, TheGettersRefuseNullWith87AndTheirLines) {
    const SessionPtr session = makeSession();
    bool sync = false;
    uint32_t capacity = 10;
    uint32_t none = 0;
    wchar_t buffer[10];
    LogCapture log;
    EXPECT_EQ(WFMGetUseNuboCGI(nullptr, &sync), 87u);
    EXPECT_EQ(WFMGetUseNuboCGI(session.get(), nullptr), 87u);
    EXPECT_EQ(WFMGetSlaveID(nullptr, &capacity, buffer), 87u);
    EXPECT_EQ(WFMGetSlaveID(session.get(), nullptr, buffer), 87u);
    EXPECT_EQ(WFMGetSlaveID(session.get(), &none, buffer), 87u);
    EXPECT_EQ(WFMGetSlaveID(session.get(), &capacity, nullptr), 87u);
    EXPECT_EQ(WFMGetSid(nullptr, &capacity, buffer), 87u);
    EXPECT_EQ(WFMGetSid(session.get(), &none, buffer), 87u);
    EXPECT_EQ(WFMGetSid(session.get(), nullptr, buffer), 87u);
    EXPECT_EQ(WFMGetSid(session.get(), &capacity, nullptr), 87u);
    const std::string sync_ = "[WFM] WFMGetUseNuboCGI: WFM_PARSE_XML_INVALID_PARAMETER";
    const std::string slave = "[WFM] WFMGetSlaveID: WFM_PARSE_XML_INVALID_PARAMETER";
    const std::string sid = "[WFM] WFMGetSid: WFM_PARSE_XML_INVALID_PARAMETER";
    log.expectLines({sync_, sync_, slave, slave, slave, slave, sid, sid, sid, sid});
}

TEST(AuthContextWire, AnEmptySidIsAnInvalidArgument) {
    const SessionPtr session = makeSession();
    session->pszSid[0] = L'\0';
    uint32_t capacity = 10;
    wchar_t buffer[10];
    LogCapture log;
    EXPECT_EQ(WFMGetSid(session.get(), &capacity, buffer), 87u);
    log.expectLines({"[WFM] WFMGetSid: WFM_PARSE_XML_INVALID_PARAMETER"});
}

TEST(AuthContextWire, ASidNeedsItsLengthAndOne) {
    const SessionPtr session = makeSession();  // "sid123"
    wchar_t buffer[8] = L"#######";
    uint32_t capacity = 6;
    EXPECT_EQ(WFMGetSid(session.get(), &capacity, buffer), 122u);
    EXPECT_EQ(capacity, 7u);
    EXPECT_STREQ(buffer, L"#######");
    EXPECT_EQ(WFMGetSid(session.get(), &capacity, buffer), 0u);
    EXPECT_STREQ(buffer, L"sid123");
    EXPECT_EQ(capacity, 7u);
}

TEST(AuthContextWire, ASlaveIdNeedsItsLengthAndOne) {
    const SessionPtr session = nodeSession();
    wchar_t buffer[8] = L"#######";
    uint32_t capacity = 5;
    EXPECT_EQ(WFMGetSlaveID(session.get(), &capacity, buffer), 122u);
    EXPECT_EQ(capacity, 6u);
    EXPECT_STREQ(buffer, L"#######");
    EXPECT_EQ(WFMGetSlaveID(session.get(), &capacity, buffer), 0u);
    EXPECT_STREQ(buffer, L"node0");
}

TEST(AuthContextWire, WithoutASlaveIdTheTextIsEmpty) {
    const SessionPtr session = makeSession();
    wchar_t buffer[2] = L"#";
    uint32_t capacity = 1;
    EXPECT_EQ(WFMGetSlaveID(session.get(), &capacity, buffer), 0u);
    EXPECT_STREQ(buffer, L"");
}

TEST(AuthContextWire, TeamFoldersReplaceThoseBefore) {
    const SessionPtr session = nodeSession();
    Lists lists;
    EXPECT_EQ(lists.give(session.get()), 0u);
    EXPECT_EQ(session->nTeamFolderCount, 3);
    EXPECT_STREQ(session->lppOriPathList[2], L"/home/.Torvi/C/");
    EXPECT_STREQ(session->lppTeamFolderPathList[1], L"vtf://b/");
    EXPECT_STREQ(session->lppTeamFolderSlaveIDList[0], L"n1");
    lists.ori[0] = text(L"/home/.Torvi/X/");
    EXPECT_EQ(
        WFMUpdateTeamFolderInfo(session.get(), 1, lists.ori.data(), lists.team.data(), lists.slaves.data()),
        0u);
    EXPECT_EQ(session->nTeamFolderCount, 1);
    EXPECT_STREQ(session->lppOriPathList[0], L"/home/.Torvi/X/");
}

TEST(AuthContextWire, TeamFoldersOfNothingClearTheLists) {
    const SessionPtr session = nodeSession();
    Lists lists;
    const auto none = static_cast<wchar_t**>(nullptr);
    lists.give(session.get());
    EXPECT_EQ(WFMUpdateTeamFolderInfo(session.get(), 0, nullptr, nullptr, nullptr), 0u);
    expectEmptyLists(*session);
    lists.give(session.get());
    EXPECT_EQ(WFMUpdateTeamFolderInfo(session.get(), 3, none, lists.team.data(), lists.slaves.data()), 0u);
    expectEmptyLists(*session);
    lists.give(session.get());
    EXPECT_EQ(WFMUpdateTeamFolderInfo(session.get(), 3, lists.ori.data(), none, lists.slaves.data()), 0u);
    expectEmptyLists(*session);
    lists.give(session.get());
    EXPECT_EQ(WFMUpdateTeamFolderInfo(session.get(), -1, lists.ori.data(), lists.team.data(), none), 0u);
    expectEmptyLists(*session);
}

TEST(AuthContextWire, AClusterSessionTakesNoTeamFoldersWithoutTheirNodes) {
    const SessionPtr session = nodeSession();
    Lists lists;
    lists.give(session.get());
    EXPECT_EQ(lists.give(session.get(), false), 0u);
    expectEmptyLists(*session);
}

TEST(AuthContextWire, OutsideAClusterTheNodesMayBeLeftOut) {
    const SessionPtr session = makeSession();
    Lists lists;
    EXPECT_EQ(lists.give(session.get(), false), 0u);
    EXPECT_EQ(session->nTeamFolderCount, 3);
    EXPECT_EQ(session->lppTeamFolderSlaveIDList, nullptr);
}

TEST(AuthContextWire, TeamFoldersOfANullContextAre8) {
    LogCapture log;
    EXPECT_EQ(WFMUpdateTeamFolderInfo(nullptr, 0, nullptr, nullptr, nullptr), 8u);
    log.expectLines({"[WFM] WFMUpdateTeamFolderInfo WFM_PARSE_XML_INVALID_PARAMETER"});
}

TEST(AuthContextWire, ACloneOutlivesItsSource) {
    SessionPtr source = nodeSession();
    Lists lists;
    lists.give(source.get());
    source->bUseFcgi = true;
    source->bSecure = true;
    source->bAutoProxyUpdated = true;
    source->dwProxyMode = 2;
    source->dwProxyFlags = 5;
    wcscpy(source->szProxyHost, L"proxy:1");
    wcscpy(source->szProxyBypass, L"local");
    wcscpy(source->szProxyUser, L"pu");
    wcscpy(source->szProxyPassword, L"pp");
    wcscpy(source->szForwardedFor, L"10.0.0.1");
    wcscpy(source->szAgentName, L"agent");
    _WFM_AUTH_CONTEXT* made = nullptr;
    LogCapture log;
    ASSERT_EQ(WFMCloneAuthContext(source.get(), &made), 1u);
    log.expectNoLines();
    const SessionPtr clone(made);
    source.reset();

    EXPECT_STREQ(clone->pszSid, L"sid123");
    EXPECT_STREQ(clone->szSlaveID, L"node0");
    EXPECT_STREQ(clone->szAgentName, L"agent");
    EXPECT_TRUE(clone->bUseNuboCGI);
    EXPECT_TRUE(clone->bUseFcgi);
    EXPECT_TRUE(clone->bSecure);
    EXPECT_FALSE(clone->bAutoProxyUpdated);
    EXPECT_EQ(clone->dwProxyMode, 2u);
    EXPECT_EQ(clone->dwProxyFlags, 5u);
    EXPECT_STREQ(clone->szProxyHost, L"proxy:1");
    EXPECT_STREQ(clone->szProxyBypass, L"local");
    EXPECT_STREQ(clone->szProxyUser, L"pu");
    EXPECT_STREQ(clone->szProxyPassword, L"pp");
    EXPECT_STREQ(clone->szForwardedFor, L"10.0.0.1");
    ASSERT_EQ(clone->nTeamFolderCount, 3);
    EXPECT_STREQ(clone->lppOriPathList[0], L"/home/.Torvi/A/");
    EXPECT_STREQ(clone->lppTeamFolderPathList[1], L"vtf://b/");
    EXPECT_STREQ(clone->lppTeamFolderSlaveIDList[2], L"n3");
}

TEST(AuthContextWire, ACloneOfNullIs1WithALineAndNoContext) {
    const SessionPtr session = makeSession();
    auto* const before = reinterpret_cast<_WFM_AUTH_CONTEXT*>(0x10);
    _WFM_AUTH_CONTEXT* made = before;
    LogCapture log;
    EXPECT_EQ(WFMCloneAuthContext(nullptr, &made), 1u);
    EXPECT_EQ(WFMCloneAuthContext(session.get(), nullptr), 1u);
    EXPECT_EQ(made, before);
    const std::string line = "[WFM] WFMCloneAuthContext WFM_PARSE_XML_INVALID_PARAMETER";
    log.expectLines({line, line});
}

TEST(AuthContextWire, ACloneWithoutASidIs0WithoutALine) {
    const SessionPtr session = makeSession();
    session->pszSid[0] = L'\0';
    _WFM_AUTH_CONTEXT* made = nullptr;
    LogCapture log;
    EXPECT_EQ(WFMCloneAuthContext(session.get(), &made), 0u);
    EXPECT_EQ(made, nullptr);
    log.expectNoLines();
}

TEST(AuthContextWire, AListThatBreaksOffClonesUpToThereWithNullSlots) {
    const SessionPtr session = makeSession();
    Lists lists;
    lists.ori[1] = text(L"");
    lists.give(session.get(), false);
    EXPECT_EQ(session->lppOriPathList[1], nullptr);

    _WFM_AUTH_CONTEXT* made = nullptr;
    LogCapture log;
    ASSERT_EQ(WFMCloneAuthContext(session.get(), &made), 1u);
    const SessionPtr clone(made);
    EXPECT_EQ(clone->nTeamFolderCount, 3);
    EXPECT_STREQ(clone->lppOriPathList[0], L"/home/.Torvi/A/");
    EXPECT_EQ(clone->lppOriPathList[1], nullptr);
    EXPECT_EQ(clone->lppOriPathList[2], nullptr);
    log.expectNoLines();  // no slave list is no broken one

    // What is broken stays usable: it clones again, and takes new lists.
    _WFM_AUTH_CONTEXT* again = nullptr;
    ASSERT_EQ(WFMCloneAuthContext(clone.get(), &again), 1u);
    EXPECT_EQ(Lists().give(again), 0u);
    EXPECT_STREQ(again->lppOriPathList[2], L"/home/.Torvi/C/");
    WFMFreeAuthContext(again);
}

TEST(AuthContextWire, EachListThatBeginsWithNothingHasItsLine) {
    const SessionPtr session = makeSession();
    Lists lists;
    lists.ori[0] = lists.team[0] = lists.slaves[0] = nullptr;
    lists.give(session.get());
    _WFM_AUTH_CONTEXT* made = nullptr;
    LogCapture log;
    ASSERT_EQ(WFMCloneAuthContext(session.get(), &made), 1u);
    const SessionPtr clone(made);
    EXPECT_EQ(clone->nTeamFolderCount, 3);
    log.expectLines({"[WFM] WFMCloneAuthContext lppTeamFolderPathList is NULL or empty string ",
                     "[WFM] WFMCloneAuthContext lppOriPathList is NULL or empty string",
                     "[WFM] WFMCloneAuthContext lppTeamFolderSlaveIDList is NULL or empty string"});
}
