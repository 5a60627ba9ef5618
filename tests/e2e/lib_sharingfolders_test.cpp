#include "lib_sharing.h"

using namespace e2e;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// Where shared folders are, where they go, and what becomes of their files.
class LibSharedFolders : public LibSharing {
protected:
    /// What a folder is told to be.
    _WFM_TORVI_SHARE_FOLDER_INFORMATION information(const Client& user, const std::wstring& path,
                                                    std::int32_t expected) const {
        _WFM_TORVI_SHARE_FOLDER_INFORMATION record;
        std::int32_t status = -2;
        EXPECT_EQ(folderInformation(user, path, status, record), kDone);
        EXPECT_EQ(status, expected);
        return record;
    }
    void makeFolder(const std::string& name) const { std::filesystem::create_directories(onDisk(name)); }
    bool isThere(const std::string& name) const { return std::filesystem::exists(onDisk(name)); }
};

}  // namespace

TEST_P(LibSharedFolders, AShareHasThePathOfWhoAsks) {
    share({L"ben"});
    const std::wstring id = the(client, kOwned).id;
    std::wstring path;
    EXPECT_EQ(sharePath(client, id, path), kDone);
    EXPECT_EQ(utf8(path), "/home/Photos");
    EXPECT_EQ(sharePath(client, id, path, 12), (Numbers{0, -23}));
    EXPECT_EQ(path, L"");
    EXPECT_EQ(sharePath(client, id, path, 13), kDone);
    EXPECT_EQ(sharePath(ben, id, path), (Numbers{0, -4}));
    accept();
    EXPECT_EQ(sharePath(ben, id, path), kDone);
    EXPECT_EQ(path, shownPath());
    EXPECT_EQ(sharePath(carl, id, path), (Numbers{0, -4}));
    EXPECT_EQ(sharePath(client, L"none & such", path), (Numbers{0, -4}));
    EXPECT_EQ(nas.requestCount("refused"), 0) << nas.log();
}

TEST_P(LibSharedFolders, SharesAreFoundBelowAFolderWhateverItsCase) {
    nas.folder().write("homes/anna/Photos/Büro & 書類/p", "x");
    std::vector<Found> found;
    EXPECT_EQ(findShares(client, L"/home", found), kDone);
    EXPECT_THAT(found, IsEmpty());
    shareWithBen();
    share({L"carl"}, wide("/home/Photos/Büro & 書類"));
    EXPECT_EQ(findShares(client, L"/HOME/photos", found), kDone);
    ASSERT_EQ(found.size(), 2u);
    EXPECT_EQ(found[0].file, "/home/Photos/");
    EXPECT_EQ(found[0].share, the(client, kOwned).id);
    EXPECT_EQ(found[0].status, kAccepted);
    EXPECT_EQ(found[1].file, "/home/Photos/Büro & 書類/");
    EXPECT_EQ(found[1].status, kWaits);
    EXPECT_EQ(findShares(client, wide("/home/Photos/Büro & 書類/"), found), kDone);
    EXPECT_EQ(found.size(), 1u);
    EXPECT_EQ(findShares(client, L"/home/Phot", found), kDone);
    EXPECT_THAT(found, IsEmpty());
    EXPECT_EQ(findShares(ben, L"/home", found), kDone);
    EXPECT_THAT(found, IsEmpty());
    EXPECT_EQ(nas.requestCount("refused"), 0) << nas.log();
}

TEST_P(LibSharedFolders, AFolderIsToldWhetherItIsSharedAndStillThere) {
    information(client, L"/home/Photos", 13);
    shareWithBen();
    const _WFM_TORVI_SHARE_FOLDER_INFORMATION own = information(client, L"/home/Photos", 0);
    EXPECT_TRUE(own.bFileExists);
    EXPECT_EQ(own.nNuboType, 4);
    EXPECT_EQ(own.nEventStatus, kAccepted);
    EXPECT_EQ(own.szShareID, the(client, kOwned).id);
    EXPECT_STREQ(own.szNasID, L"");
    // A session that wasn't told of the folder asks.
    const _WFM_TORVI_SHARE_FOLDER_INFORMATION received = information(ben, shownPath(), 0);
    EXPECT_EQ(received.nNuboType, 8);
    EXPECT_NE(received.nEventID, 0);
    EXPECT_STREQ(received.szShareID, own.szShareID);
    std::filesystem::remove_all(onDisk("Photos"));
    const _WFM_TORVI_SHARE_FOLDER_INFORMATION gone = information(client, L"/home/Photos", 2);
    EXPECT_FALSE(gone.bFileExists);
    EXPECT_STREQ(gone.szShareID, own.szShareID);
    EXPECT_EQ(nas.requestCount("refused"), 0) << nas.log();
}

TEST_P(LibSharedFolders, WithoutARecycleBinDeletedFilesAreGone) {
    put("a", "x");
    put("b", "x");
    EXPECT_TRUE(recycleBin(client));
    EXPECT_EQ(client.remove(L"/home/a"), kDone);
    EXPECT_TRUE(isThere("@Recycle/a"));
    EXPECT_EQ(setRecycleBin(client, 0), kDone);
    EXPECT_FALSE(recycleBin(client));
    EXPECT_TRUE(recycleBin(ben));
    EXPECT_EQ(client.remove(L"/home/b"), kDone);
    EXPECT_FALSE(isThere("b"));
    EXPECT_FALSE(isThere("@Recycle/b"));
    EXPECT_EQ(setRecycleBin(client, 2), (Numbers{0, 5}));
    EXPECT_FALSE(recycleBin(client));
    EXPECT_EQ(setRecycleBin(client, 1), kDone);
    EXPECT_TRUE(recycleBin(client));
    EXPECT_EQ(nas.requestCount("refused"), 0) << nas.log();
}

