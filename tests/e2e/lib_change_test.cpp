#include <atomic>
#include <nlohmann/json.hpp>
#include <thread>

#include "lib_support.h"

using namespace e2e;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

namespace {

const std::vector<std::string> kNames = {"a b", "say \"hi\"", "100%",   "%20",  "a&b=c", "1+1",    "書類.txt",
                                         "😀",   "it's; #1?",  "~tilde", "a\\b", "{x}^`", ".hidden"};

class LibChange : public LibRoad {
protected:
    LibChange() : LibChange(std::vector<std::string>()) {}
    explicit LibChange(std::vector<std::string> arguments) : LibRoad(withArguments(std::move(arguments))) {
        std::filesystem::create_directories(nas.folder().file("Public"));
    }

    void makeOnDisk(const std::string& name) const { std::filesystem::create_directories(onDisk(name)); }
    bool there(const std::string& name) const { return std::filesystem::exists(onDisk(name)); }
    std::string content(const std::string& name) const { return nas.folder().read("homes/anna/" + name); }
    /// What lies in a folder of the server, by name.
    std::vector<std::string> inFolder(const std::string& folder) const {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(nas.folder().file(folder)))
            names.push_back(entry.path().filename());
        return names;
    }
    /// A folder that takes nothing and gives nothing away, with a file in it.
    void close(const std::string& name) {
        put(name + "/old", "old");
        std::filesystem::permissions(onDisk(name), static_cast<std::filesystem::perms>(0555));
        m_closed.push_back(name);
    }
    int jobs() { return nlohmann::json::parse(nas.control("GET", "state")).at("jobs"); }
    /// Asks until the job is over, and gives every percent that was told.
    std::vector<std::uint32_t> finish(const std::wstring& pid) {
        std::vector<std::uint32_t> percents;
        do {
            const JobState state = client.askJob(pid);
            EXPECT_EQ(state.numbers, kDone);
            EXPECT_EQ(state.error, 0);
            if (testing::Test::HasFailure()) break;
            percents.push_back(state.percent);
        } while (percents.back() != 100);
        return percents;
    }
    void TearDown() override {
        for (const std::string& name : m_closed)
            std::filesystem::permissions(onDisk(name), std::filesystem::perms::owner_all);
    }

private:
    std::vector<std::string> m_closed;
};

/// Nothing that depends on how long a job takes.
class LibMove : public LibChange {};
class LibTrash : public LibChange {};

class LibJob : public LibChange {
protected:
    LibJob() : LibChange({"--job-delay", "300"}) {}
};

/// Jobs that end with the server.
class LibEndlessJob : public LibChange {
protected:
    LibEndlessJob() : LibChange({"--job-delay", "3600000"}) {}
};

/// What only the sync service has.
class LibTeamChange : public LibChange {
protected:
    LibTeamChange()
        : LibChange({"--team", "ben:/home/Plans:anna", "--team", "ben:/home/Rules:anna:ro", "--team",
                     "ben:/home/Photos 2:anna"}) {
        client.learnTeamFolders(nas);
    }
    const std::wstring plans = L"/home/.Torvi/Plans", rules = L"/home/.Torvi/Rules";
};

}  // namespace

TEST_P(LibChange, AFolderIsMadeOnce) {
    EXPECT_EQ(client.makeFolder(L"/home", L"new"), kDone);
    EXPECT_TRUE(std::filesystem::is_directory(onDisk("new")));
    EXPECT_EQ(client.makeFolder(L"home/new", L"inner"), kDone);
    EXPECT_TRUE(std::filesystem::is_directory(onDisk("new/inner")));
    EXPECT_EQ(client.makeFolder(L"/home", L"new"), (Numbers{0, 183}));
    put("file", "1");
    EXPECT_EQ(client.makeFolder(L"/home", L"file"), (Numbers{0, 183}));
    EXPECT_EQ(content("file"), "1");
    EXPECT_EQ(client.makeFolder(L"/Public", L"in a share"), kDone);
    EXPECT_THAT(inFolder("Public"), ElementsAre("in a share"));
}

TEST_P(LibChange, AFolderThatCannotBeMadeSaysWhy) {
    close("closed");
    EXPECT_EQ(client.makeFolder(L"/home/none", L"x"), (Numbers{0, 3}));
    EXPECT_EQ(client.makeFolder(L"/home", std::wstring(256, L'n')), (Numbers{0, 206}));
    EXPECT_EQ(client.makeFolder(L"/home/closed", L"x"), (Numbers{0, 5}));
    EXPECT_EQ(client.makeFolder(L"/home/..", L"x"), (Numbers{0, 5}));
    EXPECT_EQ(client.makeFolder(L"/", L"share"), (Numbers{0, 5}));
    EXPECT_EQ(client.makeFolder(L"/home", L"a/b"), (Numbers{0, -1}));
    EXPECT_THAT(inFolder("homes/anna"), ElementsAre("closed"));
    EXPECT_THAT(inFolder("homes/anna/closed"), ElementsAre("old"));
}

