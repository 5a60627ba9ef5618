#include <QCryptographicHash>
#include <cwchar>

#include "lib_support.h"

using namespace e2e;
using testing::StartsWith;

namespace {

class LibVersioning : public LibRoad {
protected:
    LibVersioning() : LibVersioning(std::vector<std::string>()) {}
    explicit LibVersioning(std::vector<std::string> arguments)
        : LibRoad(withArguments(std::move(arguments))) {}

    WFM_VERSIONING_LOCK open(const std::wstring& path = L"/home/f") const {
        WFM_VERSIONING_LOCK lock = {};
        EXPECT_EQ(client.lock(path, lock), kDone);
        EXPECT_NE(std::wcslen(lock.szLockID), 0u);
        EXPECT_NE(std::wcslen(lock.szVersionID), 0u);
        return lock;
    }
    static std::wstring workFolder(const WFM_VERSIONING_LOCK& lock) {
        return std::wstring(L"/home/@Versions/") + lock.szVersionID;
    }
    std::string workFile(const WFM_VERSIONING_LOCK& lock, const std::string& name) const {
        return onDisk("@Versions/" + utf8(lock.szVersionID) + "/" + name);
    }
    std::string content(const std::string& name) const { return nas.folder().read("homes/anna/" + name); }
    std::string fetch(const WFM_VERSIONING_LOCK& lock, const std::wstring& name) const {
        std::string bytes;
        EXPECT_EQ(client.download(workFolder(lock) + L"/" + name, bytes), kDone);
        return bytes;
    }
    void give(const WFM_VERSIONING_LOCK& lock, const std::wstring& name, const std::string& bytes) const {
        EXPECT_EQ(client.upload({bytes, workFolder(lock) + L"/" + name}), kDone);
    }
    /// Asks until the job is over, and gives how it ended.
    std::int32_t finish(const std::wstring& pid) const {
        JobState state;
        do {
            state = client.askJob(pid);
            EXPECT_EQ(state.numbers, kDone);
        } while (state.numbers == kDone && state.error == 0 && state.percent < 100);
        return state.error;
    }
};

class LibEndlessVersioning : public LibVersioning {
protected:
    LibEndlessVersioning() : LibVersioning({"--job-delay", "3600000"}) {}
};

class LibWithoutVersioning : public LibVersioning {
protected:
    LibWithoutVersioning() : LibVersioning({"--no-versioning"}) {}
};

class LibTeamVersioning : public LibVersioning {
protected:
    LibTeamVersioning()
        : LibVersioning({"--team", "ben:/home/Plans:anna", "--team", "ben:/home/Rules:anna:ro"}) {
        client.learnTeamFolders(nas);
    }
};

std::string littleEndian(std::uint64_t number, int bytes) {
    std::string text;
    for (int i = 0; i < bytes; ++i) text += static_cast<char>(number >> (8 * i));
    return text;
}

/// In the server's format: so many bytes of the old file's beginning, then these.
std::string delta(const std::string& old, std::size_t kept, const std::string& added) {
    const std::string whole = old.substr(0, kept) + added;
    return "TORVDLT1" + std::string("\1", 1) + littleEndian(0, 8) + littleEndian(kept, 8) +
           std::string("\2", 1) + littleEndian(added.size(), 4) + added + std::string(1, '\0') +
           QCryptographicHash::hash(QByteArray::fromStdString(whole), QCryptographicHash::Sha256)
               .toStdString();
}

}  // namespace

TEST_P(LibVersioning, TheProbeTellsTheEngineAndNoResult) {
    std::wstring version;
    EXPECT_EQ(client.probe(version), (Numbers{0, -1}));
    EXPECT_EQ(version, L"1.0");
    nas.expireSessions();
    EXPECT_EQ(client.probe(version), (Numbers{0, -1}));
    EXPECT_EQ(version, L"");
}

TEST_P(LibWithoutVersioning, TheProbeTellsNothingAndNothingCanBeLocked) {
    std::wstring version;
    EXPECT_EQ(client.probe(version), (Numbers{0, -1}));
    EXPECT_EQ(version, L"");
    put("f", "1");
    WFM_VERSIONING_LOCK lock = {};
    EXPECT_EQ(client.lock(L"/home/f", lock), (Numbers{0, -1}));
    EXPECT_STREQ(lock.szLockID, L"");
}

