#include <gtest/gtest.h>

#include <functional>

#include "loginargs.h"
#include "loginproxy.h"
#include "support/logcapture.h"
#include "support/timers.h"

using namespace wire;

namespace {

const char* const kGood = R"({"status":1,"sid":"abc","admingroup":"1","servername":"nas-1"})";
const char* const kRefusedLine = "TorviLogin: Failed to allocate memory pSid";
const char* const kSummary14 = "[WFM] TorviLogin failed dwStatus(14)";

}  // namespace

TEST(TorviLoginWire, PostsItsFieldsInOrderToTheLoginCgi) {
    RawServer server({Reply::json(kGood)});
    LoginArgs login(server);
    login.user = L"J\u00f6rg & co";
    login.password = L"p\u4e2d\U0001F600~";
    login.computer = L"my pc";
    login.deviceType = 4000000000U;
    ASSERT_EQ(login.run(), 0u);

    const Request request = server.onlyRequest();
    expectRequestLine(request, "POST /cgi-bin/torvi/torvisrv_login.cgi HTTP/1.1");
    expectHeaders(request, formHeaders(server, request.body.size()));
    expectForm(request, {{"user", "J%C3%B6rg%20%26%20co"},
                         {"pwd", "cOS4rfCfmIB%2B"},
                         {"nubo_user", "1"},
                         {"nubo_computer", "my%20pc"},
                         {"uid", "uid"},
                         {"nubo_device_type", "4000000000"},
                         {"Torvi_client_version", "5.1"}});
    EXPECT_EQ(login.result, 0u);
    EXPECT_EQ(sidOf(login.made), L"abc");
    EXPECT_TRUE(login.admin);
    EXPECT_FALSE(login.slave);
    EXPECT_STREQ(login.name, L"nas-1");
}

TEST(TorviLoginWire, GoesToTheFcgiWhereItIsSaidToBe) {
    RawServer server({Reply::json(kGood)});
    LoginArgs login(server);
    login.fcgi = true;
    ASSERT_EQ(login.run(), 0u);
    expectRequestLine(server.onlyRequest(), "POST /cgi-bin/torvi/torvisrv.fcgi?func=login HTTP/1.1");
}

TEST(TorviLoginWire, AsksOnceAndNeverTheOtherCgi) {
    RawServer server({Reply::status(404)});
    LoginArgs login(server);
    login.fcgi = true;
    EXPECT_EQ(login.run(), 10u);
    EXPECT_EQ(server.requestCount(), 1u);
}

TEST(TorviLoginWire, SpeaksTlsToASelfSignedServer) {
    RawServer::Options options;
    options.certificate = Certificate::SelfSigned;
    RawServer server({Reply::json(kGood)}, options);
    LoginArgs login(server);
    login.secure = true;
    EXPECT_EQ(login.run(), 0u);
    EXPECT_NE(login.made, nullptr);
}

TEST(TorviLoginWire, SendsTheAgentThatItIsGiven) {
    RawServer server({Reply::json(kGood)});
    LoginArgs login(server);
    login.agent = L"Client/7";
    ASSERT_EQ(login.run(), 0u);
    EXPECT_EQ(server.onlyRequest().header("User-Agent"), "Client/7");
}

TEST(TorviLoginWire, TellsALocalServerForWhomItActs) {
    RawServer server({Reply::json(kGood)});
    LoginArgs login(server);
    login.forwardedFor = L"10.1.2.3";
    ASSERT_EQ(login.run(), 0u);
    EXPECT_EQ(server.onlyRequest().header("X-Forwarded-For"), "10.1.2.3");
}

TEST(TorviLoginWire, TellsNoOtherHostForWhomItActs) {
    RawServer server({Reply::json(kGood)});
    LoginArgs login(server);
    login.server = L"localhost";
    login.forwardedFor = L"10.1.2.3";
    ASSERT_EQ(login.run(), 0u);
    EXPECT_EQ(server.onlyRequest().headerCount("X-Forwarded-For"), 0u);
}

