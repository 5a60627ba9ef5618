#include "lib_support.h"

using namespace e2e;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;
using testing::UnorderedElementsAreArray;

namespace {

class LibList : public LibRoad {};

class LibTeam : public LibRoad {
protected:
    LibTeam()
        : LibRoad(withArguments({"--team", "ben:/home/Plans:anna", "--team", "ben:/home/Rules:anna:ro",
                                 "--team", "ben:/home/Photos 2:anna", "--team", "ben:/home/Diary:carl"})) {
        client.learnTeamFolders(nas);
    }
    const std::wstring area = L"/home/.Torvi";
};

/// What only the sync service has.
class LibTeamArea : public LibTeam {};

}  // namespace

TEST_P(LibList, PagesGiveEachEntryOnceNewestFirst) {
    std::vector<std::string> expected;
    for (int i = 0; i < 23; ++i) {
        expected.insert(expected.begin(), "n" + std::to_string(i));
        put(expected.front(), std::string(static_cast<std::size_t>(i), 'x'), 1000000 + i);
    }
    Pages pages;
    pages.limit = 5;
    std::vector<Entry> entries;
    for (std::uint32_t number = 1; number <= 5; ++number) {
        EXPECT_EQ(client.page(pages, entries), kDone);
        EXPECT_EQ(entries.size(), std::min<std::size_t>(number * 5, 23));
        EXPECT_EQ(pages.total, 23u);
    }
    EXPECT_EQ(names(entries), expected);
    EXPECT_EQ(entries.front().size, 22);
    EXPECT_EQ(entries.front().time, 1000022);
    EXPECT_EQ(entries.front().access, 2u);
    EXPECT_FALSE(entries.front().isFolder);
    EXPECT_EQ(nas.requestCount("get_list"), 5);
}

TEST_P(LibList, NamesOfEveryScriptComeWhole) {
    const std::vector<std::string> expected = {"a b", "say \"hi\"", "100%",   "%20",  "a&b=c",
                                               "1+1", "書類.txt",   "😀",      "it's", "#1?",
                                               "~",   "a;b",        "back\\", "<b>"};
    for (const std::string& entry : expected) put(entry, "");
    std::vector<Entry> entries;
    EXPECT_EQ(client.list({}, entries), kDone);
    EXPECT_THAT(names(entries), UnorderedElementsAreArray(expected));
    for (const std::string& entry : expected) {
        Entry found;
        EXPECT_EQ(client.stat(L"/home", wide(entry), &found), kDone) << entry;
        EXPECT_EQ(found.name, entry);
    }
}

TEST_P(LibList, TypeFilterAndPatternKeepWhatTheyName) {
    put("a.txt", "1");
    put("b.TXT", "2");
    put("c.bin", "3");
    put("full/x", "4");
    std::filesystem::create_directory(onDisk("empty"));
    const auto listed = [&](std::uint32_t typeFilter, const wchar_t* pattern) {
        Pages pages;
        pages.typeFilter = typeFilter;
        pages.pattern = pattern;
        std::vector<Entry> entries;
        EXPECT_EQ(client.list(pages, entries), kDone);
        return names(entries);
    };
    EXPECT_THAT(listed(1, L"*"), UnorderedElementsAre("a.txt", "b.TXT", "c.bin"));
    EXPECT_THAT(listed(2, L"*"), UnorderedElementsAre("full", "empty"));
    EXPECT_THAT(listed(3, L"*.txt"), UnorderedElementsAre("a.txt", "b.TXT"));
    EXPECT_THAT(listed(3, L"c.bin"), ElementsAre("c.bin"));
    EXPECT_THAT(listed(1, L"full"), IsEmpty());
}

TEST_P(LibList, ChildrenAreToldWhereTheServiceAsksForThem) {
    put("full/x", "4");
    std::filesystem::create_directory(onDisk("empty"));
    Pages pages;
    pages.typeFilter = 6;
    std::vector<Entry> entries;
    ASSERT_EQ(client.list(pages, entries), kDone);
    ASSERT_EQ(entries.size(), 2u);
    for (const Entry& entry : entries) {
        // The file manager isn't asked, and without an answer a folder counts as one with children.
        EXPECT_EQ(entry.hasChild, !isSync() || entry.name == "full") << entry.name;
    }
}

