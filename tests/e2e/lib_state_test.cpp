#include "lib_state.h"

#include <sys/stat.h>

#include <nlohmann/json.hpp>

using namespace e2e;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class LibLog : public LibRoad {
protected:
    LibLog() : LibLog({}) {}
    explicit LibLog(std::vector<std::string> arguments) : LibRoad(withArguments(std::move(arguments))) {
        std::filesystem::create_directories(nas.folder().file("Public"));
    }
    /// The number of the last change at all, by the server's own account.
    std::int64_t lastChange() { return state().at("last_change"); }
    nlohmann::json state() { return nlohmann::json::parse(nas.control("GET", "state")); }
    std::int64_t newestIn(const std::wstring& folder) const {
        Newest numbers;
        EXPECT_EQ(newest(client, numbers, folder), kDone);
        return numbers.change;
    }
};

/// What ben shares, and what he doesn't.
class LibTeamLog : public LibLog {
protected:
    LibTeamLog() : LibLog({"--team", "ben:/home/Plans:anna"}) {
        std::filesystem::create_directories(nas.folder().file("homes/ben/Plans"));
    }
    Client ben{nas, GetParam(), L"ben", L"hidden"};
};

class LibShortLog : public LibLog {
protected:
    LibShortLog() : LibLog({"--changes-kept", "3"}) {}
};

class LibUserQuota : public LibRoad {
protected:
    static constexpr std::int64_t kLimit = 1 << 20;
    LibUserQuota()
        : LibRoad(withArguments({"--quota", "anna:" + std::to_string(kLimit), "--volume", "Public:3000000",
                                 "--volume", "Films:5368709120"})) {
        nas.folder().write("Public/p", std::string(1000, 'p'));
        nas.folder().write("Films/f", std::string(2048, 'f'));
    }
};

class LibHome : public LibRoad {
protected:
    static Nas::Options options() {
        Nas::Options options;
        options.users = {"anna:secret:admin", "ben:hidden", "jo & söhne+%2F:p"};
        return options;
    }
    LibHome() : LibRoad(options()) {}
};

class LibVeto : public testing::TestWithParam<Road> {
protected:
    /// The status, and the length that came back.
    std::pair<std::uint32_t, std::uint32_t> fetch(const Client& client, std::uint32_t length,
                                                  std::wstring& text) const {
        std::vector<wchar_t> buffer(1000, L'\0');
        const std::uint32_t status = WFMTorviGetVetoFiles(client.context(), kServer, client.port(), nullptr,
                                                          nullptr, &length, buffer.data());
        text = buffer.data();
        return {status, length};
    }
};

class LibSyncFolders : public LibRoad {
protected:
    LibSyncFolders() : LibRoad(withArguments({"--quota", "anna:1048576", "--volume", "Films:5368709120"})) {
        nas.folder().write("Films/f", std::string(2048, 'f'));
        nas.folder().write("Read only 書類/r", "r");
        std::filesystem::permissions(readOnly(), static_cast<std::filesystem::perms>(0555));
    }
    void TearDown() override { std::filesystem::permissions(readOnly(), std::filesystem::perms::owner_all); }
    std::string readOnly() const { return nas.folder().file("Read only 書類"); }
    SyncFolder folder(const std::string& name, bool detail = false, bool refresh = false) const {
        std::vector<SyncFolder> folders;
        EXPECT_EQ(syncFolders(client, folders, detail, refresh), kDone);
        for (const SyncFolder& folder : folders) {
            if (folder.name == name) return folder;
        }
        ADD_FAILURE() << "no folder " << name;
        return {};
    }
};

std::int64_t changeTime(const std::string& path) {
    struct stat status = {};
    return ::stat(path.c_str(), &status) == 0 ? static_cast<std::int64_t>(status.st_ctim.tv_sec) : -1;
}

}  // namespace