TEST_P(LibChange, NamesOfEveryScriptAreMadeRenamedMovedAndDeleted) {
    makeOnDisk("to");
    for (const std::string& name : kNames) {
        SCOPED_TRACE(name);
        const std::wstring path = L"/home/" + wide(name), renamed = path + L" 2",
                           moved = L"/home/to/" + wide(name) + L" 2";
        EXPECT_EQ(client.makeFolder(L"/home", wide(name)), kDone);
        EXPECT_TRUE(there(name));
        EXPECT_EQ(client.setTime(L"/home", wide(name), 1234567890), kDone);
        EXPECT_EQ(modifiedTime(onDisk(name)), 1234567890);
        EXPECT_EQ(client.rename(path, renamed), kDone);
        EXPECT_FALSE(there(name));
        EXPECT_TRUE(there(name + " 2"));
        std::filesystem::remove(onDisk(name + " 2"));
        put(name + " 2", name);
        if (isSync()) {
            EXPECT_EQ(client.moveChecked(renamed, moved, client.profile(renamed)), kDone);
        } else {
            std::filesystem::rename(onDisk(name + " 2"), onDisk("to/" + name + " 2"));
        }
        EXPECT_EQ(content("to/" + name + " 2"), name);
        EXPECT_EQ(client.remove(moved), kDone);
        EXPECT_FALSE(there("to/" + name + " 2"));
    }
    EXPECT_EQ(nas.requestCount("refused"), 0) << nas.log();
}

TEST_P(LibChange, ADeletedPathIsGone) {
    put("a", "1");
    put("d/sub/x", "2");
    nas.folder().write("Public/p", "3");
    EXPECT_EQ(client.remove(L"/home/a"), kDone);
    EXPECT_FALSE(there("a"));
    EXPECT_EQ(client.remove(L"/home/a"), (Numbers{0, 3}));
    EXPECT_EQ(client.remove(L"home/d"), kDone);
    EXPECT_FALSE(there("d"));
    EXPECT_EQ(client.remove(L"/Public/p"), kDone);
    EXPECT_THAT(inFolder("Public"), IsEmpty());
    EXPECT_EQ(client.remove(L"/home/none/x"), (Numbers{0, 3}));
}

TEST_P(LibChange, WhatMayNotBeDeletedStays) {
    close("closed");
    const Profile old = client.profile(L"/home/closed/old");
    EXPECT_EQ(client.remove(L"/home/closed/old"), (Numbers{0, 5}));
    EXPECT_EQ(client.removeChecked(L"/home/closed/old", old), (Numbers{0, 5}));
    EXPECT_EQ(content("closed/old"), "old");
    nas.forgetRequests();
    EXPECT_EQ(client.remove(L"/Public"), (Numbers{5, -1}));
    EXPECT_EQ(client.removeChecked(L"/Public", {1, 0, true}), (Numbers{5, -1}));
    EXPECT_EQ(nas.requestCount(), 0);
    EXPECT_TRUE(std::filesystem::exists(nas.folder().file("Public")));
}

TEST_P(LibChange, AFileThatChangedInBetweenIsNotDeleted) {
    put("a", "12345", 1400000000);
    const Profile before = client.profile(L"/home/a");
    EXPECT_EQ(before.size, 5);
    EXPECT_EQ(before.time, 1400000000);
    put("a", "longer now", 1400000000);
    EXPECT_EQ(client.removeChecked(L"/home/a", before), (Numbers{0, 13}));
    put("a", "54321", 1400000001);
    EXPECT_EQ(client.removeChecked(L"/home/a", before), (Numbers{0, 13}));
    std::filesystem::remove(onDisk("a"));
    makeOnDisk("a");
    setModifiedTime(onDisk("a"), before.time);
    EXPECT_EQ(client.removeChecked(L"/home/a", before), (Numbers{0, 13}));
    EXPECT_TRUE(there("a"));
    std::filesystem::remove(onDisk("a"));
    EXPECT_EQ(client.removeChecked(L"/home/a", before), (Numbers{0, 13}));

    put("a", "newest", 1400000002);
    EXPECT_EQ(client.removeChecked(L"/home/a", client.profile(L"/home/a")), kDone);
    EXPECT_FALSE(there("a"));
}

TEST_P(LibChange, AFolderThatHasGoneCountsAsDeleted) {
    put("d/x", "1");
    const Profile profile = client.profile(L"/home/d");
    EXPECT_TRUE(profile.isFolder);
    put("d/y", "2", 1500000000);
    EXPECT_EQ(client.removeChecked(L"/home/d", profile, true), kDone);
    EXPECT_FALSE(there("d"));
    EXPECT_EQ(client.removeChecked(L"/home/d", profile), kDone);
    put("d", "a file now");
    EXPECT_EQ(client.removeChecked(L"/home/d", profile), (Numbers{0, 13}));
    EXPECT_EQ(content("d"), "a file now");
    EXPECT_EQ(client.removeChecked(L"/home/d", {0, 10, false}).dwStatus, 8u);  // a profile needs a time
}

