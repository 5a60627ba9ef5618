#include "lib_identity.h"

#include "WebFileManShareAPI.h"
#include "support/nginx.h"
#include "support/proxy.h"

using namespace e2e;

namespace {

constexpr const wchar_t* kUid = L"0A1B2C3D-TEST-UID";
const std::vector<std::string> kFacts = {"--uid", "0A1B2C3D-TEST-UID", "--suid",         "0A1B",
                                         "--mac", "02:AB:CD:00:00:01", "--sync-version", "4.9.1"};

std::vector<std::string> facts(std::vector<std::string> more = {}) {
    more.insert(more.begin(), kFacts.begin(), kFacts.end());
    return more;
}

/// What a server of these facts says to anna.
Identity factsToAnna() {
    Identity identity;
    identity.syncService = true;
    identity.userType = 1;
    identity.uid = "0A1B2C3D-TEST-UID";
    identity.suid = "0A1B";
    identity.mac = "02:AB:CD:00:00:01";
    identity.syncVersion = "4.9.1";
    identity.versioning = "1.0";
    return identity;
}

/// Whether it comes by TLS.
class LibProbe : public testing::TestWithParam<bool> {
protected:
    Probe probe(const Nas& nas) const {
        Probe probe;
        probe.tls = GetParam();
        probe.port = GetParam() ? nas.tlsPort() : nas.port();
        return probe;
    }
    Probe probe(const Nginx& nginx) const {
        Probe probe;
        probe.tls = GetParam();
        probe.port = GetParam() ? nginx.tlsPort() : nginx.port();
        return probe;
    }
    /// A web server that has one answer to everything.
    static std::string answering(const std::string& answer) {
        return Nginx::configuration(
            "server { listen 127.0.0.1:@PORT@; listen 127.0.0.1:@TLS_PORT@ ssl;\n"
            "  ssl_certificate @CERT@; ssl_certificate_key @KEY@;\n"
            "  location / { " +
            answer + " } }");
    }
};

class LibServerFacts : public LibRoad {
protected:
    bool capabilities(const Client& client, _TORVI_INFORMATION& record) const {
        bool result = false;
        EXPECT_EQ(WebFileManGetTorviInformation(client.context(), kServer, client.port(), nullptr, nullptr,
                                                &result, &record),
                  0u);
        return result;
    }
    Numbers statics(const Client& client, _NAS_STATIC_INFORMATION& record) const {
        return numbersOf([&](std::uint32_t* result) {
            return WFMTorviGetNASStaticInfo(client.context(), kServer, client.port(), nullptr, nullptr,
                                            &record, result);
        });
    }
    Numbers status(const Client& client, bool detail, _NAS_STATUS_INFORMATION& record) const {
        return numbersOf([&](std::uint32_t* result) {
            return WFMTorviGetNASStatus(client.context(), kServer, client.port(), nullptr, detail, nullptr,
                                        result, &record);
        });
    }
    Numbers addresses(const Client& client, _DOMAIN_IP_LIST_INFORMATION& record) const {
        return numbersOf([&](std::uint32_t* result) {
            return WFMGetDomainIPList(client.context(), kServer, client.port(), 0, nullptr, nullptr, &record,
                                      result);
        });
    }
    /// Of a server with these arguments.
    Client clientOf(const Nas& nas) const { return Client(nas, GetParam()); }
};

}  // namespace

TEST_P(LibProbe, ANewServerIsAskedOnceAndTellsAllOfIt) {
    Nas nas(withArguments(facts({"--recovering", "--migrating"})));
    Identity identity, expected = factsToAnna();
    expected.recovering = expected.migrating = true;
    EXPECT_EQ(probe(nas).identity(identity), 0u);
    EXPECT_EQ(identity, expected);
    EXPECT_EQ(nas.requestCount(), 1);
    Nas plain(withArguments(facts({"--no-versioning"})));
    expected = factsToAnna();
    expected.versioning.clear();
    EXPECT_EQ(probe(plain).identity(identity), 0u);
    EXPECT_EQ(identity, expected);
}

