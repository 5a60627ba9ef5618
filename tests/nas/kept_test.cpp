#include "nas/kept.h"

#include <gtest/gtest.h>

#include "support/tempdir.h"

TEST(NasKept, WhatIsKeptNowhereDoesNotChange) {
    nas::Kept<std::string> value;
    EXPECT_THROW(value.change([](std::string& text) { text = "new"; }), std::logic_error);
    EXPECT_EQ("", *value.read());
}

TEST(NasKept, AChangeIsThereForTheNextServer) {
    TempDir folder;
    nas::Kept<std::string> value(folder.file("value"));
    EXPECT_EQ("", *value.read());
    value.change([](std::string& text) { text = "new"; });
    EXPECT_EQ("new", *nas::Kept<std::string>(folder.file("value")).read());
    EXPECT_THROW(value.change([](std::string& text) {
        text = "half";
        throw std::runtime_error("no");
    }),
                 std::runtime_error);
    EXPECT_EQ("new", *value.read());
    EXPECT_EQ("new", *nas::Kept<std::string>(folder.file("value")).read());
}
