// Beyond activations_wire_test.cpp.

#include <gtest/gtest.h>

#include "activations.h"
#include "loginproxy.h"
#include "replies.h"
#include "support/logcapture.h"

using namespace wire;

namespace {

const char* const kNoName = "[WFM] TorviActivateSid2: WFM_PARSE_XML_FAIL(empty server name";
const char* const kNoFlag = "[WFM] TorviActivateSid2: WFM_PARSE_XML_FAIL(empty is admin group)";
const char* const kSummary = "[WFM] TorviActivateSid2(127.0.0.1:{port}) failed dwStatus(14)";

std::string named(const std::string& name) {
    return R"({"status":1,"admingroup":"1","servername":")" + name + "\"}";
}

}  // namespace

TEST(TorviActivateSid2Wire, MakesASessionOfTheSyncServiceFromItsToken) {
    const RawServer server({Reply::json(kActivated)});
    ActivateToken call(server);
    LogCapture log;
    ASSERT_EQ(call.run(), 0u);
    log.expectNoLines();
    EXPECT_EQ(call.result, 0u);
    EXPECT_STREQ(call.name, L"nas-1");
    EXPECT_TRUE(call.admin);
    EXPECT_TRUE(usesSyncService(call.made));
    EXPECT_EQ(sidOf(call.made), L"token-1");
    EXPECT_EQ(slaveOf(call.made), L"Node7");
    EXPECT_EQ(nextRequestOf(call.made).target(), targetOf("torvi/torvisrv.cgi", "token-1"));
}

TEST(TorviActivateSid2Wire, TheSessionHasNoFasterEnd) {
    RawServer server({Reply::json(kActivated), Reply::json(R"({"status":1,"success":"true"})")});
    ActivateToken call(server);
    ASSERT_EQ(call.run(), 0u);
    EXPECT_EQ(TorviLogout(kServer, server.port(), true, call.made), 0u);
    EXPECT_EQ(server.request(1).target(), "/cgi-bin/torvi/torvisrv_logout.cgi?sid=token-1&logout=1");
}

TEST(TorviActivateSid2Wire, RefusesEachMissingArgumentWith87) {
    const std::pair<const char*, void (*)(ActivateToken&)> changes[] = {
        {"token", [](ActivateToken& a) { a.tokenText = nullptr; }},
        {"empty token", [](ActivateToken& a) { a.tokenText = L""; }},
        {"capacity", [](ActivateToken& a) { a.capacity = 0; }},
        {"server name", [](ActivateToken& a) { a.serverName = nullptr; }},
        {"is admin", [](ActivateToken& a) { a.isAdmin = nullptr; }},
        {"context", [](ActivateToken& a) { a.context = nullptr; }},
    };
    for (const auto& [what, change] : changes) {
        SCOPED_TRACE(what);
        ActivateToken call;
        change(call);
        LogCapture log;
        EXPECT_EQ(call.run(), 87u);
        EXPECT_EQ(call.result, 0xABCDu);
        EXPECT_TRUE(call.admin);
        EXPECT_EQ(call.name[0], L'#');
        EXPECT_EQ(call.made, nullptr);
        log.expectLines({"[WFM] TorviActivateSid2(127.0.0.1:80): WFM_PARSE_XML_INVALID_PARAMETER"});
    }
}

TEST(TorviActivateSid2Wire, OutsideAClusterNoNodeIsNamedAndNoneIsKept) {
    for (const wchar_t* own : {static_cast<const wchar_t*>(nullptr), L""}) {
        const RawServer server({Reply::json(kActivated)});
        ActivateToken call(server);
        call.ownSlaveID = own;
        call.slaveID = L"Node8";
        EXPECT_EQ(call.run(), 0u);
        EXPECT_EQ(server.onlyRequest().target(), activationTarget("token-1"));
        EXPECT_EQ(slaveOf(call.made), L"");
    }
}

