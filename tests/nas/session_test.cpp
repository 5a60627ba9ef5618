#include <gmock/gmock.h>

#include <set>
#include <thread>

#include "nastest.h"

using NasSession = NasTest;

TEST_F(NasSession, RightPasswordGetsASessionAndTheServersFacts) {
    const NasReply reply = run(loginRequest("anna", "secret"));
    EXPECT_EQ(200, reply.http);
    EXPECT_EQ(1, reply.status());
    EXPECT_EQ(32u, reply.json()["sid"].asString().size());
    EXPECT_EQ("1", reply.json()["admingroup"].asString());
    EXPECT_EQ("torvi-nas", reply.json()["servername"].asString());
    EXPECT_EQ(0, reply.json()["nubo_cluster_status"].asInt());
    EXPECT_FALSE(reply.json().isMember("nubo_slave_id"));
    EXPECT_EQ(nas.port(), reply.json()["port"].asInt());
    EXPECT_EQ(nas.tlsPort(), reply.json()["sslPort"].asInt());
}

TEST_F(NasSession, OrdinaryUserIsNoAdministrator) {
    EXPECT_EQ("0", run(loginRequest("ben", "hidden")).json()["admingroup"].asString());
}

TEST_F(NasSession, WrongPasswordOrUserGetsStatus3AndNoSession) {
    for (const auto& [user, password] : std::vector<std::pair<std::string, std::string>>{
             {"anna", "Secret"}, {"anna", ""}, {"anna", "secret2"}, {"nobody", "secret"}}) {
        const NasReply reply = run(loginRequest(user, password));
        EXPECT_EQ(3, reply.status()) << user << " " << password;
        EXPECT_FALSE(reply.json().isMember("sid"));
    }
}

TEST_F(NasSession, PasswordOfAnyUtf8Passes) {
    Nas::Options other;
    other.users = {"zoe:p\xc3\xa4ss:w\xe4\xb8\xad+/=%&"};
    Nas own(other);
    EXPECT_NE("", loginSid(own.port(), "zoe", "p\xc3\xa4ss:w\xe4\xb8\xad+/=%&"));
}

TEST_F(NasSession, EveryLoginAddressOfBothGenerationsOpensASessionThatTheOthersKnow) {
    for (const char* target : {"/cgi-bin/torvi/torvisrv_login.cgi", "/cgi-bin/torvi/torvisrv.fcgi?func=login",
                               "/cgi-bin/filemanager/wfm2Login.cgi"}) {
        const std::string own = run(loginRequest("anna", "secret", target)).json()["sid"].asString();
        EXPECT_EQ(1, get(cgi(listQuery(own, "/home"))).status()) << target;
        EXPECT_EQ(1, get(manager(listQuery(own, "/home"))).status()) << target;
    }
}

TEST_F(NasSession, FileManagerLoginTakesTwoFieldsOnly) {
    const NasReply reply = run(NasRequest::form("/cgi-bin/filemanager/wfm2Login.cgi",
                                                {{"user", "anna"}, {"pwd", base64("secret")}}));
    EXPECT_EQ(1, reply.status());
    EXPECT_NE("", reply.json()["sid"].asString());
}

TEST_F(NasSession, SyncLoginDoesNotTakeTwoFieldsOnly) {
    EXPECT_EQ(400, run(NasRequest::form("/cgi-bin/torvi/torvisrv_login.cgi",
                                        {{"user", "anna"}, {"pwd", base64("secret")}}))
                       .http);
}

TEST_F(NasSession, OnlyTheFileManagerTakesAnEmptyClientVersion) {
    const auto http = [&](const std::string& target) {
        NasRequest request = loginRequest("anna", "secret", target);
        request.body.resize(request.body.size() - std::string("1.0").size());
        return run(request.set("Content-Length", std::to_string(request.body.size()))).http;
    };
    EXPECT_EQ(200, http("/cgi-bin/filemanager/wfm2Login.cgi"));
    EXPECT_EQ(400, http("/cgi-bin/torvi/torvisrv_login.cgi"));
}

TEST_F(NasSession, IdsAreNeverTheSame) {
    std::set<std::string> ids;
    for (int i = 0; i < 20; ++i) ids.insert(loginSid(nas.port(), "anna", "secret"));
    EXPECT_EQ(20u, ids.size());
}

