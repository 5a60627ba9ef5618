#include "lib_support.h"
#include "support/progress.h"

using namespace e2e;

namespace {

class LibTransfer : public LibRoad {
protected:
    /// Up and down again: the same bytes here, there and back.
    void roundTrip(const std::string& name, const std::string& bytes, bool move) {
        SCOPED_TRACE(name + ", " + std::to_string(bytes.size()) + " bytes" + (move ? ", moved" : ""));
        Upload upload{bytes, L"/home/" + wide(name)};
        upload.move = move;
        upload.time = 1234567890 + static_cast<std::int64_t>(bytes.size());
        EXPECT_EQ(client.upload(upload), kDone);
        // A plain comparison: a difference of megabytes is nothing to print.
        EXPECT_TRUE(nas.folder().read("homes/anna/" + name) == bytes);
        Entry entry;
        EXPECT_EQ(client.stat(L"/home", wide(name), &entry), kDone);
        EXPECT_EQ(entry.size, static_cast<std::int64_t>(bytes.size()));
        if (move) {
            EXPECT_EQ(modifiedTime(onDisk(name)), upload.time);
            EXPECT_EQ(entry.time, upload.time);
        }
        std::string back;
        EXPECT_EQ(client.download(L"/home/" + wide(name), back), kDone);
        EXPECT_TRUE(back == bytes);
    }
};

class LibQuota : public LibRoad {
protected:
    LibQuota() : LibRoad(withArguments({"--quota", "anna:1000"})) {}
};

Progress progressOf(std::uint32_t opening, std::uint32_t during) {
    Progress progress;
    progress.verdict = [=](std::size_t, const Progress::Call& call) {
        return call.reason == 1 ? opening : call.streamNumber == 1 ? during : 0;
    };
    return progress;
}

}  // namespace

TEST_P(LibTransfer, EverySizeComesBackAsItWent) {
    for (const std::size_t size : {0u, 1u, 65535u, 65536u, 65537u}) {
        const std::string bytes = randomBytes(size, static_cast<unsigned>(size));
        roundTrip("plain" + std::to_string(size), bytes, false);
        roundTrip("moved" + std::to_string(size), bytes, true);
    }
    EXPECT_EQ(nas.requestCount("refused"), 0) << nas.log();
}

TEST_P(LibTransfer, TwentyMebibytesComeBackAsTheyWent) {
    roundTrip("big", randomBytes(20 << 20), GetParam().tls);
}

TEST_P(LibTransfer, EveryNameComesBackAsItWent) {
    bool move = false;
    for (const char* name : {" a  b ", "say \"hi\".txt", "100%", "%41%20", "a&b=c", "1+1=2", "書類 文件.txt",
                             "😀.bin", "it's; #1?", "~tilde", "\\r\\n", "{x}[y]^`|", ".hidden"}) {
        roundTrip(name, randomBytes(300), move);
        move = !move;
    }
    EXPECT_EQ(nas.requestCount("refused"), 0) << nas.log();
}

TEST_P(LibTransfer, ProgressCountsTheFilesBytesAndNoOthers) {
    const std::string bytes = randomBytes(3 << 20);
    const auto size = static_cast<std::int64_t>(bytes.size());
    for (const bool move : {false, true}) {
        Progress progress;
        Upload upload{bytes, L"/home/a"};
        upload.move = move;
        upload.callback = Progress::callback;
        upload.data = &progress;
        EXPECT_EQ(client.upload(upload), kDone);
        ASSERT_GE(progress.calls.size(), 3u);
        EXPECT_EQ(progress.calls.front(), (Progress::Call{size, 0, size, 0, 1, 1}));
        EXPECT_EQ(progress.calls.back(), (Progress::Call{size, size, size, size, 0, 0}));
        for (std::size_t i = 1; i < progress.calls.size(); ++i) {
            EXPECT_GE(progress.calls[i].transferred, progress.calls[i - 1].transferred);
        }
    }
    Progress progress;
    Download download{L"/home/a"};
    download.callback = Progress::callback;
    download.data = &progress;
    EXPECT_EQ(client.download(download), kDone);
    ASSERT_GE(progress.calls.size(), 2u);
    EXPECT_EQ(progress.calls.front(), (Progress::Call{size, 0, size, 0, 1, 1}));
    EXPECT_EQ(progress.calls.back(), (Progress::Call{size, size, size, size, 1, 0}));
}

