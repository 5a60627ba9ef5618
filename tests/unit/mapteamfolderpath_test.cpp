#include "files/MapTeamFolderPath.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "core/Utils.h"
#include "core/callframe.h"
#include "teamlists.h"

using namespace Lattice;

namespace {

constexpr wchar_t kArea[] = L"/home/.Torvi";

/// "parent|name@slave", and "!" in front if a team folder holds it.
std::wstring text(const RemotePath& path) {
    return (path.matched ? L"!" : L"") + path.parent + L"|" + path.name + L"@" + path.slaveID;
}

std::wstring mapPair(const TeamLists& lists, const std::wstring& parent, const std::wstring& name) {
    return text(MapTeamFolderPath(lists.context, parent, name));
}

std::wstring mapWhole(const TeamLists& lists, const std::wstring& path) {
    return text(MapTeamFolderPath(lists.context, path));
}

const std::vector<TeamLists::Row> kOneFolder = {{L"/home/.Torvi/T/", L"vtf://S/", L"Node"}};

/// What both forms make of a path that stays as it is.
void expectUnmapped(const TeamLists& lists, const std::wstring& path) {
    EXPECT_EQ(mapWhole(lists, path), path + L"|@");
    const SplitPath split = SplitAtLastSlash(path);
    EXPECT_EQ(mapPair(lists, split.parent, split.name), split.parent + L"|" + split.name + L"@");
}

}  // namespace

TEST(MapTeamFolderPath, TheTeamAreaItselfIsNotMapped) {
    // Not even by an entry that covers all of it.
    for (const auto& rows : {kOneFolder, {{L"/home/.Torvi/", L"vtf://S/", L"Node"}}}) {
        const TeamLists lists(L"Own", rows);
        EXPECT_EQ(mapWhole(lists, L"/home/.Torvi"), L"/home/.Torvi|@");
        EXPECT_EQ(mapWhole(lists, L"/home/.Torvi/"), L"/home/.Torvi/|@");
        EXPECT_EQ(mapPair(lists, L"/home", L".Torvi"), L"/home|.Torvi@");
        EXPECT_EQ(mapPair(lists, L"/home/.Torvi", L""), L"/home/.Torvi|@");
        EXPECT_EQ(mapPair(lists, L"/home/.Torvi/", L""), L"/home/.Torvi/|@");
    }
}

TEST(MapTeamFolderPath, WholePathsAreMapped) {
    const TeamLists lists(L"Own", kOneFolder);
    const struct {
        const wchar_t* path;
        const wchar_t* expected;
    } rows[] = {{L"/home/.Torvi/T", L"!vtf://S|@Node"},
                {L"/home/.Torvi/T/", L"!vtf://S|@Node"},
                {L"/home/.Torvi/T/a", L"!vtf://S/a|@Node"},
                {L"/home/.Torvi/T/a/", L"!vtf://S/a|@Node"},
                {L"/home/.Torvi/T/a/b.txt", L"!vtf://S/a/b.txt|@Node"},
                {L"/home/.Torvi/T/\x6587\U0001F600", L"!vtf://S/\x6587\U0001F600|@Node"}};
    for (const auto& row : rows) EXPECT_EQ(mapWhole(lists, row.path), row.expected);
}

TEST(MapTeamFolderPath, PairsAreMapped) {
    const TeamLists lists(L"Own", kOneFolder);
    const struct {
        const wchar_t* parent;
        const wchar_t* name;
        const wchar_t* expected;
    } rows[] = {{kArea, L"T", L"!vtf://S|@Node"},
                {L"/home/.Torvi/", L"T", L"!vtf://S|@Node"},
                {kArea, L"T/", L"!vtf://S|@Node"},
                {L"/home/.Torvi/T", L"", L"!vtf://S|@Node"},
                {L"/home/.Torvi/T/", L"", L"!vtf://S|@Node"},
                {L"/home/.Torvi/T", L"a", L"!vtf://S|a@Node"},
                {L"/home/.Torvi/T/", L"a", L"!vtf://S|a@Node"},
                {L"/home/.Torvi/T/a", L"b.txt", L"!vtf://S/a|b.txt@Node"},
                {L"/home/.Torvi/T/a/", L"b.txt", L"!vtf://S/a|b.txt@Node"},
                {L"/home/.Torvi/T/a/b", L"c", L"!vtf://S/a/b|c@Node"},
                // The leaf stays as it came, whatever the parent takes from it.
                {kArea, L"T/a", L"!vtf://S|T/a@Node"}};
    for (const auto& row : rows) EXPECT_EQ(mapPair(lists, row.parent, row.name), row.expected);
}

