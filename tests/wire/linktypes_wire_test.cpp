// gDownloadLinkTypes, gValidDurationTypes and gNetworkTypes, as a client reads them.

#include <gtest/gtest.h>

#include <iterator>
#include <string>
#include <vector>

#include "WebFileManShareAPI.h"

namespace {

template <size_t N>
std::vector<std::wstring> wordsOf(const wchar_t* const (&table)[N]) {
    return {std::begin(table), std::end(table)};
}

using Words = std::vector<std::wstring>;

}  // namespace

TEST(LinkTypesWire, TheTablesHoldTheWordsInTheOrderOfTheNumbers) {
    EXPECT_EQ(wordsOf(gDownloadLinkTypes), Words({L"email_download_link", L"create_download_link"}));
    EXPECT_EQ(wordsOf(gValidDurationTypes), Words({L"forever", L"specific_time", L"period_of_time"}));
    EXPECT_EQ(wordsOf(gNetworkTypes), Words({L"internet", L"local"}));
}
