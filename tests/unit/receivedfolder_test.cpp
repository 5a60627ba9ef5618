#include "sharing/receivedfolder.h"

#include <gtest/gtest.h>

#include "teamlists.h"

using namespace Lattice;

namespace {

const std::vector<TeamLists::Row> kTwoFolders = {{L"/home/.Torvi/A/", L"vtf://1/"},
                                                 {L"/home/.Torvi/T/", L"vtf://2/"}};

}  // namespace

TEST(ReceivedFolder, IsTheFolderAndWhatLiesInIt) {
    const TeamLists lists(L"", kTwoFolders);
    for (const wchar_t* path : {L"/home/.Torvi/T", L"/home/.Torvi/T/", L"/home/.Torvi/A/b/c"})
        EXPECT_TRUE(IsInReceivedFolder(lists.context, path));
    for (const wchar_t* path : {L"/home/.Torvi", L"/home/.Torvi/", L"/home/.Torvi/TT", L"/home/T", L"", L"/"})
        EXPECT_FALSE(IsInReceivedFolder(lists.context, path));
}

TEST(ReceivedFolder, AnEntryCountsOverItsWholeLength) {
    const TeamLists lists(L"", {{L"/home/.Torvi/T", L"vtf://2"}, {L"/home/", L"vtf://3"}});
    EXPECT_TRUE(IsInReceivedFolder(lists.context, L"/home/.Torvi/T"));
    EXPECT_TRUE(IsInReceivedFolder(lists.context, L"/home/.Torvi/X"));
    EXPECT_FALSE(IsInReceivedFolder(lists.context, L"/home/X"));
}

TEST(ReceivedFolder, NeedsBothListsAndNoNodes) {
    TeamLists nodes(L"own", kTwoFolders);
    nodes.context.lppTeamFolderSlaveIDList = nullptr;
    EXPECT_TRUE(IsInReceivedFolder(nodes.context, L"/home/.Torvi/T"));

    TeamLists entries(L"", {{nullptr, nullptr}, {L"/home/.Torvi/T/", nullptr}});
    EXPECT_TRUE(IsInReceivedFolder(entries.context, L"/home/.Torvi/T"));

    TeamLists places(L"", kTwoFolders);
    places.context.lppTeamFolderPathList = nullptr;
    EXPECT_FALSE(IsInReceivedFolder(places.context, L"/home/.Torvi/T"));

    TeamLists names(L"", kTwoFolders);
    names.context.lppOriPathList = nullptr;
    EXPECT_FALSE(IsInReceivedFolder(names.context, L"/home/.Torvi/T"));

    TeamLists none(L"", kTwoFolders);
    none.context.nTeamFolderCount = 0;
    EXPECT_FALSE(IsInReceivedFolder(none.context, L"/home/.Torvi/T"));
}

TEST(ReceivedFolder, IsNothingToTheFileManager) {
    TeamLists lists(L"", kTwoFolders);
    lists.context.bUseNuboCGI = false;
    EXPECT_FALSE(IsInReceivedFolder(lists.context, L"/home/.Torvi/T"));
}
