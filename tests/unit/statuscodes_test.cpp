#include "core/statuscodes.h"

#include <gtest/gtest.h>

#include <climits>
#include <map>

TEST(TranslateWFMErrorCode, EveryRowAndNothingElse) {
    const std::map<int, int> rows = {
        {-101, -8}, {-90, -37}, {-43, -35}, {-42, -34}, {-41, -33}, {-40, -32}, {-20, -17},
        {-19, -36}, {-18, -30}, {-16, -14}, {-15, -13}, {-14, -28}, {-13, -27}, {-12, -26},
        {-10, -12}, {-8, -25},  {-6, -41},  {-4, -11},  {-3, -4},   {-2, -10},  {-1, -9},
        {0, -2},    {1, 0},     {2, -15},   {3, -29},   {4, -3},    {5, -4},    {7, -5},
        {8, -24},   {9, -6},    {12, -7},   {26, -42},  {33, -15},
    };
    for (int status = -300; status <= 300; ++status) {
        const auto row = rows.find(status);
        EXPECT_EQ(row == rows.end() ? -1 : row->second, TranslateWFMErrorCode(status)) << status;
    }
}

TEST(TranslateWFMErrorCode, BothSidesOfTheRangeEdges) {
    EXPECT_EQ(-1, TranslateWFMErrorCode(34));
    EXPECT_EQ(-15, TranslateWFMErrorCode(33));
    EXPECT_EQ(-1, TranslateWFMErrorCode(-102));
    EXPECT_EQ(-8, TranslateWFMErrorCode(-101));
    EXPECT_EQ(-1, TranslateWFMErrorCode(INT_MAX));
    EXPECT_EQ(-1, TranslateWFMErrorCode(INT_MIN));
}

TEST(TranslateWFMErrorCode, TheServersSuccessIsOne) {
    EXPECT_EQ(0, TranslateWFMErrorCode(1));
    EXPECT_EQ(-2, TranslateWFMErrorCode(0));
}

TEST(TranslateSyncEventIsFolder, OneAndTwoAreKept) {
    EXPECT_EQ(1, TranslateSyncEventIsFolder(1));
    EXPECT_EQ(2, TranslateSyncEventIsFolder(2));
    for (const int other : {0, 3, -1, INT_MAX, INT_MIN}) {
        EXPECT_EQ(0, TranslateSyncEventIsFolder(other)) << other;
    }
}

TEST(TranslateSyncEventAction, EveryRowAndNothingElse) {
    const std::map<int, int> rows = {
        {-91, -3}, {-90, -2}, {8, 1},  {9, 2},   {10, 3},  {11, 4},  {12, 5},  {13, 18}, {14, 6},
        {16, 7},   {17, 8},   {18, 9}, {19, 16}, {20, 17}, {26, 21}, {27, 19}, {28, 20},
    };
    for (int action = -300; action <= 300; ++action) {
        const auto row = rows.find(action);
        EXPECT_EQ(row == rows.end() ? -1 : row->second, TranslateSyncEventAction(action)) << action;
    }
    EXPECT_EQ(-1, TranslateSyncEventAction(INT_MAX));
    EXPECT_EQ(-1, TranslateSyncEventAction(INT_MIN));
}

TEST(SupportNuboCGI, FromMajorNumberFourOn) {
    EXPECT_TRUE(SupportNuboCGI(L"4.0"));
    EXPECT_TRUE(SupportNuboCGI(L"4.3.6"));
    EXPECT_TRUE(SupportNuboCGI(L"10.1"));
    EXPECT_FALSE(SupportNuboCGI(L"3.9.9"));
    EXPECT_FALSE(SupportNuboCGI(L"-4.0"));
}

TEST(SupportNuboCGI, WithoutPointOrMajorNumberFalse) {
    EXPECT_FALSE(SupportNuboCGI(L"4"));
    EXPECT_FALSE(SupportNuboCGI(L""));
    EXPECT_FALSE(SupportNuboCGI(L".4"));
    EXPECT_FALSE(SupportNuboCGI(L"x.4"));
    EXPECT_FALSE(SupportNuboCGI(L"."));
}