TEST_F(NasSession, LogoutEndsTheSessionAtEveryAddress) {
    for (const char* target :
         {"/cgi-bin/torvi/torvisrv_logout.cgi?sid=", "/cgi-bin/filemanager/wfm2Logout.cgi?sid=",
          "/cgi-bin/torvi/torvisrv.fcgi?func=logout&sid="}) {
        const std::string own = loginSid(nas.port(), "ben", "hidden");
        const NasReply reply = get(target + own + "&logout=1");
        EXPECT_EQ(1, reply.status()) << target;
        EXPECT_EQ("true", reply.json()["success"].asString());
        EXPECT_EQ(3, get(cgi(listQuery(own, "/home"))).status());
        const NasReply again = get(target + own + "&logout=1");
        EXPECT_EQ(3, again.status());
        EXPECT_EQ("false", again.json()["success"].asString());
    }
    EXPECT_EQ(1, get(cgi(listQuery(benSid, "/home"))).status()) << "another session of the user ended too";
}

TEST_F(NasSession, UnknownIdGetsStatus3FromEveryCall) {
    const std::string none(32, 'a');
    EXPECT_EQ(3, get(cgi(listQuery(none, "/home"))).status());
    EXPECT_EQ(3, get(cgi(statQuery(none, "/home", "x"))).status());
    EXPECT_EQ(3, get(cgi("func=get_tree&sid=" + none + "&is_iso=0&node=share_root")).status());
    EXPECT_EQ(3, get(cgi("func=properties&sid=" + none + "&path=%2Fhome&total=1&name=x")).status());
    EXPECT_EQ(3,
              get(cgi("func=nubo_check_permission&sid=" + none + "&path=%2Fhome&file_name=x&check_upload=1"))
                  .status());
    EXPECT_EQ(3, run(NasRequest::upload(cgi(uploadQuery(none, "/home")), "x", "1")).status());
    EXPECT_EQ(
        3,
        run(NasRequest::upload(cgi(moveQuery(none, "/home", 1, 1)), "x", "1", "upload_and_move")).status());
    EXPECT_EQ(3, run(NasRequest::download(cgi("func=download"), downloadForm(none, "/home", "x"))).status());
    EXPECT_THAT(onDisk("homes/anna"), testing::ElementsAre("Plans", "Rules"));
}

TEST_F(NasSession, IdThatIsNoneIsNoFileName) {
    EXPECT_EQ(3, get(cgi(listQuery("..%2F..%2Fetc%2Fpasswd", "/home"))).status());
}

TEST_F(NasSession, ControlExpiresAllSessions) {
    nas.expireSessions();
    EXPECT_EQ(3, get(cgi(listQuery(sid, "/home"))).status());
    EXPECT_EQ(3, get(cgi(listQuery(benSid, "/home"))).status());
}

class NasShortSession : public NasTest {
protected:
    NasShortSession() : NasTest({"--session-ttl", "1"}) {}
};

TEST_F(NasShortSession, RestLongerThanTheTtlEndsIt) {
    const std::string own = loginSid(nas.port(), "anna", "secret");
    // Never used in between: use would renew it.
    std::this_thread::sleep_for(std::chrono::milliseconds(1100));
    EXPECT_EQ(3, get(cgi(listQuery(own, "/home"))).status());
}

TEST_F(NasSession, VersionNeedsNoSession) {
    const NasReply reply = get("/cgi-bin/filemanager/utilRequest.cgi");
    EXPECT_EQ("5.1.0", reply.json()["version"].asString());
    EXPECT_EQ("20260105", reply.json()["build"].asString());
}

class NasOldServer : public NasTest {
protected:
    NasOldServer() : NasTest({"--no-sync-service"}) {}
};

TEST_F(NasOldServer, HasNoSyncServiceButTheFileManager) {
    EXPECT_EQ(404, run(loginRequest("anna", "secret")).http);
    EXPECT_EQ(404, run(loginRequest("anna", "secret", "/cgi-bin/torvi/torvisrv.fcgi?func=login")).http);
    EXPECT_EQ(1, run(loginRequest("anna", "secret", "/cgi-bin/filemanager/wfm2Login.cgi")).status());
}

class NasNoFcgi : public NasTest {
protected:
    NasNoFcgi() : NasTest({"--no-fcgi"}) {}
};

TEST_F(NasNoFcgi, AnswersThereWith404) {
    EXPECT_EQ(404, run(loginRequest("anna", "secret", "/cgi-bin/torvi/torvisrv.fcgi?func=login")).http);
    EXPECT_EQ(1, run(loginRequest("anna", "secret")).status());
}
