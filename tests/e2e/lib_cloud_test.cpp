#include "lib_cloud.h"

using namespace e2e;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

namespace {

class LibCloudTimes : public LibCloud {
    Cloud::Options cloudOptions() const override {
        Cloud::Options options = LibCloud::cloudOptions();
        options.arguments = {"--clock-offset", "3600"};
        return options;
    }
};

class LibCloudRotating : public LibCloud {
    Cloud::Options cloudOptions() const override {
        Cloud::Options options = LibCloud::cloudOptions();
        options.arguments = {"--rotate"};
        return options;
    }
};

/// A NAS that can be reached from outside under an address and a name.
class LibCloudOutside : public LibCloud {
    std::vector<std::string> nasOptions() const override {
        return {"--external-address",  "198.51.100.4", "--external-port", "8081",
                "--external-tls-port", "8443",         "--ddns-name",     "cellar.example"};
    }
};

class LibCloudInside : public LibCloud {
    std::vector<std::string> nasOptions() const override { return {"--no-remote-access"}; }
};

std::string wayName(const testing::TestParamInfo<bool>& info) {
    return info.param ? "Tls" : "Http";
}

}  // namespace

#define ON_BOTH_WAYS(suite) INSTANTIATE_TEST_SUITE_P(Ways, suite, testing::Bool(), wayName)
ON_BOTH_WAYS(LibCloud);
ON_BOTH_WAYS(LibCloudTimes);
ON_BOTH_WAYS(LibCloudRotating);
ON_BOTH_WAYS(LibCloudOutside);
ON_BOTH_WAYS(LibCloudInside);

TEST_P(LibCloud, AnApplicationSignsInForItself) {
    const Token token = client->signIn();
    EXPECT_EQ(token.dwStatus, 0u);
    EXPECT_EQ(token.error, "");
    EXPECT_THAT(token.access, Not(IsEmpty()));
    EXPECT_THAT(token.refresh, Not(IsEmpty()));
    EXPECT_EQ(token.type, "Bearer");
    EXPECT_EQ(token.expiresIn, 3600);
    const Token info = client->info(token.access);
    EXPECT_EQ(info.dwStatus, 0u);
    EXPECT_EQ(info.user, "");
    EXPECT_GT(info.expiresIn, 0);
    EXPECT_EQ(cloud->requestCount("refused"), 0) << cloud->log();
}

TEST_P(LibCloud, AWrongSecretIsRefusedInWords) {
    client->secret = L"guess";
    const Token token = client->signIn();
    EXPECT_EQ(token.dwStatus, 6u);
    EXPECT_EQ(token.error, "invalid_client");
    EXPECT_EQ(token.description, "The client secret is wrong.");
    EXPECT_EQ(token.access, "");
    EXPECT_EQ(client->refresh("anna-refresh").error, "invalid_client");
}

TEST_P(LibCloud, ARefreshTokenLetsItsUserIn) {
    const Token token = client->refresh("anna-refresh");
    EXPECT_EQ(token.dwStatus, 0u);
    const Token info = client->info(token.access);
    EXPECT_EQ(info.dwStatus, 0u);
    EXPECT_EQ(info.user, "anna");
    EXPECT_EQ(info.email, "anna@example.org");
    EXPECT_EQ(info.displayName, "Anna Berg");

    const Token wrong = client->refresh("no-token");
    EXPECT_EQ(wrong.dwStatus, 6u);
    EXPECT_EQ(wrong.error, "invalid_grant");
}

TEST_P(LibCloud, AnExpiredTokenIsReplacedByTheRefreshToken) {
    const Token token = client->refresh("anna-refresh");
    cloud->expireTokens();
    const Token expired = client->info(token.access);
    EXPECT_EQ(expired.dwStatus, 6u);
    EXPECT_EQ(expired.error, "invalid_token");
    std::vector<CloudDevice> devices;
    EXPECT_EQ(client->devices(token.access, devices), (Numbers{6, -1}));
    EXPECT_THAT(devices, IsEmpty());
    EXPECT_EQ(client->devices(client->refresh(token.refresh).access, devices), kDone);
    EXPECT_EQ(devices.size(), 1u);
}

