#include "lib_cluster.h"
#include "lib_link.h"
#include "lib_sharing.h"

using namespace e2e;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// anna has her folders on one node, and ben comes to the other.
class LibSharingCluster : public testing::TestWithParam<Road> {
protected:
    LibSharingCluster() { master.folder().write("homes/anna/Photos/p", "picture"); }

    bool isSync() const { return GetParam().service != Service::FileManager; }
    Client clientAt(const Nginx& node, const wchar_t* user, const wchar_t* password, Service service) const {
        Login login;
        login.road = {service, GetParam().tls};
        login.port = portOf(node, login.road);
        login.user = user;
        login.password = password;
        return Client(std::move(login));
    }
    /// Only a session of the sync service is told on which node a team folder lies.
    Client deviceAt(const Nginx& node) const {
        return clientAt(node, L"ben", L"hidden", isSync() ? GetParam().service : Service::Sync);
    }
    void share() const {
        std::wstring pid;
        ASSERT_EQ(shareTo(anna, {L"ben"}, L"/home/Photos", pid), kDone);
        ASSERT_TRUE(finishes(anna, pid));
    }
    /// The only share of that kind that a user has.
    Shared only(const Client& user, std::uint32_t type) const {
        const std::vector<Shared> shares = sharedOf(user, type);
        EXPECT_EQ(shares.size(), 1u);
        return shares.empty() ? Shared() : shares[0];
    }
    /// ben takes the folder, and his computer hears of it.
    void accept() {
        std::wstring file;
        ASSERT_EQ(e2e::accept(ben, only(ben, kInvited), L"Pictures", file), kDone);
        learnReceived(device);
        pictures = file;
    }
    Numbers reach() const {
        std::int64_t size = 0;
        return device.folderSize(L"/home/.Torvi", pictures.substr(pictures.rfind(L'/') + 1), size);
    }

    TempDir sessions;
    Nas master{nodeOptions(sessions, kMaster)}, other{nodeOptions(sessions, kOther)};
    Nginx front = frontEnd({master, kMaster}, {other, kOther});
    Nginx otherFront = frontEnd({other, kOther}, {master, kMaster});
    Client anna = clientAt(front, L"anna", L"secret", GetParam().service);
    Client ben = clientAt(otherFront, L"ben", L"hidden", GetParam().service);
    Client device = deviceAt(otherFront);
    std::wstring pictures;
};

/// What ben links in it lies on anna's node.
class LibLinkCluster : public LibSharingCluster {
protected:
    void SetUp() override {
        share();
        accept();
        other.forgetRequests();
        master.forgetRequests();
    }
    /// The address by which that link is opened at ben's front end.
    std::string address(const std::string& ssid) const {
        return (GetParam().tls ? "https" : "http") + std::string("://127.0.0.1:") +
               std::to_string(ben.port()) + "/master/share.cgi?ssid=" + ssid;
    }
    Selection selection(const std::wstring& files) const {
        Selection selection{files};
        selection.wish.secure = GetParam().tls;
        return selection;
    }
};

}  // namespace

TEST_P(LibSharingCluster, AnInvitationWaitsAtTheOtherNodeAndTheFolderAppearsOnBoth) {
    share();
    const Shared invitation = only(ben, kInvited);
    std::wstring file;
    if (isSync()) {
        EXPECT_EQ(invitation.nas, L"master");
        Shared wrong = invitation;
        wrong.nas = L"node2";
        EXPECT_EQ(e2e::accept(ben, wrong, L"Pictures", file), (Numbers{0, -4}));
    }
    EXPECT_EQ(e2e::accept(ben, invitation, L"Pictures", file), kDone);
    EXPECT_EQ(utf8(file), isSync() ? "/home/.Torvi/Pictures" : "/home/.Torvi/Photos");
    learnReceived(device);
    other.forgetRequests();
    std::string bytes;
    EXPECT_EQ(device.download(file + L"/p", bytes), kDone);
    EXPECT_EQ(bytes, "picture");
    EXPECT_EQ(device.upload({"more", file + L"/q"}), kDone);
    EXPECT_EQ(master.folder().read("homes/anna/Photos/q"), "more");
    EXPECT_EQ(other.requestCount(), 0);

    const Client here = deviceAt(front);
    learnReceived(here);
    EXPECT_EQ(here.download(file + L"/q", bytes), kDone);
    EXPECT_EQ(bytes, "more");
    EXPECT_EQ(only(clientAt(front, L"ben", L"hidden", GetParam().service), kReceived).id, invitation.id);
    EXPECT_EQ(master.requestCount("refused"), 0) << master.log();
    EXPECT_EQ(other.requestCount("refused"), 0) << other.log();
}