TEST_P(LibChange, ATimeIsSetAndReportedBack) {
    put("a", "1");
    makeOnDisk("d");
    close("closed");
    for (const std::int64_t time : {std::int64_t{1234567890}, std::int64_t{0}, std::int64_t{4102444800}}) {
        EXPECT_EQ(client.setTime(L"/home", L"a", time), kDone);
        EXPECT_EQ(modifiedTime(onDisk("a")), time);
    }
    EXPECT_EQ(client.setTime(L"/home", L"d", 1234567890), kDone);
    EXPECT_EQ(modifiedTime(onDisk("d")), 1234567890);
    EXPECT_EQ(client.setTime(L"/home", L"none", 1234567890), (Numbers{0, -4}));
    EXPECT_EQ(client.setTime(L"/home", L"closed", 1234567890), (Numbers{14, -3}));
    EXPECT_NE(modifiedTime(onDisk("closed")), 1234567890);
}

TEST_P(LibChange, ARenamedPathIsAtItsNewNameAlone) {
    put("a", "bytes", 1400000000);
    put("d/x", "1");
    EXPECT_EQ(client.rename(L"/home/a", L"/home/b"), kDone);
    EXPECT_EQ(content("b"), "bytes");
    EXPECT_EQ(modifiedTime(onDisk("b")), 1400000000);
    EXPECT_FALSE(there("a"));
    EXPECT_EQ(client.rename(L"/home/d/", L"/home/e/"), kDone);
    EXPECT_EQ(content("e/x"), "1");
    EXPECT_EQ(client.renameChecked(L"/home/b", L"/home/c", client.profile(L"/home/b")), kDone);
    EXPECT_EQ(content("c"), "bytes");
    EXPECT_EQ(client.renameChecked(L"/home/e", L"/home/f", client.profile(L"/home/e")), kDone);
    EXPECT_THAT(inFolder("homes/anna"), UnorderedElementsAre("c", "f"));
}

