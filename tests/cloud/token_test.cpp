#include "cloudtest.h"

namespace {

class CloudToken : public TorviCloudTest {};

TEST_F(CloudToken, AnApplicationSignsInWithItsSecret) {
    const NasReply reply = run(signInRequest());
    ASSERT_EQ(200, reply.http) << reply.body;
    EXPECT_EQ("Bearer", reply.json()["token_type"].asString());
    EXPECT_EQ(3600, reply.json()["expires_in"].asInt());
    EXPECT_FALSE(reply.json()["access_token"].asString().empty());
    EXPECT_FALSE(reply.json()["refresh_token"].asString().empty());
}

TEST_F(CloudToken, TlsServesTheSame) {
    EXPECT_EQ(200, run(signInRequest(), true).http);
}

TEST_F(CloudToken, AWrongSecretIsAnInvalidClient) {
    const NasReply reply = run(signInRequest("guess"));
    EXPECT_EQ(401, reply.http);
    EXPECT_EQ("invalid_client", reply.json()["error"].asString());
    EXPECT_EQ("The client secret is wrong.", reply.json()["error_description"].asString());
}

TEST_F(CloudToken, AnUnknownClientIsAnInvalidOne) {
    const NasReply reply = run(refreshRequest("anna-refresh", "toy-app"));
    EXPECT_EQ(401, reply.http);
    EXPECT_EQ("invalid_client", reply.json()["error"].asString());
    EXPECT_EQ("The client is unknown.", reply.json()["error_description"].asString());
}

TEST_F(CloudToken, AnUnknownRefreshTokenIsAnInvalidGrant) {
    const NasReply reply = run(refreshRequest("guess"));
    EXPECT_EQ(400, reply.http);
    EXPECT_EQ("invalid_grant", reply.json()["error"].asString());
}

TEST_F(CloudToken, ARefreshTokenBecomesAUsersToken) {
    const Json::Value info = run(infoRequest(tokenOf("anna"))).json();
    EXPECT_EQ("anna", info["user_id"].asString());
    EXPECT_EQ("Anna Berg", info["user"]["display_name"].asString());
    EXPECT_EQ("anna@example.org", info["user"]["email"].asString());
    EXPECT_GT(info["expires_in"].asInt(), 3500);
}

TEST_F(CloudToken, AnApplicationsTokenIsNobodys) {
    const NasReply reply = run(infoRequest(appToken()));
    EXPECT_EQ(200, reply.http);
    EXPECT_FALSE(reply.json().isMember("user_id"));
}

TEST_F(CloudToken, AnApplicationsTokenIsRefreshedAsItsOwn) {
    const std::string refresh = run(signInRequest()).json()["refresh_token"].asString();
    const NasReply reply = run(refreshRequest(refresh));
    ASSERT_EQ(200, reply.http) << reply.body;
    EXPECT_EQ(200, run(infoRequest(reply.json()["access_token"].asString())).http);
}

TEST_F(CloudToken, ARefreshTokenServesAgain) {
    EXPECT_EQ(200, run(refreshRequest("anna-refresh")).http);
    EXPECT_EQ("anna-refresh", run(refreshRequest("anna-refresh")).json()["refresh_token"].asString());
}

TEST_F(CloudToken, AnExpiredTokenIsInvalid) {
    const std::string token = tokenOf("anna");
    cloud.expireTokens();
    const NasReply reply = run(infoRequest(token));
    EXPECT_EQ(401, reply.http);
    EXPECT_EQ("invalid_token", reply.json()["error"].asString());
    EXPECT_EQ(200, run(infoRequest(tokenOf("anna"))).http);
}

TEST_F(CloudToken, SigningOutEndsTheTokenAndWhatCouldRefreshIt) {
    const std::string token = tokenOf("anna");
    EXPECT_EQ(200, run(signOutRequest(token)).http);
    EXPECT_EQ(401, run(infoRequest(token)).http);
    EXPECT_EQ(400, run(refreshRequest("anna-refresh")).http);
    EXPECT_EQ(200, run(refreshRequest("ben-refresh")).http);
}

TEST_F(CloudToken, ASuspendedUserGetsNoToken) {
    cloud.control("POST", "users/suspend", R"({"user":"anna"})");
    EXPECT_EQ(403, run(refreshRequest("anna-refresh")).http);
    cloud.control("POST", "users/restore", R"({"user":"anna"})");
    EXPECT_EQ(200, run(refreshRequest("anna-refresh")).http);
}

TEST_F(CloudToken, AGrantIsANewRefreshToken) {
    const std::string grant = cloud.control("POST", "grants", R"({"user":"ben"})");
    Json::Value json;
    ASSERT_TRUE(Json::Reader().parse(grant, json));
    const NasReply reply = run(refreshRequest(json["refresh_token"].asString()));
    EXPECT_EQ("ben", run(infoRequest(reply.json()["access_token"].asString())).json()["user_id"].asString());
}

class CloudRotation : public TorviCloudTest {
protected:
    CloudRotation() : TorviCloudTest({"--rotate"}) {}
};

TEST_F(CloudRotation, ARefreshTokenServesOnce) {
    const std::string next = run(refreshRequest("anna-refresh")).json()["refresh_token"].asString();
    EXPECT_EQ(400, run(refreshRequest("anna-refresh")).http);
    EXPECT_EQ(200, run(refreshRequest(next)).http);
}

TEST_F(CloudRotation, SigningOutEndsWhatTheRefreshTokenBrought) {
    const Json::Value first = run(refreshRequest("anna-refresh")).json();
    const Json::Value second = run(refreshRequest(first["refresh_token"].asString())).json();
    EXPECT_EQ(200, run(signOutRequest(first["access_token"].asString())).http);
    EXPECT_EQ(401, run(infoRequest(second["access_token"].asString())).http);
    EXPECT_EQ(400, run(refreshRequest(second["refresh_token"].asString())).http);
    EXPECT_EQ(200, run(refreshRequest("ben-refresh")).http);
}

class CloudApps : public TorviCloudTest {
protected:
    CloudApps() : TorviCloudTest({"--app", "phone-app:phone-secret"}) {}
};

TEST_F(CloudApps, ATokenServesItsOwnApplicationOnly) {
    const std::string token = tokenOf("anna");
    const NasRequest request = NasRequest::get("/v1.1/device/count");
    const NasReply reply = run(framed(request, token, "phone-app"));
    EXPECT_EQ(403, reply.http);
    EXPECT_EQ("access_denied", reply.json()["error"].asString());
    EXPECT_EQ(200, run(framed(request, token)).http);
}

TEST_F(CloudApps, SoDoesARefreshToken) {
    const std::string refresh = run(signInRequest()).json()["refresh_token"].asString();
    const NasReply reply = run(refreshRequest(refresh, "phone-app"));
    EXPECT_EQ(400, reply.http);
    EXPECT_EQ("invalid_grant", reply.json()["error"].asString());
    EXPECT_EQ("The refresh token belongs to another client.", reply.json()["error_description"].asString());
    EXPECT_EQ(200, run(refreshRequest("anna-refresh", "phone-app")).http);
}

TEST_F(CloudToken, OfManyTokensTheOldestGo) {
    const std::string oldest = run(signInRequest()).json()["refresh_token"].asString();
    EXPECT_EQ(200, run(refreshRequest(oldest)).http);
    for (int i = 0; i < 11; ++i) {
        const std::string replies = runInOneGo(std::vector<NasRequest>(100, signInRequest()));
        ASSERT_EQ(100, countOf(replies, "HTTP/1.1 200"));
    }
    EXPECT_EQ(400, run(refreshRequest(oldest)).http);
    EXPECT_EQ(200, run(refreshRequest("anna-refresh")).http);
}

}  // namespace
