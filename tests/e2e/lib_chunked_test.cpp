#include <fstream>
#include <nlohmann/json.hpp>
#include <thread>

#include "lib_support.h"
#include "support/progress.h"
#include "support/sanitized.h"

using namespace e2e;
using testing::ElementsAre;

namespace {

constexpr Sliced kPlaced{kDone, false, false};

class LibChunked : public LibRoad {
protected:
    LibChunked() : LibChunked(std::vector<std::string>()) {}
    explicit LibChunked(std::vector<std::string> arguments) : LibRoad(withArguments(std::move(arguments))) {}

    /// A slice of a new upload.
    Slice begin(const std::string& bytes, const std::wstring& to) {
        Slice slice;
        slice.bytes = bytes;
        slice.to = to;
        EXPECT_EQ(client.uploadID(slice.id), kDone);
        return slice;
    }
    std::int64_t held(const Slice& slice) const {
        std::int64_t size = 0;
        EXPECT_EQ(client.heldBytes(slice.id, size), kDone);
        return size;
    }
    int partials() { return nlohmann::json::parse(nas.control("GET", "state")).at("partials"); }
    /// Waits until some of the upload is on the server's disk.
    bool waitForBytes(const Slice& slice) const {
        const std::string partial = nas.folder().file(".torvi-nas.partials/" + utf8(slice.id));
        const auto deadline = std::chrono::steady_clock::now() + Process::kPatience;
        while (std::filesystem::file_size(partial) == 0 && std::chrono::steady_clock::now() < deadline)
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        return true;
    }
    std::string content(const std::string& name) const { return nas.folder().read("homes/anna/" + name); }
    bool there(const std::string& name) const { return std::filesystem::exists(onDisk(name)); }

    /// Sends the rest from where the server says, and looks at the whole.
    void finish(Slice& slice, const std::string& name) {
        slice.offset = held(slice);
        EXPECT_LT(slice.offset, static_cast<std::int64_t>(slice.bytes.size()));
        EXPECT_EQ(client.send(slice), kPlaced);
        EXPECT_TRUE(content(name) == slice.bytes);
        EXPECT_EQ(modifiedTime(onDisk(name)), slice.time);
        EXPECT_EQ(partials(), 0);
    }
};

class LibChunkedQuota : public LibChunked {
protected:
    LibChunkedQuota() : LibChunked({"--quota", "anna:100000"}) {}
};

/// What only the sync service has.
class LibChunkedTeam : public LibChunked {
protected:
    LibChunkedTeam() : LibChunked({"--team", "ben:/home/Plans:anna", "--team", "ben:/home/Rules:anna:ro"}) {
        client.learnTeamFolders(nas);
    }
};

/// A slice is 1 GiB, whatever the road.
class LibWholeSlice : public LibChunked {
protected:
    void SetUp() override {
        if (sanitized()) GTEST_SKIP() << "the release build moves a gibibyte in less time";
    }
};

class LibBatch : public LibRoad {
protected:
    LibBatch()
        : LibRoad(withArguments({"--quota", "anna:100000", "--team", "ben:/home/Plans:anna", "--team",
                                 "ben:/home/Rules:anna:ro"})) {
        client.learnTeamFolders(nas);
        std::filesystem::create_directories(onDisk("to"));
    }
    static std::vector<std::int32_t> results(const std::vector<BatchFile>& files) {
        std::vector<std::int32_t> all;
        for (const BatchFile& file : files) all.push_back(file.result);
        return all;
    }
};

}  // namespace