TEST_P(LibChange, ARenameThatIsRefusedChangesNothing) {
    put("a", "a");
    put("taken", "b");
    makeOnDisk("d");
    close("closed");
    const Profile a = client.profile(L"/home/a"), old = client.profile(L"/home/closed/old");
    const struct {
        const wchar_t *from, *to;
        Profile profile;
        Numbers plain, checked;
        bool asked;
    } rows[] = {
        {L"/home/a", L"/home/taken", a, {0, 5003}, {0, 5003}, true},
        {L"/home/a", L"/home/d", a, {0, 5003}, {0, 5003}, true},
        {L"/home/none", L"/home/b", a, {0, -1}, {0, 13}, true},
        {L"/home/closed/old", L"/home/closed/b", old, {0, 5}, {0, 5}, true},
        {L"/home/a", L"/home/d/a", a, {87, -1}, {14, 87}, false},
        {L"/Public", L"/Private", a, {5, -1}, {14, 5}, false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(utf8(row.from) + " to " + utf8(row.to));
        nas.forgetRequests();
        EXPECT_EQ(client.rename(row.from, row.to), row.plain);
        EXPECT_EQ(client.renameChecked(row.from, row.to, row.profile), row.checked);
        EXPECT_EQ(nas.requestCount("rename"), row.asked ? 2 : 0);
    }
    EXPECT_EQ(content("a"), "a");
    EXPECT_EQ(content("taken"), "b");
    EXPECT_EQ(content("closed/old"), "old");
    EXPECT_THAT(inFolder("homes/anna"), UnorderedElementsAre("a", "taken", "d", "closed"));
    EXPECT_TRUE(std::filesystem::exists(nas.folder().file("Public")));
}

TEST_P(LibChange, AFileThatChangedInBetweenIsNotRenamed) {
    put("a", "12345");
    const Profile before = client.profile(L"/home/a");
    put("a", "1234");
    EXPECT_EQ(client.renameChecked(L"/home/a", L"/home/b", before), (Numbers{0, 13}));
    EXPECT_EQ(content("a"), "1234");
    Profile asFolder = client.profile(L"/home/a");
    asFolder.isFolder = true;
    EXPECT_EQ(client.renameChecked(L"/home/a", L"/home/b", asFolder), (Numbers{0, 13}));
    EXPECT_EQ(client.renameChecked(L"/home/a", L"/home/b", client.profile(L"/home/a")), kDone);
    EXPECT_EQ(content("b"), "1234");
}

TEST_P(LibChange, ASessionThatEndedChangesNothing) {
    put("a", "1");
    put("@Recycle/old", "1");
    makeOnDisk("d");
    const Profile a = client.profile(L"/home/a");
    std::wstring pid;
    nas.expireSessions();
    EXPECT_EQ(client.makeFolder(L"/home", L"x"), (Numbers{0, -1}));
    EXPECT_EQ(client.remove(L"/home/a"), kDone);  // a refusal that this call has no number for
    EXPECT_EQ(client.removeChecked(L"/home/a", a), (Numbers{0, -1}));
    EXPECT_EQ(client.setTime(L"/home", L"a", 1234567890), (Numbers{0, -29}));
    EXPECT_EQ(client.rename(L"/home/a", L"/home/b"), (Numbers{0, -1}));
    EXPECT_EQ(client.renameChecked(L"/home/a", L"/home/b", a), (Numbers{0, -1}));
    EXPECT_EQ(client.move(L"/home/a", L"/home/d/a"), (Numbers{0, -1}));
    EXPECT_EQ(client.moveChecked(L"/home/a", L"/home/d/a", a), (Numbers{0, -1}));
    EXPECT_EQ(client.followJob(1), (Numbers{0, -1}));
    EXPECT_EQ(client.askJob(L"1").numbers, (Numbers{0, -1}));
    EXPECT_EQ(client.restore(L"/home/@Recycle", L"old", pid), (Numbers{0, -29}));
    EXPECT_THAT(inFolder("homes/anna"), UnorderedElementsAre("a", "d", "@Recycle"));
    EXPECT_EQ(modifiedTime(onDisk("a")), a.time);
}

TEST_P(LibMove, AFileGoesToAnotherFolderUnderItsNameOrANewOne) {
    put("a", "bytes", 1400000000);
    makeOnDisk("to");
    EXPECT_EQ(client.moveChecked(L"/home/a", L"/home/to/a", client.profile(L"/home/a")), kDone);
    EXPECT_EQ(content("to/a"), "bytes");
    EXPECT_EQ(modifiedTime(onDisk("to/a")), 1400000000);
    EXPECT_FALSE(there("a"));
    EXPECT_EQ(nas.requestCount("rename"), 0);
    EXPECT_EQ(client.moveChecked(L"/home/to/a", L"/home/b", client.profile(L"/home/to/a")), kDone);
    EXPECT_EQ(content("b"), "bytes");
    EXPECT_THAT(inFolder("homes/anna"), UnorderedElementsAre("b", "to"));
    EXPECT_THAT(inFolder("homes/anna/to"), IsEmpty());
    EXPECT_EQ(nas.requestCount("rename"), 1);
    // The file manager knows jobs alone, and keeps them until they are cleared.
    EXPECT_EQ(nas.requestCount("get_move_status") > 0, !isSync());
    EXPECT_EQ(nas.requestCount("daemon_list"), isSync() ? 0 : 2);
    EXPECT_EQ(jobs(), 0);
}

TEST_P(LibMove, AnObjectThatCannotHaveItsNewNameIsAtNeitherPath) {
    put("a", "bytes");
    put("to/taken", "other");
    EXPECT_EQ(client.moveChecked(L"/home/a", L"/home/to/taken", client.profile(L"/home/a")),
              (Numbers{0, -1}));
    EXPECT_FALSE(there("a"));
    EXPECT_THAT(inFolder("homes/anna/to"), ElementsAre("taken"));
    EXPECT_EQ(content("to/taken"), "other");
    EXPECT_EQ(nas.requestCount("delete"), 1);
    EXPECT_EQ(content("@Recycle/to/a"), "bytes");  // this server keeps what is deleted
}

TEST_P(LibMove, ARenameLostAfterAMoveDeletesTheObject) {
    put("a", "bytes");
    makeOnDisk("to");
    nas.arm("http-status,match=rename,status=503");
    EXPECT_EQ(client.moveChecked(L"/home/a", L"/home/to/b", client.profile(L"/home/a")), (Numbers{12, -1}));
    EXPECT_FALSE(there("a"));
    EXPECT_THAT(inFolder("homes/anna/to"), IsEmpty());
}

TEST_P(LibMove, AMoveThatIsRefusedChangesNothing) {
    put("a", "a");
    put("to/a", "b");
    put("d/sub/x", "1");
    close("closed");
    const Profile a = client.profile(L"/home/a"), old = client.profile(L"/home/closed/old"),
                  d = client.profile(L"/home/d");
    const struct {
        const wchar_t *from, *to;
        Profile profile;
        Numbers plain, checked;
        bool asked;
    } rows[] = {
        {L"/home/a", L"/home/to/a", a, {0, -1}, {0, -1}, true},
        // The old name is what the destination must have free.
        {L"/home/a", L"/home/to/c", a, {0, -1}, {0, -1}, true},
        {L"/home/none", L"/home/to/b", a, {0, -1}, {0, 13}, true},
        {L"/home/a", L"/home/none/a", a, {0, -1}, {0, -1}, true},
        {L"/home/d", L"/home/d/sub/d", d, {0, -1}, {0, -1}, true},
        {L"/home/a", L"/home/closed/a", a, {0, 5}, {0, 5}, true},
        {L"/home/closed/old", L"/home/to/old", old, {0, 5}, {0, 5}, true},
        {L"/home/a", L"/home/b", a, {87, -1}, {14, 87}, false},
        {L"/Public", L"/home/Public", a, {5, -1}, {14, 5}, false},
        {L"/home/a", L"/home/to//", a, {5, -1}, {14, 5}, false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(utf8(row.from) + " to " + utf8(row.to));
        nas.forgetRequests();
        EXPECT_EQ(client.move(row.from, row.to), row.plain);
        EXPECT_EQ(client.moveChecked(row.from, row.to, row.profile), row.checked);
        EXPECT_EQ(nas.requestCount("move"), row.asked ? 2 : 0);
        EXPECT_EQ(nas.requestCount("rename"), 0);
    }
    EXPECT_EQ(content("a"), "a");
    EXPECT_EQ(content("to/a"), "b");
    EXPECT_EQ(content("d/sub/x"), "1");
    EXPECT_THAT(inFolder("homes/anna"), UnorderedElementsAre("a", "to", "d", "closed"));
    EXPECT_THAT(inFolder("homes/anna/to"), ElementsAre("a"));
    EXPECT_THAT(inFolder("homes/anna/closed"), ElementsAre("old"));
    EXPECT_EQ(jobs(), 0);
}

TEST_P(LibMove, AFileThatChangedInBetweenIsNotMoved) {
    put("a", "12345");
    makeOnDisk("to");
    const Profile before = client.profile(L"/home/a");
    put("a", "54321", before.time + 1);
    EXPECT_EQ(client.moveChecked(L"/home/a", L"/home/to/b", before), (Numbers{0, 13}));
    EXPECT_EQ(content("a"), "54321");
    EXPECT_THAT(inFolder("homes/anna/to"), IsEmpty());
    EXPECT_EQ(nas.requestCount("rename"), 0);
    EXPECT_EQ(client.moveChecked(L"/home/a", L"/home/to/a", {before.time, 5, true}), (Numbers{0, 13}));
}

TEST_P(LibJob, AFolderIsMovedByAJobThatIsFollowedToItsEnd) {
    put("d/sub/x", "1", 1400000000);
    const int late = nas.arm("late-job,count=2");
    EXPECT_EQ(client.move(L"/home/d", L"/Public/d"), kDone);  // another volume: a copy, then a deletion
    EXPECT_EQ(nas.folder().read("Public/d/sub/x"), "1");
    EXPECT_EQ(modifiedTime(nas.folder().file("Public/d/sub/x")), 1400000000);
    EXPECT_FALSE(there("d"));
    EXPECT_EQ(nas.hits(late), 2);
    EXPECT_GE(nas.requestCount("get_move_status"), 3);
    EXPECT_EQ(nas.requestCount("daemon_list"), isSync() ? 0 : 1);
    EXPECT_EQ(jobs(), 0);
}

TEST_P(LibJob, ACheckedMoveOfAFolderIsAJobAndTakesItsNewName) {
    put("d/sub/x", "1");
    makeOnDisk("to");
    EXPECT_EQ(client.moveChecked(L"/home/d", L"/home/to/e", client.profile(L"/home/d")), kDone);
    EXPECT_EQ(content("to/e/sub/x"), "1");
    EXPECT_FALSE(there("d"));
    EXPECT_THAT(inFolder("homes/anna/to"), ElementsAre("e"));
    EXPECT_GE(nas.requestCount("get_move_status"), 1);
}

TEST_P(LibJob, AFolderThatCannotHaveItsNewNameIsAtNeitherPath) {
    put("d/x", "1");
    put("to/taken/y", "2");
    EXPECT_EQ(client.move(L"/home/d", L"/home/to/taken"), (Numbers{0, -1}));
    EXPECT_FALSE(there("d"));
    EXPECT_THAT(inFolder("homes/anna/to"), ElementsAre("taken"));
    EXPECT_EQ(content("to/taken/y"), "2");
}

TEST_P(LibJob, AServerThatIsNotReadyIsAskedAgainForAJob) {
    put("d/x", "1");
    makeOnDisk("to");
    // Where this machine has no network at all there is no second question.
    const int tries = IsNetworkAlive() ? 3 : 1;
    int fault = nas.arm("http-status,match=get_move_status,status=503,count=" + std::to_string(tries - 1));
    if (tries > 1) {
        EXPECT_EQ(client.move(L"/home/d", L"/home/to/d"), kDone);
        EXPECT_EQ(content("to/d/x"), "1");
        EXPECT_EQ(nas.hits(fault), tries - 1);
        std::filesystem::rename(onDisk("to/d"), onDisk("d"));
    }
    fault = nas.arm("http-status,match=get_move_status,status=503,count=-1");
    EXPECT_EQ(client.move(L"/home/d", L"/home/to/e"), (Numbers{12, -1}));
    EXPECT_EQ(nas.hits(fault), tries);
    EXPECT_EQ(nas.requestCount("rename"), 0);
}

TEST_P(LibEndlessJob, ACancelledMoveLeavesItsJobToTheServer) {
    put("d/x", "1");
    makeOnDisk("to");
    bool cancel = false;
    std::atomic<bool> isOver{false};
    std::thread other([&] {
        while (!isOver && nas.requestCount("get_move_status") < 3)
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        cancel = true;
    });
    EXPECT_EQ(client.move(L"/home/d", L"/home/to/e", &cancel), (Numbers{14, -1}));
    isOver = true;
    other.join();
    EXPECT_GE(nas.requestCount("get_move_status"), 3);
    EXPECT_EQ(jobs(), 1);
    EXPECT_EQ(content("d/x"), "1");
    EXPECT_EQ(nas.requestCount("rename"), 0);
    EXPECT_EQ(nas.requestCount("daemon_list"), 0);
}

TEST_P(LibEndlessJob, AMoveThatIsCancelledBeforehandIsStartedAndNotFollowed) {
    put("d/x", "1");
    makeOnDisk("to");
    bool cancel = true;
    EXPECT_EQ(client.moveChecked(L"/home/d", L"/home/to/d", client.profile(L"/home/d"), &cancel),
              (Numbers{14, -1}));
    EXPECT_EQ(nas.requestCount("move"), 1);
    EXPECT_EQ(nas.requestCount("get_move_status"), 0);
    EXPECT_EQ(jobs(), 1);
}

TEST_P(LibEndlessJob, AJobThatRunsSaysSoUntilItIsCleared) {
    put("a", "1");
    EXPECT_EQ(client.remove(L"/home/a"), kDone);
    std::wstring pid;
    EXPECT_EQ(client.restore(L"/home/@Recycle", L"a", pid), kDone);
    const JobState running = client.askJob(pid);
    EXPECT_EQ(running.numbers, kDone);
    EXPECT_EQ(running.error, 0);
    EXPECT_LT(running.percent, 100u);
    bool cancel = true;
    EXPECT_EQ(client.followJob(std::stoi(pid), &cancel), (Numbers{14, -1}));
    EXPECT_EQ(jobs(), 1);
    EXPECT_EQ(client.clearJob(std::stoi(pid)), 0u);
    EXPECT_EQ(jobs(), 0);
    EXPECT_EQ(client.clearJob(std::stoi(pid)), 0u);  // refused, and that is no failure
    EXPECT_EQ(client.askJob(pid).numbers, (Numbers{0, -1}));
    EXPECT_EQ(client.clearJob(0), 8u);
    EXPECT_FALSE(there("a"));
}

TEST_P(LibTrash, AJobThatTheServerDoesNotKnowIsAPathNotFound) {
    EXPECT_EQ(client.followJob(1), (Numbers{0, 3}));
    nas.forgetRequests();
    nas.arm("late-job,count=-1");
    EXPECT_EQ(client.followJob(1), (Numbers{0, 3}));
    EXPECT_EQ(nas.requestCount("get_move_status"), 4);
    nas.disarm();
    nas.arm("http-status,match=get_move_status,status=503");
    EXPECT_EQ(client.followJob(1), (Numbers{12, -1}));
    EXPECT_EQ(client.askJob(L"1").error, 1);
}

TEST_P(LibTrash, ADeletedFileComesBackByAJob) {
    put("docs/sub/a.txt", "bytes", 1400000000);
    EXPECT_EQ(client.remove(L"/home/docs/sub/a.txt"), kDone);
    EXPECT_FALSE(there("docs/sub/a.txt"));
    std::wstring pid;
    EXPECT_EQ(client.restore(L"/home/@Recycle/docs/sub", L"a.txt", pid), kDone);
    EXPECT_THAT(finish(pid), testing::Contains(100));
    EXPECT_EQ(content("docs/sub/a.txt"), "bytes");
    EXPECT_EQ(modifiedTime(onDisk("docs/sub/a.txt")), 1400000000);
    EXPECT_FALSE(there("@Recycle/docs/sub/a.txt"));
    // A whole folder, and the one above it that has gone.
    put("photos/2024/p.jpg", "picture");
    EXPECT_EQ(client.remove(L"/home/photos/2024"), kDone);
    EXPECT_EQ(client.remove(L"/home/photos"), kDone);
    EXPECT_EQ(client.restore(L"/home/@Recycle/photos", L"2024", pid), kDone);
    EXPECT_EQ(client.followJob(std::stoi(pid)), kDone);
    EXPECT_EQ(content("photos/2024/p.jpg"), "picture");
}

TEST_P(LibTrash, NamesOfEveryScriptComeBack) {
    for (const std::string& name : kNames) {
        SCOPED_TRACE(name);
        put("d " + name + "/" + name, name);
        EXPECT_EQ(client.remove(L"/home/d " + wide(name) + L"/" + wide(name)), kDone);
        std::wstring pid;
        EXPECT_EQ(client.restore(L"/home/@Recycle/d " + wide(name), wide(name), pid), kDone);
        finish(pid);
        EXPECT_EQ(content("d " + name + "/" + name), name);
    }
}

TEST_P(LibTrash, AFileInTheWayIsReplacedOnlyInThatMode) {
    put("a", "old");
    EXPECT_EQ(client.remove(L"/home/a"), kDone);
    put("a", "new");
    std::wstring pid;
    EXPECT_EQ(client.restore(L"/home/@Recycle", L"a", pid), (Numbers{0, -15}));
    EXPECT_EQ(pid, L"");
    EXPECT_EQ(content("a"), "new");
    EXPECT_EQ(client.restore(L"/home/@Recycle", L"a", pid, 1), kDone);
    finish(pid);
    EXPECT_EQ(content("a"), "old");
}

TEST_P(LibTrash, WhatIsNotInTheTrashDoesNotComeBack) {
    put("a", "1");
    put("b", "2");
    EXPECT_EQ(client.remove(L"/home/b"), kDone);
    std::wstring pid;
    EXPECT_EQ(client.restore(L"/home/@Recycle", L"none", pid), (Numbers{0, -4}));
    EXPECT_EQ(client.restore(L"/home", L"a", pid), (Numbers{0, -4}));
    EXPECT_EQ(client.restore(L"/home/@Recycle", L"b", pid, 0, 2), (Numbers{0, -23}));
    EXPECT_EQ(pid, L"");
    EXPECT_EQ(client.restore(L"/home/@Recycle", L"b", pid, 0, 0).dwStatus, 8u);
}

TEST_P(LibTrash, WhatAReceiverDeletedFromATeamFolderIsNotRecoveredFromThere) {
    wchar_t ori[] = L"/home/.Torvi/Plans/", place[] = L"vtf://ben-Plans/";
    wchar_t *oris[] = {ori}, *places[] = {place};
    ASSERT_EQ(WFMUpdateTeamFolderInfo(client.context(), 1, oris, places, nullptr), 0u);
    std::wstring pid;
    nas.forgetRequests();
    // Only the sync service has team folders: of the others the server is asked.
    const Numbers refused = isSync() ? Numbers{14, -1} : Numbers{0, -4};
    EXPECT_EQ(client.restore(L"/home/@Recycle/.Torvi/Plans", L"a", pid), refused);
    EXPECT_EQ(client.restore(L"/home/@Recycle/.Torvi/Plans/sub", L"a", pid), refused);
    EXPECT_EQ(nas.requestCount("trash_recovery"), isSync() ? 0 : 2);
    nas.forgetRequests();
    EXPECT_EQ(client.restore(L"/home/@Recycle/.Torvi/Other", L"a", pid), (Numbers{0, -4}));
    WFMUpdateTeamFolderInfo(client.context(), 0, nullptr, nullptr, nullptr);
    EXPECT_EQ(client.restore(L"/home/@Recycle/.Torvi/Plans", L"a", pid), (Numbers{0, -4}));
    EXPECT_EQ(nas.requestCount("trash_recovery"), 2);
}

TEST_P(LibTeamChange, ChangesBelowATeamFolderReachItsOwnersFiles) {
    put("mine", "mine");
    EXPECT_EQ(client.makeFolder(plans, L"new"), kDone);
    EXPECT_TRUE(std::filesystem::is_directory(nas.folder().file("homes/ben/Plans/new")));
    EXPECT_EQ(client.makeFolder(plans + L"/new", L"inner"), kDone);
    nas.folder().write("homes/ben/Plans/p", "plan");
    EXPECT_EQ(client.setTime(plans, L"p", 1234567890), kDone);
    EXPECT_EQ(modifiedTime(nas.folder().file("homes/ben/Plans/p")), 1234567890);
    EXPECT_EQ(client.rename(plans + L"/p", plans + L"/q"), kDone);
    EXPECT_EQ(client.renameChecked(plans + L"/q", plans + L"/r", client.profile(plans + L"/q")), kDone);
    EXPECT_EQ(nas.folder().read("homes/ben/Plans/r"), "plan");
    // Into a folder of the team folder, out to another one, and home.
    EXPECT_EQ(client.moveChecked(plans + L"/r", plans + L"/new/r", client.profile(plans + L"/r")), kDone);
    EXPECT_EQ(nas.folder().read("homes/ben/Plans/new/r"), "plan");
    EXPECT_EQ(
        client.moveChecked(plans + L"/new/r", L"/home/.Torvi/Photos 2/s", client.profile(plans + L"/new/r")),
        kDone);
    EXPECT_EQ(nas.folder().read("homes/ben/Photos 2/s"), "plan");
    EXPECT_EQ(client.move(L"/home/.Torvi/Photos 2/s", L"/home/s"), kDone);
    EXPECT_EQ(content("s"), "plan");
    EXPECT_EQ(client.moveChecked(L"/home/mine", plans + L"/mine", client.profile(L"/home/mine")), kDone);
    EXPECT_EQ(nas.folder().read("homes/ben/Plans/mine"), "mine");
    EXPECT_EQ(client.remove(plans + L"/new/inner"), kDone);
    EXPECT_EQ(client.removeChecked(plans + L"/new", client.profile(plans + L"/new")), kDone);
    EXPECT_EQ(client.removeChecked(plans + L"/mine", client.profile(plans + L"/mine")), kDone);
    EXPECT_THAT(inFolder("homes/ben/Plans"), IsEmpty());
    EXPECT_THAT(inFolder("homes/anna"), ElementsAre("s"));
    EXPECT_EQ(nas.requestCount("refused"), 0) << nas.log();
}

TEST_P(LibTeamChange, AReadOnlyTeamFolderIsLeftAsItIs) {
    nas.folder().write("homes/ben/Rules/r", "rule");
    nas.folder().write("homes/ben/Rules/d/x", "1");
    put("mine", "mine");
    const Profile r = client.profile(rules + L"/r"), mine = client.profile(L"/home/mine");
    const Numbers denied{0, 5};
    EXPECT_EQ(client.makeFolder(rules, L"new"), denied);
    EXPECT_EQ(client.remove(rules + L"/r"), denied);
    EXPECT_EQ(client.removeChecked(rules + L"/r", r), denied);
    EXPECT_EQ(client.setTime(rules, L"r", 1234567890), (Numbers{14, -3}));
    EXPECT_EQ(client.rename(rules + L"/r", rules + L"/s"), denied);
    EXPECT_EQ(client.renameChecked(rules + L"/r", rules + L"/s", r), denied);
    EXPECT_EQ(client.move(rules + L"/d", L"/home/d"), denied);
    EXPECT_EQ(client.moveChecked(rules + L"/r", L"/home/r", r), denied);
    EXPECT_EQ(client.move(L"/home/mine", rules + L"/mine"), denied);
    EXPECT_EQ(client.moveChecked(L"/home/mine", rules + L"/mine", mine), denied);
    EXPECT_THAT(inFolder("homes/ben/Rules"), UnorderedElementsAre("r", "d"));
    EXPECT_NE(modifiedTime(nas.folder().file("homes/ben/Rules/r")), 1234567890);
    EXPECT_THAT(inFolder("homes/anna"), ElementsAre("mine"));
}

TEST_P(LibTeamChange, ATeamFolderItselfIsNotTheReceiversToChange) {
    nas.folder().write("homes/ben/Plans/p", "plan");
    nas.forgetRequests();
    EXPECT_EQ(client.makeFolder(L"/home/.Torvi", L"Plans"), (Numbers{0, 183}));
    EXPECT_EQ(client.remove(plans), (Numbers{5, -1}));
    EXPECT_EQ(client.removeChecked(plans, {1, 0, true}), (Numbers{14, 50}));
    EXPECT_EQ(nas.requestCount(), 0);
    EXPECT_EQ(client.setTime(L"/home/.Torvi", L"Plans", 1234567890), (Numbers{14, -1}));
    EXPECT_EQ(client.rename(plans, L"/home/.Torvi/Other"), (Numbers{87, -1}));
    EXPECT_EQ(client.move(plans, L"/home/Plans"), (Numbers{0, -1}));
    EXPECT_EQ(nas.folder().read("homes/ben/Plans/p"), "plan");
}

TEST_P(LibTeamChange, AFileOfATeamFolderThatChangedInBetweenStays) {
    nas.folder().write("homes/ben/Plans/p", "plan");
    const Profile before = client.profile(plans + L"/p");
    nas.folder().write("homes/ben/Plans/p", "plan B");
    EXPECT_EQ(client.removeChecked(plans + L"/p", before), (Numbers{0, 13}));
    EXPECT_EQ(client.renameChecked(plans + L"/p", plans + L"/q", before), (Numbers{0, 13}));
    EXPECT_EQ(client.moveChecked(plans + L"/p", L"/home/p", before), (Numbers{0, 13}));
    EXPECT_EQ(nas.folder().read("homes/ben/Plans/p"), "plan B");
}

E2E_ON_ALL_ROADS(LibChange);
E2E_ON_ALL_ROADS(LibMove);
E2E_ON_ALL_ROADS(LibTrash);
E2E_ON_ALL_ROADS(LibJob);
E2E_ON_ALL_ROADS(LibEndlessJob);
INSTANTIATE_TEST_SUITE_P(Roads, LibTeamChange, testing::ValuesIn(syncRoads()), roadName);
