#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "support/tempdir.h"

TEST(SupportTempDir, GoesWithEverythingInIt) {
    std::string path;
    {
        TempDir dir;
        path = dir.string();
        dir.write("a/b/c.bin", std::string_view("x\0y", 3));
        EXPECT_EQ(dir.read("a/b/c.bin"), std::string("x\0y", 3));
    }
    EXPECT_FALSE(std::filesystem::exists(path));
}
