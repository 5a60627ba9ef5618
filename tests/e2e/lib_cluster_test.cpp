#include "lib_cluster.h"

#include "WebFileManShareAPI.h"
#include "lib_login.h"
#include "lib_state.h"
#include "support/progress.h"

using namespace e2e;
using testing::ElementsAre;

namespace {

/// Two nodes with one set of sessions, behind a front end that knows them by their ids.
class LibCluster : public testing::TestWithParam<Road> {
protected:
    static Nas::Options node(const TempDir& sessions, const std::string& id) {
        return nodeOptions(sessions, id, {"--team", "ben:/home/Plans:anna"});
    }
    Login loginAtTheFront() {
        Login login;
        login.road = GetParam();
        login.port = frontPort();
        return login;
    }
    Activation activation(const std::wstring& token, const std::wstring& node) const {
        Activation activation;
        activation.port = frontPort();
        activation.tls = GetParam().tls;
        activation.token = token;
        activation.node = node;
        activation.ownNode = L"master";
        return activation;
    }
    static Numbers activate(const Client& client, const wchar_t* node) {
        return numbersOf([&](std::uint32_t* result) {
            return TorviActivateSid(kServer, client.port(), client.context(), node, result);
        });
    }
    std::uint16_t frontPort() const { return portOf(front, GetParam()); }

    TempDir sessions;
    Nas master{node(sessions, kMaster)};
    Nas other{node(sessions, kOther)};
    Nginx front = frontEnd({master, kMaster}, {other, kOther});
};

}  // namespace

TEST_P(LibCluster, ATeamFolderOnTheOtherNodeIsReachedThroughTheFrontEnd) {
    other.folder().write("homes/ben/Plans/old.txt", "old");
    Client client(loginAtTheFront());
    client.learnTeamFolders(master, L"node2");
    other.forgetRequests();
    master.forgetRequests();

    EXPECT_EQ(client.upload({"new plan", L"/home/.Torvi/Plans/new 1.txt"}), kDone);
    EXPECT_EQ(other.folder().read("homes/ben/Plans/new 1.txt"), "new plan");
    Upload moved{"moved", L"/home/.Torvi/Plans/moved"};
    moved.move = true;
    EXPECT_EQ(client.upload(moved), kDone);
    EXPECT_EQ(modifiedTime(other.folder().file("homes/ben/Plans/moved")), moved.time);
    std::vector<Entry> entries;
    Pages pages;
    pages.path = L"/home/.Torvi/Plans";
    pages.limit = 2;
    EXPECT_EQ(client.list(pages, entries), kDone);
    EXPECT_THAT(names(entries), testing::UnorderedElementsAre("old.txt", "new 1.txt", "moved"));
    std::string bytes;
    EXPECT_EQ(client.download(L"/home/.Torvi/Plans/old.txt", bytes), kDone);
    EXPECT_EQ(bytes, "old");
    EXPECT_EQ(client.createFile(L"/home/.Torvi/Plans/empty"), kDone);
    EXPECT_EQ(client.mayUpload(L"/home/.Torvi/Plans", L"x"), kDone);
    std::int64_t size = 0;
    EXPECT_EQ(client.folderSize(L"/home/.Torvi", L"Plans", size), kDone);
    EXPECT_EQ(size, 16);
    EXPECT_EQ(master.requestCount(), 0) << master.log();
    EXPECT_EQ(other.requestCount("refused"), 0) << other.log();
}

TEST_P(LibCluster, OwnFilesStayWithTheMaster) {
    Client client(loginAtTheFront());
    client.learnTeamFolders(master, L"node2");
    other.forgetRequests();
    EXPECT_EQ(client.upload({"mine", L"/home/mine"}), kDone);
    EXPECT_EQ(master.folder().read("homes/anna/mine"), "mine");
    EXPECT_EQ(client.stat(L"/home", L"mine"), kDone);
    EXPECT_EQ(other.requestCount(), 0);
    // The team folder stands in the listing all the same; its children are asked of its own node.
    Pages pages;
    pages.path = L"/home/.Torvi";
    pages.typeFilter = 6;
    std::vector<Entry> entries;
    EXPECT_EQ(client.page(pages, entries), kDone);
    EXPECT_THAT(names(entries), ElementsAre("Plans"));
    EXPECT_FALSE(entries[0].hasChild);
}

TEST_P(LibCluster, ATeamFolderOfTheMastersOwnGoesWithoutAPrefix) {
    Client client(loginAtTheFront());
    client.learnTeamFolders(master, L"MASTER");
    EXPECT_EQ(client.upload({"plan", L"/home/.Torvi/Plans/p"}), kDone);
    EXPECT_EQ(master.folder().read("homes/ben/Plans/p"), "plan");
    EXPECT_EQ(front.read("access.log").find("/MASTER/"), std::string::npos);
}

