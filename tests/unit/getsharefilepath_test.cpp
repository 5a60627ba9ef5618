#include "files/GetShareFilePath.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "teamlists.h"

namespace {

using List = std::vector<std::wstring>;

struct Outcome {
    List files;
    bool mapped;
    std::wstring slaveId;
};

Outcome run(_WFM_AUTH_CONTEXT* context, List files, const std::wstring& path = L"/home/.Torvi") {
    Outcome outcome{std::move(files), true, L"garbage"};
    GetShareFilePath(context, path, outcome.files, outcome.mapped, outcome.slaveId);
    return outcome;
}

const std::vector<TeamLists::Row> kFolders = {{L"/home/.Torvi/T/", L"vtf://S/", L"N1"},
                                              {L"/home/.Torvi/U/", L"vtf://U/", L"n1"},
                                              {L"/home/.Torvi/V/", L"vtf://V/", L"N2"},
                                              {L"/home/.Torvi/W/", L"vtf://W/", L""}};

void expect(const Outcome& outcome, const List& files, bool mapped, const std::wstring& slaveId) {
    EXPECT_EQ(outcome.files, files);
    EXPECT_EQ(outcome.mapped, mapped);
    EXPECT_EQ(outcome.slaveId, slaveId);
}

}  // namespace

TEST(GetShareFilePath, ItemsThatAreNoTeamFoldersComeBackInReverseOrder) {
    TeamLists lists(L"Own", kFolders);
    expect(run(&lists.context, {L"a", L"b"}), {L"b", L"a"}, false, L"");
}

TEST(GetShareFilePath, TeamFoldersBecomeTheirServerPathsInReverseOrder) {
    TeamLists lists(L"Own", kFolders);
    expect(run(&lists.context, {L"T"}), {L"vtf://S"}, true, L"N1");
    expect(run(&lists.context, {L"T", L"U"}), {L"vtf://U", L"vtf://S"}, true, L"n1");
    // A folder below is the team folder, too.
    expect(run(&lists.context, {L"T/", L"T/x"}), {L"vtf://S", L"vtf://S"}, true, L"N1");
}

TEST(GetShareFilePath, BesideATeamFolderOtherItemsComeBackAsFullPaths) {
    TeamLists lists(L"Own", kFolders);
    expect(run(&lists.context, {L"a", L"T", L"TT"}), {L"/home/.Torvi/TT", L"vtf://S", L"/home/.Torvi/a"},
           true, L"N1");
}

TEST(GetShareFilePath, ItemsOfTheNodeMetSecondComeBackAsFullUnmappedPaths) {
    TeamLists lists(L"Own", kFolders);
    expect(run(&lists.context, {L"T", L"V"}), {L"vtf://V", L"/home/.Torvi/T"}, true, L"N2");
    expect(run(&lists.context, {L"V", L"T", L"U"}), {L"vtf://U", L"vtf://S", L"/home/.Torvi/V"}, true, L"n1");
}

TEST(GetShareFilePath, AFolderWithoutANodeFitsEveryNode) {
    TeamLists lists(L"Own", kFolders);
    expect(run(&lists.context, {L"W"}), {L"vtf://W"}, true, L"");
    expect(run(&lists.context, {L"T", L"W"}), {L"vtf://W", L"vtf://S"}, true, L"N1");
}

TEST(GetShareFilePath, WithoutASlaveListEveryFolderIsMapped) {
    TeamLists lists(L"Own", kFolders);
    lists.context.lppTeamFolderSlaveIDList = nullptr;
    expect(run(&lists.context, {L"T", L"V"}), {L"vtf://V", L"vtf://S"}, true, L"");
}

TEST(GetShareFilePath, EmptyItemsAreDroppedUnlessOthersAreMapped) {
    TeamLists lists(L"Own", kFolders);
    expect(run(&lists.context, {L"a", L"", L"b"}), {L"b", L"a"}, false, L"");
    expect(run(&lists.context, {L"", L"T"}), {L"vtf://S", L"/home/.Torvi"}, true, L"N1");
}

TEST(GetShareFilePath, NullSlotsAreSkippedAndAnUnknownPlaceEndsTheWalk) {
    TeamLists lists(L"Own", {{nullptr, L"vtf://X/", L"N1"},
                             {L"/home/.Torvi/T/", nullptr, L"N1"},
                             {L"/home/.Torvi/T/", L"vtf://S/", L"N1"},
                             {L"/home/.Torvi/U/", L"", L"N1"},
                             {L"/home/.Torvi/V/", L"vtf://V/", nullptr}});
    expect(run(&lists.context, {L"T", L"U"}), {L"U", L"T"}, false, L"");
    expect(run(&lists.context, {L"V"}), {L"vtf://V"}, true, L"");
}

TEST(GetShareFilePath, OneSlashAtThePathsEndIsTaken) {
    TeamLists lists(L"Own", kFolders);
    expect(run(&lists.context, {L"T"}, L"/home/.Torvi/"), {L"vtf://S"}, true, L"N1");
    for (const wchar_t* other :
         {L"", L"/", L"/home", L"/home/.Torvi//", L"/home/.torvi", L"/home/.Torvi/T"}) {
        // Untouched: not even turned around.
        expect(run(&lists.context, {L"T", L"a"}, other), {L"T", L"a"}, false, L"");
    }
}

TEST(GetShareFilePath, WithoutWhatItNeedsTheListStaysUntouched) {
    const List files{L"T", L"a"};
    expect(run(nullptr, files), files, false, L"");
    TeamLists lists(L"Own", kFolders);
    expect(run(&lists.context, {}), {}, false, L"");
    void (*const spoilers[])(_WFM_AUTH_CONTEXT&) = {
        [](_WFM_AUTH_CONTEXT& context) { context.bUseNuboCGI = false; },
        [](_WFM_AUTH_CONTEXT& context) { context.nTeamFolderCount = 0; },
        [](_WFM_AUTH_CONTEXT& context) { context.lppTeamFolderPathList = nullptr; },
        [](_WFM_AUTH_CONTEXT& context) { context.lppOriPathList = nullptr; }};
    for (const auto& spoil : spoilers) {
        TeamLists spoilt(L"Own", kFolders);
        spoil(spoilt.context);
        expect(run(&spoilt.context, files), files, false, L"");
    }
}