TEST(TorviLoginWire, RefusesEachMissingArgumentWithOneLine) {
    const std::vector<std::pair<const char*, std::function<void(LoginArgs&)>>> changes = {
        {"server", [](LoginArgs& a) { a.server = nullptr; }},
        {"empty server", [](LoginArgs& a) { a.server = L""; }},
        {"port", [](LoginArgs& a) { a.port = 0; }},
        {"user", [](LoginArgs& a) { a.user = nullptr; }},
        {"empty user", [](LoginArgs& a) { a.user = L""; }},
        {"password", [](LoginArgs& a) { a.password = nullptr; }},
        {"computer", [](LoginArgs& a) { a.computer = L""; }},
        {"uid", [](LoginArgs& a) { a.uid = nullptr; }},
        {"capacity", [](LoginArgs& a) { a.capacity = 0; }},
        {"client version", [](LoginArgs& a) { a.clientVersion = L""; }},
        {"server name", [](LoginArgs& a) { a.serverName = nullptr; }},
        {"is admin", [](LoginArgs& a) { a.isAdmin = nullptr; }},
        {"is slave", [](LoginArgs& a) { a.isSlave = nullptr; }},
        {"result word", [](LoginArgs& a) { a.resultWord = nullptr; }},
        {"context", [](LoginArgs& a) { a.context = nullptr; }},
    };
    RawServer server({Reply::json(kGood)});
    LogCapture log;
    for (const auto& [what, change] : changes) {
        SCOPED_TRACE(what);
        LoginArgs login(server);
        change(login);
        log.clear();
        EXPECT_EQ(login.run(), 8u);
        log.expectLines({"[WFM] TorviLogin: WFM_PARSE_XML_INVALID_PARAMETER"});
        EXPECT_EQ(login.result, 0xABCDu);
        EXPECT_TRUE(login.admin);
        EXPECT_TRUE(login.slave);
        EXPECT_EQ(login.made, nullptr);
    }
    EXPECT_EQ(server.requestCount(), 0u);
}

TEST(TorviLoginWire, AnEmptyPasswordIsAPassword) {
    RawServer server({Reply::json(kGood)});
    LoginArgs login(server);
    login.password = L"";
    EXPECT_EQ(login.run(), 0u);
    EXPECT_EQ(server.onlyRequest().form().at(1).rawValue, "");
}

TEST(TorviLoginWire, ATimeoutOfNullOr0IsFifteenSeconds) {
    const uint32_t zero = 0;
    for (const uint32_t* timeout : {static_cast<const uint32_t*>(nullptr), &zero}) {
        RawServer server({Reply::json(kGood)});
        LoginArgs login(server);
        login.timeout = timeout;
        TimerCapture timers;
        EXPECT_EQ(login.run(), 0u);
        EXPECT_EQ(timers.started(), std::vector<int>{15000});
    }
}

TEST(TorviLoginWire, ATimeoutBeyondWhatATimerTakesIsItsMost) {
    const uint32_t most = 0xFFFFFFFF;
    RawServer server({Reply::json(kGood)});
    LoginArgs login(server);
    login.timeout = &most;
    TimerCapture timers;
    EXPECT_EQ(login.run(), 0u);
    EXPECT_EQ(timers.started(), std::vector<int>{0x7FFFFFFF});
}

TEST(TorviLoginWire, AServerThatStallsEndsWith2AndStatus408) {
    const uint32_t timeout = 50;
    RawServer server({Reply::stall()});
    LoginArgs login(server);
    login.timeout = &timeout;
    LogCapture log;
    EXPECT_EQ(login.run(), 2u);
    EXPECT_EQ(login.signedResult(), -1);
    log.expectLines({"[WFM] TorviLogin: FAIL(httpStatusCode=408)", "[WFM] TorviLogin failed dwStatus(2)"});
}

TEST(TorviLoginWire, ARefusedLoginIs14WithTheReasonInTheResultWord) {
    RawServer server({Reply::json(R"({"status":8,"sid":"not for us"})")});
    LoginArgs login(server);
    LogCapture log;
    EXPECT_EQ(login.run(), 14u);
    EXPECT_EQ(login.signedResult(), -24);
    EXPECT_EQ(login.made, nullptr);
    EXPECT_EQ(login.name[0], L'#');
    log.expectLines({"[WFM] TorviLogin: AuthStatus(-24)", kRefusedLine, kSummary14});
}

TEST(TorviLoginWire, ASuccessWithoutASidIs14) {
    RawServer server({Reply::json(R"({"status":1})")});
    LoginArgs login(server);
    LogCapture log;
    EXPECT_EQ(login.run(), 14u);
    EXPECT_EQ(login.result, 0u);
    log.expectLines({kRefusedLine, kSummary14});
}

TEST(TorviLoginWire, ASidThatDoesNotFitIsARefusedLogin) {
    for (const auto& [length, status] : {std::pair{259, 0U}, std::pair{260, 14U}}) {
        RawServer server({Reply::json(R"({"status":1,"sid":")" + std::string(length, 's') + R"("})")});
        LoginArgs login(server);
        EXPECT_EQ(login.run(), status) << length;
    }
}