TEST_P(LibList, AnEmptyMissingOrClosedFolderHasNoMoreFiles) {
    std::filesystem::create_directory(onDisk("closed"));
    std::filesystem::permissions(onDisk("closed"), std::filesystem::perms::none);
    std::filesystem::create_directory(onDisk("empty"));
    for (const wchar_t* path : {L"/home/empty", L"/home/none", L"/home/closed"}) {
        Pages pages;
        pages.path = path;
        std::vector<Entry> entries;
        EXPECT_EQ(client.page(pages, entries), (Numbers{0, 18})) << utf8(path);
        EXPECT_THAT(entries, IsEmpty());
    }
    std::filesystem::permissions(onDisk("closed"), std::filesystem::perms::owner_all);
}

TEST_P(LibList, ACancelledListingSaysSo) {
    put("a", "1");
    bool cancel = true;
    Pages pages;
    pages.cancel = &cancel;
    std::vector<Entry> entries;
    EXPECT_EQ(client.page(pages, entries), (Numbers{0, 1235}));
    EXPECT_THAT(entries, IsEmpty());
}

TEST_P(LibList, StatTellsSizeTimeTypeAndPrivilege) {
    put("a.txt", "12345", 1234567890);
    put("d/b", "1");
    std::filesystem::permissions(onDisk("a.txt"), static_cast<std::filesystem::perms>(0444));
    Entry entry;
    EXPECT_EQ(client.stat(L"/home", L"a.txt", &entry, 0xbf), kDone);
    EXPECT_EQ(entry.name, "a.txt");
    EXPECT_EQ(entry.size, 5);
    EXPECT_EQ(entry.time, 1234567890);
    EXPECT_EQ(entry.access, 1u);
    EXPECT_EQ(entry.privilege, 1);
    EXPECT_FALSE(entry.isFolder);
    EXPECT_EQ(client.stat(L"/home", L"d", &entry, 0xbf), kDone);
    EXPECT_TRUE(entry.isFolder);
    EXPECT_EQ(entry.privilege, 2);
    EXPECT_EQ(client.stat(L"/home", L"d", &entry, 0x3f, 1), (Numbers{0, 3}));
    EXPECT_EQ(client.stat(L"/home", L"none", &entry), (Numbers{0, 3}));
    EXPECT_EQ(client.stat(L"/home", L"none", &entry, 0x13f), (Numbers{0, 3}));
    EXPECT_EQ(entry.privilege, 2);  // it could be made
    EXPECT_EQ(client.stat(L"/home/none", L"a.txt", &entry), (Numbers{0, 3}));
    EXPECT_EQ(client.stat(L"/home/d/../..", L"a.txt", &entry), (Numbers{0, 5}));
    // The stat is the one of these calls that the faster end serves.
    EXPECT_EQ(nas.log().find("torvisrv.fcgi func=stat") != std::string::npos, isFcgi());
}

TEST_P(LibList, SharesAreFoundInTheTree) {
    std::filesystem::create_directory(nas.folder().file("Public"));
    nas.folder().write("Public/Sub/x", "123");
    std::vector<Entry> entries;
    EXPECT_EQ(client.folders(L"share_root", entries), kDone);
    EXPECT_THAT(names(entries), UnorderedElementsAre("Public", "home", "homes"));
    Entry entry;
    EXPECT_EQ(client.folder(L"/", L"Public", &entry), kDone);
    EXPECT_EQ(entry.name, "Public");
    EXPECT_EQ(entry.access, 2u);
    EXPECT_TRUE(entry.isFolder);
    EXPECT_EQ(client.folder(L"/Public", L"Sub"), kDone);
    EXPECT_EQ(client.folder(L"/", L"public"), (Numbers{0, 3}));
    EXPECT_EQ(client.folder(L"/Public/Sub", L"x"), (Numbers{0, 3}));
}