TEST_P(LibVersioning, ALockKeepsTheFileAsItIsAndExcludesEverySecond) {
    put("f", "before");
    const WFM_VERSIONING_LOCK held = open();
    put("f", "after");
    EXPECT_EQ(fetch(held, L"content"), "before");

    const Client other(nas, GetParam());
    WFM_VERSIONING_LOCK second = {};
    EXPECT_EQ(other.lock(L"/home/f", second), (Numbers{0, -1}));
    EXPECT_EQ(client.lock(L"/home/f", second), (Numbers{0, -1}));
    EXPECT_STREQ(second.szLockID, L"");
    EXPECT_STREQ(second.szVersionID, L"");
    EXPECT_EQ(client.unlock(L"/home/f", held), kDone);
    EXPECT_EQ(client.unlock(L"/home/f", held), (Numbers{0, -1}));
    EXPECT_EQ(other.lock(L"/home/f", second), kDone);
    EXPECT_STRNE(second.szLockID, held.szLockID);
}

TEST_P(LibVersioning, TheIdsOfALockAskWhetherItIsStillGood) {
    put("f", "1");
    const WFM_VERSIONING_LOCK held = open();
    WFM_VERSIONING_LOCK lock = held;
    nas.forgetRequests();
    EXPECT_EQ(client.lock(L"/home/f", lock), kDone);
    EXPECT_STREQ(lock.szLockID, held.szLockID);
    EXPECT_STREQ(lock.szVersionID, held.szVersionID);
    // A new login goes on with them.
    const Client later(nas, GetParam());
    EXPECT_EQ(later.lock(L"/home/f", lock), kDone);
    // One id alone opens a session, and that is taken.
    WFM_VERSIONING_LOCK half = held;
    half.szVersionID[0] = L'\0';
    EXPECT_EQ(client.lock(L"/home/f", half), (Numbers{0, -1}));
    put("g", "1");
    EXPECT_EQ(client.lock(L"/home/g", lock), (Numbers{0, -1}));
    EXPECT_EQ(client.unlock(L"/home/f", held), kDone);
    EXPECT_EQ(client.lock(L"/home/f", lock), (Numbers{0, -1}));
    EXPECT_STREQ(lock.szLockID, held.szLockID);
}

TEST_P(LibVersioning, WhatIsNoFileCannotBeLocked) {
    put("d/x", "1");
    for (const wchar_t* path : {L"/home/none", L"/home/d", L"/home/none/x", L"/home/../x"}) {
        SCOPED_TRACE(utf8(path));
        WFM_VERSIONING_LOCK lock = {};
        EXPECT_EQ(client.lock(path, lock), (Numbers{0, -1}));
        EXPECT_STREQ(lock.szLockID, L"");
    }
}

TEST_P(LibVersioning, NamesOfEveryScriptAreLocked) {
    for (const std::string name :
         {"a b", "say \"hi\"", "100%", "%20", "a&b=c", "1+1", "書類.txt", "😀", "it's; #1?", "~", "{x}^`"}) {
        SCOPED_TRACE(name);
        put("d " + name + "/" + name, name);
        const std::wstring path = L"/home/d " + wide(name) + L"/" + wide(name);
        const WFM_VERSIONING_LOCK lock = open(path);
        EXPECT_EQ(fetch(lock, L"content"), name);
        EXPECT_EQ(client.cleanVersion(path, lock), kDone);
        EXPECT_EQ(client.unlock(path, lock), kDone);
    }
    EXPECT_EQ(nas.requestCount("refused"), 0) << nas.log();
}

TEST_P(LibVersioning, ASignatureIsMadeByAJob) {
    put("f", randomBytes(300000));
    const WFM_VERSIONING_LOCK lock = open();
    std::wstring pid;
    EXPECT_EQ(client.makeSignature(L"/home/f", lock, pid), kDone);
    EXPECT_EQ(finish(pid), 0);
    const std::string signature = fetch(lock, L"signature");
    EXPECT_THAT(signature, StartsWith("TORVSIG1"));
    // There already, which is as good; the job has nothing to do.
    EXPECT_EQ(client.makeSignature(L"/home/f", lock, pid), kDone);
    EXPECT_EQ(finish(pid), 0);
    EXPECT_TRUE(fetch(lock, L"signature") == signature);
}

TEST_P(LibVersioning, ADeltaIsAskedForUntilItIsThere) {
    const std::string bytes = randomBytes(300000);
    put("f", bytes);
    const WFM_VERSIONING_LOCK lock = open();
    WFM_VERSIONING_DELTA_STAT stat = {true, 77};
    EXPECT_EQ(client.statDelta(L"/home/f", lock, stat), 0u);
    EXPECT_FALSE(stat.bExists);
    EXPECT_EQ(stat.llSize, 0);
    std::wstring pid;
    EXPECT_EQ(client.makeDelta(L"/home/f", lock, pid), kDone);
    EXPECT_NE(pid, L"");
    while (!stat.bExists && !HasFailure()) EXPECT_EQ(client.statDelta(L"/home/f", lock, stat), 0u);
    EXPECT_GT(stat.llSize, 300000);  // all of it is new to a client that has told nothing
    const std::string whole = fetch(lock, L"delta");
    EXPECT_EQ(stat.llSize, static_cast<std::int64_t>(whole.size()));
    EXPECT_THAT(whole, StartsWith("TORVDLT1"));
    EXPECT_EQ(finish(pid), 0);

    // For a client that has the file there is little to tell.
    EXPECT_EQ(client.makeSignature(L"/home/f", lock, pid), kDone);
    EXPECT_EQ(finish(pid), 0);
    give(lock, L"local.signature", fetch(lock, L"signature"));
    EXPECT_EQ(client.makeDelta(L"/home/f", lock, pid), kDone);
    EXPECT_EQ(finish(pid), 0);
    EXPECT_EQ(client.statDelta(L"/home/f", lock, stat), 0u);
    EXPECT_TRUE(stat.bExists);
    EXPECT_LT(stat.llSize, 1000);
}

