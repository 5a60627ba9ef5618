#include "lib_sharing.h"

using namespace e2e;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

namespace {

/// What a user gets in a team folder that was taken away, and in one that nobody shares any more.
constexpr Numbers kLost{0, 5}, kUnshared{0, 3};
constexpr Numbers kRefused{0, -1};
/// Nothing was sent.
constexpr Numbers kUnasked{8, 0xABCD};

class LibTeamFolders : public LibSharing {};
class LibEvents : public LibSharing {};

class LibShare : public LibSharing {
protected:
    using LibSharing::LibSharing;
    /// What a user has of a share that is over: nothing at the sync service, an event at the file manager.
    void expectOver(const Client& user, std::int32_t how) const {
        if (isSync())
            EXPECT_THAT(names(user, 0), IsEmpty());
        else
            EXPECT_EQ(the(user, kOver).status, how);
    }
};

class LibStuckShare : public LibShare {
protected:
    LibStuckShare() : LibShare({"--job-delay", "3600000", "--team", "anna:/home/Photos:ben"}) {
        learnReceived(device);
    }
};

class LibSlowShare : public LibShare {
protected:
    LibSlowShare() : LibShare({"--job-delay", "200", "--team", "anna:/home/Photos:ben"}) {
        learnReceived(device);
    }
    /// Until the folder has gone from ben's list; at once from then on it is out of reach.
    void waitUntilItIsGone() const {
        while (!names(ben, kReceived).empty()) {
        }
    }
};

}  // namespace

TEST_P(LibShare, AnInvitationWaitsUntilItIsAcceptedAndTheFolderAppears) {
    std::wstring pid, file, again;
    std::int32_t status = -1;
    EXPECT_EQ(shareTo(client, {L"ben", L"carl"}, L"/home/Photos", pid, &status), kDone);
    EXPECT_EQ(status, 0);
    EXPECT_TRUE(finishes(client, pid));
    EXPECT_THAT(names(ben, kInvited), ElementsAre("Photos"));
    EXPECT_THAT(names(ben, kReceived), IsEmpty());
    EXPECT_THAT(names(device, kReceived), IsEmpty());

    const Shared invitation = the(ben, kInvited);
    EXPECT_EQ(e2e::accept(ben, invitation, L"Pictures", file), kDone);
    EXPECT_EQ(file, shownPath());
    EXPECT_THAT(names(ben, kInvited), IsEmpty());
    EXPECT_THAT(names(ben, kReceived), ElementsAre(shown()));
    EXPECT_THAT(names(carl, kInvited), ElementsAre("Photos"));
    EXPECT_EQ(e2e::accept(ben, invitation, L"Again", again), (Numbers{0, -15}));

    learnReceived(device);
    Pages area;
    area.path = L"/home/.Torvi";
    std::vector<Entry> entries;
    EXPECT_EQ(device.page(area, entries), kDone);
    EXPECT_THAT(e2e::names(entries), ElementsAre(shown()));
    std::string bytes;
    EXPECT_EQ(device.download(file + L"/p", bytes), kDone);
    EXPECT_EQ(bytes, "picture");
    EXPECT_EQ(device.upload({"more", file + L"/q 書類"}), kDone);
    EXPECT_EQ(nas.folder().read("homes/anna/Photos/q 書類"), "more");
    EXPECT_EQ(nas.requestCount("refused"), 0) << nas.log();
}

TEST_P(LibShare, ADeniedInvitationIsGone) {
    share({L"ben"});
    const Shared invitation = the(ben, kInvited);
    EXPECT_EQ(deny(carl, invitation), kRefused);
    EXPECT_EQ(leave(ben, invitation), kRefused);
    EXPECT_EQ(deny(ben, invitation), kDone);
    EXPECT_THAT(names(ben, kInvited | kReceived), IsEmpty());
    expectOver(ben, kDenied);
    std::wstring file;
    EXPECT_EQ(e2e::accept(ben, invitation, L"Pictures", file), (Numbers{0, -4}));
    EXPECT_EQ(file, L"");
    EXPECT_EQ(deny(ben, invitation), kRefused);
    // The folder stays shared; whoever said no can be asked again.
    share({L"ben"});
    EXPECT_THAT(names(ben, kInvited), ElementsAre("Photos"));
    EXPECT_EQ(nas.requestCount("refused"), 0) << nas.log();
}