TEST_P(LibChunked, AWholeFileGoesInOneSliceAndTheIdIsSpent) {
    for (const std::size_t size : {0u, 1u, 65536u, 300000u}) {
        SCOPED_TRACE(size);
        Slice slice = begin(randomBytes(size), L"/home/a.bin");
        EXPECT_EQ(held(slice), 0);
        EXPECT_EQ(partials(), 1);
        slice.time = 1234567890 + static_cast<std::int64_t>(size);
        EXPECT_EQ(client.send(slice), kPlaced);
        EXPECT_TRUE(content("a.bin") == slice.bytes);
        EXPECT_EQ(modifiedTime(onDisk("a.bin")), slice.time);
        EXPECT_EQ(partials(), 0);
        std::int64_t left = 0;
        EXPECT_EQ(client.heldBytes(slice.id, left), (Numbers{0, -4}));
        EXPECT_EQ(client.forgetUpload(slice.id), (Numbers{0, -4}));
    }
    EXPECT_EQ(nas.requestCount("refused"), 0) << nas.log();
}

TEST_P(LibChunked, NamesOfEveryScriptArriveUnderTheirOwnOrANewName) {
    for (const std::string name : {" a  b ", "say \"hi\".txt", "100%", "%41%20", "a&b=c", "1+1=2",
                                   "書類 文件.txt", "😀.bin", "it's; #1?", "~tilde", "{x}[y]^`|"}) {
        SCOPED_TRACE(name);
        Slice slice = begin(name, L"/home/" + wide(name));
        EXPECT_EQ(client.send(slice), kPlaced);
        EXPECT_EQ(content(name), name);
        slice = begin("renamed", L"/home/" + wide(name));
        slice.rename = L"new " + wide(name);
        EXPECT_EQ(client.send(slice), kPlaced);
        EXPECT_EQ(content("new " + name), "renamed");
        EXPECT_EQ(content(name), name);
    }
}

TEST_P(LibChunked, AStoppedUploadGoesOnFromWhatTheServerHolds) {
    const std::string bytes = randomBytes(32 << 20);
    Slice slice = begin(bytes, L"/home/a.bin");
    // The body can't be out before the server has told some of it: it pauses, and the rest exceeds all
    // buffers.
    nas.arm("stall-upload,match=chunked_upload,bytes=2000000,ms=500");
    bool stop = false;
    Progress progress;
    progress.verdict = [&](std::size_t, const Progress::Call& call) {
        stop = call.transferred > 2000000 && waitForBytes(slice);
        return stop ? 1u : 0u;
    };
    slice.callback = Progress::callback;
    slice.data = &progress;
    slice.stop = &stop;
    EXPECT_EQ(client.send(slice), (Sliced{{2, -1}, true, false}));
    ASSERT_TRUE(stop);
    EXPECT_FALSE(there("a.bin"));
    ASSERT_GT(held(slice), 0);

    // Progress counts from the beginning of the file.
    stop = false;
    progress = Progress();
    finish(slice, "a.bin");
    const auto size = static_cast<std::int64_t>(bytes.size());
    ASSERT_GE(progress.calls.size(), 3u);
    EXPECT_EQ(progress.calls.front(), (Progress::Call{size, 0, size, 0, 1, 1}));
    EXPECT_GT(progress.calls[1].transferred, slice.offset);
    EXPECT_EQ(progress.calls.back(), (Progress::Call{size, size, size, size, 0, 0}));
}

TEST_P(LibChunked, AnUploadThatIsStoppedBeforeItsFirstByteIsGivenUp) {
    Slice slice = begin(randomBytes(100000), L"/home/a.bin");
    Progress progress;
    progress.verdict = [](std::size_t, const Progress::Call&) { return 1u; };
    slice.callback = Progress::callback;
    slice.data = &progress;
    EXPECT_EQ(client.send(slice), (Sliced{{2, -1}, false, true}));
    EXPECT_EQ(client.forgetUpload(slice.id), kDone);
    EXPECT_EQ(partials(), 0);
}