TEST_P(LibLog, EveryWriteIsInTheLogAsWhatItWas) {
    EXPECT_THAT(changes(client), IsEmpty());
    EXPECT_EQ(newestIn(L""), 0);
    EXPECT_EQ(client.makeFolder(L"/home", L"d"), kDone);
    EXPECT_EQ(client.upload({"1", L"/home/d/a"}), kDone);
    EXPECT_EQ(client.upload({"22", L"/home/d/a"}), kDone);
    Upload moved{"333", L"/home/書類 & +"};
    moved.move = true;
    EXPECT_EQ(client.upload(moved), kDone);
    EXPECT_EQ(client.createFile(L"/home/empty"), kDone);
    EXPECT_EQ(client.rename(L"/home/d/a", L"/home/d/b"), kDone);
    EXPECT_EQ(client.setTime(L"/home/d", L"b", 1400000000), kDone);
    EXPECT_EQ(client.move(L"/home/d/b", L"/home/b"), kDone);
    EXPECT_EQ(client.moveChecked(L"/home/d", L"/Public/d", client.profile(L"/home/d")), kDone);
    EXPECT_EQ(client.remove(L"/home/b"), kDone);
    std::wstring pid;
    EXPECT_EQ(client.restore(L"/home/@Recycle", L"b", pid), kDone);
    EXPECT_EQ(client.followJob(std::stoi(pid)), kDone);
    EXPECT_EQ(client.removeChecked(L"/Public/d", client.profile(L"/Public/d")), kDone);

    const std::vector<LoggedChange> log = changes(client);
    EXPECT_THAT(texts(log),
                ElementsAre("made folder /home/d", "made file /home/d/a", "rewritten file /home/d/a",
                            "made file /home/書類 & +", "made file /home/empty",
                            "renamed file /home/d/a -> /home/d/b", "set time file /home/d/b",
                            "moved file /home/d/b -> /home/b", "moved folder /home/d -> /Public/d",
                            "deleted file /home/b", "recovered file /home/b", "deleted folder /Public/d"));
    for (std::size_t i = 0; i < log.size(); ++i) {
        EXPECT_EQ(log[i].device, "computer");
        EXPECT_GT(log[i].id, i == 0 ? 0 : log[i - 1].id);
    }
    EXPECT_EQ(newestIn(L""), log.back().id);
    EXPECT_EQ(newestIn(L""), lastChange());
    EXPECT_EQ(nas.requestCount("refused"), 0) << nas.log();
}

TEST_P(LibLog, UploadsInSlicesAndBatchesAreInTheLogOnceTheyAreWhole) {
    Slice slice;
    slice.bytes = randomBytes(100000);
    slice.to = L"/home/sliced";
    EXPECT_EQ(client.uploadID(slice.id), kDone);
    nas.arm("short-slice,bytes=40000");
    EXPECT_EQ(client.send(slice), (Sliced{{0, -2}, true, false}));
    EXPECT_THAT(changes(client), IsEmpty());
    slice.offset = 40000;
    EXPECT_EQ(client.send(slice), (Sliced{kDone, false, false}));
    std::vector<BatchFile> batch = {{L"one", "1"}, {L"two", "2"}, {L"one", "3"}};
    EXPECT_EQ(client.sendBatch(L"/home", batch), kDone);
    EXPECT_THAT(texts(changes(client)), ElementsAre("made file /home/sliced", "made file /home/one",
                                                    "made file /home/two", "rewritten file /home/one"));
}

TEST_P(LibLog, ACommittedVersionIsANewContentAndTheWorkOnItIsNone) {
    EXPECT_EQ(client.createFile(L"/home/f"), kDone);
    WFM_VERSIONING_LOCK lock = {};
    ASSERT_EQ(client.lock(L"/home/f", lock), kDone);
    const std::wstring work = std::wstring(L"/home/@Versions/") + lock.szVersionID;
    EXPECT_EQ(client.upload({"new", work + L"/upload"}), kDone);
    EXPECT_THAT(texts(changes(client)), ElementsAre("made file /home/f"));
    std::wstring pid;
    ASSERT_EQ(client.commitVersion(L"/home/f", lock, 1234567890, pid), kDone);
    JobState state;
    do {
        state = client.askJob(pid);
        ASSERT_EQ(state.numbers, kDone);
    } while (state.percent < 100);
    EXPECT_EQ(client.unlock(L"/home/f", lock), kDone);
    EXPECT_THAT(texts(changes(client)), ElementsAre("made file /home/f", "rewritten file /home/f"));
}

