#include "cloud/addresslist.h"

#include <gtest/gtest.h>

using Lattice::AddressList;
using Texts = std::vector<std::wstring>;

TEST(AddressList, KeepsTheOrderAndTheFirstSpelling) {
    AddressList list;
    for (const wchar_t* address : {L"nas.example:80", L"10.0.0.2:80", L"NAS.Example:80", L"10.0.0.2:80"})
        list.add(address);
    EXPECT_EQ(list.all(), (Texts{L"nas.example:80", L"10.0.0.2:80"}));
}

TEST(AddressList, FindsWithoutRegardToCaseAndWholeTextsOnly) {
    AddressList list;
    EXPECT_FALSE(list.FindStringInList(L""));
    list.add(L"fe80::AB:8080");
    list.add(L"\u00DCbung.example");
    EXPECT_TRUE(list.FindStringInList(L"FE80::ab:8080"));
    EXPECT_TRUE(list.FindStringInList(L"\u00FCBUNG.example"));
    for (const wchar_t* other : {L"fe80::AB:808", L"fe80::AB:80800", L"fe80::AB", L"ubung.example", L""})
        EXPECT_FALSE(list.FindStringInList(other)) << other;
}