TEST_P(LibChunked, AVerdictOf2GivesTheUploadUp) {
    Slice slice = begin(randomBytes(32 << 20), L"/home/a.bin");
    Progress progress;
    progress.verdict = [](std::size_t, const Progress::Call& call) { return call.reason == 1 ? 0u : 2u; };
    slice.callback = Progress::callback;
    slice.data = &progress;
    EXPECT_EQ(client.send(slice), (Sliced{{2, -31}, false, true}));
    EXPECT_EQ(client.forgetUpload(slice.id), kDone);
    EXPECT_EQ(partials(), 0);
    EXPECT_FALSE(there("a.bin"));
}

TEST_P(LibChunked, AConnectionCutByTheServerCanGoOnAllTheSame) {
    const std::string bytes = randomBytes(8 << 20);
    for (const bool heard : {true, false}) {
        SCOPED_TRACE(heard ? "heard" : "unheard");
        std::filesystem::remove(onDisk("a.bin"));
        Slice slice = begin(bytes, L"/home/a.bin");
        Progress progress;
        if (heard) slice.callback = Progress::callback;
        slice.data = &progress;
        const int fault = nas.arm("cut-upload,match=chunked_upload,bytes=3000000");
        // The flags say to give the id up; the server still knows it.
        EXPECT_EQ(client.send(slice), (Sliced{{2, heard ? -1 : -31}, false, true}));
        EXPECT_EQ(nas.hits(fault), 1);
        EXPECT_FALSE(there("a.bin"));
        EXPECT_GT(held(slice), 0);
        EXPECT_LE(held(slice), 3000000);
        finish(slice, "a.bin");
    }
}

TEST_P(LibChunked, ASliceOfWhichTheServerKeepsLessGoesOn) {
    Slice slice = begin(randomBytes(100000), L"/home/a.bin");
    for (const std::int64_t kept : {30000, 1, 0, 50000}) {
        const std::int64_t before = held(slice);
        nas.arm("short-slice,bytes=" + std::to_string(kept));
        slice.offset = before;
        EXPECT_EQ(client.send(slice), (Sliced{{0, -2}, true, false}));
        EXPECT_EQ(held(slice), before + kept);
    }
    finish(slice, "a.bin");
}

TEST_P(LibChunked, ASliceFromElsewhereThanTheServerHoldsIsPutOff) {
    Slice slice = begin(randomBytes(1000), L"/home/a.bin");
    slice.offset = 500;
    EXPECT_EQ(client.send(slice), (Sliced{{0, -2}, true, false}));
    slice.offset = 1001;
    EXPECT_EQ(client.send(slice).numbers.dwStatus, 8u);
    EXPECT_EQ(held(slice), 0);
    finish(slice, "a.bin");
}

TEST_P(LibChunked, AnUploadSurvivesARestartOfTheServer) {
    Slice slice = begin(randomBytes(1 << 20), L"/home/a.bin");
    nas.arm("short-slice,bytes=400000");
    EXPECT_EQ(client.send(slice), (Sliced{{0, -2}, true, false}));
    ASSERT_EQ(nas.stop(), 0);
    EXPECT_EQ(client.send(slice).numbers.dwStatus, 2u);

    Nas::Options options;
    options.root = nas.root();
    Nas again(options);
    const Client later(again, GetParam());
    std::int64_t size = 0;
    EXPECT_EQ(later.heldBytes(slice.id, size), kDone);
    EXPECT_EQ(size, 400000);
    slice.offset = size;
    EXPECT_EQ(later.send(slice), kPlaced);
    EXPECT_TRUE(content("a.bin") == slice.bytes);
}

TEST_P(LibChunked, AnIdThatIsGoneIsNotGoneOnWith) {
    Slice slice = begin(randomBytes(1000), L"/home/a.bin");
    EXPECT_EQ(client.forgetUpload(slice.id), kDone);
    EXPECT_EQ(partials(), 0);
    EXPECT_EQ(client.forgetUpload(slice.id), (Numbers{0, -4}));
    std::int64_t size = 0;
    EXPECT_EQ(client.heldBytes(slice.id, size), (Numbers{0, -4}));
    EXPECT_EQ(size, -1);
    // A slice can't tell an id that is gone from a server that fails for the moment: the size tells.
    EXPECT_EQ(client.send(slice), (Sliced{{0, -4}, true, false}));
    EXPECT_FALSE(there("a.bin"));
}