TEST_P(LibProbe, ANameOfAnyScriptArrivesWhole) {
    Nas::Options options;
    options.users = {"jo & söhne+書類%2F:p:admin", "jo:p"};
    Nas nas(options);
    Probe toJo = probe(nas);
    Identity identity;
    for (const auto& [user, type] :
         {std::pair(wide("jo & söhne+書類%2F"), 1u), std::pair(std::wstring(L"jo"), 0u),
          std::pair(std::wstring(L"nobody"), 0u)}) {
        toJo.user = user;
        EXPECT_EQ(toJo.identity(identity), 0u);
        EXPECT_EQ(identity.userType, type) << utf8(user);
    }
    EXPECT_EQ(nas.requestCount("refused"), 0) << nas.log();
}

TEST_P(LibProbe, AnOldServerIsAskedAgainAtTheOldPlace) {
    Nas nas(withArguments({"--uid", "0A1B2C3D-TEST-UID", "--no-sync-service"}));
    Identity identity;
    EXPECT_EQ(probe(nas).identity(identity), 0u);
    EXPECT_FALSE(identity.syncService);
    EXPECT_EQ(identity.uid, "0A1B2C3D-TEST-UID");
    EXPECT_EQ(identity.syncVersion, "");
    EXPECT_EQ(nas.requestCount("identity"), 1);
    EXPECT_EQ(nas.requestCount(), 2);
}

TEST_P(LibProbe, AnOldPlaceThatTellsOfTheServiceSendsBackToTheNewOneOnce) {
    Nas nas(withArguments(facts({"--no-sync-service"})));
    Identity identity;
    EXPECT_EQ(probe(nas).identity(identity), 0u);
    EXPECT_EQ(identity.syncVersion, "4.9.1");
    EXPECT_EQ(nas.requestCount("identity"), 2);
    EXPECT_EQ(nas.requestCount(), 4);
    // With a service that has come meanwhile, the third request is the last.
    Nas late(withArguments(facts()));
    late.arm("http-status,match=identity,status=404");
    EXPECT_EQ(probe(late).identity(identity), 0u);
    EXPECT_EQ(identity, factsToAnna());
    EXPECT_EQ(late.requestCount("identity"), 2);
    EXPECT_THAT(late.log(), testing::HasSubstr("filemanager/torviPrepare.cgi func=identity"));
}

TEST_P(LibProbe, AServerThatBootsSaysSoAtTheOldPlaceUntilItHasBooted) {
    Nas nas(withArguments(facts({"--booting"})));
    Identity identity, expected = factsToAnna();
    expected.booting = true;
    EXPECT_EQ(probe(nas).identity(identity), 0u);
    EXPECT_EQ(identity, expected);
    EXPECT_EQ(nas.requestCount(), 2);
    nas.control("POST", "boot/end");
    nas.forgetRequests();
    EXPECT_EQ(probe(nas).identity(identity), 0u);
    EXPECT_EQ(identity, factsToAnna());
    EXPECT_EQ(nas.requestCount(), 1);
}

TEST_P(LibProbe, AServerThatInsistsOnTlsIsFollowedIfTheClientKnowsWhere) {
    Nas nas(withArguments(facts({"--redirect-tls"})));
    Probe lost = probe(nas), led = probe(nas);
    led.tlsPort = nas.tlsPort();
    Identity identity;
    EXPECT_EQ(lost.identity(identity), GetParam() ? 0u : 6u);
    EXPECT_EQ(identity, GetParam() ? factsToAnna() : Identity());
    nas.forgetRequests();
    EXPECT_EQ(led.identity(identity), 0u);
    EXPECT_EQ(identity, factsToAnna());
    EXPECT_EQ(nas.requestCount("identity"), GetParam() ? 1 : 2);
    // A redirect is no answer of the server that is looked for, but an answer.
    EXPECT_EQ(led.isServer(kUid), GetParam() ? 0u : 14u);
    EXPECT_EQ(led.isServer(nullptr), 0u);
}

TEST_P(LibProbe, ACancelledQuestionIsNotAsked) {
    Nas nas;
    bool cancel = true;
    Probe cancelled = probe(nas);
    cancelled.cancel = &cancel;
    Identity identity;
    EXPECT_EQ(cancelled.identity(identity), 2u);
    EXPECT_EQ(nas.requestCount(), 0);
    cancel = false;
    EXPECT_EQ(cancelled.identity(identity), 0u);
}