TEST_P(LibCloud, ATokenThatWasSignedOutIsNoneAnyMore) {
    const Token token = client->signIn();
    EXPECT_EQ(client->signOut(token.access), 0u);
    EXPECT_EQ(client->info(token.access).error, "invalid_token");
    EXPECT_EQ(client->refresh(token.refresh).error, "invalid_grant");
    EXPECT_EQ(client->signOut(token.access), 6u);
}

TEST_P(LibCloud, AUserFindsHisDevices) {
    std::vector<CloudDevice> devices;
    EXPECT_EQ(client->devices(annas(), devices), kDone);
    ASSERT_EQ(devices.size(), 1u);
    const CloudDevice& device = devices[0];
    EXPECT_EQ(device.id, "nas-1");
    EXPECT_EQ(device.name, "Cellar");
    EXPECT_EQ(device.user, "anna");
    EXPECT_THAT(device.model, Not(IsEmpty()));
    EXPECT_THAT(device.token, Not(IsEmpty()));
    EXPECT_THAT(device.accessCode, Not(IsEmpty()));
    EXPECT_EQ(device.lan, nas->address());
    EXPECT_EQ(device.services,
              "http:" + std::to_string(nas->port()) + " https:" + std::to_string(nas->tlsPort()));
    EXPECT_THAT(device.users, testing::UnorderedElementsAre("anna", "ben"));
    std::int32_t count = 0xABCD;
    EXPECT_EQ(client->count(annas(), count), kDone);
    EXPECT_EQ(count, 1);
    EXPECT_EQ(cloud->requestCount("refused"), 0) << cloud->log();
}

TEST_P(LibCloud, DevicesAreFoundByTheirName) {
    std::vector<CloudDevice> devices;
    EXPECT_EQ(client->devicesNamed(annas(), L"Cellar", devices), kDone);
    ASSERT_EQ(devices.size(), 1u);
    EXPECT_EQ(devices[0].id, "nas-1");
    EXPECT_EQ(client->devicesNamed(annas(), L"Attic", devices), kDone);
    EXPECT_THAT(devices, IsEmpty());
}

TEST_P(LibCloud, WhoHasNoDeviceSeesNone) {
    const std::string bens = client->refresh("ben-refresh").access;
    std::vector<CloudDevice> devices;
    std::int32_t count = 0xABCD;
    EXPECT_EQ(client->devices(bens, devices), kDone);
    EXPECT_THAT(devices, IsEmpty());
    EXPECT_EQ(client->count(bens, count), kDone);
    EXPECT_EQ(count, 0);
    EXPECT_EQ(client->lists(bens, L"nas-1").code, 5);
    EXPECT_EQ(client->deviceId(L"ben").reply, 5);
}

TEST_P(LibCloud, TheServicesCodesAreToldApart) {
    std::vector<CloudDevice> devices;
    EXPECT_EQ(client->devices(client->signIn().access, devices), (Numbers{0, 3}));
    const std::string token = annas();
    cloud->control("POST", "users/suspend", R"({"user":"anna"})");
    EXPECT_EQ(client->devices(token, devices), (Numbers{0, 4}));
    EXPECT_EQ(client->refresh("anna-refresh").error, "access_denied");
    cloud->control("POST", "users/restore", R"({"user":"anna"})");
    EXPECT_EQ(client->devices(token, devices), kDone);
    EXPECT_EQ(client->lists(token, L"nas-2").code, 5);
}

TEST_P(LibCloud, AnAddressFromTheCloudLeadsToALogin) {
    const CloudLists lists = client->lists(annas(), L"nas-1");
    EXPECT_EQ(lists.dwStatus, 0u);
    EXPECT_EQ(lists.code, 0);
    ASSERT_THAT(lists.lan, ElementsAre(nas->address() + ":" + std::to_string(nas->port())));
    EXPECT_THAT(lists.wan, IsEmpty());
    EXPECT_THAT(lists.ddns, IsEmpty());
    EXPECT_THAT(lists.link, Not(IsEmpty()));
    Login login;
    login.port = static_cast<std::uint16_t>(std::stoi(lists.lan[0].substr(lists.lan[0].rfind(':') + 1)));
    EXPECT_EQ(login.run(), kDone);
    ASSERT_NE(login.session, nullptr);
    EXPECT_EQ(Client(login.port, std::move(login.session)).logout(), 0u);
}

