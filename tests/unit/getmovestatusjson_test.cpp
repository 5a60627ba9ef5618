#include "files/GetMoveStatusJson.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "parsing.h"
#include "support/logcapture.h"

TEST(CGetMoveStatusJson, BeginsWithNothingLearnt) {
    const CGetMoveStatusJson reply;
    EXPECT_EQ(reply.GetStatus(), -1);
    EXPECT_EQ(reply.GetPercent(), 0);
}

TEST(CGetMoveStatusJson, ReadsStatusAndPercent) {
    const LogCapture log;
    const struct {
        const char* text;
        int status, percent;
    } rows[] = {{R"({"status":1,"filename":"a","percent":42})", 0, 42},
                {R"({"status":"1","filename":"a","percent":"42"})", 0, 42},
                {R"({"status":1,"filename":"a","percent":100})", 0, 100},
                {R"({"status":1,"filename":"a","percent":-1})", 0, -1},
                {R"({"status":1,"filename":"a","percent":2147483647})", 0, 2147483647}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        CGetMoveStatusJson reply;
        EXPECT_EQ(parse(reply, row.text), 1);
        EXPECT_EQ(reply.GetStatus(), row.status);
        EXPECT_EQ(reply.GetPercent(), row.percent);
    }
}

TEST(CGetMoveStatusJson, AnyOtherStatusEndsTheParse) {
    LogCapture log;
    const std::pair<const char*, int> rows[] = {{R"({"status":5,"percent":42})", -4},
                                                {R"({"status":4})", -3},
                                                {R"({"status":0,"percent":42})", -2},
                                                {R"({"status":34,"percent":[],"filename":[]})", -1}};
    for (const auto& [text, status] : rows) {
        SCOPED_TRACE(text);
        CGetMoveStatusJson reply;
        EXPECT_EQ(parse(reply, text), 1);
        EXPECT_EQ(reply.GetStatus(), status);
        EXPECT_EQ(reply.GetPercent(), 0);
    }
    log.expectNoLines();
}

TEST(CGetMoveStatusJson, WhatIsNoObjectIsUnderstoodAndSaysNothing) {
    for (const char* text : {"[]", "5", "null", "\"status\"", "[{\"status\":1,\"percent\":100}]"}) {
        SCOPED_TRACE(text);
        CGetMoveStatusJson reply;
        EXPECT_EQ(parse(reply, text), 1);
        EXPECT_EQ(reply.GetStatus(), -1);
        EXPECT_EQ(reply.GetPercent(), 0);
    }
}

TEST(CGetMoveStatusJson, RefusesAReplyWithoutStatusOrPercent) {
    const LogCapture log;
    for (const char* text :
         {"{}", R"({"percent":100})", R"({"status":null,"percent":100})", R"({"status":1})",
          R"({"status":1,"filename":"a"})", R"({"status":1,"filename":"a","percent":null})"}) {
        SCOPED_TRACE(text);
        CGetMoveStatusJson reply;
        EXPECT_EQ(parse(reply, text), -1);
    }
}

TEST(CGetMoveStatusJson, AMissingFileNameIsOnlyLogged) {
    LogCapture log;
    const std::pair<const char*, const char*> rows[] = {
        {R"({"status":1,"percent":42})", "[WFM] CGetMoveStatusJson::Parser filename is null ()"},
        {R"({"status":1,"filename":null,"percent":42})",
         "[WFM] CGetMoveStatusJson::Parser filename is null ()"},
        {R"({"status":1,"filename":"","percent":42})",
         "[WFM] CGetMoveStatusJson::Parser filename is empty ()"}};
    for (const auto& [text, line] : rows) {
        SCOPED_TRACE(text);
        log.clear();
        CGetMoveStatusJson reply;
        EXPECT_EQ(parse(reply, text), 1);
        EXPECT_EQ(reply.GetPercent(), 42);
        log.expectLines({line});
    }
    log.clear();
    CGetMoveStatusJson reply;
    EXPECT_EQ(parse(reply, "{\"status\":1,\"percent\":1,\"filename\":\"" + std::string(5000, 'x') + "\"}"),
              1);
    EXPECT_EQ(reply.GetPercent(), 1);
}

TEST(CGetMoveStatusJson, RefusesWhatIsNotJsonOrHostile) {
    const LogCapture log;
    for (const std::string& text :
         {std::string(), std::string("no"), std::string(R"({"status":1,"percent":42)"),
          std::string(R"({"status":99999999999})"), std::string(R"({"status":1,"percent":99999999999})"),
          std::string(5000, '[')}) {
        SCOPED_TRACE(text.substr(0, 60));
        CGetMoveStatusJson reply;
        EXPECT_EQ(parse(reply, text), -1);
    }
    CGetMoveStatusJson reply;
    EXPECT_EQ(reply.Parser(nullptr), -1);
}