TEST_P(LibLog, AFolderHearsOfWhatTakesItAlong) {
    EXPECT_EQ(client.makeFolder(L"/home", L"top"), kDone);
    EXPECT_EQ(client.makeFolder(L"/home/top", L"sub"), kDone);
    EXPECT_EQ(client.rename(L"/home/top", L"/home/other"), kDone);
    EXPECT_EQ(changes(client, L"/home/top/sub").back().text, "deleted folder /home/top/sub");
    EXPECT_EQ(newestIn(L"/home/top/sub"), lastChange());
    EXPECT_EQ(changes(client, L"/home/other/sub").back().text, "made folder /home/other/sub");
    EXPECT_EQ(client.remove(L"/home/other"), kDone);
    EXPECT_EQ(changes(client, L"/home/other/sub").back().text, "deleted folder /home/other/sub");
    EXPECT_EQ(newestIn(L"/home/other/sub"), lastChange());
}

TEST_P(LibLog, EachChangeTellsTheComputerOfItsSession) {
    EXPECT_EQ(client.createFile(L"/home/a"), kDone);
    for (const wchar_t* computer : {L"Büro-PC 書類", L""}) {
        Login login;
        login.road = GetParam();
        login.port = client.port();
        login.computer = computer;
        // Without one the sync service isn't asked.
        if (isSync() && login.computer.empty()) {
            EXPECT_EQ(login.run(), (Numbers{8, 0xABCD}));
            return;
        }
        EXPECT_EQ(Client(std::move(login)).createFile(L"/home/b" + std::wstring(computer)), kDone);
        EXPECT_EQ(changes(client).back().device, utf8(computer));
    }
}

TEST_P(LibLog, WhatIsRefusedOrOnlyReadLeavesNoTrace) {
    put("a", "bytes");
    put("b", "other");
    const Profile wrong{1, 1, false};
    for (const Numbers& refused :
         {client.rename(L"/home/a", L"/home/b"), client.removeChecked(L"/home/a", wrong),
          client.moveChecked(L"/home/a", L"/Public/a", wrong), client.upload({"bytes", L"/home/none/a"})}) {
        EXPECT_FALSE(refused == kDone);
    }
    nas.arm("cut-upload,bytes=1000");
    EXPECT_FALSE(client.upload({randomBytes(20000), L"/home/cut"}) == kDone);
    std::string bytes;
    std::vector<Entry> entries;
    EXPECT_EQ(client.list({}, entries), kDone);
    EXPECT_EQ(client.download(L"/home/a", bytes), kDone);
    EXPECT_THAT(texts(changes(client)), IsEmpty());
    EXPECT_EQ(newestIn(L""), 0);
    EXPECT_EQ(lastChange(), 0);
}

TEST_P(LibLog, EachFolderHasANumberOfItsOwn) {
    EXPECT_EQ(client.makeFolder(L"/home", L"one"), kDone);
    EXPECT_EQ(client.makeFolder(L"/home", L"zwei & 2"), kDone);
    EXPECT_EQ(client.createFile(L"/home/one/a"), kDone);
    const std::int64_t inOne = lastChange();
    EXPECT_EQ(client.createFile(L"/home/zwei & 2/b"), kDone);
    const std::int64_t inTwo = lastChange();
    EXPECT_EQ(client.createFile(L"/Public/p"), kDone);
    const std::int64_t inPublic = lastChange();

    EXPECT_EQ(newestIn(L"/home/one"), inOne);
    EXPECT_EQ(newestIn(L"/home/zwei & 2"), inTwo);
    EXPECT_EQ(newestIn(L"/home"), inTwo);
    EXPECT_EQ(newestIn(L"/Public"), inPublic);
    EXPECT_EQ(newestIn(L""), inPublic);
    std::vector<std::int64_t> several;
    Newest overall;
    EXPECT_EQ(newestOf(client, {L"/Public", L"/home/zwei & 2", L"/none", L"/home/one"}, several, &overall),
              kDone);
    EXPECT_THAT(several, ElementsAre(inPublic, inTwo, -1, inOne));
    EXPECT_EQ(overall.change, -1);
    EXPECT_EQ(overall.ofServer, inPublic);

    EXPECT_THAT(texts(changes(client, L"/home/zwei & 2")),
                ElementsAre("made folder /home/zwei & 2", "made file /home/zwei & 2/b"));
    EXPECT_EQ(client.move(L"/home/one/a", L"/home/zwei & 2/a"), kDone);
    // To the folder that it left it is a deletion, to the other something new.
    EXPECT_EQ(changes(client, L"/home/one").back().text, "deleted file /home/one/a");
    EXPECT_EQ(changes(client, L"/home/zwei & 2").back().text, "made file /home/zwei & 2/a");
    EXPECT_EQ(newestIn(L"/home/one"), lastChange());
    EXPECT_EQ(newestIn(L"/home/zwei & 2"), lastChange());
}

