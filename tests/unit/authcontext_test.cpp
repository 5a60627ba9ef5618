// What a session record does when memory runs short.

#include "core/authcontext.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "shortage.h"
#include "support/logcapture.h"

namespace {

wchar_t* text(const wchar_t* literal) {
    return const_cast<wchar_t*>(literal);
}

struct Lists {
    std::vector<wchar_t*> ori{text(L"/home/.Torvi/A/"), text(L"/home/.Torvi/B/")};
    std::vector<wchar_t*> team{text(L"vtf://a/"), text(L"vtf://b/")};
    std::vector<wchar_t*> slaves{text(L"n1"), text(L"n2")};
    uint32_t give(_WFM_AUTH_CONTEXT* context) {
        return WFMUpdateTeamFolderInfo(context, 2, ori.data(), team.data(), slaves.data());
    }
};

struct Shortage {
    int allocation;
    const char* shortOf;
};

// Three arrays, then two texts of each list.
const Shortage kOfUpdate[] = {{0, "lppOriPathList/lppTeamFolderPathList/lppTeamFolderSlaveIDList"},
                              {2, "lppOriPathList/lppTeamFolderPathList/lppTeamFolderSlaveIDList"},
                              {3, "lppTeamFolderPathList"},
                              {4, "lppTeamFolderPathList"},
                              {5, "lppOriPathList"},
                              {8, "lppTeamFolderSlaveIDList"}};

}  // namespace

TEST(AuthContextShortage, AnUpdateFreesAllListsAndIsMinus1) {
    for (const auto& [allocation, shortOf] : kOfUpdate) {
        SCOPED_TRACE(allocation);
        const auto context = Lattice::MakeAuthContext(L"sid");
        Lists lists;
        LogCapture log;
        {
            const FailAllocation failing(allocation);
            EXPECT_EQ(lists.give(context.get()), 0xFFFFFFFFu);
        }
        log.expectLines({std::string("[WFM] WFMUpdateTeamFolderInfo Failed to allocate memory ") + shortOf});
        EXPECT_EQ(context->nTeamFolderCount, 0);
        EXPECT_EQ(context->lppOriPathList, nullptr);
        EXPECT_EQ(context->lppTeamFolderPathList, nullptr);
        EXPECT_EQ(context->lppTeamFolderSlaveIDList, nullptr);
    }
}

TEST(AuthContextShortage, ACloneMakesNothing) {
    const auto source = Lattice::MakeAuthContext(L"sid");
    Lists().give(source.get());
    for (const auto& [allocation, shortOf] : kOfUpdate) {
        SCOPED_TRACE(allocation);
        _WFM_AUTH_CONTEXT* clone = nullptr;
        LogCapture log;
        {
            const FailAllocation failing(allocation + 2);  // record and sid come first
            EXPECT_EQ(WFMCloneAuthContext(source.get(), &clone), 0u);
        }
        log.expectLines({std::string("[WFM] WFMCloneAuthContext Failed to allocate memory ") + shortOf});
        EXPECT_EQ(clone, nullptr);
    }
}

TEST(AuthContextShortage, ASessionIsNotMadeByHalves) {
    const FailAllocation failing(0);
    EXPECT_EQ(Lattice::MakeAuthContext(L"sid"), nullptr);
}