TEST_P(LibSharingCluster, WhatIsSaidAtOneNodeHoldsAtTheOther) {
    share();
    EXPECT_EQ(deny(ben, only(ben, kInvited)), kDone);
    EXPECT_EQ(sharedOf(anna, kOwned).size(), isSync() ? 1u : 0u);
    share();
    accept();
    EXPECT_EQ(reach(), kDone);
    EXPECT_EQ(leave(ben, only(ben, kReceived)), kDone);
    EXPECT_EQ(reach(), (Numbers{0, 5}));
    share();
    accept();
    EXPECT_EQ(reach(), kDone);
    EXPECT_EQ(kickOut(anna, only(anna, kOwned)), kDone);
    EXPECT_THAT(sharedOf(ben, kReceived), IsEmpty());
    EXPECT_EQ(reach(), (Numbers{0, 5}));
    share();
    accept();
    std::wstring pid;
    EXPECT_EQ(unshare(anna, only(anna, kOwned), pid), kDone);
    EXPECT_TRUE(finishes(anna, pid));
    EXPECT_THAT(sharedOf(ben, kReceived), IsEmpty());
    EXPECT_EQ(reach(), (Numbers{0, 3}));
    EXPECT_EQ(setPolicy(ben, 2), kDone);
    EXPECT_EQ(shareTo(anna, {L"ben"}, L"/home/Photos", pid), (Numbers{0, -1}));
    EXPECT_EQ(master.requestCount("refused"), 0) << master.log();
    EXPECT_EQ(other.requestCount("refused"), 0) << other.log();
}

TEST_P(LibSharingCluster, MembersAreChangedFromEitherNode) {
    share();
    accept();
    const Client there = clientAt(otherFront, L"anna", L"secret", GetParam().service);
    Members members;
    members.share = only(there, kOwned);
    members.onlyMembers = true;
    EXPECT_EQ(ask(there, members), kDone);
    ASSERT_THAT(namesOf(members.members), ElementsAre("ben"));
    std::wstring pid;
    EXPECT_EQ(setMembers(there, members.share, {{L"ben", 1, members.members[0].event}}, pid), kDone);
    EXPECT_TRUE(finishes(there, pid));
    EXPECT_EQ(reach(), kDone);
    EXPECT_FALSE(device.upload({"x", pictures + L"/x"}) == kDone);
    std::wstring path;
    EXPECT_EQ(sharePath(anna, members.share.id, path), kDone);
    EXPECT_EQ(utf8(path), "/home/Photos");
    EXPECT_EQ(master.requestCount("refused"), 0) << master.log();
    EXPECT_EQ(other.requestCount("refused"), 0) << other.log();
}

