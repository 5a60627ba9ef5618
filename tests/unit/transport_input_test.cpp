#include <gtest/gtest.h>

#include "core/httprequestinput.h"

TEST(HttpRequestInput, HasTheDefaultsOfARequest) {
    const HttpRequestInput input("http://a/", "POST", true);
    EXPECT_TRUE(input.secure);
    EXPECT_EQ(input.url_str, "http://a/");
    EXPECT_EQ(input.http_method, "POST");
    EXPECT_EQ(input.agent_name, "VEXA Torvi");
    EXPECT_EQ(input.var_layout, 0);
    EXPECT_EQ(input.timeout_msec, -1);
    EXPECT_EQ(input.event_loop, nullptr);
    EXPECT_TRUE(input.vars.isEmpty());
    EXPECT_TRUE(input.raw_headers.isEmpty());
    EXPECT_TRUE(input.files.isEmpty());
}

TEST(HttpRequestInput, InitializeBringsTheDefaultsBack) {
    HttpRequestInput input("http://a/", "POST", true);
    input.set_agent_name("other");
    input.set_timeout_msec(5);
    input.var_layout = 4;
    input.add_var("a", "b");
    input.add_raw_header("c", "d");
    input.add_file("e", "f", "g", "h", 1, 2, true);
    input.initialize();
    EXPECT_EQ(input.http_method, "GET");
    EXPECT_EQ(input.agent_name, "VEXA Torvi");
    EXPECT_EQ(input.var_layout, 0);
    EXPECT_EQ(input.timeout_msec, -1);
    EXPECT_TRUE(input.vars.isEmpty());
    EXPECT_TRUE(input.raw_headers.isEmpty());
    EXPECT_TRUE(input.files.isEmpty());
}

TEST(HttpRequestInput, ATimeOutOfZeroOrBelowLeavesTheOldOne) {
    HttpRequestInput input("http://a/", "GET", false);
    input.set_timeout_msec(0);
    EXPECT_EQ(input.timeout_msec, -1);
    input.set_timeout_msec(250);
    input.set_timeout_msec(0);
    input.set_timeout_msec(-7);
    EXPECT_EQ(input.timeout_msec, 250);
}

TEST(HttpRequestInput, KeepsTheOrderOfAdding) {
    HttpRequestInput input("http://a/", "GET", false);
    input.add_var("b", "1");
    input.add_var("a", "2");
    input.add_var("b", "3");
    ASSERT_EQ(input.vars.size(), 3);
    EXPECT_EQ(input.vars[0], qMakePair(QString("b"), QString("1")));
    EXPECT_EQ(input.vars[1], qMakePair(QString("a"), QString("2")));
    EXPECT_EQ(input.vars[2], qMakePair(QString("b"), QString("3")));
}

TEST(HttpRequestInput, AFileElementIsTakenAsItIs) {
    HttpRequestInput input("http://a/", "POST", false);
    input.add_file("", "/nowhere", "", "", -5, 9, true);
    ASSERT_EQ(input.files.size(), 1);
    const HttpRequestInputFileElement& element = input.files.first();
    EXPECT_EQ(element.variable_name, "");
    EXPECT_EQ(element.local_filename, "/nowhere");
    EXPECT_EQ(element.total_size, -5);
    EXPECT_EQ(element.start_offset, 9);
    EXPECT_TRUE(element.bChunkContinue);
}