TEST_P(LibList, DirectoryAndPresenceAreToldApart) {
    std::filesystem::create_directory(nas.folder().file("Public"));
    put("a.txt", "1");
    put("d/b", "1");
    const struct {
        const wchar_t* path;
        bool isDirectory, isFile, isFolder;
    } rows[] = {{L"/home/a.txt", false, true, false},
                {L"/home/d", true, false, true},
                {L"/home/d/b", false, true, false},
                {L"/home/none", false, false, false},
                {L"/home/none/b", false, false, false}};
    for (const auto& row : rows) {
        SCOPED_TRACE(utf8(row.path));
        const bool exists = row.isFile || row.isFolder;
        bool answer = false;
        EXPECT_EQ(client.isDirectory(row.path, answer), (Numbers{0, exists ? 0 : 3}));
        EXPECT_EQ(answer, row.isDirectory);
        EXPECT_EQ(client.isPresent(row.path, false, answer), (Numbers{0, row.isFile ? 0 : 3}));
        EXPECT_EQ(answer, row.isFile);
        EXPECT_EQ(client.isPresent(row.path, true, answer), (Numbers{0, row.isFolder ? 0 : 3}));
        EXPECT_EQ(answer, row.isFolder);
    }
    bool answer = false;
    EXPECT_EQ(client.isPresent(L"/Public", true, answer), kDone);
    EXPECT_TRUE(answer);
    EXPECT_EQ(client.isPresent(L"/Private", true, answer), (Numbers{0, 3}));
    EXPECT_FALSE(answer);
}

TEST_P(LibList, FolderSizesAreAddedUp) {
    put("d/a", std::string(1000, 'a'));
    put("d/e/f/b", std::string(234, 'b'));
    std::filesystem::create_directories(onDisk("empty"));
    std::filesystem::resize_file(put("big/huge", ""), std::uintmax_t{5} << 30);
    std::int64_t size = 0;
    EXPECT_EQ(client.folderSize(L"/home", L"d", size), kDone);
    EXPECT_EQ(size, 1234);
    EXPECT_EQ(client.folderSize(L"home/d", L"e", size), kDone);
    EXPECT_EQ(size, 234);
    EXPECT_EQ(client.folderSize(L"/home", L"empty", size), kDone);
    EXPECT_EQ(size, 0);
    EXPECT_EQ(client.folderSize(L"/home", L"big", size), kDone);
    EXPECT_EQ(size, std::int64_t{5} << 30);
    EXPECT_EQ(client.folderSize(L"/home", L"none", size), (Numbers{0, 3}));
    EXPECT_EQ(size, -1);
}

TEST_P(LibTeam, TeamFoldersStandInFrontOfTheListing) {
    put(".Torvi/own", "1");
    put(".Torvi/sub/x", "1");
    Pages pages;
    pages.path = area;
    pages.limit = 2;
    std::vector<Entry> entries;
    if (!isSync()) {
        EXPECT_EQ(client.list(pages, entries), kDone);
        // This server puts them there itself.
        EXPECT_THAT(names(entries), UnorderedElementsAre("Plans", "Rules", "Photos 2", "own", "sub"));
        return;
    }
    EXPECT_EQ(client.page(pages, entries), kDone);
    EXPECT_THAT(names(entries), ElementsAre("Plans", "Rules"));
    EXPECT_EQ(client.list(pages, entries), kDone);
    ASSERT_EQ(entries.size(), 6u);
    EXPECT_THAT(
        std::vector<Entry>(entries.begin(), entries.begin() + 4),
        testing::Each(testing::AllOf(testing::Field(&Entry::type, 8u), testing::Field(&Entry::isFolder, true),
                                     testing::Field(&Entry::access, 2u))));
    EXPECT_EQ(entries[2].name, "Photos 2");
    EXPECT_EQ(entries[3].name, "Diary");
    EXPECT_THAT((std::vector<std::string>{entries[4].name, entries[5].name}),
                UnorderedElementsAre("own", "sub"));
    EXPECT_EQ(entries[4].type, 0u);
}

TEST_P(LibTeamArea, AskedForChildrenTeamFoldersTellTheirOwn) {
    nas.folder().write("homes/ben/Plans/sub/x", "1");
    nas.folder().write("homes/ben/Rules/file", "1");
    Pages pages;
    pages.path = area;
    pages.typeFilter = 6;
    std::vector<Entry> entries;
    EXPECT_EQ(client.page(pages, entries), kDone);
    std::map<std::string, bool> hasChild;
    for (const Entry& entry : entries) hasChild[entry.name] = entry.hasChild;
    EXPECT_EQ(hasChild, (std::map<std::string, bool>{
                            {"Plans", true}, {"Rules", false}, {"Photos 2", false}, {"Diary", false}}));
}