TEST_P(LibShare, WhoLeavesLosesTheFolder) {
    shareWithBen();
    EXPECT_EQ(reach(), kDone);
    const Shared received = the(ben, kReceived, shown());
    EXPECT_EQ(deny(ben, received), kRefused);
    EXPECT_EQ(leave(carl, received), kRefused);
    EXPECT_EQ(leave(ben, received), kDone);
    EXPECT_EQ(reach(), kLost);
    EXPECT_THAT(names(ben, kReceived), IsEmpty());
    expectOver(ben, kLeft);
    EXPECT_EQ(leave(ben, received), kRefused);
    EXPECT_EQ(nas.folder().read("homes/anna/Photos/p"), "picture");
    EXPECT_EQ(nas.requestCount("refused"), 0) << nas.log();
}

TEST_P(LibShare, TheOwnerKicksOutOneMember) {
    share({L"ben", L"carl"});
    accept();
    Members members;
    members.share = the(client, kOwned);
    members.onlyMembers = true;
    ASSERT_EQ(ask(client, members), kDone);
    ASSERT_THAT(namesOf(members.members), ElementsAre("ben", "carl"));
    Shared bens = members.share;
    bens.event = members.members[0].event;
    EXPECT_EQ(kickOut(ben, bens), kRefused);
    if (isSync()) {
        // The share alone doesn't say who of several is meant.
        EXPECT_EQ(kickOut(client, bens), kRefused);
        EXPECT_EQ(deny(carl, the(carl, kInvited)), kDone);
    }
    EXPECT_EQ(reach(), kDone);
    EXPECT_EQ(kickOut(client, bens), kDone);
    EXPECT_EQ(reach(), kLost);
    expectOver(ben, kTakenAway);
    EXPECT_EQ(names(carl, kInvited).size(), isSync() ? 0u : 1u);
    EXPECT_EQ(kickOut(client, bens), kRefused);
    EXPECT_EQ(nas.requestCount("refused"), 0) << nas.log();
}

TEST_P(LibShare, UnshareTakesTheFolderFromAllAndLeavesItToItsOwner) {
    share({L"ben", L"carl"});
    accept();
    const Shared photos = the(client, kOwned);
    std::wstring pid;
    EXPECT_EQ(unshare(ben, photos, pid), kRefused);
    EXPECT_EQ(pid, L"");
    EXPECT_EQ(unshare(client, photos, pid), kDone);
    EXPECT_TRUE(finishes(client, pid));
    EXPECT_EQ(reach(), kUnshared);
    EXPECT_THAT(names(client, kOwned), IsEmpty());
    EXPECT_THAT(names(carl, kInvited), IsEmpty());
    expectOver(ben, kTakenAway);
    expectOver(carl, kTakenAway);
    EXPECT_EQ(nas.folder().read("homes/anna/Photos/p"), "picture");
    EXPECT_EQ(unshare(client, photos, pid), kRefused);
    EXPECT_EQ(nas.requestCount("refused"), 0) << nas.log();
}

TEST_P(LibShare, AProcessIdThatDoesntFitIsToldAndTheJobRunsAllTheSame) {
    share({L"ben"});
    std::wstring pid;
    EXPECT_EQ(unshare(client, the(client, kOwned), pid, 1), (Numbers{0, 122}));
    EXPECT_EQ(pid, L"");
    while (!names(client, kOwned).empty()) {
    }
    EXPECT_THAT(names(ben, kInvited), IsEmpty());
}

TEST_P(LibShare, OnlyAFolderOfOnesOwnIsSharedAndOnlyWithUsers) {
    put("file", "x");
    struct Row {
        const wchar_t* path;
        const wchar_t* target;
        std::int32_t status;
    } const rows[] = {{L"/home/Photos", L"nobody", -4}, {L"/home/Photos", L"anna", -3},
                      {L"/home/none", L"ben", -4},      {L"/home/file", L"ben", -4},
                      {L"/home", L"ben", -3},           {L"/Public", L"ben", -3}};
    std::filesystem::create_directories(nas.folder().file("Public"));
    for (const Row& row : rows) {
        std::wstring pid;
        std::int32_t status = 0;
        EXPECT_EQ(shareTo(client, {row.target}, row.path, pid, &status), kRefused) << utf8(row.path);
        EXPECT_EQ(status, row.status) << utf8(row.path);
        EXPECT_EQ(pid, L"");
    }
    EXPECT_THAT(names(client, kOwned), IsEmpty());
    EXPECT_EQ(nas.requestCount("refused"), 0) << nas.log();
}