TEST_P(LibProbe, WhatIsNoSuchServerIsToldApart) {
    struct Row {
        const char* answer;
        std::uint32_t identity, byUid, byAny;
    } const rows[] = {{"return 404;", 10, 10, 10},
                      {"return 503;", 12, 12, 12},
                      {"return 500;", 6, 6, 6},
                      {"return 200 'hello';", 14, 14, 0},
                      {"return 200 '[]';", 14, 14, 0}};
    for (const Row& row : rows) {
        const Nginx other(answering(row.answer));
        Identity identity;
        EXPECT_EQ(probe(other).identity(identity), row.identity) << row.answer;
        EXPECT_EQ(identity, Identity());
        EXPECT_EQ(probe(other).isServer(kUid), row.byUid) << row.answer;
        EXPECT_EQ(probe(other).isServer(nullptr), row.byAny) << row.answer;
    }
}

TEST_P(LibProbe, AServerThatIsGoneOrSilentIsNotConnected) {
    Nas nas;
    nas.arm("stall,match=identity,count=-1");
    Probe hasty = probe(nas);
    hasty.timeoutMs = 300;
    Identity identity;
    EXPECT_EQ(hasty.identity(identity), 2u);
    EXPECT_EQ(hasty.isServer(kUid), 2u);
    EXPECT_EQ(nas.requestCount("identity"), 2);
    nas.stop();
    EXPECT_EQ(probe(nas).identity(identity), 2u);
    EXPECT_EQ(probe(nas).isServer(kUid), 2u);
}

TEST_P(LibProbe, AnAddressIsValidIfTheServerOfThatIdentityAnswers) {
    Nas nas(withArguments(facts())), other(withArguments({"--uid", "another"}));
    EXPECT_EQ(probe(nas).isServer(kUid), 0u);
    EXPECT_EQ(probe(nas).isServer(L"0a1b2c3d-test-uid"), 0u);
    EXPECT_EQ(probe(nas).isServer(L"0A1B2C3D-TEST-UI"), 14u);
    EXPECT_EQ(probe(other).isServer(kUid), 14u);
    EXPECT_EQ(probe(other).isServer(L""), 0u);
    EXPECT_EQ(probe(other).isServer(nullptr), 0u);
    EXPECT_EQ(nas.requestCount("identity"), 3);
}

TEST_P(LibProbe, AnOldServersAddressIsValidAsWell) {
    Nas nas(withArguments({"--uid", "0A1B2C3D-TEST-UID", "--no-sync-service"}));
    EXPECT_EQ(probe(nas).isServer(kUid), 0u);
    EXPECT_EQ(nas.requestCount(), 2);
    EXPECT_EQ(probe(nas).isServer(L"another"), 14u);
}

TEST_P(LibProbe, ItGoesThroughAProxyThatMayRefuse) {
    Nas nas(withArguments(facts()));
    const TinyProxy proxy("jo", "letmein");
    Probe through = probe(nas);
    through.proxyMode = 2;
    through.proxyHost = proxy.hostAndPort();
    through.proxyUser = L"jo";
    through.proxyPassword = L"letmein";
    Identity identity;
    EXPECT_EQ(through.identity(identity), 0u);
    EXPECT_EQ(identity, factsToAnna());
    EXPECT_EQ(through.isServer(kUid), 0u);
    EXPECT_TRUE(proxy.waitForLog(GetParam() ? "CONNECT 127.0.0.1:" + std::to_string(nas.tlsPort())
                                            : "GET http://127.0.0.1:" + std::to_string(nas.port())));
    nas.forgetRequests();
    through.proxyPassword = L"wrong";
    EXPECT_EQ(through.identity(identity), 11u);
    EXPECT_EQ(through.isServer(kUid), 11u);
    EXPECT_EQ(nas.requestCount(), 0);
}