TEST_P(LibLog, AClientGoesThroughTheLogPieceByPiece) {
    std::vector<std::string> expected, found;
    for (const wchar_t* name : {L"a", L"b", L"c", L"d", L"e"}) {
        EXPECT_EQ(client.createFile(L"/home/" + std::wstring(name)), kDone);
        expected.push_back("made file /home/" + utf8(name));
    }
    ChangeQuestion question;
    question.number = question.capacity = 2;
    int rounds = 0;
    while (!question.isEnd && rounds < 10) {
        ASSERT_EQ(ask(client, question), kDone);
        for (const LoggedChange& change : question.changes) found.push_back(change.text);
        if (!question.changes.empty()) question.from = question.changes.back().id + 1;
        ++rounds;
    }
    EXPECT_EQ(found, expected);
    EXPECT_EQ(rounds, 3);
    EXPECT_EQ(ask(client, question), kDone);
    EXPECT_THAT(question.changes, IsEmpty());
    EXPECT_TRUE(question.isEnd);
    // More than the caller has room for.
    ChangeQuestion narrow;
    narrow.capacity = 3;
    EXPECT_EQ(ask(client, narrow), (Numbers{0, -23}));
    EXPECT_THAT(texts(narrow.changes), ElementsAre(expected[0], expected[1], expected[2]));
    // From beyond 32 bits on there is nothing yet.
    ChangeQuestion far;
    far.from = std::int64_t{1} << 40;
    EXPECT_EQ(ask(client, far), kDone);
    EXPECT_THAT(far.changes, IsEmpty());
    EXPECT_THAT(nas.requestCount("refused"), 0) << nas.log();
}

TEST_P(LibLog, TheNumbersGoOnAfterARestart) {
    EXPECT_EQ(client.createFile(L"/home/a"), kDone);
    const std::int64_t before = newestIn(L"");
    nas.kill();
    nas.startAgain();
    Newest numbers;
    const Client again(nas, GetParam());
    EXPECT_EQ(newest(again, numbers), kDone);
    EXPECT_EQ(numbers.change, before);
    EXPECT_EQ(again.createFile(L"/home/b"), kDone);
    EXPECT_EQ(newest(again, numbers), kDone);
    EXPECT_EQ(numbers.change, before + 1);
    EXPECT_THAT(texts(changes(again)), ElementsAre("made file /home/a", "made file /home/b"));
}

TEST_P(LibLog, AnEndedSessionHearsNothing) {
    EXPECT_EQ(client.createFile(L"/home/a"), kDone);
    nas.expireSessions();
    Newest numbers;
    EXPECT_EQ(newest(client, numbers), (Numbers{0, -29}));
    EXPECT_EQ(numbers.change, -1);
    EXPECT_EQ(numbers.ofServer, -1);
    std::vector<std::int64_t> several;
    EXPECT_EQ(newestOf(client, {L"/home"}, several), (Numbers{0, -29}));
    EXPECT_THAT(several, ElementsAre(-1));
    ChangeQuestion question;
    EXPECT_EQ(ask(client, question), (Numbers{0, 3}));
    EXPECT_FALSE(question.isEnd);
}

TEST_P(LibLog, AFolderThatIsNotTheUsersIsRefused) {
    nas.folder().write("homes/ben/secret", "x");
    for (const wchar_t* folder : {L"/none", L"/homes/ben"}) {
        Newest numbers;
        const Numbers refused = newest(client, numbers, folder);
        EXPECT_EQ(refused.dwStatus, 0u);
        EXPECT_LT(refused.result, 0) << utf8(folder);
        EXPECT_EQ(numbers.change, -1);
        ChangeQuestion question;
        question.folder = folder;
        EXPECT_GT(ask(client, question).result, 0) << utf8(folder);
    }
}