TEST_P(LibShare, TwoFoldersOfOneNameAreToldApart) {
    nas.folder().write("Public/Photos/other", "other");
    shareWithBen();
    share({L"ben"}, L"/Public/Photos");
    const Shared other = the(ben, kInvited);
    std::wstring file;
    if (isSync()) {
        EXPECT_EQ(e2e::accept(ben, other, L"Pictures", file), (Numbers{0, -15}));
        EXPECT_EQ(e2e::accept(ben, other, L"Büro & 書類", file), kDone);
        EXPECT_EQ(utf8(file), "/home/.Torvi/Büro & 書類");
    } else {
        EXPECT_EQ(e2e::accept(ben, other, L"", file), kDone);
        EXPECT_EQ(utf8(file), "/home/.Torvi/Photos (2)");
    }
    learnReceived(device);
    EXPECT_EQ(reach(), kDone);
    EXPECT_EQ(device.stat(file, L"other"), kDone);
    EXPECT_EQ(nas.requestCount("refused"), 0) << nas.log();
}

TEST_P(LibShare, WhatWasReceivedIsNotSharedOn) {
    shareWithBen();
    std::wstring pid;
    const std::int64_t before = nas.requestCount();
    EXPECT_EQ(shareTo(device, {L"carl"}, shownPath() + L"/deep", pid), (Numbers{8, -1}));
    _WFM_TORVI_SHARE_FOLDER_INFORMATION record;
    std::int32_t status = 0;
    EXPECT_EQ(folderInformation(device, shownPath(), status, record), (Numbers{8, -1}));
    EXPECT_EQ(status, -1);
    EXPECT_EQ(nas.requestCount(), before);
}

TEST_P(LibShare, APolicyAnswersForTheReceiver) {
    EXPECT_EQ(policy(ben), 0u);
    EXPECT_EQ(setPolicy(ben, 1), kDone);
    EXPECT_EQ(setPolicy(carl, 2), kDone);
    EXPECT_EQ(policy(ben), 1u);
    EXPECT_EQ(policy(carl), 2u);
    EXPECT_EQ(policy(client), 0u);
    std::wstring pid;
    std::int32_t status = 0;
    EXPECT_EQ(shareTo(client, {L"ben", L"carl"}, L"/home/Photos", pid, &status), kRefused);
    EXPECT_EQ(status, -3);
    EXPECT_THAT(names(client, kOwned), IsEmpty());
    share({L"ben"});
    EXPECT_THAT(names(ben, kInvited), IsEmpty());
    EXPECT_THAT(names(ben, kReceived), ElementsAre("Photos"));
    EXPECT_EQ(setPolicy(ben, 3), (Numbers{0, 5}));
    EXPECT_EQ(policy(ben), 1u);
    EXPECT_EQ(nas.requestCount("refused"), 0) << nas.log();
}

