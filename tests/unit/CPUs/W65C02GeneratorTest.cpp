// The committed step table of the 65C02 core is what its generator writes.
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

TEST(W65C02GeneratorTest, CommittedStepTableIsUpToDate)
{
    if (std::system("python3 -c pass >/dev/null 2>&1") != 0) {
        GTEST_SKIP() << "python3 isn't available";
    }
    const std::filesystem::path dir = MORVANE_SOURCE_DIR "/Core/Components/CPUs/W65C02";
    const std::filesystem::path out =
        std::filesystem::temp_directory_path() / ("w65c02_steps_" + std::to_string(::getpid()) + ".inc");
    const std::string command =
        "python3 '" + (dir / "gen" / "w65c02_gen.py").string() + "' '" + out.string() + "'";
    ASSERT_EQ(std::system(command.c_str()), 0) << command;
    const std::string generated = read_text(out);
    std::filesystem::remove(out);
    EXPECT_FALSE(generated.empty());
    EXPECT_TRUE(generated == read_text(dir / "w65c02_steps.inc"))
        << "w65c02_steps.inc differs from the generator's output: run gen/w65c02_gen.py w65c02_steps.inc";
}

}  // namespace