TEST_P(LibServerFacts, ASessionHearsTheSameIdentityAsAProbe) {
    Nas told(withArguments(facts()));
    const Client anna = clientOf(told), ben(told, GetParam(), L"ben", L"hidden");
    Identity identity, expected = factsToAnna();
    EXPECT_EQ(ownIdentity(anna, identity), 0u);
    EXPECT_EQ(identity, expected);
    EXPECT_EQ(ownIdentity(ben, identity), 0u);
    expected.userType = 0;
    EXPECT_EQ(identity, expected);
    told.expireSessions();
    EXPECT_EQ(ownIdentity(anna, identity), 0u);
    EXPECT_EQ(identity, Identity());
    EXPECT_EQ(told.requestCount("refused"), 0) << told.log();
}

TEST_P(LibServerFacts, TheServiceTellsWhatTheUserHas) {
    _TORVI_INFORMATION record;
    EXPECT_TRUE(capabilities(client, record));
    EXPECT_TRUE(record.bFunctionEnable && record.bUserEnable && record.bHomeIsExist);
    EXPECT_FALSE(record.bTeamFolderIsExist || record.bClusterSupport);
    EXPECT_EQ(record.nClusterStatus, 0);
    EXPECT_STREQ(record.szSlaveID, L"");

    // The user's own switch doesn't show.
    Nas other(withArguments({"--team", "ben:/home/Plans:anna", "--no-sync-for", "anna"}));
    const Client anna = clientOf(other);
    EXPECT_TRUE(capabilities(anna, record));
    EXPECT_TRUE(record.bFunctionEnable && record.bUserEnable && record.bTeamFolderIsExist);
    std::filesystem::remove_all(other.folder().file("homes/anna"));
    EXPECT_TRUE(capabilities(anna, record));
    EXPECT_FALSE(record.bHomeIsExist);

    Nas disabled(withArguments({"--sync-disabled"}));
    EXPECT_TRUE(capabilities(clientOf(disabled), record));
    EXPECT_FALSE(record.bFunctionEnable || record.bUserEnable);

    Nas node(withArguments({"--slave-id", "node 7"}));
    EXPECT_TRUE(capabilities(clientOf(node), record));
    EXPECT_TRUE(record.bClusterSupport);
    EXPECT_EQ(record.nClusterStatus, 1);
    EXPECT_STREQ(record.szSlaveID, L"node 7");
    nas.expireSessions();
    EXPECT_FALSE(capabilities(client, record));
    EXPECT_FALSE(record.bFunctionEnable || record.bHomeIsExist);
}

TEST_P(LibServerFacts, TheModelAndItsLimitsAreTold) {
    Nas told(withArguments({"--model", "Büro 書類 9", "--firmware", "6.0.1.20260401", "--queue-limit",
                            "5000000000", "--message-queue-limit", "77"}));
    const Client anna = clientOf(told);
    auto record = std::make_unique<_NAS_STATIC_INFORMATION>();
    EXPECT_EQ(statics(anna, *record), kDone);
    EXPECT_EQ(utf8(record->szModel), "Büro 書類 9");
    EXPECT_STREQ(record->szFirmwareVersion, L"6.0.1.20260401");
    EXPECT_EQ(record->llQueueLimit, 5000000000);
    EXPECT_EQ(record->llMessageQueueLimit, 77);
    told.expireSessions();
    EXPECT_EQ(statics(anna, *record), (Numbers{0, -29}));
    EXPECT_STREQ(record->szModel, L"");
    EXPECT_EQ(record->llQueueLimit, 0);
}

TEST_P(LibServerFacts, TheStatusTellsWhatIsInOrder) {
    _NAS_STATUS_INFORMATION record;
    EXPECT_EQ(status(client, true, record), kDone);
    EXPECT_TRUE(record.bHomeFolderEnable && record.bRecycleBinEnable && record.bDeviceDBExist &&
                record.bLogDBExist && record.bShareDBExist && record.bUserEnable &&
                record.bVersioningEnable && record.bNuboVersioningEnable && record.bHomeFolderAvailable);
    EXPECT_FALSE(record.bRecovering);
    EXPECT_STREQ(record.szVersioningVersion, L"1.0");

    Nas poor(withArguments({"--recovering", "--no-versioning", "--no-sync-for", "anna"}));
    EXPECT_EQ(status(clientOf(poor), false, record), kDone);
    EXPECT_TRUE(record.bRecovering && record.bHomeFolderAvailable);
    EXPECT_FALSE(record.bDeviceDBExist || record.bLogDBExist || record.bShareDBExist || record.bUserEnable ||
                 record.bVersioningEnable || record.bNuboVersioningEnable);
    EXPECT_STREQ(record.szVersioningVersion, L"");
    nas.expireSessions();
    EXPECT_EQ(status(client, false, record), (Numbers{0, -29}));
    EXPECT_FALSE(record.bHomeFolderAvailable);
}