TEST_P(LibShare, AnEndedSessionShowsInEachCallsOwnWay) {
    share({L"ben"});
    const Shared photos = the(client, kOwned);
    nas.expireSessions();
    const Numbers ended{0, -29}, denied{0, 5};
    std::wstring text, pid;
    std::int32_t status = 0;
    std::uint32_t count = 0;
    std::vector<Found> found;
    std::vector<std::string> names;
    _WFM_TORVI_SHARE_FOLDER_INFORMATION record;
    TeamFolders folders;
    Events events;
    Users users;
    Members members;
    members.share = photos;
    // The sync service's own number.
    EXPECT_EQ(ask(client, folders), isSync() ? (Numbers{0, 3}) : kUnasked);
    EXPECT_EQ(ask(client, events), isSync() ? kUnasked : ended);
    EXPECT_EQ(findShares(client, L"/home", found), ended);
    EXPECT_EQ(folderInformation(client, L"/home/Photos", status, record), ended);
    EXPECT_EQ(status, -1);
    EXPECT_EQ(shareTo(client, {L"ben"}, L"/home/Photos", pid, &status), kRefused);
    EXPECT_EQ(status, -29);
    EXPECT_EQ(e2e::accept(client, photos, L"x", text), ended);
    EXPECT_EQ(deny(client, photos), kRefused);
    EXPECT_EQ(leave(client, photos), kRefused);
    EXPECT_EQ(kickOut(client, photos), kRefused);
    EXPECT_EQ(unshare(client, photos, pid), kRefused);
    EXPECT_EQ(removeEvent(client, photos.event), isSync() ? kUnasked : kRefused);
    EXPECT_EQ(ask(client, members), kRefused);
    EXPECT_EQ(setMembers(client, photos, {{L"ben", 1, photos.event}}, pid), kRefused);
    // A refusal looks like a list without users.
    EXPECT_EQ(ask(client, users), kDone);
    EXPECT_EQ(users.count, 0u);
    EXPECT_EQ(domains(client, names, count), kRefused);
    EXPECT_EQ(sharePath(client, photos.id, text), ended);
    EXPECT_FALSE(recycleBin(client));
    EXPECT_EQ(setRecycleBin(client, 0), denied);
    EXPECT_EQ(policy(client), 0u);
    EXPECT_EQ(setPolicy(client, 1), denied);
    EXPECT_EQ(renameShared(client, L"/home/Photos", L"/home/x"), denied);
    EXPECT_EQ(moveShared(client, L"/home/Photos", L"/Public/Photos"), kRefused);
    EXPECT_EQ(updateLink(client, L"/home/Photos", L"/home/x"), kRefused);
    EXPECT_EQ(fixLink(client, L"/home/Photos"), std::pair(0u, false));
    EXPECT_EQ(nas.requestCount("refused"), 0) << nas.log();
    EXPECT_TRUE(std::filesystem::exists(onDisk("Photos/p")));
}

TEST_P(LibStuckShare, NothingIsGivenOrTakenBeforeTheJobEnds) {
    std::wstring sharing, unsharing;
    EXPECT_EQ(shareTo(client, {L"carl"}, L"/home/Photos", sharing), kDone);
    EXPECT_EQ(leave(ben, the(ben, kReceived)), kDone);
    EXPECT_EQ(unshare(client, the(client, kOwned), unsharing), kDone);
    for (const std::wstring& pid : {sharing, unsharing}) {
        const JobState state = client.askJob(pid);
        EXPECT_EQ(state.numbers, kDone);
        EXPECT_EQ(state.error, 0);
        EXPECT_LT(state.percent, 100u);
    }
    EXPECT_THAT(names(carl, kInvited), IsEmpty());
    EXPECT_THAT(names(ben, kReceived), ElementsAre("Photos"));
    EXPECT_EQ(reach("Photos"), kDone);
    // The job is its user's.
    EXPECT_EQ(carl.askJob(unsharing).numbers, kRefused);
}

TEST_P(LibSlowShare, WhatLeavingTakesAwayGoesWithTheEndOfItsJob) {
    EXPECT_EQ(leave(ben, the(ben, kReceived)), kDone);
    waitUntilItIsGone();
    EXPECT_EQ(reach("Photos"), kLost);
    expectOver(ben, kLeft);
}

TEST_P(LibSlowShare, WhatKickingOutTakesAwayGoesWithTheEndOfItsJob) {
    EXPECT_EQ(kickOut(client, the(client, kOwned)), kDone);
    waitUntilItIsGone();
    EXPECT_EQ(reach("Photos"), kLost);
    expectOver(ben, kTakenAway);
}

TEST_P(LibSlowShare, TheProgressOfUnsharingGrowsUntilTheFolderIsGone) {
    std::wstring pid;
    EXPECT_EQ(unshare(client, the(client, kOwned), pid), kDone);
    std::uint32_t before = 0;
    for (JobState state; before < 100; before = state.percent) {
        state = client.askJob(pid);
        ASSERT_EQ(state.numbers, kDone);
        ASSERT_EQ(state.error, 0);
        ASSERT_GE(state.percent, before);
    }
    EXPECT_THAT(names(ben, kReceived), IsEmpty());
    EXPECT_EQ(reach("Photos"), kUnshared);
}