TEST(TorviActivateSid2Wire, TheClusterFlagChangesNothing) {
    const RawServer server({Reply::json(kActivated)});
    for (const bool isCluster : {false, true}) {
        ActivateToken call(server);
        call.isCluster = isCluster;
        EXPECT_EQ(call.run(), 0u);
        EXPECT_EQ(slaveOf(call.made), L"Node7");
    }
    EXPECT_EQ(server.request(0).target(), server.request(1).target());
}

TEST(TorviActivateSid2Wire, ASlaveIdThatDoesNotFitIsNotKept) {
    for (const auto& [length, kept] : {std::pair{size_t{259}, true}, {size_t{260}, false}}) {
        const RawServer server({Reply::json(kActivated)});
        const std::wstring own(length, L'n');
        ActivateToken call(server);
        call.ownSlaveID = own.c_str();
        EXPECT_EQ(call.run(), 0u);
        EXPECT_EQ(slaveOf(call.made).size(), kept ? length : 0);
    }
}

TEST(TorviActivateSid2Wire, TheTokenGoesOutAsItIs) {
    const RawServer server({Reply::json(kActivated)});
    ActivateToken call(server);
    call.tokenText = L"a&b=c";
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(server.onlyRequest().target(), activationTarget("a&b=c"));
    EXPECT_EQ(sidOf(call.made), L"a&b=c");
}

TEST(TorviActivateSid2Wire, TheSessionKeepsAgentAndForWhomItActs) {
    const RawServer server({Reply::json(kActivated)});
    ActivateToken call(server);
    call.agent = L"Client/7";
    call.forwardedFor = L"10.1.2.3";
    ASSERT_EQ(call.run(), 0u);
    for (const Request& request : {server.onlyRequest(), nextRequestOf(call.made)}) {
        EXPECT_EQ(request.header("User-Agent"), "Client/7");
        EXPECT_EQ(request.header("X-Forwarded-For"), "10.1.2.3");
    }
}

TEST(TorviActivateSid2Wire, OnlyASessionWithALocalServerKeepsForWhomItActs) {
    const RawServer server({Reply::json(kActivated)});
    ActivateToken call(server);
    call.server = L"localhost";
    call.forwardedFor = L"10.1.2.3";
    ASSERT_EQ(call.run(), 0u);
    EXPECT_EQ(server.onlyRequest().headerCount("X-Forwarded-For"), 0u);
    EXPECT_EQ(nextRequestOf(call.made).headerCount("X-Forwarded-For"), 0u);
}

TEST(TorviActivateSid2Wire, AnEmptyAgentIsTheTransports) {
    const RawServer server({Reply::json(kActivated)});
    for (const wchar_t* agent : {static_cast<const wchar_t*>(nullptr), L""}) {
        ActivateToken call(server);
        call.agent = agent;
        ASSERT_EQ(call.run(), 0u);
        EXPECT_EQ(nextRequestOf(call.made).header("User-Agent"), "VEXA Torvi");
    }
    for (const Request& request : server.requests()) EXPECT_EQ(request.header("User-Agent"), "VEXA Torvi");
}

TEST(TorviActivateSid2Wire, TheSessionKeepsItsProxy) {
    expectSessionKeepsItsProxy<ActivateToken>(kActivated, "torvisrvPrepare.cgi", TorviLogout,
                                              "torvisrv_logout.cgi");
}

TEST(TorviActivateSid2Wire, ASessionOfTlsGoesOnWithTls) {
    RawServer::Options tls;
    tls.certificate = Certificate::SelfSigned;
    RawServer server({Reply::json(kActivated), Reply::json(R"({"status":1,"success":"true"})")}, tls);
    ActivateToken call(server);
    call.secure = true;
    ASSERT_EQ(call.run(), 0u);
    EXPECT_EQ(TorviLogout(kServer, server.port(), true, call.made), 0u);
    EXPECT_EQ(server.requestCount(), 2u);
}