TEST_P(LibSharedFolders, AFolderThatIsRenamedStaysShared) {
    shareWithBen();
    EXPECT_EQ(renameShared(client, L"/home/Photos", wide("/home/Büro & 書類/")), kDone);
    EXPECT_TRUE(isThere("Büro & 書類/p"));
    EXPECT_THAT(names(client, kOwned), ElementsAre("Büro & 書類"));
    EXPECT_EQ(reach(), kDone);
    EXPECT_EQ(renameShared(client, L"/home/Photos", L"/home/x"), (Numbers{0, 5}));
    EXPECT_EQ(nas.requestCount("refused"), 0) << nas.log();
    nas.forgetRequests();
    EXPECT_EQ(renameShared(client, L"/home/a", L"/Public/a"), (Numbers{0, 87}));
    EXPECT_EQ(renameShared(client, L"/home", L"/other"), (Numbers{0, 5}));
    EXPECT_EQ(nas.requestCount(), 0);
}

TEST_P(LibSharedFolders, AFolderThatIsMovedStaysSharedAlsoUnderAnotherName) {
    makeFolder("New");
    shareWithBen();
    EXPECT_EQ(moveShared(client, L"/home/Photos", L"/home/New/Photos"), kDone);
    EXPECT_TRUE(isThere("New/Photos/p"));
    EXPECT_EQ(reach(), kDone);
    EXPECT_EQ(moveShared(client, L"/home/New/Photos/", wide("/home/Büro & 書類")), kDone);
    EXPECT_TRUE(isThere("Büro & 書類/p"));
    EXPECT_THAT(names(client, kOwned), ElementsAre("Büro & 書類"));
    EXPECT_EQ(reach(), kDone);
    EXPECT_EQ(nas.requestCount("refused"), 0) << nas.log();
}

TEST_P(LibSharedFolders, AMoveThatIsDeniedOrImpossibleIsToldApart) {
    makeFolder("Shut");
    makeFolder("New/Other");
    std::filesystem::permissions(onDisk("Shut"), std::filesystem::perms(0555));
    EXPECT_EQ(moveShared(client, L"/home/Photos", L"/home/Shut/Photos"), (Numbers{0, 5}));
    EXPECT_EQ(moveShared(client, L"/home/none", L"/home/New/none"), (Numbers{0, -1}));
    // It is moved, but its new name is taken.
    EXPECT_EQ(moveShared(client, L"/home/Photos", L"/home/New/Other"), (Numbers{0, 5}));
    EXPECT_TRUE(isThere("New/Photos/p"));
    EXPECT_EQ(nas.requestCount("refused"), 0) << nas.log();
    nas.forgetRequests();
    EXPECT_EQ(moveShared(client, L"/home/a", L"/home/a/"), (Numbers{0, 87}));
    EXPECT_EQ(moveShared(client, L"/home", L"/home/New/home"), (Numbers{0, 5}));
    EXPECT_EQ(nas.requestCount(), 0);
}

TEST_P(LibSharedFolders, ALinkFollowsAFolderThatWasCopiedAway) {
    shareWithBen();
    makeFolder("New");
    // The one that is shared is still there.
    EXPECT_EQ(updateLink(client, L"/home/Photos", L"/home/New/Photos"), (Numbers{0, -1}));
    nas.folder().write("homes/anna/New/Photos/p", "copy");
    std::filesystem::remove_all(onDisk("Photos"));
    EXPECT_EQ(reach(), (Numbers{0, 3}));
    EXPECT_EQ(updateLink(client, L"/home/Photos", L"/home/New/Photos"), kDone);
    EXPECT_EQ(reach(), kDone);
    std::wstring path;
    EXPECT_EQ(sharePath(client, the(client, kOwned).id, path), kDone);
    EXPECT_EQ(utf8(path), "/home/New/Photos");
    EXPECT_EQ(updateLink(client, L"/Photos", L"/home/New/Photos"), (Numbers{0, 5}));
    EXPECT_EQ(nas.requestCount("refused"), 0) << nas.log();
}

TEST_P(LibSharedFolders, ATeamFolderThatWasRenamedAsideIsFoundAgain) {
    shareWithBen();
    EXPECT_EQ(fixLink(client, L"/home/Photos"), std::pair(0u, false));
    std::filesystem::rename(onDisk("Photos"), onDisk("Büro & 書類"));
    EXPECT_EQ(reach(), (Numbers{0, 3}));
    EXPECT_EQ(fixLink(client, wide("/home/Büro & 書類")), std::pair(0u, true));
    EXPECT_EQ(reach(), kDone);
    EXPECT_THAT(names(client, kOwned), ElementsAre("Büro & 書類"));
    EXPECT_EQ(fixLink(client, wide("/home/Büro & 書類")), std::pair(0u, false));
    EXPECT_EQ(nas.requestCount("refused"), 0) << nas.log();
    nas.forgetRequests();
    std::uint32_t fixed = 7;
    EXPECT_EQ(WFMFixTeamFolderLink(client.context(), kServer, client.port(), nullptr, isSync() ? 8 : 4,
                                   L"/home/Photos", &fixed),
              8u);
    EXPECT_EQ(fixed, 7u);
    EXPECT_EQ(nas.requestCount(), 0);
}

E2E_ON_ALL_ROADS(LibSharedFolders);
