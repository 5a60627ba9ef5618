// GetShareFilePath through the exported symbol, on a session as clients make them. Its rules one by one stand
// in the unit test of the same name.

#include "../../src/files/GetShareFilePath.h"

#include <gtest/gtest.h>

#include "teamfolders.h"

using namespace wire;

using List = std::vector<std::wstring>;

TEST(GetShareFilePathWire, MapsASelectionOfTheTeamAreaForOneNode) {
    const SessionPtr session = makeTeamSession({{L"/home/.Torvi/T/", L"vtf://S/", L"N1"},
                                                {L"/home/.Torvi/U/", L"vtf://U/", L"N2"},
                                                {L"/home/.Torvi/V/", L"vtf://V/", L"n1"}});
    List files{L"T", L"U", L"own", L"V"};
    bool mapped = false;
    std::wstring slaveId;
    GetShareFilePath(session.get(), L"/home/.Torvi/", files, mapped, slaveId);
    EXPECT_EQ(files, (List{L"vtf://V", L"/home/.Torvi/own", L"/home/.Torvi/U", L"vtf://S"}));
    EXPECT_TRUE(mapped);
    EXPECT_EQ(slaveId, L"n1");
}

TEST(GetShareFilePathWire, ASecondCallMapsNothingMore) {
    const SessionPtr session = makeTeamSession();
    List files{L"T"};
    bool mapped = false;
    std::wstring slaveId;
    GetShareFilePath(session.get(), L"/home/.Torvi", files, mapped, slaveId);
    GetShareFilePath(session.get(), L"/home/.Torvi", files, mapped, slaveId);
    EXPECT_EQ(files, List{L"vtf://S"});
    EXPECT_FALSE(mapped);
    EXPECT_EQ(slaveId, L"");
}

TEST(GetShareFilePathWire, ASessionWithoutTeamFoldersOrOfTheFileManagerMapsNothing) {
    const SessionPtr fileManager = makeTeamSession();
    useFileManager(*fileManager);
    const SessionPtr without = makeAgentSession();
    for (_WFM_AUTH_CONTEXT* session :
         {fileManager.get(), without.get(), static_cast<_WFM_AUTH_CONTEXT*>(nullptr)}) {
        List files{L"T", L"a"};
        bool mapped = true;
        std::wstring slaveId = L"garbage";
        GetShareFilePath(session, L"/home/.Torvi", files, mapped, slaveId);
        EXPECT_EQ(files, (List{L"T", L"a"}));
        EXPECT_FALSE(mapped);
        EXPECT_EQ(slaveId, L"");
    }
}