TEST_P(LibTeamFolders, TheOwnerAndTheReceiverSeeTheirSideOfAFolder) {
    nas.folder().write("homes/anna/Photos/2026/p", "x");
    share({L"ben", L"carl"});
    accept();
    share({L"carl"}, L"/home/Photos/2026");
    TeamFolders owned;
    owned.type = kOwned;
    ASSERT_EQ(ask(client, owned), kDone);
    EXPECT_EQ(owned.total, 2u);
    ASSERT_THAT(namesOf(owned.folders), ElementsAre("Photos", "2026"));
    const TeamFolder& photos = owned.folders[0];
    EXPECT_EQ(photos.type, 4);
    EXPECT_EQ(photos.status, 1);
    EXPECT_EQ(photos.owner, "anna");
    EXPECT_EQ(photos.nas, L"");
    EXPECT_EQ(photos.parent, L"");
    EXPECT_EQ(photos.path, "/home/Photos");
    EXPECT_EQ(photos.originalPath, "/home/Photos");
    EXPECT_THAT(photos.receivers, ElementsAre("name=ben display=Pictures permission=2 status=2",
                                              "name=carl permission=2 status=1"));
    EXPECT_EQ(owned.folders[1].parent, photos.share);

    TeamFolders received;
    received.type = kReceived;
    ASSERT_EQ(ask(ben, received), kDone);
    ASSERT_THAT(namesOf(received.folders), ElementsAre("Pictures"));
    EXPECT_EQ(received.folders[0].type, 8);
    EXPECT_EQ(received.folders[0].owner, "anna");
    EXPECT_EQ(received.folders[0].share, photos.share);
    EXPECT_EQ(received.folders[0].path, "vtf://anna-Photos/");
    EXPECT_EQ(received.folders[0].originalPath, "/home/.Torvi/Pictures/");
    EXPECT_EQ(received.folders[0].receivers, photos.receivers);
    std::filesystem::remove_all(onDisk("Photos"));
    ASSERT_EQ(ask(ben, received), kDone);
    EXPECT_EQ(received.folders[0].status, 0);
}

TEST_P(LibTeamFolders, OneUserOnePathOrOnePageIsAskedFor) {
    for (const wchar_t* name : {L"Plans & more", L"Rules"}) {
        EXPECT_EQ(client.makeFolder(L"/home", name), kDone);
        share({L"ben"}, std::wstring(L"/home/") + name);
    }
    share({L"carl"});
    TeamFolders question;
    question.target = L"carl";
    EXPECT_EQ(ask(client, question), kDone);
    EXPECT_THAT(namesOf(question.folders), ElementsAre("Photos"));
    question.target = L"ben";
    EXPECT_EQ(ask(client, question), kDone);
    EXPECT_THAT(namesOf(question.folders), ElementsAre("Plans & more", "Rules"));
    question.path = L"/home/Plans & more";
    EXPECT_EQ(ask(client, question), kDone);
    EXPECT_THAT(namesOf(question.folders), ElementsAre("Plans & more"));
    question.target = L"";
    question.path = L"/home/Photos";
    EXPECT_EQ(ask(client, question), kDone);
    EXPECT_THAT(namesOf(question.folders), ElementsAre("Photos"));
    TeamFolders page;
    page.lower = 1;
    page.upper = 3;
    EXPECT_EQ(ask(client, page), kDone);
    EXPECT_EQ(page.total, 3u);
    EXPECT_THAT(namesOf(page.folders), ElementsAre("Rules", "Photos"));
    // A list that is too small is filled as far as it goes.
    page.capacity = 1;
    EXPECT_EQ(ask(client, page), kDone);
    EXPECT_EQ(page.total, 3u);
    EXPECT_THAT(namesOf(page.folders), ElementsAre("Rules"));
    EXPECT_EQ(nas.requestCount("refused"), 0) << nas.log();
}