TEST_P(LibChunked, AnIdServesItsUserAndItsFolderAlone) {
    const Slice slice = begin(randomBytes(1000), L"/home/a.bin");
    const Client other(nas, GetParam(), L"ben", L"hidden");
    std::int64_t size = 0;
    EXPECT_EQ(other.heldBytes(slice.id, size), (Numbers{0, -4}));
    EXPECT_EQ(other.forgetUpload(slice.id), (Numbers{0, -4}));
    EXPECT_EQ(client.heldBytes(slice.id, size, L"/home/.other"), (Numbers{0, -4}));
    EXPECT_EQ(held(slice), 0);
}

TEST_P(LibChunked, AFileIsReplacedOnlyIfThatIsAskedFor) {
    put("a.bin", "old");
    Slice slice = begin("new", L"/home/a.bin");
    slice.overwrite = 0;
    EXPECT_EQ(client.send(slice), (Sliced{{0, -15}, false, true}));
    EXPECT_EQ(content("a.bin"), "old");
    slice.overwrite = 1;
    slice.offset = held(slice);
    EXPECT_EQ(client.send(slice), kPlaced);
    EXPECT_EQ(content("a.bin"), "new");
}

TEST_P(LibChunked, ADeniedPlaceGivesTheUploadUp) {
    put("closed/old", "old");
    std::filesystem::permissions(onDisk("closed"), static_cast<std::filesystem::perms>(0555));
    const Slice slice = begin("new", L"/home/closed/a");
    EXPECT_EQ(client.send(slice), (Sliced{{0, -3}, false, true}));
    std::wstring id;
    EXPECT_EQ(client.uploadID(id, L"/home", L"/home/closed/.up"), (Numbers{0, -3}));
    EXPECT_EQ(client.uploadID(id, L"/home", L"nowhere"), (Numbers{0, -11}));
    put("file", "1");
    EXPECT_EQ(client.uploadID(id, L"/home", L"/home/file"), (Numbers{0, -5}));
    EXPECT_FALSE(there("closed/a"));
    std::filesystem::permissions(onDisk("closed"), std::filesystem::perms::owner_all);
}

TEST_P(LibChunked, AHomeThatIsGoneIsWaitedFor) {
    Slice slice = begin(randomBytes(1000), L"/home/a.bin");
    std::filesystem::rename(nas.folder().file("homes/anna"), nas.folder().file("homes/away"));
    EXPECT_EQ(client.send(slice), (Sliced{{0, -4}, false, false}));
    std::wstring id;
    EXPECT_EQ(client.uploadID(id), (Numbers{0, -44}));
    std::filesystem::rename(nas.folder().file("homes/away"), nas.folder().file("homes/anna"));
    finish(slice, "a.bin");
}

TEST_P(LibChunked, ASessionThatEndedIsRefusedByEachCall) {
    const Slice slice = begin(randomBytes(1000), L"/home/a.bin");
    nas.expireSessions();
    std::wstring id;
    std::int64_t size = 0;
    EXPECT_EQ(client.uploadID(id), (Numbers{0, -1}));
    EXPECT_EQ(client.heldBytes(slice.id, size), (Numbers{0, -1}));
    EXPECT_EQ(client.forgetUpload(slice.id), (Numbers{0, -29}));
    EXPECT_EQ(client.send(slice), (Sliced{{0, -29}, false, true}));
    EXPECT_EQ(partials(), 1);
}