TEST_P(LibCloud, TheApplicationsSecretOpensLinkAndPorts) {
    for (int i = 0; i < 20; ++i) {
        const Link link = client->link(L"nas-1");
        ASSERT_EQ(link.dwStatus, 0u) << cloud->log();
        ASSERT_EQ(link.reply, 0) << link.message;
        EXPECT_EQ(link.http, 200);
        EXPECT_EQ(link.lan, nas->address());
        EXPECT_EQ(link.wan, "203.0.113.7");
        EXPECT_EQ(link.message, "Access successfully.");
        EXPECT_THAT(link.id, Not(IsEmpty()));
        EXPECT_THAT(link.time, Not(IsEmpty()));
    }
    _CLOUD_SERVICE_PORTS ports;
    EXPECT_EQ(client->ports(L"nas-1", ports), 0u);
    EXPECT_EQ(ports.nInternalHttpPort, nas->port());
    EXPECT_EQ(ports.nInternalHttpsPort, nas->tlsPort());
    EXPECT_EQ(client->deviceId(L"anna").id, "nas-1");
    EXPECT_EQ(client->link(L"nas-2").reply, 5);
}

TEST_P(LibCloud, AnotherSecretOrApplicationIsRefusedInANumber) {
    client->secret = L"guess";
    EXPECT_EQ(client->link(L"nas-1").reply, 8);
    EXPECT_EQ(client->deviceId(L"anna").reply, 8);
    client->app = L"no-app";
    EXPECT_EQ(client->link(L"nas-1").reply, 7);
}

TEST_P(LibCloud, ThePublicAddressIsTold) {
    std::string address;
    EXPECT_EQ(client->publicIP(client->signIn().access, address), 0u);
    EXPECT_EQ(address, "203.0.113.7");
    EXPECT_EQ(client->publicIP("no-token", address), 6u);
    EXPECT_EQ(address, "");
}

TEST_P(LibCloudTimes, AClockThatIsWrongIsRefusedInANumber) {
    const Link link = client->link(L"nas-1");
    EXPECT_EQ(link.dwStatus, 0u);
    EXPECT_EQ(link.reply, 2);
    EXPECT_EQ(link.message, "X-VEXA-TIME is invalid.");
}

TEST_P(LibCloudRotating, ARefreshTokenMayServeOnce) {
    const Token token = client->refresh("anna-refresh");
    EXPECT_THAT(token.refresh, Not(testing::AnyOf("", "anna-refresh")));
    EXPECT_EQ(client->refresh("anna-refresh").error, "invalid_grant");
    EXPECT_EQ(client->refresh(token.refresh).error, "");
}

TEST_P(LibCloudOutside, TheRoadsFromOutsideAreListed) {
    const CloudLists lists = client->lists(annas(), L"nas-1");
    EXPECT_THAT(lists.wan, ElementsAre("198.51.100.4:8081"));
    EXPECT_THAT(lists.ddns, ElementsAre("cellar.example:8081"));
    EXPECT_EQ(client->link(L"nas-1").wan, "198.51.100.4");
    _CLOUD_SERVICE_PORTS ports;
    EXPECT_EQ(client->ports(L"nas-1", ports), 0u);
    EXPECT_EQ(ports.nExternalHttpPort, 8081);
    EXPECT_EQ(ports.nExternalHttpsPort, 8443);
}

TEST_P(LibCloudInside, WithoutRemoteAccessThereIsNoLink) {
    const CloudLists lists = client->lists(annas(), L"nas-1");
    EXPECT_EQ(lists.link, "");
    EXPECT_EQ(lists.lan.size(), 1u);
    EXPECT_EQ(client->link(L"nas-1").reply, 6);
    _CLOUD_SERVICE_PORTS ports;
    EXPECT_EQ(client->ports(L"nas-1", ports), 0u);
    EXPECT_EQ(ports.nInternalHttpPort, 0);
}