TEST_P(LibLinkCluster, ALinkIsKeptWhereItsFileIsAndOpensThroughTheFrontEnd) {
    _WFM_SHARE_LINK_RESULT made;
    EXPECT_EQ(selectLink(device, selection(pictures + L"/p;"), made), kDone);
    EXPECT_STREQ(made.szSlaveID, L"master");
    EXPECT_EQ(utf8(made.szLinkURL), address(utf8(made.szSsid)));
    EXPECT_EQ(visit(utf8(made.szLinkURL)).body, "picture");
    LinkItems byPath{made.szSsid, pictures + L"/p"}, byNode{made.szSsid, {}, L"master"};
    for (LinkItems* items : {&byPath, &byNode}) {
        EXPECT_EQ(ask(device, *items), 0u);
        EXPECT_THAT(items->names, ElementsAre("p"));
    }
    EXPECT_EQ(onlyLink(device, L"master"), made.szSsid);

    LinkWish wish;
    wish.path = pictures + L"/p";
    wish.secure = GetParam().tls;
    LinkText link;
    EXPECT_EQ(getLink(device, wish, link), kDone);
    EXPECT_EQ(onlyLink(device, L"master"), made.szSsid);
    EXPECT_EQ(createLink(device, wish), (Numbers{0, 6}));
    wish.code = L"sesame";
    LinkChange change{made.szSsid, wish};
    change.wish.node = L"master";
    change.hostPort = device.port();
    EXPECT_EQ(changeLink(device, change, link), kDone);
    EXPECT_EQ(link.url, address(utf8(made.szSsid)));
    EXPECT_EQ(visit(link.url).status, 403);
    EXPECT_EQ(visit(link.url, "&access_code=sesame").body, "picture");
    EXPECT_EQ(mailLink(device, made.szSsid, {}, L"master"), (Numbers{0, 6}));
    EXPECT_EQ(deleteLink(device, wish.path, L"", made.szSsid), kDone);
    EXPECT_EQ(visit(link.url).status, 404);
    EXPECT_EQ(other.requestCount(), 0) << other.log();
    Links own;
    EXPECT_EQ(ask(device, own), 0u);
    EXPECT_THAT(own.rows, IsEmpty());
    EXPECT_EQ(other.requestCount("refused"), 0) << other.log();
}

TEST_P(LibLinkCluster, ATeamFolderItselfIsLinkedAndAlsoAlone) {
    for (const bool isNew : {false, true}) {
        Selection folder = selection(pictures + L";");
        folder.isNew = isNew;
        folder.name = L"ben's pictures";
        _WFM_SHARE_LINK_RESULT made;
        EXPECT_EQ(selectLink(device, folder, made), kDone);
        EXPECT_STREQ(made.szSlaveID, L"master");
        EXPECT_STREQ(made.szLinkName, isNew ? L"ben's pictures" : L"anna-Photos");
        LinkItems items{made.szSsid, pictures};
        EXPECT_EQ(ask(device, items), 0u);
        EXPECT_THAT(items.names, ElementsAre("vtf://anna-Photos/"));
        EXPECT_EQ(visit(address(utf8(made.szSsid))).status, 200);
    }
    EXPECT_EQ(other.requestCount(), 0) << other.log();
    EXPECT_EQ(master.requestCount("refused"), 0) << master.log();
}

TEST_P(LibLinkCluster, ALinkToATeamFolderIsUpdatedAtTheNodeThatHoldsIt) {
    const Client there = clientAt(otherFront, L"anna", L"secret", GetParam().service);
    master.folder().write("homes/anna/New/Photos/p", "copy");
    std::filesystem::remove_all(master.folder().file("homes/anna/Photos"));
    EXPECT_EQ(reach(), (Numbers{0, 3}));
    EXPECT_EQ(updateLink(there, L"/home/Photos", L"/home/New/Photos"), (Numbers{0, -1}));
    EXPECT_EQ(updateLink(there, L"/home/Photos", L"/home/New/Photos", L"master"), kDone);
    EXPECT_EQ(reach(), kDone);
    EXPECT_EQ(master.requestCount("refused"), 0) << master.log();
}

E2E_ON_ALL_ROADS(LibSharingCluster);
INSTANTIATE_TEST_SUITE_P(Roads, LibLinkCluster, testing::ValuesIn(syncRoads()), roadName);