TEST_P(LibServerFacts, AHomeThatIsGoneShowsToACloseLookAtTheSyncServiceAlone) {
    std::filesystem::remove_all(nas.folder().file("homes/anna"));
    _NAS_STATUS_INFORMATION record;
    EXPECT_EQ(status(client, false, record), kDone);
    EXPECT_TRUE(record.bHomeFolderAvailable);
    EXPECT_EQ(status(client, true, record), kDone);
    EXPECT_EQ(record.bHomeFolderAvailable, !isSync());
}

TEST_P(LibServerFacts, EachAddressThatTheServerTellsAnswersAsThatServer) {
    // The way from outside leads to a server of the same identity, or to another one.
    Nas outside(withArguments(facts())), stranger;
    for (const auto* far : {&outside, &stranger}) {
        Nas inside(withArguments(
            facts({"--peltnet-name", "büro.example.org", "--ddns-name", "nas.example.net",
                   "--external-address", "127.0.0.1", "--external-port", std::to_string(far->port()),
                   "--external-tls-port", std::to_string(far->tlsPort())})));
        const Client anna = clientOf(inside);
        auto record = std::make_unique<_DOMAIN_IP_LIST_INFORMATION>();
        EXPECT_EQ(addresses(anna, *record), kDone);
        EXPECT_EQ(utf8(record->szPeltnetHostName), "büro.example.org");
        EXPECT_STREQ(record->szDdnsHostName, L"nas.example.net");
        EXPECT_EQ(record->nPort, inside.port());
        EXPECT_EQ(record->nSslPort, inside.tlsPort());
        Identity identity;
        EXPECT_EQ(ownIdentity(anna, identity), 0u);
        const std::wstring uid = wide(identity.uid);
        const auto answers = [&](const wchar_t* server, std::int32_t port, bool tls) {
            return WFMValidIP(server, static_cast<std::uint32_t>(port), 0, tls, L"anna", uid.c_str(), kAgent,
                              0, nullptr, nullptr, nullptr, nullptr, nullptr, 0);
        };
        for (const wchar_t* server : {record->szLocalIP, record->szHostIP, record->szLocalIPList}) {
            EXPECT_EQ(answers(server, record->nPort, false), 0u) << utf8(server);
            EXPECT_EQ(answers(server, record->nSslPort, true), 0u) << utf8(server);
        }
        const std::uint32_t expected = far == &outside ? 0 : 14;
        EXPECT_EQ(answers(record->szExternalIP, record->nExtPort, false), expected);
        EXPECT_EQ(answers(record->szExternalIP, record->nExtSslPort, true), expected);
        EXPECT_EQ(inside.requestCount("refused"), 0) << inside.log();
    }
}

TEST_P(LibServerFacts, ANameThatIsTooLongIsLeftOutAlone) {
    Nas told(withArguments({"--peltnet-name", std::string(259, 'x'), "--ddns-name", std::string(258, 'y')}));
    const Client anna = clientOf(told);
    auto record = std::make_unique<_DOMAIN_IP_LIST_INFORMATION>();
    EXPECT_EQ(addresses(anna, *record), (Numbers{0, 8}));
    EXPECT_STREQ(record->szPeltnetHostName, L"");
    EXPECT_EQ(std::wstring(record->szDdnsHostName), std::wstring(258, L'y'));
    EXPECT_STREQ(record->szLocalIP, L"127.0.0.1");
    EXPECT_EQ(record->nPort, told.port());
    told.expireSessions();
    EXPECT_EQ(addresses(anna, *record), (Numbers{0, -1}));
    EXPECT_STREQ(record->szLocalIP, L"");
}

INSTANTIATE_TEST_SUITE_P(ByTls, LibProbe, testing::Bool());
E2E_ON_ALL_ROADS(LibServerFacts);