TEST(StatusNumbers, AreTheOnesOnTheInterface) {
    EXPECT_EQ(2u, WFM_PARSE_XML_HTTPTRAN_CONNECT_FAIL);
    EXPECT_EQ(6u, WFM_PARSE_XML_HTTPTRAN_RECEIVE_FAIL);
    EXPECT_EQ(7u, WFM_PARSE_XML_BUFFER_NOT_ENOUGH);
    EXPECT_EQ(8u, WFM_PARSE_XML_INVALID_PARAMETER);
    EXPECT_EQ(10u, WFM_PARSE_XML_CGI_NOT_FOUND);
    EXPECT_EQ(11u, WFM_PARSE_XML_HTTPTRAN_PROXY_AUTH_REQ);
    EXPECT_EQ(12u, WFM_PARSE_XML_HTTPTRAN_SERVICE_UNAVAIL);
    EXPECT_EQ(14u, WFM_PARSE_XML_FAIL);
}

TEST(StatusNumbers, ClientCodes) {
    EXPECT_EQ(-3, WFM_ACCESS_RIGHT_ACCESS_DENIED);
    EXPECT_EQ(-3, WFM_PERMISSION_DENY);
    EXPECT_EQ(-4, WFM_STATUS_FAILED);
    EXPECT_EQ(-4, WFM_FILE_NO_EXIST);
    EXPECT_EQ(-6, WFM_QUOTA_ERROR);
    EXPECT_EQ(-7, WFM_OPEN_FILE_FAILED);
    EXPECT_EQ(-7, WFM_ILLEGAL_NAME);
    EXPECT_EQ(-8, WFM_FORCE_HTTPS_REDIRECT);
    EXPECT_EQ(-15, WFM_ALREADY_EXISTS);
    EXPECT_EQ(-23, WFM_INSUFFICIENT_BUFFER);
    EXPECT_EQ(-29, WFM_NOT_AUTHENTICATED);
    EXPECT_EQ(-31, WFM_INVALID_DATA);
    EXPECT_EQ(-42, WFM_NAME_TOO_LONG);
    EXPECT_EQ(-43, WFM_SLICE_SENT);
    EXPECT_EQ(-44, WFM_HOME_FOLDER_NOT_AVAIL);
}

TEST(StatusNumbers, SystemStyleNumbers) {
    EXPECT_EQ(2u, ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(3u, ERROR_PATH_NOT_FOUND);
    EXPECT_EQ(5u, ERROR_ACCESS_DENIED);
    EXPECT_EQ(8u, ERROR_NOT_ENOUGH_MEMORY);
    EXPECT_EQ(12u, ERROR_INVALID_ACCESS);
    EXPECT_EQ(13u, ERROR_INVALID_DATA);
    EXPECT_EQ(18u, ERROR_NO_MORE_FILES);
    EXPECT_EQ(34u, ERROR_WRONG_DISK);
    EXPECT_EQ(50u, ERROR_NOT_SUPPORTED);
    EXPECT_EQ(53u, ERROR_BAD_NETPATH);
    EXPECT_EQ(87u, ERROR_INVALID_PARAMETER);
    EXPECT_EQ(112u, ERROR_DISK_FULL);
    EXPECT_EQ(122u, ERROR_INSUFFICIENT_BUFFER);
    EXPECT_EQ(183u, ERROR_ALREADY_EXISTS);
    EXPECT_EQ(206u, ERROR_NAME_TOO_LONG);
    EXPECT_EQ(1231u, ERROR_NETWORK_UNREACHABLE);
    EXPECT_EQ(1235u, ERROR_REQUEST_ABORTED);
    EXPECT_EQ(1244u, ERROR_NOT_AUTHENTICATED);
    EXPECT_EQ(5003u, ERROR_DEPENDENCY_ALREADY_EXISTS);
}
