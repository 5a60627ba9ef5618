#include <gtest/gtest.h>

#include <cstdint>

#include "parsing.h"
#include "state/GetSyncingFolderListJson.h"

namespace {

/// The two operations are the same in both kinds of list.
const CGetSyncingFolderListJson anyList;

constexpr int64_t bytes(int power, int64_t count = 1) {
    return count << power;
}

}  // namespace

TEST(CGetSyncingFolderListBaseJson, BeginsWithNothingLearnt) {
    const CGetSyncingFolderListJson list;
    const CGetSyncingFolderListBaseJson& base = list;
    EXPECT_EQ(base.status, -1);
    EXPECT_EQ(base.total, -1);
    EXPECT_EQ(base.adminGroup, 0u);
    EXPECT_TRUE(base.folders.empty());
}

TEST(CGetSyncingFolderListBaseJson, KnowsSevenUnitsInWhateverCase) {
    for (const wchar_t* unit :
         {L"Byte", L"KB", L"MB", L"GB", L"TB", L"PB", L"EB", L"byte", L"BYTE", L"kb", L"gB"})
        EXPECT_TRUE(anyList.IsValidSizeUnit(unit)) << unit;
    for (const wchar_t* unit : {L"", L"XB", L"B", L"Bytes", L"K", L" KB", L"KB ", L"KiB", L"ZB", L"千"})
        EXPECT_FALSE(anyList.IsValidSizeUnit(unit)) << unit;
}

TEST(CGetSyncingFolderListBaseJson, UnitsArePowersOf1024) {
    const struct {
        const wchar_t *unit, *number;
        int64_t size;
    } rows[] = {
        {L"Byte", L"1", 1},        {L"KB", L"1", bytes(10)},
        {L"MB", L"1", bytes(20)},  {L"GB", L"1", bytes(30)},
        {L"TB", L"1", bytes(40)},  {L"PB", L"1", bytes(50)},
        {L"EB", L"1", bytes(60)},  {L"eb", L"7", bytes(60, 7)},
        {L"gb", L"2", 2147483648}, {L"byte", L"9223372036854775807", INT64_MAX},
        {L"Byte", L"+5", 5},
    };
    for (const auto& row : rows)
        EXPECT_EQ(anyList.GetFileSizeByte(row.unit, row.number), row.size) << row.unit;
}

TEST(CGetSyncingFolderListBaseJson, WhatIsNoWholeNumberCountsAsZeroWhateverTheUnit) {
    for (const wchar_t* number :
         {L"0", L"-0", L"", L"1.5", L"1,5", L"abc", L"5x", L"0x10", L"1e3", L"9223372036854775808", L"五"})
        for (const wchar_t* unit : {L"GB", L"XB", L""})
            EXPECT_EQ(anyList.GetFileSizeByte(unit, number), 0) << number << unit;
}

TEST(CGetSyncingFolderListBaseJson, ANegativeNumberAndAnUnknownUnitAreUnknown) {
    EXPECT_EQ(anyList.GetFileSizeByte(L"GB", L"-5"), -1);
    EXPECT_EQ(anyList.GetFileSizeByte(L"Byte", L"-9223372036854775808"), -1);
    EXPECT_EQ(anyList.GetFileSizeByte(L"XB", L"-5"), -1);
    EXPECT_EQ(anyList.GetFileSizeByte(L"XB", L"5"), -1);
    EXPECT_EQ(anyList.GetFileSizeByte(L"", L"5"), -1);
}

TEST(CGetSyncingFolderListBaseJson, ASizeBeyond64BitsWraps) {
    EXPECT_EQ(anyList.GetFileSizeByte(L"EB", L"8"), INT64_MIN);
    EXPECT_EQ(anyList.GetFileSizeByte(L"EB", L"16"), 0);
    EXPECT_EQ(anyList.GetFileSizeByte(L"KB", L"9223372036854775807"), -1024);
}