TEST_P(LibTeamArea, CallsBelowATeamFolderReachItsOwnersFiles) {
    EXPECT_EQ(client.upload({"plan", L"/home/.Torvi/Plans/a b.txt"}), kDone);
    EXPECT_EQ(nas.folder().read("homes/ben/Plans/a b.txt"), "plan");
    Upload moved{"moved", L"/home/.Torvi/Photos 2/p.jpg"};
    moved.move = true;
    EXPECT_EQ(client.upload(moved), kDone);
    EXPECT_EQ(modifiedTime(nas.folder().file("homes/ben/Photos 2/p.jpg")), moved.time);
    EXPECT_EQ(client.createFile(L"/home/.Torvi/Plans/new"), kDone);
    std::string bytes;
    EXPECT_EQ(client.download(L"/home/.Torvi/Plans/a b.txt", bytes), kDone);
    EXPECT_EQ(bytes, "plan");
    Pages pages;
    pages.path = L"/home/.Torvi/Plans";
    std::vector<Entry> entries;
    EXPECT_EQ(client.list(pages, entries), kDone);
    EXPECT_THAT(names(entries), UnorderedElementsAre("a b.txt", "new"));
    Entry entry;
    EXPECT_EQ(client.stat(L"/home/.Torvi/Plans", L"a b.txt", &entry), kDone);
    EXPECT_EQ(entry.size, 4);
    EXPECT_EQ(client.stat(area, L"Plans", &entry), kDone);
    EXPECT_EQ(entry.name, "ben-Plans");  // the folder itself goes by the server's name
    EXPECT_TRUE(entry.isFolder);
    bool answer = false;
    EXPECT_EQ(client.isDirectory(L"/home/.Torvi/Plans", answer), kDone);
    EXPECT_TRUE(answer);
    EXPECT_EQ(client.isPresent(L"/home/.Torvi/Plans/new", false, answer), kDone);
    EXPECT_TRUE(answer);
    std::int64_t size = 0;
    EXPECT_EQ(client.folderSize(area, L"Plans", size), kDone);
    EXPECT_EQ(size, 4);
    EXPECT_EQ(client.mayUpload(L"/home/.Torvi/Plans", L"x"), kDone);
    EXPECT_EQ(nas.requestCount("refused"), 0) << nas.log();
}

TEST_P(LibTeamArea, ATeamFolderOfOthersRefusesAndLooksMissing) {
    nas.folder().write("homes/ben/Rules/r", "rule");
    nas.folder().write("homes/ben/Diary/d", "dear");
    EXPECT_EQ(client.upload({"x", L"/home/.Torvi/Rules/r2"}), (Numbers{0, 5}));
    EXPECT_EQ(client.createFile(L"/home/.Torvi/Rules/r2"), (Numbers{0, 5}));
    EXPECT_EQ(client.mayUpload(L"/home/.Torvi/Rules", L"r2"), (Numbers{0, 5}));
    Entry entry;
    EXPECT_EQ(client.stat(L"/home/.Torvi/Rules", L"r", &entry), kDone);
    EXPECT_EQ(entry.access, 1u);
    // A folder that isn't shared with the user is not to be told apart from one that isn't there.
    EXPECT_EQ(client.stat(L"/home/.Torvi/Diary", L"d", &entry), (Numbers{0, 3}));
    std::int64_t size = 0;
    EXPECT_EQ(client.folderSize(L"/home/.Torvi/Diary", L"d", size), (Numbers{0, 5}));
    // Nothing is told of this one: the path goes out as it stands.
    EXPECT_EQ(client.stat(L"/home/.Torvi/Plans2", L"d", &entry), (Numbers{0, 3}));
    EXPECT_EQ(nas.folder().read("homes/ben/Rules/r"), "rule");
}

TEST_P(LibTeam, AServerSidePathIsTakenAsItStands) {
    nas.folder().write("homes/ben/Plans/p", "plan");
    Entry entry;
    EXPECT_EQ(client.stat(L"vtf://ben-Plans", L"p", &entry, 0x3f, 0, true), kDone);
    EXPECT_EQ(entry.size, 4);
}

E2E_ON_ALL_ROADS(LibList);
E2E_ON_ALL_ROADS(LibTeam);
INSTANTIATE_TEST_SUITE_P(Roads, LibTeamArea, testing::ValuesIn(syncRoads()), roadName);
