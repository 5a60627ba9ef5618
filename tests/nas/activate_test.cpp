#include <gmock/gmock.h>

#include "nasnodes.h"
#include "nastest.h"

using testing::HasSubstr;

namespace {

std::string activation(const std::string& token) {
    return "/cgi-bin/torvi/torvisrvPrepare.cgi?func=activate&token=" + token;
}
const std::string kSystemQuery = "func=nubo_get_system_sid&sid=";

}  // namespace

using NasActivate = NasTest;

TEST_F(NasActivate, SessionIdIsATokenOfItsUser) {
    const Json::Value anna = get(activation(sid)).json();
    EXPECT_EQ(1, anna["status"].asInt());
    EXPECT_EQ("true", anna["success"].asString());
    EXPECT_EQ("1", anna["admingroup"].asString());
    EXPECT_EQ("torvi-nas", anna["servername"].asString());
    EXPECT_EQ("0", get(activation(benSid)).json()["admingroup"].asString());
}

TEST_F(NasActivate, TokenThatIsNoneOrHasExpiredIsRefused) {
    for (const std::string& token : {std::string(32, 'a'), std::string("x"), std::string("..%2Fx")}) {
        const Json::Value reply = get(activation(token)).json();
        EXPECT_EQ(3, reply["status"].asInt()) << token;
        EXPECT_EQ("false", reply["success"].asString()) << token;
        EXPECT_FALSE(reply.isMember("servername")) << token;
    }
    nas.expireSessions();
    EXPECT_EQ(3, get(activation(sid)).status());
}

TEST_F(NasActivate, QueryIsExact) {
    EXPECT_EQ(400, get(activation(sid) + "&user=anna").http);
    EXPECT_EQ(400, get("/cgi-bin/torvi/torvisrvPrepare.cgi?token=" + sid + "&func=activate").http);
    EXPECT_EQ(400, get("/cgi-bin/filemanager/torviPrepare.cgi?func=activate&token=" + sid).http);
    EXPECT_EQ(405, post(activation(sid), {}).http);
    EXPECT_EQ(404, get("/node2" + activation(sid)).http);
}

TEST_F(NasActivate, SystemsSessionIsOneForAnAdministratorAtBothServices) {
    const Json::Value reply = get(cgi(kSystemQuery + sid)).json();
    EXPECT_EQ(1, reply["status"].asInt());
    const std::string system = reply["sid"].asString();
    EXPECT_NE(sid, system);
    EXPECT_EQ(1, get(cgi(listQuery(system, "/home"))).status());
    EXPECT_EQ(system, get(manager(kSystemQuery + sid)).json()["sid"].asString());
    EXPECT_EQ(1, get(activation(system)).status());

    get("/cgi-bin/torvi/torvisrv_logout.cgi?sid=" + sid + "&logout=1");
    EXPECT_EQ(1, get(cgi(listQuery(system, "/home"))).status()) << "it ended with another session";
    nas.expireSessions();
    const std::string later = loginSid(nas.port(), "anna", "secret");
    EXPECT_NE(system, get(cgi(kSystemQuery + later)).json()["sid"].asString());
}

TEST_F(NasActivate, SystemsSessionIsNotForOthers) {
    const Json::Value reply = get(cgi(kSystemQuery + benSid)).json();
    EXPECT_EQ(4, reply["status"].asInt());
    EXPECT_FALSE(reply.isMember("sid"));
    EXPECT_EQ(3, get(cgi(kSystemQuery + std::string(32, 'a'))).status());
    EXPECT_EQ(400, get(cgi(kSystemQuery + sid + "&more=1")).http);
    EXPECT_EQ(405, post(manager(kSystemQuery + sid), {}).http);
}

TEST(NasActivateCluster, NodesThatShareSessionsTakeEachOthersTokens) {
    TempDir sessions;
    TempDir elsewhere;
    Nas first(nodeOptions("node1", sessions.string())), second(nodeOptions("node2", sessions.string())),
        stranger(nodeOptions("node3", elsewhere.string()));
    const std::string sid = loginSid(first.port(), "ben", "hidden");
    const auto status = [&](const Nas& nas, const std::string& prefix) {
        return exchange(nas.port(), NasRequest::get(prefix + activation(sid))).status();
    };
    EXPECT_EQ(1, status(second, "/node2"));
    EXPECT_EQ(1, status(second, ""));
    EXPECT_EQ(3, status(stranger, ""));
    first.expireSessions();
    EXPECT_EQ(3, status(second, "/node2"));
}

TEST(NasActivateCluster, NodeThatIsntReadyTakesNone) {
    TempDir sessions;
    Nas::Options options;
    options.arguments = {"--session-dir", sessions.string()};
    Nas single(options);
    options.arguments.insert(options.arguments.end(), {"--slave-id", "node2", "--cluster-status", "-2"});
    Nas leaving(options);
    const std::string sid = loginSid(single.port(), "ben", "hidden");
    EXPECT_EQ(7, exchange(leaving.port(), NasRequest::get(activation(sid))).status());
}

class NasRedirect : public NasTest {
protected:
    NasRedirect() : NasTest({"--redirect-tls"}) {}
};

TEST_F(NasRedirect, LoginsAndIdentityRequestsAreSentToTls) {
    const std::string auth = "/cgi-bin/authLogin.cgi?security_code=1&serviceKey=1&remme=1";
    const std::vector<NasRequest> sent = {
        loginRequest("anna", "secret"),
        loginRequest("anna", "secret", "/cgi-bin/torvi/torvisrv.fcgi?func=login"),
        loginRequest("anna", "secret", "/cgi-bin/filemanager/wfm2Login.cgi"),
        NasRequest::form(auth, {{"user", "anna"}, {"pwd", base64("secret")}}),
        NasRequest::get("/cgi-bin/torvi/torvisrvPrepare.cgi?user=anna"),
        NasRequest::get("/cgi-bin/filemanager/torviPrepare.cgi?user=anna"),
    };
    for (const NasRequest& request : sent) {
        const NasReply reply = run(request);
        EXPECT_EQ(302, reply.http) << request.target;
        EXPECT_EQ("https://127.0.0.1:" + std::to_string(nas.tlsPort()) + request.target,
                  reply.headers.at("location"));
        EXPECT_TRUE(reply.json().isNull()) << reply.body;
        EXPECT_EQ(200, run(request, true).http) << request.target;
    }
    EXPECT_TRUE(nas.waitForLog("func=identity user=- http=302\n"));
}

TEST_F(NasRedirect, SessionsFromTlsAreGoodOnThePlainPort) {
    EXPECT_EQ("", sid);
    const std::string own = run(loginRequest("anna", "secret"), true).json()["sid"].asString();
    EXPECT_EQ(1, get(cgi(listQuery(own, "/home"))).status());
    EXPECT_EQ(-101, get(activation(own)).status()) << "a token is as good as a password";
    EXPECT_EQ(1, run(NasRequest::get(activation(own)), true).status());
}

TEST_F(NasRedirect, RequestThatIsWrongIsRefusedAllTheSame) {
    EXPECT_THAT(get("/cgi-bin/torvi/torvisrvPrepare.cgi?user=anna&x=1").body,
                HasSubstr("not in the protocol"));
}