TEST_P(LibTeamFolders, TheSyncServiceHasNoEvents) {
    const std::int64_t before = nas.requestCount();
    Events events;
    EXPECT_EQ(ask(client, events), kUnasked);
    EXPECT_EQ(removeEvent(client, 1), kUnasked);
    const Shared none;
    std::wstring file;
    EXPECT_EQ(deny(client, none), kUnasked);
    EXPECT_EQ(leave(client, none), kUnasked);
    EXPECT_EQ(kickOut(client, none), kUnasked);
    EXPECT_EQ(e2e::accept(client, {L"id"}, L"", file), kUnasked);
    EXPECT_EQ(nas.requestCount(), before);
}

TEST_P(LibEvents, TheFileManagerHasNoTeamFolders) {
    const std::int64_t before = nas.requestCount();
    TeamFolders folders;
    EXPECT_EQ(ask(client, folders), kUnasked);
    EXPECT_EQ(nas.requestCount(), before);
}

TEST_P(LibEvents, EachReceiverIsAnEventOfItsOwn) {
    share({L"ben", L"carl"});
    accept();
    Events owned;
    owned.type = kOwned;
    ASSERT_EQ(ask(client, owned), kDone);
    EXPECT_EQ(owned.total, 2u);
    ASSERT_EQ(owned.events.size(), 2u);
    EXPECT_EQ(owned.events[0].target, "ben");
    EXPECT_EQ(owned.events[0].status, kAccepted);
    EXPECT_EQ(owned.events[1].target, "carl");
    EXPECT_EQ(owned.events[1].status, kWaits);
    for (const Event& event : owned.events) {
        EXPECT_EQ(event.type, 4);
        EXPECT_EQ(event.file, "/home/Photos");
        EXPECT_EQ(event.share, owned.events[0].share);
        EXPECT_THAT(event.date, testing::MatchesRegex("[0-9]+/[0-9]+/[0-9]+"));
        EXPECT_THAT(event.time, testing::MatchesRegex("[0-9]+:[0-9]+:[0-9]+"));
    }
    Events received;
    ASSERT_EQ(ask(ben, received), kDone);
    ASSERT_EQ(received.events.size(), 1u);
    EXPECT_EQ(received.events[0].type, 8);
    EXPECT_EQ(received.events[0].target, "anna");
    EXPECT_EQ(received.events[0].file, "/home/.Torvi/Photos");
    EXPECT_EQ(received.events[0].id, owned.events[0].id);
    Events page;
    page.lower = 1;
    page.upper = 2;
    EXPECT_EQ(ask(client, page), kDone);
    EXPECT_EQ(page.total, 2u);
    ASSERT_EQ(page.events.size(), 1u);
    EXPECT_EQ(page.events[0].target, "carl");
    owned.capacity = 1;
    EXPECT_EQ(ask(client, owned), (Numbers{7, 0}));
    EXPECT_EQ(owned.total, 2u);
    EXPECT_EQ(owned.count, 0u);
}

TEST_P(LibEvents, WhatIsOverStaysInEachListUntilItIsRemovedThere) {
    share({L"ben"});
    const std::uint32_t id = the(ben, kInvited).event;
    EXPECT_EQ(removeEvent(ben, id), kRefused);
    EXPECT_EQ(deny(ben, the(ben, kInvited)), kDone);
    for (const Client* user : {&client, &ben}) {
        EXPECT_EQ(the(*user, kOver).event, id);
        EXPECT_EQ(the(*user, kOver).status, kDenied);
    }
    EXPECT_EQ(removeEvent(carl, id), kRefused);
    EXPECT_EQ(removeEvent(ben, id), kDone);
    EXPECT_EQ(removeEvent(ben, id), kRefused);
    EXPECT_THAT(names(ben, 0), IsEmpty());
    EXPECT_EQ(the(client, kOver).event, id);
    EXPECT_EQ(removeEvent(client, id), kDone);
    EXPECT_THAT(names(client, kOver), IsEmpty());
    EXPECT_EQ(nas.requestCount("refused"), 0) << nas.log();
}

E2E_ON_ALL_ROADS(LibShare);
E2E_ON_ALL_ROADS(LibStuckShare);
E2E_ON_ALL_ROADS(LibSlowShare);
INSTANTIATE_TEST_SUITE_P(Roads, LibTeamFolders, testing::ValuesIn(syncRoads()), roadName);
INSTANTIATE_TEST_SUITE_P(Roads, LibEvents, testing::ValuesIn(fileManagerRoads()), roadName);