TEST_P(LibVersioning, ACommittedUploadIsTheNewVersionAndTheOldOneIsKept) {
    put("f", "old content");
    const WFM_VERSIONING_LOCK lock = open();
    give(lock, L"upload", "new");
    EXPECT_EQ(content("f"), "old content");
    std::wstring pid;
    EXPECT_EQ(client.commitVersion(L"/home/f", lock, 1234567890, pid), kDone);
    EXPECT_EQ(finish(pid), 0);
    EXPECT_EQ(content("f"), "new");
    EXPECT_EQ(modifiedTime(onDisk("f")), 1234567890);
    EXPECT_EQ(client.commitVersion(L"/home/f", lock, 1234567890, pid), (Numbers{0, -4}));  // nothing new
    EXPECT_EQ(pid, L"");
    EXPECT_EQ(client.unlock(L"/home/f", lock), kDone);
    EXPECT_EQ(fetch(lock, L"content"), "old content");
    EXPECT_FALSE(std::filesystem::exists(workFile(lock, "upload")));
}

TEST_P(LibVersioning, ACommittedDeltaMakesTheNewVersion) {
    const std::string old = randomBytes(100000);
    put("f", old);
    const WFM_VERSIONING_LOCK lock = open();
    std::wstring pid;
    // One that isn't of this file is the job's failure, not the call's.
    give(lock, L"upload.delta", delta("another file", 5, "x"));
    EXPECT_EQ(client.commitVersion(L"/home/f", lock, 1234567890, pid), kDone);
    EXPECT_NE(finish(pid), 0);
    EXPECT_TRUE(content("f") == old);

    give(lock, L"upload.delta", delta(old, 60000, "and an end of its own"));
    EXPECT_EQ(client.commitVersion(L"/home/f", lock, 1234567890, pid), kDone);
    EXPECT_EQ(finish(pid), 0);
    EXPECT_TRUE(content("f") == old.substr(0, 60000) + "and an end of its own");
    EXPECT_EQ(modifiedTime(onDisk("f")), 1234567890);
    EXPECT_EQ(client.unlock(L"/home/f", lock), kDone);
}

TEST_P(LibVersioning, AnUploadIntoTheFilesPlaceIsCommittedToo) {
    put("f", "old content");
    const WFM_VERSIONING_LOCK lock = open();
    Slice slice;
    slice.bytes = "in place";
    slice.to = L"/home/f";
    EXPECT_EQ(client.uploadID(slice.id), kDone);
    EXPECT_EQ(client.send(slice), (Sliced{kDone, false, false}));
    std::wstring pid;
    EXPECT_EQ(client.commitVersion(L"/home/f", lock, 1234567890, pid), kDone);
    EXPECT_EQ(finish(pid), 0);
    EXPECT_EQ(client.unlock(L"/home/f", lock), kDone);
    EXPECT_EQ(content("f"), "in place");
    EXPECT_EQ(modifiedTime(onDisk("f")), 1234567890);
    EXPECT_EQ(fetch(lock, L"content"), "old content");
}

TEST_P(LibVersioning, WorkThatIsGivenUpLeavesNothing) {
    put("f", "content");
    WFM_VERSIONING_LOCK lock = open();
    std::wstring pid;
    EXPECT_EQ(client.makeSignature(L"/home/f", lock, pid), kDone);
    EXPECT_EQ(finish(pid), 0);
    WFM_VERSIONING_LOCK wrong = lock;
    wrong.szVersionID[0] = wrong.szVersionID[0] == L'0' ? L'1' : L'0';
    EXPECT_EQ(client.cleanVersion(L"/home/f", wrong), (Numbers{0, -4}));
    EXPECT_TRUE(std::filesystem::exists(workFile(lock, "signature")));
    EXPECT_EQ(client.cleanVersion(L"/home/f", lock), kDone);
    EXPECT_FALSE(std::filesystem::exists(workFile(lock, "")));
    EXPECT_EQ(content("f"), "content");
    EXPECT_EQ(client.lock(L"/home/f", lock), (Numbers{0, -1}));
    EXPECT_EQ(client.cleanVersion(L"/home/f", lock), (Numbers{0, -4}));
    EXPECT_EQ(client.unlock(L"/home/f", lock), kDone);  // the end of it, which may come or not
    EXPECT_EQ(client.unlock(L"/home/f", lock), (Numbers{0, -1}));
    open();
}