TEST_P(LibLog, SyncRunsAreCountedAsTheyBeginAndEnd) {
    const auto told = [&] {
        Newest numbers;
        EXPECT_EQ(newest(client, numbers), kDone);
        return numbers.syncSignal;
    };
    const auto runs = [&] { return state().at("sync_runs"); };
    EXPECT_EQ(told(), 0);
    EXPECT_EQ(beginSync(client, 7), kDone);
    EXPECT_EQ(beginSync(client, 4000000), kDone);
    EXPECT_EQ(told(), 2);
    ASSERT_EQ(runs().size(), 2u);
    EXPECT_EQ(runs()[0], (nlohmann::json{{"user", "anna"}, {"number", 7}}));
    EXPECT_EQ(endSync(client, 7), kDone);
    EXPECT_EQ(told(), 3);
    EXPECT_EQ(runs().size(), 1u);
    // A run that isn't there, or somebody else's.
    EXPECT_EQ(endSync(client, 7), (Numbers{0, -1}));
    const Client ben(nas, GetParam(), L"ben", L"hidden");
    EXPECT_EQ(endSync(ben, 4000000), (Numbers{0, -1}));
    EXPECT_EQ(told(), 3);
    EXPECT_EQ(endSync(client, 4000000), kDone);
    EXPECT_THAT(runs(), IsEmpty());
    nas.expireSessions();
    EXPECT_EQ(beginSync(client, 7), (Numbers{0, -1}));
    EXPECT_THAT(runs(), IsEmpty());
}

TEST_P(LibLog, TheTreesTimeGrowsWithAChangeWhateverTimesItsFilesBear) {
    put("d/a", "bytes", 4000000000);
    std::int64_t first = 0, later = 0;
    EXPECT_EQ(lastModified(client, first), kDone);
    EXPECT_EQ(first, changeTime(onDisk("d/a")));
    // The clock must have gone on before a change can be later.
    do {
        ASSERT_EQ(client.setTime(L"/home/d", L"a", 1000000000), kDone);
    } while (changeTime(onDisk("d/a")) == first);
    EXPECT_EQ(lastModified(client, later), kDone);
    EXPECT_GT(later, first);
    EXPECT_EQ(later, changeTime(onDisk("d/a")));
    nas.expireSessions();
    EXPECT_EQ(lastModified(client, later), (Numbers{0, 3}));
}

TEST_P(LibTeamLog, WhatOthersChangeInATeamFolderIsNews) {
    EXPECT_EQ(client.createFile(L"/home/mine"), kDone);
    const std::int64_t own = lastChange();
    EXPECT_EQ(ben.createFile(L"/home/Plans/plan"), kDone);
    const std::int64_t plan = lastChange();
    EXPECT_EQ(ben.createFile(L"/home/private"), kDone);
    Newest numbers;
    EXPECT_EQ(newest(client, numbers), kDone);
    EXPECT_EQ(numbers.change, plan);
    EXPECT_EQ(numbers.byOthers, plan);
    EXPECT_EQ(numbers.ofServer, lastChange());
    EXPECT_EQ(newest(ben, numbers), kDone);
    EXPECT_EQ(numbers.change, lastChange());
    EXPECT_EQ(numbers.byOthers, 0);
    EXPECT_GT(plan, own);
    EXPECT_THAT(texts(changes(client)),
                ElementsAre("made file /home/mine", "made file vtf://ben-Plans/plan"));
    EXPECT_THAT(texts(changes(ben)), ElementsAre("made file /home/Plans/plan", "made file /home/private"));
    EXPECT_THAT(texts(changes(client, L"vtf://ben-Plans/")), ElementsAre("made file vtf://ben-Plans/plan"));
    // Out of sight is gone.
    EXPECT_EQ(ben.move(L"/home/Plans/plan", L"/home/plan"), kDone);
    EXPECT_EQ(changes(client).back().text, "deleted file vtf://ben-Plans/plan");
    EXPECT_EQ(changes(ben).back().text, "moved file /home/Plans/plan -> /home/plan");
}

TEST_P(LibShortLog, AServerForgetsItsOldestChanges) {
    for (const wchar_t* name : {L"a", L"b", L"c", L"d"}) {
        EXPECT_EQ(client.createFile(L"/home/" + std::wstring(name)), kDone);
    }
    const std::vector<LoggedChange> log = changes(client);
    EXPECT_THAT(texts(log), ElementsAre("made file /home/b", "made file /home/c", "made file /home/d"));
    EXPECT_EQ(log.back().id, newestIn(L""));
    EXPECT_EQ(log.front().id, 2);
}

