// What the calls do alike that carry a shared folder to another path: WebFileManRenameShareFolder,
// WebFileManMoveShareFolder and WebFileManUpdateLink.

#include <gtest/gtest.h>

#include "sharefolders.h"

using namespace wire;

template <class Call>
class ShareFolderWire : public testing::Test {};

namespace {

struct CallNames {
    template <class Call>
    static std::string GetName(int) {
        return Call::function();
    }
};

}  // namespace

using ShareFolderCalls = testing::Types<RenameShareCall, MoveShareCall, UpdateLinkCall>;
TYPED_TEST_SUITE(ShareFolderWire, ShareFolderCalls, CallNames);

TYPED_TEST(ShareFolderWire, APathWithoutAFolderOrANameIs5AndSendsNothing) {
    const wchar_t* const top[] = {L"/x", L"/x/", L"x", L"x/", L"/", L"//", L"/home/d//"};
    for (const wchar_t* path : top)
        for (const bool isSource : {true, false}) {
            SCOPED_TRACE(testing::PrintToString(path) + (isSource ? " as source" : " as destination"));
            RawServer server({Reply::json(R"({"status":0,"success":"true"})")});
            TypeParam call(server);
            (isSource ? call.source : call.destination) = path;
            LogCapture log;
            EXPECT_EQ(call.run(), 0u);
            EXPECT_EQ(call.result, 5u);
            EXPECT_EQ(server.connectionCount(), 0u);
            log.expectNoLines();
        }
}

TYPED_TEST(ShareFolderWire, TwoPathsWithoutAFolderAre5WhateverTheyAre) {
    for (const auto& [source, destination] :
         {std::pair{L"/x", L"/x"}, {L"/x", L"/y"}, {L"x", L"x/"}, {L"x", L"/home/d/x"}}) {
        RawServer server({Reply::json(R"({"status":0,"success":"true"})")});
        TypeParam call(server);
        call.source = source;
        call.destination = destination;
        LogCapture log;
        EXPECT_EQ(call.run(), 0u);
        EXPECT_EQ(call.result, 5u);
        EXPECT_EQ(server.connectionCount(), 0u);
        log.expectNoLines();
    }
}

TYPED_TEST(ShareFolderWire, RefusesWhatMustBeGivenWithOneLineAndTouchesNothing) {
    const SessionPtr session = makeSession();
    LogCapture log;
    expectRefusals<TypeParam>(
        log, session.get(), TypeParam::function(),
        {[](TypeParam& call) { call.source = nullptr; }, [](TypeParam& call) { call.source = L""; },
         [](TypeParam& call) { call.destination = nullptr; }, [](TypeParam& call) { call.destination = L""; },
         [](TypeParam& call) { call.resultWord = nullptr; }},
        kSharePrefix);
}