TEST(TorviLoginWire, ARedirectIsMinus8And14AndNotFollowed) {
    RawServer server({Reply::redirect("https://127.0.0.1:1/")});
    LoginArgs login(server);
    LogCapture log;
    EXPECT_EQ(login.run(), 14u);
    EXPECT_EQ(login.signedResult(), -8);
    EXPECT_EQ(server.requestCount(), 1u);
    log.expectLines({"[WFM] TorviLogin: WFM_FORCE_HTTPS_REDIRECT", kSummary14});
}

TEST(TorviLoginWire, ABodyThatIsNotJsonIs6WithItsStatus) {
    RawServer server({Reply::text("hello")});
    LoginArgs login(server);
    LogCapture log;
    EXPECT_EQ(login.run(), 6u);
    log.expectLines({"[WFM] TorviLogin: FAIL(httpStatusCode=200)", "[WFM] TorviLogin failed dwStatus(6)"});
}

TEST(TorviLoginWire, AReplyWithoutStatusIsNotUnderstood) {
    RawServer server({Reply::json(R"({"sid":"abc"})")});
    LoginArgs login(server);
    EXPECT_EQ(login.run(), 6u);
    EXPECT_EQ(login.made, nullptr);
}

TEST(TorviLoginWire, AReplyThatBreaksOffInsideItsFieldsOpensNoSession) {
    RawServer server({Reply::json(R"({"status":1,"sid":"abc","admingroup":["1"]})")});
    LoginArgs login(server);
    EXPECT_EQ(login.run(), 6u);
    EXPECT_EQ(login.made, nullptr);
}

TEST(TorviLoginWire, AServerNameAsLongAsTheCapacityIsNotCopied) {
    for (const auto& [capacity, copied] : {std::pair{5U, false}, std::pair{6U, true}}) {
        RawServer server({Reply::json(kGood)});  // "nas-1"
        LoginArgs login(server);
        login.capacity = capacity;
        EXPECT_EQ(login.run(), 0u);
        EXPECT_NE(login.made, nullptr);
        EXPECT_EQ(login.name[0], copied ? L'n' : L'#');
    }
}

TEST(TorviLoginWire, WithoutAServerNameTheBufferStaysAsItIs) {
    RawServer server({Reply::json(R"({"status":1,"sid":"abc"})")});
    LoginArgs login(server);
    EXPECT_EQ(login.run(), 0u);
    EXPECT_EQ(login.name[0], L'#');
    EXPECT_FALSE(login.admin);
}

struct ClusterRow {
    const char* name;
    const char* reply;
    int32_t result;
    uint32_t dwStatus;
    bool opened;
    std::wstring slaveID;
    std::vector<std::string> lines;
};

class TorviLoginClusterWire : public testing::TestWithParam<ClusterRow> {};

TEST_P(TorviLoginClusterWire, FollowsTheClusterStatus) {
    const ClusterRow& row = GetParam();
    RawServer server({Reply::json(row.reply)});
    LoginArgs login(server);
    LogCapture log;
    EXPECT_EQ(login.run(), row.dwStatus);
    EXPECT_EQ(login.signedResult(), row.result);
    EXPECT_EQ(login.made != nullptr, row.opened);
    EXPECT_EQ(log.texts(), row.lines);
    EXPECT_EQ(login.slave, !row.slaveID.empty());
    if (login.made != nullptr) {
        EXPECT_EQ(slaveOf(login.made), row.slaveID);
    }
}

INSTANTIATE_TEST_SUITE_P(
    , TorviLoginClusterWire,
    testing::Values(ClusterRow{"NoCluster",
                               R"({"status":1,"sid":"s","nubo_cluster_status":0,"nubo_slave_id":"n1"})",
                               0,
                               0,
                               true,
                               L"",
                               {}},
                    ClusterRow{"Node",
                               R"({"status":1,"sid":"s","nubo_cluster_status":1,"nubo_slave_id":"n1"})",
                               0,
                               0,
                               true,
                               L"n1",
                               {}},
                    ClusterRow{"NodeNotReady",
                               R"({"status":1,"nubo_cluster_status":-1})",
                               -37,
                               14,
                               false,
                               L"",
                               {"[WFM] TorviLogin: AuthStatus(-37)", kRefusedLine, kSummary14}},
                    ClusterRow{"NodeNotReadyWithASid",
                               R"({"status":4,"sid":"s","nubo_cluster_status":-1})",
                               -37,
                               0,
                               true,
                               L"",
                               {"[WFM] TorviLogin: AuthStatus(-37)"}},
                    ClusterRow{"NodeRefuses",
                               R"({"status":1,"sid":"s","nubo_cluster_status":-2})",
                               -40,
                               14,
                               false,
                               L"",
                               {"[WFM] TorviLogin: AuthStatus(-40)", kRefusedLine, kSummary14}},
                    ClusterRow{"NodeRefusesAndSoDoesTheLogin",
                               R"({"status":4,"nubo_cluster_status":-2})",
                               -3,
                               14,
                               false,
                               L"",
                               {"[WFM] CTorviLogin::Parser Incorrect cluster status(-2)",
                                "[WFM] TorviLogin: AuthStatus(-3)", kRefusedLine, kSummary14}},
                    ClusterRow{"Unknown",
                               R"({"status":1,"sid":"s","nubo_cluster_status":5})",
                               0,
                               0,
                               true,
                               L"",
                               {"[WFM] CTorviLogin::Parser Incorrect cluster status(5)"}}),
    [](const auto& info) { return info.param.name; });