TEST_P(LibTransfer, ACallbackStopsATransferAndNothingStandsUnderItsName) {
    const std::string bytes = randomBytes(8 << 20);
    for (const bool move : {false, true}) {
        Progress progress = progressOf(0, 1);
        Upload upload{bytes, L"/home/stopped"};
        upload.move = move;
        upload.callback = Progress::callback;
        upload.data = &progress;
        EXPECT_EQ(client.upload(upload), (Numbers{2, move ? -1 : 1235}));
    }
    put("a", bytes);
    Progress progress = progressOf(0, 1);
    Download download{L"/home/a"};
    download.callback = Progress::callback;
    download.data = &progress;
    EXPECT_EQ(client.download(download), (Numbers{0, 1237}));
    EXPECT_TRUE(bytes.compare(0, download.bytes.size(), download.bytes) == 0);
    EXPECT_FALSE(std::filesystem::exists(onDisk("stopped")));
}

TEST_P(LibTransfer, AFileIsReplacedOnlyIfThatIsAskedFor) {
    put("a", "old");
    Upload upload{"new", L"/home/a"};
    upload.overwrite = 0;
    EXPECT_EQ(client.upload(upload), (Numbers{0, -1}));
    upload.move = true;
    EXPECT_EQ(client.upload(upload), (Numbers{0, -15}));
    EXPECT_EQ(nas.folder().read("homes/anna/a"), "old");
    upload.overwrite = 1;
    EXPECT_EQ(client.upload(upload), kDone);
    EXPECT_EQ(nas.folder().read("homes/anna/a"), "new");
}

TEST_P(LibTransfer, AMovedFileTakesTheNameThatItIsGiven) {
    Upload upload{"bytes", L"/home/a"};
    upload.move = true;
    upload.rename = L"b & 書類";
    EXPECT_EQ(client.upload(upload), kDone);
    EXPECT_EQ(nas.folder().read("homes/anna/b & 書類"), "bytes");
    EXPECT_FALSE(std::filesystem::exists(onDisk("a")));
}

TEST_P(LibTransfer, ACreatedFileIsEmptyAndAnExistingOneIsEmptied) {
    put("full", "not empty");
    for (const char* name : {"new", "full", "a \"b\" 100% 書類 😀"}) {
        EXPECT_EQ(client.createFile(L"/home/" + wide(name)), kDone) << name;
        EXPECT_EQ(nas.folder().read(std::string("homes/anna/") + name), "");
    }
    put("d/x", "1");
    EXPECT_EQ(client.createFile(L"/home/d"), (Numbers{0, -1}));
    EXPECT_EQ(client.createFile(L"/home/none/x"), (Numbers{0, -1}));
}

TEST_P(LibTransfer, DeniedPlacesAreToldByEachCall) {
    const std::string closed = onDisk("closed");
    put("closed/old", "old");
    std::filesystem::permissions(closed, static_cast<std::filesystem::perms>(0555));
    EXPECT_EQ(client.mayUpload(L"/home", L"x"), kDone);
    EXPECT_EQ(client.mayUpload(L"/home/none", L"x"), kDone);  // it answers "denied?" alone
    EXPECT_EQ(client.mayUpload(L"/home/closed", L"x"), (Numbers{0, 5}));
    EXPECT_EQ(client.createFile(L"/home/closed/x"), (Numbers{0, 5}));
    Upload upload{"bytes", L"/home/closed/x"};
    EXPECT_EQ(client.upload(upload), (Numbers{0, 5}));
    upload.move = true;
    EXPECT_EQ(client.upload(upload), (Numbers{0, -3}));
    EXPECT_FALSE(std::filesystem::exists(closed + "/x"));
    std::filesystem::permissions(closed, std::filesystem::perms::owner_all);
}

