#include "Core/Components/Memories/GenericMemory.h"

#include "tests/unit/Components/PartHarness.h"
#include "tests/unit/TempDir.h"

#include <cstdio>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

/// A memory that only records what the loaders store, as "<address>=<letters>@<time> ".
class RecordingMemory : public SingleDelayComponent, public GenericMemory
{
public:
    RecordingMemory(unsigned words, unsigned bits)
        : SingleDelayComponent("Mem", "m", 0),
          GenericMemory(this),
          _words(words),
          _bits(bits)
    {
    }

    void evaluate(int) override {}
    unsigned word_count() const override { return _words; }
    unsigned word_size() const override { return _bits; }
    Value read_word(int, int) override { return Value(static_cast<int>(_bits)); }
    void write_word(const Value& value, int address, int time) override
    {
        char hex[16];
        std::snprintf(hex, sizeof hex, "%x", address);
        writes += std::string(hex) + "=" + value.c_str() + "@" + std::to_string(time) + " ";
    }

    std::string writes;  // in the order stored

private:
    unsigned _words;  // word_count
    unsigned _bits;   // word_size
};

/// A memory in a circuit with a log, so that the loaders can resolve names and report.
struct Bench
{
    explicit Bench(unsigned words = 8192, unsigned bits = 8) : memory(words, bits)
    {
        top.set_simlog(&log);
        memory.set_parent(&top);
    }
    ~Bench() { memory.set_parent(nullptr); }

    LineLog log;                  // what the memory reported
    Circuit top{"top", nullptr};  // the memory's parent
    RecordingMemory memory;       // the part under test
};

const char* const cells_warning =
    "1 [m(Mem) in top | WARNING] A memory component of type 'Mem' has failed to store address/value "
    "combination '%s' during initialization, as specified by its parameters. Maybe a parameter syntax "
    "error or address out of range or value too large.";

std::string warning_for(const std::string& piece)
{
    std::string text = cells_warning;
    text.replace(text.find("%s"), 2, piece);
    return text;
}

std::string joined(const std::vector<std::string>& lines)
{
    std::string text;
    for (const std::string& line : lines)
        text += line + "\n";
    return text;
}

}  // namespace

TEST(GenericMemoryTest, CellsStoreValidPiecesAndWarnOfTheRest)
{
    struct Row
    {
        const char* cells;                // the parameter
        unsigned words;                   // word_count
        unsigned bits;                    // word_size
        const char* writes;               // as RecordingMemory writes them
        std::vector<std::string> warned;  // pieces refused, in order
    };
    const Row rows[] = {
        {"1f00:ff;D000:25", 8192, 8, "1f00=HHHHHHHH@0 ", {"D000:25"}},
        {"1fff:0;2000:0", 8192, 8, "1fff=LLLLLLLL@0 ", {"2000:0"}},
        {"10:100", 8192, 8, "", {"10:100"}},
        {"10:ff:junk", 8192, 8, "10=HHHHHHHH@0 ", {}},
        {"0x10:ff", 8192, 8, "", {"0x10:ff"}},
        {";;5:1;;", 8192, 8, "5=LLLLLLLH@0 ", {}},
        {"", 8192, 8, "", {}},
        {"5:", 8192, 8, "", {"5:"}},
        {" 5:1", 8192, 8, "", {" 5:1"}},
        {"5:-1", 8192, 8, "", {"5:-1"}},
        // "%x" into 32 bits: all ones is negative, and the high bits of a longer number are cut off.
        {"ffffffff:1", 8192, 8, "", {"ffffffff:1"}},
        {"100000003:1", 8192, 8, "3=LLLLLLLH@0 ", {}},
        {"3:7;3:8", 16, 3, "3=HHH@0 ", {"3:8"}},
        {"a:1;f:1;10:1", 16, 1, "a=H@0 f=H@0 ", {"10:1"}},
    };
    for (const Row& r : rows) {
        Bench b(r.words, r.bits);
        b.memory.set_cell_values(r.cells);
        EXPECT_EQ(b.memory.writes, r.writes) << r.cells;
        std::vector<std::string> want;
        for (const std::string& piece : r.warned)
            want.push_back(warning_for(piece));
        EXPECT_EQ(joined(b.log.lines), joined(want)) << r.cells;
    }
}

