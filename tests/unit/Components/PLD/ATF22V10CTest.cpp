#include "Core/Components/PLD/ATF22V10C.h"

#include "tests/unit/TempDir.h"

#include <filesystem>
#include <gtest/gtest.h>

TEST(ATF22V10CTest, RenamingMovesTheProgramFile)
{
    TempDir dir;
    dir.write("old.pld", "GAL22V10\n");
    ATF22V10C device("old", 10);
    device.set_instance_name("new");
    EXPECT_FALSE(std::filesystem::exists("old.pld"));
    EXPECT_TRUE(std::filesystem::exists("new.pld"));
    dir.write("stray.pld", "");
    device.set_instance_name("stray");  // an existing file of the new name is replaced
    EXPECT_EQ(std::filesystem::file_size("stray.pld"), 9u);
}