TEST_P(LibTransfer, APathOutOfTheTreeIsDenied) {
    EXPECT_EQ(client.upload({"x", L"/home/../../x"}), (Numbers{0, 5}));
    EXPECT_EQ(client.createFile(L"/home/../x"), (Numbers{0, 5}));
    EXPECT_EQ(client.mayUpload(L"/home/..", L"x"), (Numbers{0, 5}));
    std::string bytes;
    EXPECT_EQ(client.download(L"/home/../homes/ben", bytes), (Numbers{0, 5}));
}

TEST_P(LibTransfer, AHomeThatIsGoneIsItsOwnCode) {
    std::filesystem::remove_all(nas.folder().file("homes/anna"));
    Upload upload{"bytes", L"/home/x"};
    upload.move = true;
    EXPECT_EQ(client.upload(upload), (Numbers{0, -44}));
}

TEST_P(LibTransfer, AMissingFileIsNotFetched) {
    std::string bytes;
    EXPECT_EQ(client.download(L"/home/none", bytes), (Numbers{0, 3}));
    EXPECT_EQ(nas.requestCount("download"), 0);
    Download known{L"/home/none"};
    known.size = 100;
    EXPECT_EQ(client.download(known), (Numbers{0, 13}));
}

TEST_P(LibTransfer, AFileThatChangedItsSizeIsVoid) {
    put("a", randomBytes(100000));
    for (const std::int64_t size : {99999, 100001}) {
        Download download{L"/home/a"};
        download.size = size;
        EXPECT_EQ(client.download(download), (Numbers{0, 13}));
    }
}

TEST_P(LibTransfer, ADownloadGoesOnWhereTheConnectionBroke) {
    const std::string bytes = randomBytes(1 << 20);
    put("a", bytes);
    const int fault = nas.arm("close-in-reply,match=download,bytes=300000,body=1,count=1");
    Download download{L"/home/a"};
    EXPECT_EQ(client.download(download), kDone);  // a short file counts as done: its size tells
    EXPECT_EQ(nas.hits(fault), 1);
    const auto have = static_cast<std::int64_t>(download.bytes.size());
    ASSERT_GT(have, 0);
    ASSERT_LE(have, 300000);
    Download rest{L"/home/a"};
    rest.have = download.bytes;
    rest.offset = have;
    rest.size = (1 << 20) - have;
    EXPECT_EQ(client.download(rest), kDone);
    EXPECT_TRUE(rest.bytes == bytes);
    EXPECT_EQ(nas.requestCount("download"), 2);
}

TEST_P(LibTransfer, ADownloadIsTakenUpToTheHalfOfAFile) {
    const std::string bytes = randomBytes(1000);
    put("a", bytes);
    for (const std::int64_t offset : {1, 499, 500}) {
        Download download{L"/home/a"};
        download.have = bytes.substr(0, static_cast<std::size_t>(offset));
        download.offset = offset;
        download.size = 1000 - offset;
        EXPECT_EQ(client.download(download), kDone) << offset;
        EXPECT_TRUE(download.bytes == bytes) << offset;
    }
    Download late{L"/home/a"};
    late.have = bytes.substr(0, 501);
    late.offset = 501;
    late.size = 499;
    EXPECT_EQ(client.download(late).dwStatus, 8u);
    EXPECT_EQ(late.bytes.size(), 501u);
    // The whole size doesn't fit what the server announces for the rest.
    late.have = bytes.substr(0, 500);
    late.offset = 500;
    late.size = 1000;
    EXPECT_EQ(client.download(late), (Numbers{0, 13}));
}

TEST_P(LibQuota, AFullHomeIsItsOwnNumber) {
    put("a", std::string(900, 'a'));
    Upload upload{std::string(200, 'b'), L"/home/b"};
    EXPECT_EQ(client.upload(upload), (Numbers{0, 112}));
    upload.move = true;
    EXPECT_EQ(client.upload(upload), (Numbers{0, -6}));
    EXPECT_FALSE(std::filesystem::exists(onDisk("b")));
    EXPECT_EQ(client.mayUpload(L"/home", L"b"), kDone);
}

E2E_ON_ALL_ROADS(LibTransfer);
E2E_ON_ALL_ROADS(LibQuota);