TEST_P(LibUserQuota, ItFallsByWhatIsUploadedAndRisesByWhatIsGone) {
    Quota found;
    EXPECT_EQ(quota(client, found), kDone);
    EXPECT_TRUE(found.enabled);
    EXPECT_GT(found.volumeFree, 0);
    EXPECT_GT(found.volumeTotal, found.volumeFree);
    ASSERT_EQ(found.volumes.size(), 1u);
    EXPECT_EQ(found.volumes[0].llQuotaSize, kLimit);
    EXPECT_EQ(found.volumes[0].llUsedSize, 0);
    EXPECT_EQ(found.volumes[0].llAvailableSize, kLimit);
    EXPECT_EQ(found.volumes[0].nVolumeID, 1);

    EXPECT_EQ(client.upload({randomBytes(300001), L"/home/a"}), kDone);
    EXPECT_EQ(client.upload({randomBytes(1024), L"/home/b"}), kDone);
    EXPECT_EQ(quota(client, found), kDone);
    ASSERT_EQ(found.volumes.size(), 1u);
    EXPECT_EQ(found.volumes[0].llUsedSize, 301025);
    EXPECT_EQ(found.volumes[0].llAvailableSize, kLimit - 301025);

    // What went to the recycle folder still counts.
    EXPECT_EQ(client.remove(L"/home/a"), kDone);
    EXPECT_EQ(quota(client, found), kDone);
    ASSERT_EQ(found.volumes.size(), 1u);
    EXPECT_EQ(found.volumes[0].llUsedSize, 301025);
    EXPECT_EQ(client.remove(L"/home/@Recycle/a"), kDone);
    EXPECT_EQ(quota(client, found), kDone);
    ASSERT_EQ(found.volumes.size(), 1u);
    EXPECT_EQ(found.volumes[0].llUsedSize, 1024);

    // To the last byte.
    EXPECT_EQ(client.upload({randomBytes(kLimit - 1024), L"/home/rest"}), kDone);
    EXPECT_EQ(quota(client, found), kDone);
    ASSERT_EQ(found.volumes.size(), 1u);
    EXPECT_EQ(found.volumes[0].llUsedSize, kLimit);
    EXPECT_EQ(found.volumes[0].llAvailableSize, 0);
    EXPECT_FALSE(client.upload({"x", L"/home/more"}) == kDone);
}

TEST_P(LibUserQuota, EveryVolumeIsToldIfAllAreWanted) {
    put("a", std::string(5000, 'a'));
    Quota found;
    EXPECT_EQ(quota(client, found, true), kDone);
    EXPECT_TRUE(found.enabled);
    ASSERT_EQ(found.volumes.size(), 3u);
    const std::int64_t expected[][3] = {{1, kLimit, 5000}, {2, 3000000, 1000}, {3, 5368709120, 2048}};
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(found.volumes[i].nVolumeID, expected[i][0]);
        EXPECT_EQ(found.volumes[i].llQuotaSize, expected[i][1]);
        EXPECT_EQ(found.volumes[i].llUsedSize, expected[i][2]);
        EXPECT_EQ(found.volumes[i].llAvailableSize, expected[i][1] - expected[i][2]);
    }
}

TEST_P(LibUserQuota, AUserWithoutOneHearsOfTheVolumeAlone) {
    const Client ben(nas, GetParam(), L"ben", L"hidden");
    Quota found;
    EXPECT_EQ(quota(ben, found), kDone);
    EXPECT_FALSE(found.enabled);
    EXPECT_GT(found.volumeTotal, 0);
    EXPECT_THAT(found.volumes, IsEmpty());
}

TEST_P(LibHome, OnesOwnIsToldByItsPath) {
    EXPECT_EQ(homeOf(client, L"anna"), L"/home");
    EXPECT_EQ(homeOf(client, L"ben"), L"/homes/ben");
    EXPECT_EQ(utf8(homeOf(client, wide("jo & söhne+%2F"))), "/homes/jo & söhne+%2F");
    EXPECT_EQ(nas.requestCount("refused"), 0) << nas.log();
    std::vector<Entry> entries;
    Pages pages;
    put("a", "bytes");
    pages.path = homeOf(client, L"anna");
    EXPECT_EQ(client.list(pages, entries), kDone);
    EXPECT_THAT(names(entries), ElementsAre("a"));
}

