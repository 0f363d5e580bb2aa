// The committed step table of each processor core is what its generator writes.
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <unistd.h>

namespace {

std::string read_text(const std::filesystem::path& path)
{
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

TEST(CoreGeneratorTest, CommittedStepTablesAreUpToDate)
{
    if (std::system("python3 -c pass >/dev/null 2>&1") != 0) {
        GTEST_SKIP() << "python3 isn't available";
    }
    struct Row
    {
        const char* folder;  // under Core/Components/CPUs
        const char* core;    // file name stem: <core>_gen.py writes <core>_steps.inc
    };
    for (const Row& r : {Row{"MOS6502", "m6502"}, Row{"W65C02", "w65c02"}}) {
        const std::string core = r.core;
        const std::filesystem::path dir = std::string(MORVANE_SOURCE_DIR "/Core/Components/CPUs/") + r.folder;
        const std::filesystem::path out =
            std::filesystem::temp_directory_path() / (core + "_steps_" + std::to_string(::getpid()) + ".inc");
        const std::string command =
            "python3 '" + (dir / "gen" / (core + "_gen.py")).string() + "' '" + out.string() + "'";
        ASSERT_EQ(std::system(command.c_str()), 0) << command;
        const std::string generated = read_text(out);
        std::filesystem::remove(out);
        EXPECT_FALSE(generated.empty()) << core;
        EXPECT_TRUE(generated == read_text(dir / (core + "_steps.inc")))
            << core << "_steps.inc differs from the generator's output: run gen/" << core << "_gen.py "
            << core << "_steps.inc";
    }
}

}  // namespace
