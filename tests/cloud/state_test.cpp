#include <sys/stat.h>

#include <filesystem>
#include <stdexcept>

#include "cloudtest.h"
#include "support/tempdir.h"

namespace {

namespace fs = std::filesystem;

/// Made before the cloud that uses it.
struct StateFolder {
    TempDir folder;
    std::string file() const { return folder.file("cloud.json"); }
};

class CloudState : protected StateFolder, public TorviCloudTest {
protected:
    explicit CloudState(const std::vector<std::string>& more = {}) : TorviCloudTest(kept(folder, more)) {}

    static std::vector<std::string> kept(const TempDir& folder, std::vector<std::string> more) {
        more.insert(more.end(), {"--state-dir", folder.string()});
        return more;
    }
    Cloud::Options keptOptions(const std::vector<std::string>& more = {}) const {
        return options(kept(folder, more));
    }
    void startAgain(const Cloud::Options& options) {
        cloud.kill();
        cloud.startAgain(options);
    }
};

TEST_F(CloudState, TokensAndDevicesOutliveTheServer) {
    const std::string token = tokenOf("anna");
    run(signOutRequest(tokenOf("ben")));
    const Nas nas(nasOptions("anna", "Cellar", "cellar-1"));
    cloud.kill();
    cloud.startAgain();
    EXPECT_EQ("cellar-1", get("/v1.1/device", token).json()["result"][0]["device_id"].asString());
    EXPECT_EQ(400, run(refreshRequest("ben-refresh")).http);
    EXPECT_EQ(200, run(refreshRequest("anna-refresh")).http);
}

TEST_F(CloudState, ASuspensionOutlivesTheServer) {
    cloud.control("POST", "users/suspend", R"({"user":"anna"})");
    cloud.kill();
    cloud.startAgain();
    EXPECT_EQ(403, run(refreshRequest("anna-refresh")).http);
}

TEST_F(CloudState, AnAccessTokenEndsByTheClock) {
    const std::string token = tokenOf("anna");
    startAgain(keptOptions({"--clock-offset", "3500"}));
    const NasReply reply = run(infoRequest(token));
    EXPECT_EQ(200, reply.http);
    EXPECT_LE(reply.json()["expires_in"].asInt(), 100);
    startAgain(keptOptions({"--clock-offset", "3601"}));
    EXPECT_EQ(401, run(infoRequest(token)).http);
    EXPECT_EQ(200, run(refreshRequest("anna-refresh")).http);
}

class CloudShortLives : public CloudState {
protected:
    CloudShortLives() : CloudState({"--token-ttl", "1000", "--refresh-ttl", "2000"}) {}
};

TEST_F(CloudShortLives, EachKindOfTokenHasItsOwn) {
    const Json::Value pair = run(signInRequest()).json();
    EXPECT_EQ(1000, pair["expires_in"].asInt());
    const std::string refresh = pair["refresh_token"].asString();
    startAgain(keptOptions({"--clock-offset", "1001"}));
    EXPECT_EQ(401, run(infoRequest(pair["access_token"].asString())).http);
    EXPECT_EQ(200, run(refreshRequest(refresh)).http);
    startAgain(keptOptions({"--clock-offset", "2001"}));
    const NasReply reply = run(refreshRequest(refresh));
    EXPECT_EQ(400, reply.http);
    EXPECT_EQ("invalid_grant", reply.json()["error"].asString());
}

TEST_F(CloudState, AFirstRefreshTokenThatIsNewServes) {
    Cloud::Options more = keptOptions();
    more.users.push_back("anna:anna-again");
    startAgain(more);
    EXPECT_EQ(200, run(refreshRequest("anna-again")).http);
    EXPECT_EQ(200, run(refreshRequest("anna-refresh")).http);
}

TEST_F(CloudState, AnApplicationThatIsGoneTakesItsTokensAlong) {
    Cloud::Options both = keptOptions();
    both.apps.push_back("phone-app:phone-secret");
    startAgain(both);
    const Json::Value pair = run(refreshRequest("anna-refresh", "phone-app")).json();
    const NasRequest request =
        framed(NasRequest::get("/v1.1/device/count"), pair["access_token"].asString(), "phone-app");
    EXPECT_EQ(200, run(request).http);
    startAgain(keptOptions());
    EXPECT_EQ(401, run(request).http);
}

TEST_F(CloudState, ItIsItsOwnersAlone) {
    tokenOf("anna");
    struct stat status = {};
    ASSERT_EQ(0, ::stat(file().c_str(), &status));
    EXPECT_EQ(0600u, status.st_mode & 07777);
}

TEST_F(CloudState, WhatCannotBeKeptDoesNotHappen) {
    const std::string token = tokenOf("anna");
    fs::create_directory(file() + ".new");
    const NasReply reply = run(signOutRequest(token));
    EXPECT_EQ(500, reply.http);
    EXPECT_EQ("server_error", reply.json()["error"].asString());
    EXPECT_EQ(200, run(infoRequest(token)).http);
    fs::remove(file() + ".new");
    EXPECT_EQ(200, run(signOutRequest(token)).http);
    EXPECT_EQ(401, run(infoRequest(token)).http);
}

TEST_F(CloudState, WhatCannotBeReadIsNotTakenForNothing) {
    cloud.kill();
    fs::remove(file());
    fs::create_symlink(file(), file());
    EXPECT_THROW(cloud.startAgain(), std::runtime_error);
    EXPECT_TRUE(fs::is_symlink(file()));
    fs::remove(file());
    folder.write("cloud.json", "{\"tok");
    EXPECT_THROW(cloud.startAgain(), std::runtime_error);
    EXPECT_EQ("{\"tok", folder.read("cloud.json"));
}

TEST_F(CloudState, TwoServersLoseNothingOfEachOther) {
    Cloud other(keptOptions());
    const std::string token = tokenOf("anna");
    const NasReply reply = exchange(other.port(), refreshRequest("ben-refresh"));
    const std::string others = reply.json()["access_token"].asString();
    EXPECT_EQ(200, exchange(other.port(), infoRequest(token)).http);
    EXPECT_EQ(200, run(infoRequest(others)).http);
}

class CloudOptions : public TorviCloudTest {};

TEST_F(CloudOptions, AClockIsAheadByYearsAtMost) {
    for (const char* offset : {"9223372036854775807", "315360001", "-315360001"})
        EXPECT_THROW(Cloud(options({"--clock-offset", offset})), std::runtime_error) << offset;
    EXPECT_NO_THROW(Cloud(options({"--clock-offset", "-315360000"})));
}

}  // namespace
