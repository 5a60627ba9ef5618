#include "lib_config.h"

using namespace e2e;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

namespace {

// The server's own statuses, which saves and resets hand on.
constexpr Numbers kDenied{0, 4}, kMissing{0, 5};
/// From the calls that ask.
constexpr Numbers kNothingSaved{0, -4};

const ConfigItem kPolicy = {WFM_CONFIG_CONFLICT_POLICY, L"2"};
const ConfigItem kFilter = {WFM_CONFIG_BLACK_FILE_FILTER, L"*.tmp\t~*\t書類*"};
const ConfigItem kMailPassword = {WFM_CONFIG_MAIL_SENDER_PASSWORD, L"pässword+/="};

/// anna is an administrator, ben isn't. All log in from a device whose uid is "uid".
class LibConfig : public LibRoad {
protected:
    explicit LibConfig(std::vector<std::string> arguments = {})
        : LibRoad(withArguments(std::move(arguments))) {}

    static std::vector<ConfigItem> items(const Client& client, const std::wstring& device,
                                         std::int32_t mode = kInEffect) {
        ConfigQuestion question{device, mode};
        EXPECT_EQ(ask(client, question), kDone);
        return question.items;
    }
    std::vector<std::string> changes(const Client& client, const std::wstring& user = {}) {
        ConfigChanges question{user, {}};
        EXPECT_EQ(ask(client, question), kDone);
        return question.changes;
    }

    Client ben{nas, GetParam(), L"ben", L"hidden"};
};

class LibConfigRules : public LibConfig {
protected:
    LibConfigRules()
        : LibConfig({"--config-acl", "Policy:conflict Policy:0", "--config-acl",
                     "Admin:use manager password:1", "--config-password", "k€y+"}) {}
};

}  // namespace

E2E_ON_ALL_ROADS(LibConfig);
E2E_ON_ALL_ROADS(LibConfigRules);

TEST_P(LibConfig, WhatIsSetForADeviceIsWhatItGets) {
    EXPECT_THAT(items(client, L"desk"), IsEmpty());
    EXPECT_EQ(save(client, {L"desk", {kPolicy, kFilter, kMailPassword}}), kDone);
    EXPECT_THAT(items(client, L"desk"), UnorderedElementsAre(kPolicy, kFilter, kMailPassword));
    EXPECT_EQ(save(client, {L"desk", {{kPolicy.flag, L""}}}), kDone);
    EXPECT_THAT(items(client, L"desk"),
                UnorderedElementsAre(ConfigItem{kPolicy.flag, L""}, kFilter, kMailPassword));
    EXPECT_THAT(items(client, L"lap"), IsEmpty());
    // The same device under another user is another one.
    EXPECT_THAT(items(ben, L"desk"), IsEmpty());
    EXPECT_EQ(nas.requestCount("refused"), 0) << nas.log();
}

TEST_P(LibConfig, AllFourteenItemsComeBack) {
    std::vector<ConfigItem> all;
    for (std::uint32_t flag = 1; flag <= WFM_CONFIG_MANUAL_VERSION; flag *= 2)
        all.push_back({flag, L"value " + std::to_wstring(flag)});
    EXPECT_EQ(save(client, {L"desk", all}), kDone);
    EXPECT_THAT(items(client, L"desk"), testing::UnorderedElementsAreArray(all));
}

TEST_P(LibConfig, TheTemplateHoldsUntilADeviceHasItsOwn) {
    ConfigChange change{L"desk", {kPolicy, kFilter}};
    change.asTemplate = true;
    EXPECT_EQ(save(client, change), kDone);
    EXPECT_THAT(items(client, L"lap"), UnorderedElementsAre(kPolicy, kFilter));
    EXPECT_EQ(save(client, {L"lap", {{kPolicy.flag, L"1"}}}), kDone);
    EXPECT_THAT(items(client, L"lap"), UnorderedElementsAre(ConfigItem{kPolicy.flag, L"1"}, kFilter));
    EXPECT_THAT(items(client, L"lap", kDevicesOwn), ElementsAre(ConfigItem{kPolicy.flag, L"1"}));
    EXPECT_THAT(items(client, L"lap", kTemplate), UnorderedElementsAre(kPolicy, kFilter));
}

TEST_P(LibConfig, ACheckFindsThatNothingIsSaved) {
    ConfigQuestion question{L"desk", kInEffect, true};
    EXPECT_EQ(ask(client, question), kNothingSaved);
    EXPECT_THAT(question.items, IsEmpty());
    EXPECT_EQ(save(client, {L"desk", {kPolicy}}), kDone);
    EXPECT_EQ(ask(client, question), kDone);
    EXPECT_THAT(question.items, ElementsAre(kPolicy));
}

TEST_P(LibConfig, AResetTakesBackWhatIsTheDevicesOwn) {
    EXPECT_EQ(save(client, {L"desk", {kPolicy}}), kDone);
    EXPECT_EQ(resetConfig(client, L"desk"), kDone);
    EXPECT_THAT(items(client, L"desk"), IsEmpty());
    EXPECT_EQ(resetConfig(client, L"lap"), kMissing);
    EXPECT_EQ(resetConfig(ben, L"desk"), kDenied);
    EXPECT_EQ(resetConfig(client, L"desk", L"nobody"), kMissing);
}

