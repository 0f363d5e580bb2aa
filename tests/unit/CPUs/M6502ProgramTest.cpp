// Self-checking 6502 test programs, run tick by tick on the bare core until they trap in a self-loop.
#include "M6502Harness.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <string>
#include <vector>

namespace {

// Beside the source tree; a worktree one level deeper finds it one level further up.
std::string find_testdata_dir()
{
    for (const char* dir : {MORVANE_SOURCE_DIR "/../shared/testdata/6502/",
                            MORVANE_SOURCE_DIR "/../../shared/testdata/6502/"}) {
        if (std::filesystem::is_directory(dir)) {
            return dir;
        }
    }
    return MORVANE_SOURCE_DIR "/../shared/testdata/6502/";
}

const std::string testdata_dir = find_testdata_dir();

// Empty if the file can't be read.
std::vector<uint8_t> read_file(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    return std::vector<uint8_t>(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

struct TrapResult
{
    uint16_t trap = 0;   // address of the self-loop, 0 if none was reached
    uint64_t ticks = 0;  // ticks run
    std::string recent;  // the last instructions, oldest first
};

// A trap is an instruction that fetches the next one at its own address: jmp *, bne * and the like.
TrapResult run_to_trap(M6502Harness& h, uint64_t max_ticks)
{
    constexpr int history = 16;
    uint16_t fetched[history] = {};  // addresses of the last fetches, a ring
    int next = 0;
    int prev_fetch = -1;
    TrapResult result;
    while (result.ticks < max_ticks) {
        h.tick();
        result.ticks++;
        if (!(h.pins & cpu65_pin_sync)) {
            continue;
        }
        const uint16_t addr = cpu65_get_addr(h.pins);
        if (addr == prev_fetch) {
            result.trap = addr;
            break;
        }
        prev_fetch = addr;
        fetched[next] = addr;
        next = (next + 1) % history;
    }
    for (int i = 0; i < history; i++) {
        const uint16_t addr = fetched[(next + i) % history];
        char line[48];
        std::snprintf(line, sizeof line, "  $%04X: %02X %02X %02X\n", addr, h.mem(addr),
                      h.mem(static_cast<uint16_t>(addr + 1)), h.mem(static_cast<uint16_t>(addr + 2)));
        result.recent += line;
    }
    return result;
}

bool load_image(M6502Harness& h, const std::string& name, uint16_t load_addr)
{
    const std::vector<uint8_t> image = read_file(testdata_dir + name);
    if (image.empty() || image.size() + load_addr > 0x10000) {
        return false;
    }
    std::copy(image.begin(), image.end(), h.memory().begin() + load_addr);
    return true;
}

TEST(M6502ProgramTest, PassesFunctionalTest)
{
    M6502Harness h;
    ASSERT_TRUE(load_image(h, "6502_functional_test.bin", 0x0000))
        << "can't read " << testdata_dir << "6502_functional_test.bin";
    h.reset_to(0x0400);  // the image's own reset vector points at a trap
    const TrapResult result = run_to_trap(h, 200'000'000);
    RecordProperty("ticks", std::to_string(result.ticks));
    EXPECT_EQ(result.trap, 0x3469) << std::hex << "trapped at $" << result.trap << " after " << std::dec
                                   << result.ticks << " ticks; last instructions:\n"
                                   << result.recent;
}

// All 256 x 256 operands in decimal mode, invalid digits included, all flags checked.
TEST(M6502ProgramTest, PassesDecimalTest)
{
    M6502Harness h;
    if (!load_image(h, "6502_decimal_test_nmos.bin", 0x0200)) {
        GTEST_SKIP() << "no 6502_decimal_test_nmos.bin in " << testdata_dir;
    }
    h.reset_to(0x0200);
    const TrapResult result = run_to_trap(h, 100'000'000);
    EXPECT_EQ(result.trap, 0x024B) << std::hex << "trapped at $" << result.trap << "; last instructions:\n"
                                   << result.recent;
    EXPECT_EQ(h.mem(0x000B), 0) << std::hex << "first failing case: N1=" << int(h.mem(0x00))
                                << " N2=" << int(h.mem(0x01)) << " carry in Y=" << int(m6502_y(&h.cpu));
}

}  // namespace