TEST_P(LibCluster, ATeamFolderOnTheOtherNodeIsChangedThere) {
    const std::wstring plans = L"/home/.Torvi/Plans";
    other.folder().write("homes/ben/Plans/old.txt", "old");
    Client client(loginAtTheFront());
    client.learnTeamFolders(master, L"node2");
    master.forgetRequests();

    EXPECT_EQ(client.makeFolder(plans, L"d"), kDone);
    EXPECT_EQ(client.setTime(plans, L"old.txt", 1234567890), kDone);
    EXPECT_EQ(client.rename(plans + L"/old.txt", plans + L"/a"), kDone);
    EXPECT_EQ(client.moveChecked(plans + L"/a", plans + L"/d/a", client.profile(plans + L"/a")), kDone);
    EXPECT_EQ(other.folder().read("homes/ben/Plans/d/a"), "old");
    EXPECT_EQ(modifiedTime(other.folder().file("homes/ben/Plans/d/a")), 1234567890);
    EXPECT_EQ(client.move(plans + L"/d/a", plans + L"/a"), kDone);
    EXPECT_GE(other.requestCount("get_move_status"), 1);
    EXPECT_EQ(client.removeChecked(plans + L"/a", client.profile(plans + L"/a")), kDone);
    EXPECT_EQ(client.remove(plans + L"/d"), kDone);
    EXPECT_TRUE(std::filesystem::is_empty(other.folder().file("homes/ben/Plans")));

    Slice slice;
    slice.bytes = randomBytes(100000);
    slice.to = plans + L"/sliced";
    EXPECT_EQ(client.uploadID(slice.id, plans), kDone);
    other.arm("short-slice,bytes=40000");
    EXPECT_EQ(client.send(slice), (Sliced{{0, -2}, true, false}));
    EXPECT_EQ(client.heldBytes(slice.id, slice.offset, slice.root, L"node2"), kDone);
    EXPECT_EQ(slice.offset, 40000);
    EXPECT_EQ(client.send(slice), (Sliced{kDone, false, false}));
    EXPECT_TRUE(other.folder().read("homes/ben/Plans/sliced") == slice.bytes);
    std::vector<BatchFile> batch = {{L"one", "1"}, {L"two", "2"}};
    EXPECT_EQ(client.sendBatch(plans, batch), kDone);
    EXPECT_EQ(other.folder().read("homes/ben/Plans/two"), "2");
    EXPECT_EQ(master.requestCount(), 0) << master.log();
    EXPECT_EQ(other.requestCount("refused"), 0) << other.log();
}

TEST_P(LibCluster, AMoveBetweenTheNodesIsRefusedOrGoesToTheSources) {
    const std::wstring plans = L"/home/.Torvi/Plans";
    Client client(loginAtTheFront());
    client.learnTeamFolders(master, L"node2");
    master.folder().write("homes/anna/mine", "mine");
    other.folder().write("homes/ben/Plans/plan", "plan");
    const Profile mine = client.profile(L"/home/mine"), plan = client.profile(plans + L"/plan");
    master.forgetRequests();
    other.forgetRequests();
    EXPECT_EQ(client.moveChecked(L"/home/mine", plans + L"/mine", mine), (Numbers{14, 34}));
    EXPECT_EQ(client.moveChecked(plans + L"/plan", L"/home/plan", plan), (Numbers{14, 34}));
    EXPECT_EQ(master.requestCount() + other.requestCount(), 0);
    // Unchecked it goes to the source's node, which has a folder of that place as well.
    EXPECT_EQ(client.move(L"/home/mine", plans + L"/mine"), kDone);
    EXPECT_EQ(master.folder().read("homes/ben/Plans/mine"), "mine");
    EXPECT_EQ(other.requestCount(), 0);
}

TEST_P(LibCluster, TheNodeThatIsToldAtLoginIsTheContexts) {
    Login login = loginAtTheFront();
    EXPECT_EQ(login.run(), kDone);
    EXPECT_TRUE(login.isSlave);
    EXPECT_EQ(slaveID(login.session.get()), L"master");
    // A slave's session is ended by its master; only a forced logout says so to the server.
    EXPECT_EQ(TorviLogout(kServer, frontPort(), false, login.session.get()), 0u);
    EXPECT_EQ(master.requestCount("logout"), 0);
    EXPECT_EQ(TorviLogout(kServer, frontPort(), true, login.session.get()), 0u);
    EXPECT_EQ(master.requestCount("logout"), 1);
}

TEST_P(LibCluster, TheOtherNodeTakesTheSessionOverUntilItEnds) {
    const Client client(loginAtTheFront());
    other.forgetRequests();
    EXPECT_EQ(activate(client, L"node2"), kDone);
    EXPECT_EQ(other.requestCount("activate"), 1);
    EXPECT_EQ(activate(client, L"MASTER"), kDone);
    EXPECT_EQ(activate(client, nullptr), kDone);
    EXPECT_EQ(other.requestCount("activate"), 1);
    EXPECT_EQ(TorviLogout(kServer, frontPort(), true, client.context()), 0u);
    EXPECT_EQ(activate(client, L"node2"), (Numbers{0, -2}));
    EXPECT_EQ(other.requestCount("activate"), 2);
}