TEST_P(LibConfig, AnAdministratorActsForOthersAndTheyHearOfIt) {
    ConfigChange change{L"desk", {kPolicy, kFilter}, L"ben"};
    change.items[0].atOnce = true;
    EXPECT_EQ(save(client, change), kDone);
    EXPECT_EQ(save(ben, {L"desk", {kPolicy}, L"anna"}), kDenied);
    EXPECT_EQ(resetConfig(client, L"desk", L"ben"), kDone);
    const std::string saved =
                          "ben/desk type 1 action 1 status 1 by anna: Policy/conflict Policy;Policy/black "
                          "file filter",
                      reset = "ben/desk type 3 action 1 status 1 by anna: ";
    EXPECT_THAT(changes(ben), ElementsAre(saved, reset));
    EXPECT_THAT(changes(client), ElementsAre(saved, reset));
    EXPECT_THAT(changes(client, L"ben"), ElementsAre(saved, reset));
    EXPECT_THAT(changes(client, L"anna"), IsEmpty());
    ConfigChanges second{L"ben", L"desk", 1, 2};
    EXPECT_EQ(ask(ben, second), kDone);
    EXPECT_THAT(second.changes, ElementsAre(reset));
    ConfigChanges elsewhere{L"ben", L"lap"};
    EXPECT_EQ(ask(ben, elsewhere), kDone);
    EXPECT_THAT(elsewhere.changes, IsEmpty());

    // ben's device takes notice.
    EXPECT_THAT(items(ben, L"desk"), IsEmpty());
    EXPECT_THAT(changes(ben), ElementsAre(testing::HasSubstr("status 2"), testing::HasSubstr("status 2")));
}

TEST_P(LibConfig, WhatOneChangesOneselfIsNoNews) {
    EXPECT_EQ(save(ben, {L"desk", {kPolicy}, L"ben"}), kDone);
    EXPECT_THAT(changes(ben), IsEmpty());
    ConfigChanges askedByAnother{L"anna"};
    EXPECT_EQ(ask(ben, askedByAnother).dwStatus, 14u);
}

TEST_P(LibConfig, DevicesAreListedFromTheirLoginOn) {
    Devices devices;
    EXPECT_EQ(ask(client, devices), kDone);
    EXPECT_EQ(devices.total, 1u);
    EXPECT_THAT(devices.devices, ElementsAre("computer at uid"));
    EXPECT_EQ(save(client, {L"desk", {kPolicy}}), kDone);
    EXPECT_EQ(ask(client, devices), kDone);
    EXPECT_EQ(devices.total, 2u);
    EXPECT_THAT(devices.devices, UnorderedElementsAre(" at desk", "computer at uid"));

    devices.capacity = 1;
    EXPECT_EQ(ask(client, devices), (Numbers{0, 122}));
    EXPECT_EQ(devices.count, 2u);
    devices.upper = 1;
    EXPECT_EQ(ask(client, devices), kDone);
    EXPECT_EQ(devices.total, 2u);
    EXPECT_EQ(devices.devices.size(), 1u);

    Devices bens;
    bens.user = L"ben";
    EXPECT_EQ(ask(client, bens), kDone);
    EXPECT_EQ(bens.total, 1u);
    Devices annas;
    EXPECT_EQ(ask(ben, annas).dwStatus, 14u);
}

TEST_P(LibConfig, AllOfItOutlivesTheServer) {
    EXPECT_EQ(save(client, {L"desk", {kFilter}, L"ben"}), kDone);
    EXPECT_EQ(nas.stop(), 0);
    nas.startAgain();
    const Client again(nas, GetParam(), L"ben", L"hidden");
    EXPECT_THAT(items(again, L"desk"), ElementsAre(kFilter));
    EXPECT_EQ(changes(again).size(), 1u);
}

TEST_P(LibConfig, ASessionThatIsOverIsRefused) {
    nas.expireSessions();
    ConfigQuestion question{L"desk"};
    EXPECT_EQ(ask(client, question).dwStatus, 14u);
    EXPECT_EQ(save(client, {L"desk", {kPolicy}}), (Numbers{0, 3}));
}

TEST_P(LibConfigRules, TheRulesAreTold) {
    WFM_TORVI_CONFIG_ACL_INFO acl = {};
    EXPECT_EQ(configAcl(ben, acl), kDone);
    EXPECT_EQ(acl.dwManagerMode, 1u);
    EXPECT_EQ(acl.dwUseManagerPassword, 1u);
    EXPECT_EQ(acl.dwClientSetConfig, 1u);
    EXPECT_EQ(acl.dwSmartSync, 1u);
    EXPECT_EQ(acl.dwConflictPolicy, 0u);
    EXPECT_EQ(acl.dwBlackFileFilter, 1u);
    EXPECT_EQ(acl.dwMails, 1u);
}

TEST_P(LibConfigRules, ThePasswordOpensWhatIsNotLeftToUsers) {
    ConfigChange change{L"desk", {kFilter, kPolicy}, L"ben"};
    EXPECT_EQ(save(ben, change), kDenied);
    EXPECT_THAT(items(ben, L"desk"), IsEmpty());
    change.password = L"guess";
    EXPECT_EQ(save(ben, change), kDenied);
    change.password = L"k€y+";
    EXPECT_EQ(save(ben, change), kDone);
    EXPECT_THAT(items(ben, L"desk"), UnorderedElementsAre(kFilter, kPolicy));
    EXPECT_EQ(save(ben, {L"desk", {{kFilter.flag, L"*"}}, L"ben"}), kDone);
    EXPECT_EQ(save(client, {L"desk", {kPolicy}}), kDone);
}

TEST_P(LibConfigRules, ThePasswordCanBeTried) {
    std::int32_t answer = 0;
    EXPECT_EQ(tryPassword(ben, L"k€y+", answer), kDone);
    EXPECT_EQ(answer, 1);
    EXPECT_EQ(tryPassword(ben, L"guess", answer), kDone);
    EXPECT_EQ(answer, 0);
    EXPECT_EQ(nas.requestCount("refused"), 0) << nas.log();
}