TEST(MapTeamFolderPath, OnlyTheRootIsATeamRoot) {
    const TeamLists lists(L"Own", kOneFolder);
    EXPECT_TRUE(MapTeamFolderPath(lists.context, kArea, L"T").isTeamRoot);
    EXPECT_FALSE(MapTeamFolderPath(lists.context, L"/home/.Torvi/T", L"a").isTeamRoot);
    EXPECT_FALSE(MapTeamFolderPath(lists.context, L"/home", L"a").isTeamRoot);
    EXPECT_FALSE(MapTeamFolderPath(lists.context, L"/home", L"").isTeamRoot);
    EXPECT_TRUE(MapTeamFolderPath(lists.context, L"/home/.Torvi/T", L"").isTeamRoot);
    EXPECT_FALSE(MapTeamFolderPath(lists.context, L"/home/.Torvi/T/a", L"").isTeamRoot);
}

TEST(MapTeamFolderPath, ASiblingWhoseNameMerelyStartsTheSameWayIsNotMapped) {
    const TeamLists lists(L"Own", kOneFolder);
    for (const wchar_t* path :
         {L"/home/.Torvi/TT/x", L"/home/.Torvi/TT", L"/home/.Torvi/t/x", L"/home/.torvi/T/x",
          L"/home/.TorviX/T/x", L"/home/T/x", L"/other", L"home/.Torvi/T/x", L"vtf://S/a", L"", L"/"}) {
        expectUnmapped(lists, path);
    }
}

TEST(MapTeamFolderPath, AnEntryWithoutItsSlashMatchesSiblingsToo) {
    const TeamLists lists(L"Own", {{L"/home/.Torvi/T", L"vtf://S/", L"Node"}});
    EXPECT_EQ(mapWhole(lists, L"/home/.Torvi/TT/x"), L"!vtf://S/T/x|@Node");
    EXPECT_EQ(mapWhole(lists, L"/home/.Torvi/T"), L"!vtf://S|@Node");
}

TEST(MapTeamFolderPath, TheEarlierOfTwoNestedEntriesWins) {
    const TeamLists::Row outer{L"/home/.Torvi/T/", L"vtf://S/", L"N1"};
    const TeamLists::Row inner{L"/home/.Torvi/T/in/", L"vtf://I/", L"N2"};
    const TeamLists outerFirst(L"Own", {outer, inner});
    EXPECT_EQ(mapWhole(outerFirst, L"/home/.Torvi/T/in/a"), L"!vtf://S/in/a|@N1");
    const TeamLists innerFirst(L"Own", {inner, outer});
    EXPECT_EQ(mapWhole(innerFirst, L"/home/.Torvi/T/in/a"), L"!vtf://I/a|@N2");
    EXPECT_EQ(mapPair(innerFirst, L"/home/.Torvi/T/in", L"a"), L"!vtf://I|a@N2");
    EXPECT_EQ(mapWhole(innerFirst, L"/home/.Torvi/T/a"), L"!vtf://S/a|@N1");
}

TEST(MapTeamFolderPath, NullSlotsAreSkippedAndANullPlaceEndsTheWalk) {
    const TeamLists lists(L"Own", {{nullptr, L"vtf://X/", L"N1"},
                                   {L"/home/.Torvi/T/", nullptr, L"N2"},
                                   {L"/home/.Torvi/T/", L"vtf://S/", L"N3"},
                                   {L"/home/.Torvi/U/", L"vtf://U/", nullptr}});
    // Found, but not mapped, and not routed.
    EXPECT_EQ(mapWhole(lists, L"/home/.Torvi/T/a"), L"!/home/.Torvi/T/a|@");
    EXPECT_EQ(mapPair(lists, L"/home/.Torvi/T", L"a"), L"!/home/.Torvi/T|a@");
    EXPECT_EQ(mapPair(lists, kArea, L"T"), L"!/home/.Torvi|T@");
    EXPECT_EQ(mapWhole(lists, L"/home/.Torvi/U/a"), L"!vtf://U/a|@");
}