TEST(TorviLoginWire, ASlaveIdOf260OrMoreIsLeftOut) {
    for (const auto& [length, isSlave] :
         {std::pair{259, true}, std::pair{260, false}, std::pair{3000, false}}) {
        RawServer server({Reply::json(R"({"status":1,"sid":"s","nubo_cluster_status":1,"nubo_slave_id":")" +
                                      std::string(length, 'n') + R"("})")});
        LoginArgs login(server);
        EXPECT_EQ(login.run(), 0u);
        EXPECT_EQ(login.slave, isSlave) << length;
        EXPECT_EQ(slaveOf(login.made).size(), isSlave ? length : 0u);
    }
}

TEST(TorviLoginWire, FillsTheNetworkRecord) {
    RawServer server({Reply::json(R"({"status":1,"sid":"s","peltnet_dn":"p.example","ddns_dn":"d.example",
        "ext_ip":"1.2.3.4","local_ip":"10.0.0.1","local_ip_list":"10.0.0.1,10.0.0.2","port":8080,
        "sslPort":"443","extPort":18080,"extSslPort":18443})")});
    LoginArgs login(server);
    _WFM_NETWORK_INFORMATION network;
    std::fill_n(reinterpret_cast<char*>(&network), sizeof network, 'x');
    login.network = &network;
    ASSERT_EQ(login.run(), 0u);
    EXPECT_STREQ(network.szPeltnetDomainName, L"p.example");
    EXPECT_STREQ(network.szDdnsDomainName, L"d.example");
    EXPECT_STREQ(network.szExternalIP, L"1.2.3.4");
    EXPECT_STREQ(network.szLocalIP, L"10.0.0.1");
    EXPECT_STREQ(network.szReserved, L"");
    EXPECT_STREQ(network.szLocalIPList, L"10.0.0.1,10.0.0.2");
    EXPECT_EQ(network.nPort, 8080);
    EXPECT_EQ(network.nSslPort, 443);
    EXPECT_EQ(network.nExtPort, 18080);
    EXPECT_EQ(network.nExtSslPort, 18443);
}

TEST(TorviLoginWire, ANodeThatIsNotReadyStillTellsTheAddresses) {
    RawServer server(
        {Reply::json(R"({"status":9,"nubo_cluster_status":-1,"ext_ip":"1.2.3.4","port":8080})")});
    LoginArgs login(server);
    _WFM_NETWORK_INFORMATION network;
    login.network = &network;
    EXPECT_EQ(login.run(), 14u);
    EXPECT_STREQ(network.szExternalIP, L"1.2.3.4");
    EXPECT_EQ(network.nPort, 8080);
}

TEST(TorviLoginWire, TheNetworkRecordIsZeroedWhateverHappens) {
    RawServer server({Reply::status(500)});
    LoginArgs login(server);
    _WFM_NETWORK_INFORMATION network;
    std::fill_n(reinterpret_cast<char*>(&network), sizeof network, 'x');
    login.network = &network;
    EXPECT_EQ(login.run(), 6u);
    const char* bytes = reinterpret_cast<const char*>(&network);
    EXPECT_TRUE(std::all_of(bytes, bytes + sizeof network, [](char byte) { return byte == 0; }));
}

TEST(TorviLoginWire, ANetworkTextThatDoesNotFitStaysEmpty) {
    RawServer server({Reply::json(R"({"status":1,"sid":"s","ext_ip":")" + std::string(260, '1') +
                                  R"(","local_ip_list":")" + std::string(2047, '2') + R"("})")});
    LoginArgs login(server);
    _WFM_NETWORK_INFORMATION network;
    login.network = &network;
    EXPECT_EQ(login.run(), 0u);
    EXPECT_STREQ(network.szExternalIP, L"");
    EXPECT_EQ(std::wstring(network.szLocalIPList).size(), 2047u);
}

TEST(TorviLoginWire, TheSessionSpeaksAsTheLoginDid) {
    RawServer server({Reply::json(kGood), Reply::json(R"({"status":1,"success":true})")});
    LoginArgs login(server);
    login.agent = L"Client/7";
    login.forwardedFor = L"10.1.2.3";
    login.fcgi = true;
    ASSERT_EQ(login.run(), 0u);
    bool sync = false;
    EXPECT_EQ(WFMGetUseNuboCGI(login.made, &sync), 0u);
    EXPECT_TRUE(sync);
    EXPECT_EQ(TorviLogout(kServer, server.port(), false, login.made), 0u);
    expectGet(server.request(1), "/cgi-bin/torvi/torvisrv.fcgi?func=logout&sid=abc&logout=1",
              with(baseHeaders(server, "Client/7"), "X-Forwarded-For", "10.1.2.3"));
}

TEST(TorviLoginWire, ASessionOfTlsGoesOnWithTls) {
    RawServer::Options options;
    options.certificate = Certificate::SelfSigned;
    RawServer server({Reply::json(kGood), Reply::json(R"({"status":1,"success":true})")}, options);
    LoginArgs login(server);
    login.secure = true;
    ASSERT_EQ(login.run(), 0u);
    EXPECT_EQ(TorviLogout(kServer, server.port(), false, login.made), 0u);
    EXPECT_EQ(server.requestCount(), 2u);
}

TEST(TorviLoginWire, ASessionKeepsItsProxy) {
    expectSessionKeepsItsProxy<LoginArgs>(kGood, "torvisrv_login.cgi", TorviLogout, "torvisrv_logout.cgi");
}

TEST(TorviLoginWire, OnlyASessionWithALocalServerKeepsForWhomItActs) {
    RawServer server({Reply::json(kGood), Reply::json(R"({"status":1,"success":true})")});
    LoginArgs login(server);
    login.server = L"localhost";
    login.forwardedFor = L"10.1.2.3";
    ASSERT_EQ(login.run(), 0u);
    EXPECT_EQ(TorviLogout(kServer, server.port(), false, login.made), 0u);
    EXPECT_EQ(server.request(1).headerCount("X-Forwarded-For"), 0u);
}

TEST(TorviLoginWire, AnAgentThatDoesNotFitIsNotKept) {
    for (const auto& [length, kept] : {std::pair{259, true}, std::pair{260, false}}) {
        RawServer server({Reply::json(kGood), Reply::json(R"({"status":1,"success":true})")});
        const std::wstring agent(length, L'a');
        LoginArgs login(server);
        login.agent = agent.c_str();
        ASSERT_EQ(login.run(), 0u);
        EXPECT_EQ(TorviLogout(kServer, server.port(), false, login.made), 0u);
        EXPECT_EQ(server.request(0).header("User-Agent").size(), static_cast<size_t>(length));
        EXPECT_EQ(server.request(1).header("User-Agent"), kept ? std::string(259, 'a') : "VEXA Torvi");
    }
}

TEST(TorviLoginWire, NumbersMayComeAsText) {
    RawServer server(
        {Reply::json(R"({"status":"1","sid":"s","nubo_cluster_status":"1","nubo_slave_id":"n"})")});
    LoginArgs login(server);
    EXPECT_EQ(login.run(), 0u);
    EXPECT_EQ(login.result, 0u);
    EXPECT_TRUE(login.slave);
}

TEST(TorviLoginWire, AdminIsTheTextOrNumber1) {
    const std::pair<const char*, bool> rows[] = {
        {R"("1")", true}, {"1", true}, {R"("0")", false}, {R"("true")", false}};
    for (const auto& [value, isAdmin] : rows) {
        RawServer server({Reply::json(std::string(R"({"status":1,"sid":"s","admingroup":)") + value + "}")});
        LoginArgs login(server);
        EXPECT_EQ(login.run(), 0u);
        EXPECT_EQ(login.admin, isAdmin) << value;
    }
}

TEST(TorviLoginWire, ANodeThatSaysItselfThatItIsNotReadyOpensASessionToo) {
    RawServer server({Reply::json(R"({"status":-90,"sid":"s"})")});
    LoginArgs login(server);
    EXPECT_EQ(login.run(), 0u);
    EXPECT_EQ(login.signedResult(), -37);
    EXPECT_NE(login.made, nullptr);
}