TEST(GenericMemoryTest, FilesAndCellsFromTheParameters)
{
    struct Row
    {
        const char* what;        // the case
        const char* file;        // written into the scratch folder, may be empty
        std::string content;     // of the file
        const char* parameters;  // given to init_cells_from_params
        const char* writes;      // as RecordingMemory writes them
        const char* log;         // lines, each ending in a newline
    };
    using namespace std::string_literals;
    const Row rows[] = {
        {"object file", "a.prg", "\x00\x20\x01\x80"s, "(cbmfile=a.prg)", "2000=LLLLLLLH@0 2001=HLLLLLLL@0 ",
         "0 [m(Mem) in top | INFO] Loaded 2 bytes from file 'a.prg' into address 0x2000 in 'm'.\n"},
        {"object file of the address alone", "a.prg", "\x34\x12"s, "(cbmfile=a.prg,rawaddress=5)", "",
         "0 [m(Mem) in top | INFO] Loaded 0 bytes from file 'a.prg' into address 0x1234 in 'm'.\n"},
        // The missing high byte is EOF, -1: the address becomes 0x10 - 256.
        {"object file of one byte", "a.prg", "\x10"s, "(cbmfile=a.prg)", "",
         "0 [m(Mem) in top | INFO] Loaded 0 bytes from file 'a.prg' into address 0xffffff10 in 'm'.\n"},
        {"raw file at 0", "r.bin", "\xaa\x0f"s, "(rawfile=r.bin)", "0=HLHLHLHL@0 1=LLLLHHHH@0 ",
         "0 [m(Mem) in top | INFO] Loaded 2 bytes from file 'r.bin' into address 0x0000 in 'm'.\n"},
        {"raw file at an address", "r.bin", "\x01"s, "(rawfile=r.bin,rawaddress=$1ff0)", "1ff0=LLLLLLLH@0 ",
         "0 [m(Mem) in top | INFO] Loaded 1 bytes from file 'r.bin' into address 0x1ff0 in 'm'.\n"},
        {"empty raw file", "r.bin", "", "(rawfile=r.bin)", "",
         "0 [m(Mem) in top | INFO] Loaded 0 bytes from file 'r.bin' into address 0x0000 in 'm'.\n"},
        {"cells after the file", "r.bin", "\x01\x02"s, "(cells=0:ff;7:1,rawfile=r.bin)",
         "0=LLLLLLLH@0 1=LLLLLLHL@0 0=HHHHHHHH@0 7=LLLLLLLH@0 ",
         "0 [m(Mem) in top | INFO] Loaded 2 bytes from file 'r.bin' into address 0x0000 in 'm'.\n"},
        // Only the first file counts, even when it isn't there.
        {"both files", "r.bin", "\x01"s, "(cbmfile=none.prg,rawfile=r.bin)", "",
         "2 [m(Mem) in top | ERROR] Cannot find the specified file 'none.prg'.\n"},
        {"empty object file name", "r.bin", "\x01"s, "(cbmfile=,rawfile=r.bin)", "0=LLLLLLLH@0 ",
         "0 [m(Mem) in top | INFO] Loaded 1 bytes from file 'r.bin' into address 0x0000 in 'm'.\n"},
        {"address without a file", "", "", "(rawaddress=100)", "", ""},
        {"missing raw file", "", "", "(cells=1:1,rawfile=gone.bin)", "1=LLLLLLLH@0 ",
         "2 [m(Mem) in top | ERROR] Cannot find the specified file 'gone.bin'.\n"},
    };
    for (const Row& r : rows) {
        TempDir dir;
        if (*r.file != '\0')
            dir.write(r.file, r.content);
        Bench b;
        ParaMap params{std::string(r.parameters)};
        b.memory.init_cells_from_params(&b.top, params);
        EXPECT_EQ(b.memory.writes, r.writes) << r.what;
        EXPECT_EQ(joined(b.log.lines), r.log) << r.what;
    }
}

TEST(GenericMemoryTest, FileNamesResolveAgainstTheCircuitFile)
{
    TempDir dir;
    dir.write("boards/rom.bin", "\x05");
    Bench b;
    b.top.set_filename("boards/main.ctc");
    ParaMap params{std::string("(rawfile=rom.bin)")};
    b.memory.init_cells_from_params(&b.top, params);
    EXPECT_EQ(b.memory.writes, "0=LLLLLHLH@0 ");
    EXPECT_EQ(
        joined(b.log.lines),
        "0 [m(Mem) in top | INFO] Loaded 1 bytes from file 'boards/rom.bin' into address 0x0000 in 'm'.\n");
}