TEST(MapTeamFolderPath, EveryConditionOfTheGuardCounts) {
    struct Case {
        const char* name;
        void (*spoil)(_WFM_AUTH_CONTEXT&);
        bool isMapped;
    };
    const Case cases[] = {
        {"nothing", [](_WFM_AUTH_CONTEXT&) {}, true},
        {"file manager", [](_WFM_AUTH_CONTEXT& context) { context.bUseNuboCGI = false; }, false},
        {"count 0", [](_WFM_AUTH_CONTEXT& context) { context.nTeamFolderCount = 0; }, false},
        {"count -1", [](_WFM_AUTH_CONTEXT& context) { context.nTeamFolderCount = -1; }, false},
        {"no server paths", [](_WFM_AUTH_CONTEXT& context) { context.lppTeamFolderPathList = nullptr; },
         false},
        {"no client paths", [](_WFM_AUTH_CONTEXT& context) { context.lppOriPathList = nullptr; }, false},
        {"no slaves in a cluster",
         [](_WFM_AUTH_CONTEXT& context) { context.lppTeamFolderSlaveIDList = nullptr; }, false},
        {"no slaves outside a cluster",
         [](_WFM_AUTH_CONTEXT& context) {
             context.lppTeamFolderSlaveIDList = nullptr;
             context.szSlaveID[0] = L'\0';
         },
         true},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.name);
        TeamLists lists(L"Own", kOneFolder);
        each.spoil(lists.context);
        EXPECT_EQ(HasTeamFolders(lists.context), each.isMapped);
        if (each.isMapped)
            EXPECT_EQ(MapTeamFolderPath(lists.context, L"/home/.Torvi/T/a").parent, L"vtf://S/a");
        else
            expectUnmapped(lists, L"/home/.Torvi/T/a");
    }
}

TEST(MapTeamFolderPath, TheTeamAreaIsKnownWithAndWithoutItsSlash) {
    EXPECT_TRUE(IsTeamArea(L"/home/.Torvi"));
    EXPECT_TRUE(IsTeamArea(L"/home/.Torvi/"));
    for (const wchar_t* other : {L"", L"/", L"/home", L"/home/.Torvi//", L"/home/.torvi", L"/home/.Torvi/T"})
        EXPECT_FALSE(IsTeamArea(other));
}

TEST(SlavePrefix, AMappedNodeGoesBeforeTheCallersAndTheOwnNodeNeedsNone) {
    const struct {
        const wchar_t* own;
        const wchar_t* mapped;
        const wchar_t* callers;
        const wchar_t* expected;
    } rows[] = {
        // A server without a cluster has no prefix, whatever the lists say.
        {L"", L"Node", L"Other", L""},
        {L"", L"", L"Other", L""},
        {L"Own", L"Node", L"Other", L"Node/"},
        {L"Own", L"Node", L"", L"Node/"},
        {L"Own", L"Node", nullptr, L"Node/"},
        // The node that holds the folder is the session's own: the caller's doesn't come back in.
        {L"Own", L"Own", L"Other", L""},
        {L"Own", L"oWN", L"Other", L""},
        {L"Own", L"", L"Other", L"Other/"},
        {L"Own", L"", L"OWN", L""},
        {L"Own", L"", L"", L""},
        {L"Own", L"", nullptr, L""},
        {L"Owner", L"Own", nullptr, L"Own/"},
    };
    for (const auto& row : rows) {
        TeamLists lists(row.own, {});
        EXPECT_EQ(SlavePrefix(lists.context, row.mapped, row.callers), row.expected)
            << testing::PrintToString(std::wstring(row.own))
            << testing::PrintToString(std::wstring(row.mapped));
    }
}
