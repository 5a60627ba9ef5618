#include "sharing/linkform.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace Lattice;

namespace {

using Items = std::vector<std::wstring>;

}  // namespace

TEST(LinkItems, TheLastItemCountsAndEmptyOnesDoNot) {
    EXPECT_EQ(LinkItems(L"a"), Items({L"a"}));
    EXPECT_EQ(LinkItems(L"a;b"), Items({L"a", L"b"}));
    EXPECT_EQ(LinkItems(L"a;b;"), Items({L"a", L"b"}));
    EXPECT_EQ(LinkItems(L";;a;;b c;;"), Items({L"a", L"b c"}));
    for (const wchar_t* nothing : {static_cast<const wchar_t*>(nullptr), L"", L";", L";;"})
        EXPECT_EQ(LinkItems(nothing), Items());
}

TEST(FileItems, AnItemNeedsItsSemicolonUnlessItIsAlone) {
    EXPECT_EQ(FileItems(L"/a"), Items({L"/a"}));
    EXPECT_EQ(FileItems(L"/a;"), Items({L"/a"}));
    EXPECT_EQ(FileItems(L"/a;/b"), Items({L"/a"}));
    EXPECT_EQ(FileItems(L"/a;/b;"), Items({L"/a", L"/b"}));
    EXPECT_EQ(FileItems(L"/a;;/b;/c"), Items({L"/a", L"/b"}));
    EXPECT_EQ(FileItems(L";/a"), Items({L"/a"}));
    for (const wchar_t* nothing : {static_cast<const wchar_t*>(nullptr), L"", L";", L";;"})
        EXPECT_EQ(FileItems(nothing), Items());
}

TEST(LinkTypes, CountFromOneUpToTheEndOfTheirTables) {
    EXPECT_TRUE((LinkTypes{1, 1, 1}.inRange()));
    EXPECT_TRUE((LinkTypes{2, 3, 2}.inRange()));
    for (const LinkTypes& types : {LinkTypes{0, 1, 1}, LinkTypes{3, 1, 1}, LinkTypes{1, 0, 1},
                                   LinkTypes{1, 4, 1}, LinkTypes{1, 1, 0}, LinkTypes{1, 1, 3}})
        EXPECT_FALSE(types.inRange()) << types.download << types.duration << types.network;
}

TEST(TypeText, IsEmptyForANumberThatIsNotInTheTable) {
    EXPECT_STREQ(TypeText(gValidDurationTypes, 1), L"forever");
    EXPECT_STREQ(TypeText(gValidDurationTypes, 3), L"period_of_time");
    for (const uint32_t type : {0u, 4u, 0xFFFFFFFFu}) EXPECT_STREQ(TypeText(gValidDurationTypes, type), L"");
}
