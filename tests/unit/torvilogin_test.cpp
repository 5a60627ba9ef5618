#include "session/TorviLogin.h"

#include <gtest/gtest.h>

#include "parsing.h"
#include "support/logcapture.h"

namespace {

const std::string kAddresses = R"("peltnet_dn":"nas.example","ddns_dn":"dyn.example","ext_ip":"203.0.113.7",)"
                               R"("local_ip":"192.168.0.2","local_ip_list":"192.168.0.2,10.0.0.2",)"
                               R"("port":8080,"sslPort":"8443","extPort":80,"extSslPort":443)";
const std::string kSession = R"("sid":"s1","admingroup":"1","servername":"書類 NAS","nubo_slave_id":"node2")";

std::string reply(const std::string& keys) {
    return "{" + keys + "," + kAddresses + "," + kSession + "}";
}

std::string text(size_t length) {
    return std::string(length, 'x');
}

void expectAddresses(const CTorviLogin& login) {
    EXPECT_EQ(login.peltnet_dn, L"nas.example");
    EXPECT_EQ(login.ddns_dn, L"dyn.example");
    EXPECT_EQ(login.ext_ip, L"203.0.113.7");
    EXPECT_EQ(login.local_ip, L"192.168.0.2");
    EXPECT_EQ(login.local_ip_list, L"192.168.0.2,10.0.0.2");
    EXPECT_EQ(login.port, 8080);
    EXPECT_EQ(login.sslPort, 8443);
    EXPECT_EQ(login.extPort, 80);
    EXPECT_EQ(login.extSslPort, 443);
}

void expectNothingButTheStatus(const CTorviLogin& login) {
    for (const std::wstring* field : {&login.sid, &login.servername, &login.slaveId, &login.peltnet_dn,
                                      &login.ddns_dn, &login.ext_ip, &login.local_ip, &login.local_ip_list}) {
        EXPECT_EQ(*field, L"");
    }
    EXPECT_FALSE(login.isAdmin);
    EXPECT_EQ(login.port, 0);
    EXPECT_EQ(login.sslPort, 0);
    EXPECT_EQ(login.extPort, 0);
    EXPECT_EQ(login.extSslPort, 0);
}

}  // namespace

TEST(CTorviLogin, BeginsWithNothingLearnt) {
    const CTorviLogin login;
    EXPECT_EQ(login.status, -1);
    EXPECT_FALSE(login.isCluster);
    expectNothingButTheStatus(login);
}

TEST(CTorviLogin, ReadsASessionWithItsAddresses) {
    CTorviLogin login;
    EXPECT_EQ(parse(login, reply(R"("status":1)")), 1);
    EXPECT_EQ(login.status, 0);
    expectAddresses(login);
    EXPECT_EQ(login.sid, L"s1");
    EXPECT_EQ(login.servername, L"書類 NAS");
    EXPECT_TRUE(login.isAdmin);
    EXPECT_FALSE(login.isCluster);
    EXPECT_EQ(login.slaveId, L"");
}

TEST(CTorviLogin, EveryKeyButTheStatusMayBeAbsent) {
    CTorviLogin login;
    EXPECT_EQ(parse(login, R"({"status":"1"})"), 1);
    EXPECT_EQ(login.status, 0);
    expectNothingButTheStatus(login);
}

TEST(CTorviLogin, OnlyTheTextOneIsAnAdministrator) {
    for (const auto& [value, isAdmin] :
         {std::pair(R"("1")", true), {"1", true}, {R"("0")", false}, {R"("11")", false}, {"null", false}}) {
        CTorviLogin login;
        EXPECT_EQ(parse(login, std::string(R"({"status":1,"admingroup":)") + value + "}"), 1) << value;
        EXPECT_EQ(login.isAdmin, isAdmin) << value;
    }
}

TEST(CTorviLogin, ARefusedLoginCarriesNoMore) {
    for (const auto& [status, code] : {std::pair("4", -3), {"3", -29}, {"0", -2}, {"34", -1}, {"-101", -8}}) {
        SCOPED_TRACE(status);
        CTorviLogin login;
        EXPECT_EQ(parse(login, reply(std::string(R"("status":)") + status)), 1);
        EXPECT_EQ(login.status, code);
        expectNothingButTheStatus(login);
    }
}