TEST(TorviActivateSid2Wire, AServerNameNeedsRoomForItsEnd) {
    for (const auto& [capacity, copied] : {std::pair{4U, false}, {5U, false}, {6U, true}}) {
        const RawServer server({Reply::json(kActivated)});  // "nas-1"
        ActivateToken call(server);
        call.capacity = capacity;
        EXPECT_EQ(call.run(), 0u);
        EXPECT_NE(call.made, nullptr);
        EXPECT_EQ(std::wstring(call.name, 7), copied ? std::wstring(L"nas-1\0#", 7) : L"#######");
    }
}

TEST(TorviActivateSid2Wire, ALongServerNameStaysInsideItsBuffer) {
    for (const size_t length : {size_t{260}, size_t{2047}}) {
        const RawServer server({Reply::json(named(std::string(length, 'n')))});
        ActivateToken call(server);
        EXPECT_EQ(call.run(), 0u);
        EXPECT_EQ(call.name[0], L'#');
        EXPECT_NE(call.made, nullptr);
    }
}

TEST(TorviActivateSid2Wire, AdminIsTheTextOne) {
    for (const auto& [sent, isAdmin] :
         {std::pair{R"("1")", true}, {R"("0")", false}, {R"("yes")", false}, {R"("")", false}}) {
        const RawServer server(
            {Reply::json(std::string(R"({"status":1,"servername":"nas","admingroup":)") + sent + "}")});
        ActivateToken call(server);
        EXPECT_EQ(call.run(), 0u);
        EXPECT_EQ(call.admin, isAdmin) << sent;
    }
}

TEST(TorviActivateSid2Wire, AReplyThatLacksNameOrFlagMakesNoSession) {
    const std::vector<ReplyRow> rows = {
        {R"({"status":1,"admingroup":"1"})", 14, 0, {kNoName, kSummary}},
        {R"({"status":1,"admingroup":"1","servername":""})", 14, 0, {kNoName, kSummary}},
        {R"({"status":1,"admingroup":"1","servername":null})", 14, 0, {kNoName, kSummary}},
        {named(std::string(2048, 'n')), 14, 0, {kNoName, kSummary}},
        {R"({"status":1})", 14, 0, {kNoName, kSummary}},
        {R"({"status":1,"servername":"nas"})", 14, 0, {kNoFlag, kSummary}},
        {R"({"status":1,"servername":"nas","admingroup":null})", 14, 0, {kNoFlag, kSummary}},
    };
    expectReplies<ActivateToken>(rows, [](const ActivateToken& call) {
        EXPECT_EQ(call.made, nullptr);
        EXPECT_FALSE(call.admin);
        EXPECT_EQ(call.name[0], L'#');
    });
}

TEST(TorviActivateSid2Wire, ARefusalMakesNoSession) {
    const RawServer server({Reply::json(R"({"status":3,"admingroup":"1","servername":"nas"})")});
    ActivateToken call(server);
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.signedResult(), -2);
    EXPECT_EQ(call.made, nullptr);
    EXPECT_FALSE(call.admin);
    EXPECT_EQ(call.name[0], L'#');
}

TEST(TorviActivateSid2Wire, AFailureMakesNoSession) {
    for (const Reply& reply :
         {Reply::status(500, kActivated), Reply::json(R"({"status":1,"servername":[],"admingroup":"1"})"),
          Reply::json(R"({"status":1,"servername":"nas","admingroup":{}})")}) {
        const RawServer server({reply});
        ActivateToken call(server);
        EXPECT_NE(call.run(), 0u);
        EXPECT_EQ(call.signedResult(), -1);
        EXPECT_EQ(call.made, nullptr);
        EXPECT_FALSE(call.admin);
    }
}

TEST(TorviActivateSid2Wire, TwiceIsTwoSessionsOfOneToken) {
    const RawServer server({Reply::json(kActivated)});
    ActivateToken first(server), second(server);
    EXPECT_EQ(first.run(), 0u);
    EXPECT_EQ(second.run(), 0u);
    EXPECT_NE(first.made, second.made);
    EXPECT_EQ(sidOf(first.made), sidOf(second.made));
}
