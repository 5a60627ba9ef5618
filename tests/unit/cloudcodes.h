#pragma once

#include <gtest/gtest.h>

#include <string>

#include "parsing.h"

/// A parser of the device directory's replies keeps the code and tells it in the client's numbers.
template <class Parser>
void expectReadsCodes() {
    const struct {
        const char* keys;
        int code;
        int status;
    } rows[] = {{R"("code":0)", 0, 0},
                {R"("code":"0")", 0, 0},
                {R"("code":1013001)", 1013001, 3},
                {R"("code":"1013001")", 1013001, 3},
                {R"("code":1013002)", 1013002, 4},
                {R"("code":1070001)", 1070001, 5},
                {R"("code":1)", 1, 1},
                {R"("code":3)", 3, 1},
                {R"("code":200)", 200, 1},
                {R"("code":-1)", -1, 1},
                {R"("code":1013000)", 1013000, 1},
                {R"("code":1013003)", 1013003, 1},
                {R"("code":1070000)", 1070000, 1},
                {R"("code":1070002)", 1070002, 1},
                {R"("code":2147483647)", 2147483647, 1},
                // A text is its number as far as it has one.
                {R"("code":"none")", 0, 0},
                {R"("code":"")", 0, 0},
                {R"("code":true)", -1, 1},
                {R"("code":null)", -1, 1},
                {R"("code":[])", -1, 1},
                {R"("code":{})", -1, 1},
                {"", -1, 1}};
    for (const auto& row : rows) {
        Parser reply;
        EXPECT_EQ(reply.GetStatus(), -1);
        EXPECT_EQ(parse(reply, "{" + std::string(row.keys) + "}"), 1) << row.keys;
        EXPECT_EQ(reply.code, row.code) << row.keys;
        EXPECT_EQ(reply.GetStatus(), row.status) << row.keys;
    }
}