TEST(CTorviLogin, ANodeOfAClusterTellsItsId) {
    LogCapture log;
    CTorviLogin login;
    EXPECT_EQ(parse(login, reply(R"("status":1,"nubo_cluster_status":1)")), 1);
    EXPECT_TRUE(login.isCluster);
    EXPECT_EQ(login.slaveId, L"node2");
    for (const char* status : {"0", "null"}) {
        CTorviLogin alone;
        EXPECT_EQ(parse(alone, reply(std::string(R"("status":1,"nubo_cluster_status":)") + status)), 1);
        EXPECT_EQ(alone.status, 0);
        EXPECT_FALSE(alone.isCluster);
        EXPECT_EQ(alone.slaveId, L"");
        EXPECT_EQ(alone.sid, L"s1");
    }
    log.expectNoLines();
}

TEST(CTorviLogin, ANodeThatIsNotReadyStillTellsTheAddresses) {
    for (const char* status : {R"("nubo_cluster_status":-1,"status":1)",
                               R"("nubo_cluster_status":-1,"status":4)", R"("status":-90)"}) {
        SCOPED_TRACE(status);
        CTorviLogin login;
        EXPECT_EQ(parse(login, reply(status)), 1);
        EXPECT_EQ(login.status, -37);
        expectAddresses(login);
        EXPECT_EQ(login.sid, L"s1");
        EXPECT_EQ(login.slaveId, L"");
    }
}

TEST(CTorviLogin, ANodeThatTakesNoLoginsTellsNothing) {
    LogCapture log;
    CTorviLogin login;
    EXPECT_EQ(parse(login, reply(R"("status":1,"nubo_cluster_status":-2)")), 1);
    EXPECT_EQ(login.status, -40);
    expectNothingButTheStatus(login);
    log.expectNoLines();
}

TEST(CTorviLogin, AClusterStatusThatFitsNothingIsLogged) {
    LogCapture log;
    CTorviLogin login;
    EXPECT_EQ(parse(login, reply(R"("status":1,"nubo_cluster_status":7)")), 1);
    EXPECT_EQ(login.status, 0);
    EXPECT_FALSE(login.isCluster);
    EXPECT_EQ(login.sid, L"s1");
    CTorviLogin refused;
    EXPECT_EQ(parse(refused, reply(R"("status":4,"nubo_cluster_status":-2)")), 1);
    EXPECT_EQ(refused.status, -3);
    expectNothingButTheStatus(refused);
    log.expectLines({"[WFM] CTorviLogin::Parser Incorrect cluster status(7)",
                     "[WFM] CTorviLogin::Parser Incorrect cluster status(-2)"});
}

TEST(CTorviLogin, ATextThatDoesNotFitItsFieldCountsAsNotSent) {
    for (const auto& [length, fits] : {std::pair(size_t{259}, true), {size_t{260}, false}}) {
        CTorviLogin login;
        EXPECT_EQ(parse(login, R"({"status":1,"nubo_cluster_status":1,"sid":")" + text(length) +
                                   R"(","servername":")" + text(length) + R"(","nubo_slave_id":")" +
                                   text(length) + "\"}"),
                  1);
        for (const std::wstring* field : {&login.sid, &login.servername, &login.slaveId})
            EXPECT_EQ(field->size(), fits ? length : 0);
    }
    for (const auto& [length, fits] : {std::pair(size_t{2047}, true), {size_t{2048}, false}}) {
        CTorviLogin login;
        EXPECT_EQ(parse(login, R"({"status":1,"local_ip_list":")" + text(length) + "\"}"), 1);
        EXPECT_EQ(login.local_ip_list.size(), fits ? length : 0);
    }
}

TEST(CTorviLogin, RefusesWhatIsNoReply) {
    for (const char* noReply : {"", "sorry", "[]", "5", "null", "\"status\"", "{\"status\":1", "{}",
                                R"({"sid":"s1"})", R"({"status":null,"sid":"s1"})"}) {
        CTorviLogin login;
        EXPECT_NE(parse(login, noReply), 1) << noReply;
        EXPECT_EQ(login.sid, L"");
    }
    CTorviLogin login;
    EXPECT_NE(login.Parser(nullptr), 1);
}

TEST(CTorviLogin, AReplyThatIsBrokenFurtherOnOpensNoSession) {
    for (const char* broken :
         {R"("status":4294967296)", R"("status":1,"nubo_cluster_status":4294967296)",
          R"("status":1,"local_ip_list":[])", R"("status":1,"extSslPort":1e12)", R"("status":1,"sid":{})",
          R"("status":1,"admingroup":["1"])", R"("status":1,"nubo_cluster_status":1,"nubo_slave_id":[])"}) {
        SCOPED_TRACE(broken);
        // The last of two equal keys counts.
        CTorviLogin login;
        EXPECT_NE(parse(login, "{" + kAddresses + "," + kSession + "," + broken + "}"), 1);
        EXPECT_EQ(login.status, -1);
        expectNothingButTheStatus(login);
    }
}