TEST_P(LibChunkedQuota, AFullHomeIsWaitedFor) {
    put("old", std::string(60000, 'o'));
    Slice slice = begin(randomBytes(80000), L"/home/a.bin");
    EXPECT_EQ(client.send(slice), (Sliced{{0, -6}, false, false}));
    EXPECT_FALSE(there("a.bin"));
    EXPECT_EQ(partials(), 1);
    std::filesystem::remove(onDisk("old"));
    finish(slice, "a.bin");
}

TEST_P(LibChunkedTeam, SlicesReachTheTeamFoldersOwner) {
    Slice slice = begin(randomBytes(100000), L"/home/.Torvi/Plans/a b.bin");
    EXPECT_EQ(client.uploadID(slice.id, L"/home/.Torvi/Plans"), kDone);
    nas.arm("short-slice,bytes=40000");
    EXPECT_EQ(client.send(slice), (Sliced{{0, -2}, true, false}));
    slice.offset = held(slice);
    EXPECT_EQ(client.send(slice), kPlaced);
    EXPECT_TRUE(nas.folder().read("homes/ben/Plans/a b.bin") == slice.bytes);
    EXPECT_EQ(modifiedTime(nas.folder().file("homes/ben/Plans/a b.bin")), slice.time);

    slice = begin("rule", L"/home/.Torvi/Rules/r");
    EXPECT_EQ(client.send(slice), (Sliced{{0, -3}, false, true}));
    EXPECT_FALSE(std::filesystem::exists(nas.folder().file("homes/ben/Rules/r")));
}

TEST_P(LibWholeSlice, MoreThanAGibibyteTakesASecondSlice) {
    constexpr std::int64_t kSlice = std::int64_t{1} << 30;
    const TempDir work;
    Slice slice = begin("", L"/home/big");
    slice.local = work.write("big", "begin");
    std::filesystem::resize_file(slice.local, kSlice);
    { std::ofstream(slice.local, std::ios::binary | std::ios::app) << "end"; }
    EXPECT_EQ(client.send(slice), (Sliced{{0, -43}, false, false}));
    EXPECT_FALSE(there("big"));
    EXPECT_EQ(held(slice), kSlice);
    slice.offset = kSlice;
    EXPECT_EQ(client.send(slice), kPlaced);
    ASSERT_EQ(std::filesystem::file_size(onDisk("big")), static_cast<std::uintmax_t>(kSlice) + 3);
    std::ifstream in(onDisk("big"), std::ios::binary);
    std::string begin(5, '\0'), end(4, '\0');
    in.read(begin.data(), 5);
    in.seekg(kSlice - 1);
    in.read(end.data(), 4);
    EXPECT_EQ(begin, "begin");
    EXPECT_EQ(end, std::string("\0end", 4));
}

TEST_P(LibBatch, EveryFileArrivesWithItsTime) {
    std::vector<BatchFile> files = {{L"a b.txt", "one", 1234567890}, {L"書類 \"1\" 100%.txt", "two", 1}};
    for (int i = 0; i < 20; ++i)
        files.push_back(
            {L"f" + std::to_wstring(i), randomBytes(static_cast<std::size_t>(i * 100)), 1500000000 + i});
    EXPECT_EQ(client.sendBatch(L"/home/to", files), kDone);
    EXPECT_THAT(results(files), testing::Each(0));
    for (const BatchFile& file : files) {
        SCOPED_TRACE(utf8(file.name));
        EXPECT_TRUE(nas.folder().read("homes/anna/to/" + utf8(file.name)) == file.bytes);
        EXPECT_EQ(modifiedTime(onDisk("to/" + utf8(file.name))), file.time);
    }
    EXPECT_EQ(nas.requestCount(), 2) << nas.log();  // with the login
}