TEST_P(LibVersioning, ASessionThatEndedIsRefusedByEachCall) {
    put("f", "content");
    WFM_VERSIONING_LOCK lock = open();
    nas.expireSessions();
    const WFM_VERSIONING_LOCK held = lock;
    std::wstring pid;
    WFM_VERSIONING_DELTA_STAT stat = {true, 77};
    EXPECT_EQ(client.lock(L"/home/f", lock), (Numbers{0, -1}));
    EXPECT_STREQ(lock.szLockID, held.szLockID);
    EXPECT_EQ(client.makeSignature(L"/home/f", lock, pid), (Numbers{0, -1}));
    EXPECT_EQ(client.makeDelta(L"/home/f", lock, pid), (Numbers{0, -1}));
    EXPECT_EQ(client.commitVersion(L"/home/f", lock, 1234567890, pid), (Numbers{0, -29}));
    EXPECT_EQ(client.cleanVersion(L"/home/f", lock), (Numbers{0, -29}));
    EXPECT_EQ(client.unlock(L"/home/f", lock), (Numbers{0, -1}));
    EXPECT_EQ(client.statDelta(L"/home/f", lock, stat), 0u);  // looks like one that isn't there
    EXPECT_FALSE(stat.bExists);
    EXPECT_EQ(pid, L"");
}

TEST_P(LibEndlessVersioning, AJobUnderWayIsToldAgainAndHoldsTheLock) {
    put("f", "content");
    const WFM_VERSIONING_LOCK lock = open();
    std::wstring pid, again;
    EXPECT_EQ(client.makeDelta(L"/home/f", lock, pid), kDone);
    EXPECT_NE(pid, L"");
    EXPECT_EQ(client.makeDelta(L"/home/f", lock, again), kDone);
    EXPECT_EQ(again, pid);
    EXPECT_EQ(client.makeSignature(L"/home/f", lock, again), kDone);
    EXPECT_EQ(again, pid);
    const JobState state = client.askJob(pid);
    EXPECT_EQ(state.numbers, kDone);
    EXPECT_EQ(state.error, 0);
    EXPECT_LT(state.percent, 100u);
    WFM_VERSIONING_DELTA_STAT stat = {true, 77};
    EXPECT_EQ(client.statDelta(L"/home/f", lock, stat), 0u);
    EXPECT_FALSE(stat.bExists);
    EXPECT_EQ(client.unlock(L"/home/f", lock), (Numbers{0, -1}));
    EXPECT_EQ(client.cleanVersion(L"/home/f", lock), (Numbers{0, -2}));
    EXPECT_EQ(client.commitVersion(L"/home/f", lock, 1, again), (Numbers{0, -2}));
}

TEST_P(LibTeamVersioning, AReceiverWorksOnAVersionOfTheOwnersFile) {
    const std::wstring path = L"/home/.Torvi/Plans/plan";
    nas.folder().write("homes/ben/Plans/plan", "old plan");
    nas.folder().write("homes/ben/Rules/rule", "rule");
    const WFM_VERSIONING_LOCK lock = open(path);
    const Client owner(nas, GetParam(), L"ben", L"hidden");
    EXPECT_EQ(owner.upload({"mine", L"/home/Plans/plan"}), (Numbers{0, 5}));
    EXPECT_EQ(owner.remove(L"/home/Plans/plan"), (Numbers{0, 5}));
    WFM_VERSIONING_LOCK second = {};
    EXPECT_EQ(owner.lock(L"/home/Plans/plan", second), (Numbers{0, -1}));

    give(lock, L"upload", "new plan");
    std::wstring pid;
    EXPECT_EQ(client.commitVersion(path, lock, 1234567890, pid), kDone);
    EXPECT_EQ(finish(pid), 0);
    EXPECT_EQ(nas.folder().read("homes/ben/Plans/plan"), "new plan");
    EXPECT_EQ(client.unlock(path, lock), kDone);
    EXPECT_EQ(owner.upload({"mine", L"/home/Plans/plan"}), kDone);
    EXPECT_EQ(client.lock(L"/home/.Torvi/Rules/rule", second), (Numbers{0, -1}));
}

E2E_ON_ALL_ROADS(LibVersioning);
E2E_ON_ALL_ROADS(LibEndlessVersioning);
E2E_ON_ALL_ROADS(LibWithoutVersioning);
INSTANTIATE_TEST_SUITE_P(Roads, LibTeamVersioning, testing::ValuesIn(syncRoads()), roadName);