TEST_P(LibCluster, ATokenMakesASessionAtEitherNode) {
    const Client client(loginAtTheFront());
    other.forgetRequests();
    Activation there = activation(client.sid(), L"node2");
    EXPECT_EQ(there.run(), kDone);
    EXPECT_EQ(utf8(there.serverName), "host of node2");
    EXPECT_EQ(slaveID(there.session.get()), L"master");
    EXPECT_EQ(other.requestCount("activate"), 1);
    Client second(there.port, std::move(there.session));
    second.learnTeamFolders(master, L"node2");
    EXPECT_EQ(second.upload({"plan", L"/home/.Torvi/Plans/p"}), kDone);
    EXPECT_EQ(other.folder().read("homes/ben/Plans/p"), "plan");
    Activation here = activation(client.sid(), L"Master");
    EXPECT_EQ(here.run(), kDone);
    EXPECT_EQ(utf8(here.serverName), "host of master");
    other.expireSessions();
    EXPECT_EQ(activation(client.sid(), L"node2").run(), (Numbers{0, -2}));
}

TEST_P(LibCluster, TheListOfSyncFoldersTellsEachNodesOwn) {
    master.folder().write("Public/p", "p");
    other.folder().write("Films 書類/f", "f");
    const Client client(loginAtTheFront());
    std::vector<SyncFolder> folders;
    EXPECT_EQ(syncFolders(client, folders, true, true), kDone);
    std::vector<std::string> found;
    for (const SyncFolder& folder : folders) {
        found.push_back(folder.node + " (" + folder.host + ") " + folder.path);
        EXPECT_EQ("/" + folder.name, folder.path);
        EXPECT_EQ(folder.privilege, 2);
        EXPECT_EQ(folder.volume, 0);
        EXPECT_EQ(folder.used, -1);
        EXPECT_EQ(folder.capacity, -1);
        EXPECT_EQ(folder.free, -1);
    }
    EXPECT_THAT(found, testing::UnorderedElementsAre(
                           "master (host of master) /home", "master (host of master) /Public",
                           "node2 (host of node2) /home", "node2 (host of node2) /Films 書類"));
    EXPECT_EQ(master.requestCount("nubo_get_cluster_node_list"), 1);
    EXPECT_EQ(master.requestCount("refused"), 0) << master.log();
}

TEST_P(LibCluster, TheOtherNodesLogIsAskedOfIt) {
    Client client(loginAtTheFront());
    client.learnTeamFolders(master, L"node2");
    EXPECT_EQ(client.createFile(L"/home/.Torvi/Plans/p"), kDone);
    EXPECT_EQ(client.createFile(L"/home/.Torvi/Plans/q"), kDone);
    Newest here, there;
    EXPECT_EQ(newest(client, here), kDone);
    EXPECT_EQ(newest(client, there, {}, L"node2"), kDone);
    EXPECT_EQ(here.change, 0);
    EXPECT_EQ(there.change, 2);
    std::vector<std::int64_t> several;
    EXPECT_EQ(newestOf(client, {L"vtf://ben-Plans/"}, several, nullptr, L"node2"), kDone);
    EXPECT_THAT(several, ElementsAre(2));
    ChangeQuestion question;
    question.node = L"node2";
    question.folder = L"vtf://ben-Plans/";
    EXPECT_EQ(ask(client, question), kDone);
    EXPECT_THAT(texts(question.changes),
                ElementsAre("made file vtf://ben-Plans/p", "made file vtf://ben-Plans/q"));
    // Without a folder the node counts for nothing.
    question.folder.clear();
    EXPECT_EQ(ask(client, question), kDone);
    EXPECT_THAT(question.changes, testing::IsEmpty());
    EXPECT_EQ(other.requestCount("refused"), 0) << other.log();
}

TEST_P(LibCluster, EachNodeTellsItsOwnId) {
    const Client client(loginAtTheFront());
    for (const auto& [node, id] : {std::pair(L"", L"master"), std::pair(L"node2", L"node2")}) {
        bool result = false;
        _TORVI_INFORMATION record;
        EXPECT_EQ(WebFileManGetTorviInformation(client.context(), kServer, client.port(), nullptr, node,
                                                &result, &record),
                  0u);
        EXPECT_TRUE(result && record.bClusterSupport);
        EXPECT_EQ(record.nClusterStatus, 1);
        EXPECT_STREQ(record.szSlaveID, id);
    }
}

TEST_P(LibCluster, ANodeThatIsGoneIsTheFrontEndsError) {
    Client client(loginAtTheFront());
    client.learnTeamFolders(master, L"node2");
    other.stop();
    Upload upload{randomBytes(100000), L"/home/.Torvi/Plans/x"};
    Progress progress;
    upload.callback = Progress::callback;
    upload.data = &progress;
    // 502, or a connection that was closed before the body was out.
    EXPECT_THAT(client.upload(upload), testing::AnyOf(Numbers{6, -1}, Numbers{2, -1}));
    EXPECT_EQ(client.stat(L"/home/.Torvi/Plans", L"x"), (Numbers{6, -1}));
    EXPECT_EQ(client.upload({"mine", L"/home/mine"}), kDone);
}

INSTANTIATE_TEST_SUITE_P(Roads, LibCluster, testing::ValuesIn(syncRoads()), roadName);