TEST_P(LibBatch, OneRefusedFileLeavesTheOthersTheirOwn) {
    put("to/old", "old");
    std::filesystem::create_directories(onDisk("to/folder"));
    put("to/fixed", "fixed");
    std::filesystem::permissions(onDisk("to/fixed"), static_cast<std::filesystem::perms>(0444));
    std::vector<BatchFile> files = {
        {L"a", "1"}, {L"folder", "2"}, {L"fixed", "3"}, {L"old", "newer"}, {L"b", std::string(200000, 'x')},
        {L"c", "4"}};
    EXPECT_EQ(client.sendBatch(L"/home/to/", files), kDone);
    EXPECT_THAT(results(files), ElementsAre(0, -15, -3, 0, -6, 0));
    EXPECT_EQ(nas.folder().read("homes/anna/to/a"), "1");
    EXPECT_EQ(nas.folder().read("homes/anna/to/fixed"), "fixed");
    EXPECT_EQ(nas.folder().read("homes/anna/to/old"), "newer");
    EXPECT_EQ(nas.folder().read("homes/anna/to/c"), "4");
    EXPECT_FALSE(std::filesystem::exists(onDisk("to/b")));
    EXPECT_TRUE(std::filesystem::is_directory(onDisk("to/folder")));
}

TEST_P(LibBatch, AMissingFolderRefusesEachFile) {
    std::vector<BatchFile> files = {{L"a", "1"}, {L"b", "2"}};
    EXPECT_EQ(client.sendBatch(L"/home/none", files), kDone);
    EXPECT_THAT(results(files), ElementsAre(-4, -4));
}

TEST_P(LibBatch, ARefusalAsAWholeLeavesTheResultsAlone) {
    std::vector<BatchFile> files = {{L"a", "1"}, {L"b", "2"}};
    nas.expireSessions();
    EXPECT_EQ(client.sendBatch(L"/home/to", files), (Numbers{0, -29}));
    EXPECT_THAT(results(files), ElementsAre(-77, -77));
    files[1].name.clear();
    nas.forgetRequests();
    EXPECT_EQ(client.sendBatch(L"/home/to", files), (Numbers{87, -1}));
    EXPECT_EQ(nas.requestCount(), 0);
    EXPECT_TRUE(std::filesystem::is_empty(onDisk("to")));
}

TEST_P(LibBatch, ABatchForATeamFolderReachesItsOwner) {
    std::vector<BatchFile> files = {{L"a", "1"}, {L"b", "2"}};
    EXPECT_EQ(client.sendBatch(L"/home/.Torvi/Plans", files), kDone);
    // The file manager is sent the path as it stands, and shows the team area itself.
    EXPECT_THAT(results(files), ElementsAre(0, 0));
    EXPECT_TRUE(std::filesystem::exists(nas.folder().file("homes/ben/Plans/b")));
    EXPECT_EQ(client.sendBatch(L"/home/.Torvi/Rules", files), kDone);
    EXPECT_THAT(results(files), ElementsAre(-3, -3));
    EXPECT_TRUE(std::filesystem::is_empty(nas.folder().file("homes/ben/Rules")));
}

TEST_P(LibBatch, AConnectionCutInTheBatchPlacesNothing) {
    std::vector<BatchFile> files = {{L"a", randomBytes(20000)}, {L"b", randomBytes(20000)}};
    const int fault = nas.arm("cut-upload,bytes=30000,count=-1");
    EXPECT_EQ(client.sendBatch(L"/home/to", files), (Numbers{2, -1}));
    EXPECT_EQ(nas.hits(fault), 1);
    EXPECT_THAT(results(files), ElementsAre(-77, -77));
    EXPECT_TRUE(std::filesystem::is_empty(onDisk("to")));
}

E2E_ON_ALL_ROADS(LibChunked);
E2E_ON_ALL_ROADS(LibChunkedQuota);
INSTANTIATE_TEST_SUITE_P(Roads, LibChunkedTeam, testing::ValuesIn(syncRoads()), roadName);
INSTANTIATE_TEST_SUITE_P(Roads, LibWholeSlice, testing::Values(Road{Service::Sync, false}), roadName);
E2E_ON_ALL_ROADS(LibBatch);