TEST_P(LibHome, OneThatIsNotToldOrDoesNotFitLeavesTheBufferEmpty) {
    EXPECT_EQ(homeOf(client, L"nobody"), L"");
    const Client ben(nas, GetParam(), L"ben", L"hidden");
    EXPECT_EQ(homeOf(ben, L"ben"), L"/home");
    EXPECT_EQ(homeOf(ben, L"anna"), L"");
    EXPECT_EQ(homeOf(client, L"anna", 5), L"");
    EXPECT_EQ(homeOf(client, L"anna", 6), L"/home");
    nas.expireSessions();
    EXPECT_EQ(homeOf(client, L"anna"), L"");
}

TEST_P(LibVeto, TheListComesAsTheServerWritesIt) {
    Nas nas(withArguments({"--veto", "*.tmp", "--veto", "~$*", "--veto", "書類?"}));
    const Client client(nas, GetParam());
    const std::wstring expected = wide("/*.tmp/~$*/書類?/");
    const auto length = static_cast<std::uint32_t>(expected.size());
    std::wstring text;
    EXPECT_EQ(fetch(client, 0, text), std::pair(0u, length + 1));
    EXPECT_EQ(text, L"");
    EXPECT_EQ(fetch(client, length - 1, text), std::pair(0u, length + 1));
    EXPECT_EQ(text, L"");
    EXPECT_EQ(fetch(client, length + 1, text), std::pair(0u, length + 1));
    EXPECT_EQ(text, expected);
    EXPECT_EQ(fetch(client, length, text), std::pair(0u, length));
    EXPECT_EQ(text, expected);
}

TEST_P(LibVeto, WithoutAListNothingChanges) {
    Nas nas;
    const Client client(nas, GetParam());
    std::wstring text;
    EXPECT_EQ(fetch(client, 0, text), std::pair(0u, 0u));
    EXPECT_EQ(fetch(client, 100, text), std::pair(0u, 100u));
    EXPECT_EQ(text, L"");
}

TEST_P(LibSyncFolders, AHomeAndTheSharesCanBeSynced) {
    std::vector<SyncFolder> folders;
    EXPECT_EQ(syncFolders(client, folders), kDone);
    std::vector<std::string> found;
    for (const SyncFolder& folder : folders) found.push_back(folder.path);
    EXPECT_THAT(found, testing::UnorderedElementsAre("/home", "/Films", "/Read only 書類"));
    EXPECT_EQ(folder("home").privilege, 2);
    EXPECT_EQ(folder("Read only 書類").privilege, 1);
    EXPECT_EQ(folder("home").volume, 1);
    EXPECT_EQ(folder("Films").volume, 2);
    EXPECT_EQ(folder("Films").node, "");
    for (const SyncFolder& folder : folders) {
        EXPECT_EQ(folder.used, -1);
        EXPECT_EQ(folder.capacity, -1);
        EXPECT_EQ(folder.free, -1);
    }
    nas.expireSessions();
    EXPECT_EQ(syncFolders(client, folders), (Numbers{0, 3}));
    EXPECT_THAT(folders, IsEmpty());
    EXPECT_EQ(nas.requestCount("refused"), 0) << nas.log();
}

TEST_P(LibSyncFolders, TheirSizesAreToldIfTheyAreWantedAndCountedAnewIfThatIs) {
    put("a", std::string(3000, 'a'));
    const SyncFolder films = folder("Films", true), home = folder("home", true);
    EXPECT_EQ(films.used, 2048);
    EXPECT_EQ(films.capacity, 5368709120);
    EXPECT_EQ(films.free, 5368709120 - 2048);
    EXPECT_EQ(home.used, 3000);
    EXPECT_EQ(home.capacity, 1048576);
    EXPECT_EQ(home.free, 1048576 - 3000);
    put("b", std::string(96, 'b'));
    EXPECT_EQ(folder("home", true).used, 3000);
    EXPECT_EQ(folder("home", true, true).used, 3096);
}

E2E_ON_ALL_ROADS(LibLog);
E2E_ON_ALL_ROADS(LibTeamLog);
E2E_ON_ALL_ROADS(LibShortLog);
E2E_ON_ALL_ROADS(LibUserQuota);
E2E_ON_ALL_ROADS(LibHome);
E2E_ON_ALL_ROADS(LibVeto);
E2E_ON_ALL_ROADS(LibSyncFolders);
