#include "Core/Circuit/CircuitFileWriter.h"

#include "tests/unit/E2eCases.h"
#include "tests/unit/TempDir.h"

#include "Cli/CircuitVerifier.h"
#include "Core/Circuit/Circuit.h"
#include "Core/Circuit/CircuitFileReader.h"
#include "Core/Support/Error.h"
#include "Core/TestSequence/TestSequence.h"

#include <exception>
#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <set>
#include <string>

namespace fs = std::filesystem;
using Files = std::map<std::string, std::string>;

namespace {

std::unique_ptr<Circuit> build(const std::string& file)
{
    return std::unique_ptr<Circuit>(CircuitFileReader::new_circuit(file));
}

std::string written(const Circuit& circuit, const std::string& file)
{
    CircuitFileWriter(&circuit).write_circuit(file, false);
    return file_text(file);
}

// Runs without comparing and gives the table, or the message that ended the run.
class TableRun : public CircuitVerifier
{
public:
    using CircuitVerifier::CircuitVerifier;
    void issue(int, std::string, Value, Value) override {}
};

std::string table_of(Circuit* circuit, const std::string& tv_file)
{
    std::string error;
    try {
        TestSequence sequence(tv_file);
        TableRun run(circuit, &sequence, false, 0);
        run.set_component_options_from_test_sequence();
        run.simulate();
        testing::internal::CaptureStdout();
        try {
            run.print(0, "", "", false);
        } catch (const Error& e) {
            error = e.message();
        }
        return testing::internal::GetCapturedStdout() + error;
    } catch (const Error& e) {
        return e.message();
    } catch (const std::exception& e) {
        return e.what();
    }
}

struct ExactCase
{
    const char* quirk;
    Files files;  // the circuit file, the first by name, and what it names
    const char* expected;
};

const ExactCase exact_cases[] = {
    {"meta data sorted and escaped, comment blocks, import paths sorted without ./",
     {{"main.ctc", "ImportPath \"zz\"\nImportPath \"./\"\nImportPath \"aa\"\n"
                   "MetaData b \"2\"\nMetaData a 'x\\y'\nMetaData a \"1\"\n"
                   "# first\n# block\n\n# second\n\n"}},
     "MetaData a \"x\\\\y\"\nMetaData a \"1\"\nMetaData b \"2\"\n\n"
     "# first\n# block\n\n# second\n\n"
     "ImportPath \"aa\"\nImportPath \"zz\"\n\n"},
    {"pins before ports, by direction, commented alone, ports grouped by width",
     {{"main.ctc", "Port Output 8 q\nPin Output y\nPort Input 1 a\nPort Input 4 d e\nPort Input 2 f\n"
                   "# bus\n# of eight\nPort Inout 8 io\nPin Output z(ztr=off)\n# clock\nPin Input clk\n"}},
     "# clock\nPin Input clk\nPin Input a\nPin Output y z\n\n"
     "Port Input 2 f\nPort Input 4 d e\nPort Output 8 q\n# bus\n# of eight\nPort Inout 8 io\n\n"},
    {"units by type, differing parameters, commented units alone, arrays collapsed",
     {{"main.ctc", "Unit And a b(delay=4)\n# the inverter\nUnit Inv c(delay=2)\n"
                   "Unit Or ha[1]x\nUnit Xor ha[0]x\nUnit Or g[3]\n"}},
     "# the inverter\nUnit Inv c(delay=2)\nUnit And a b(delay=4)\nUnit Or g[3]\nUnit Xor ha[2]\n\n"},
    {"nets by path, one-port nets kept, comments",
     {{"main.ctc", "Pin Input a\nPin Output y\nUnit Inv i\n# out\nNet y i.out y\nNet a a i.in\n"}},
     "Pin Input a\nPin Output y\n\nUnit Inv i\n\n# out\nNet y i.out y\nNet a a i.in\n\n"},
    {"local declarations nest by three blanks; one without instances is dropped",
     {{"main.ctc", "Circuit Outer {\n Circuit Inner {\n  Pin Input a\n  Unit Inv i\n  Net a a i.in\n }\n"
                   " Circuit Unused {\n }\n Pin Input a\n Unit Inner x\n Net a a x.a\n}\nUnit Outer o\n"}},
     "Circuit Outer {\n   Circuit Inner {\n      Pin Input a\n\n      Unit Inv i\n\n      Net a a i.in\n\n"
     "   }\n\n   Pin Input a\n\n   Unit Inner x\n\n   Net a a x.a\n\n}\n\nUnit Outer o\n\n"},
};

}  // namespace

TEST(CircuitFileWriterTest, WritesEachQuirkExactly)
{
    for (const ExactCase& c : exact_cases) {
        SCOPED_TRACE(c.quirk);
        TempDir dir;
        for (const auto& [name, text] : c.files)
            dir.write(name, text);
        EXPECT_EQ(written(*build(c.files.begin()->first), "out.ctc"), c.expected);
    }
}

TEST(CircuitFileWriterTest, QuotedParameterValuesReadBackAsTheyStand)
{
    TempDir dir;
    const std::string value = "\"a, b\\nx = y # z;\"";
    dir.write("main.ctc", "Unit And g(program=" + value + ")\n# kept\nUnit Or h(program=" + value + ")\n");
    std::string first = written(*build("main.ctc"), "first.ctc");
    auto again = build("first.ctc");
    EXPECT_EQ(again->find_component("g")->parameters()["program"], value);
    EXPECT_EQ(again->find_component("h")->parameters()["program"], value);
    EXPECT_EQ(written(*again, "second.ctc"), first);
}

// Every case circuit that builds: written, read, built and written again gives the same text, and both
// circuits print the same table for the test vectors of the first case that has the circuit.
TEST(CircuitFileWriterTest, CaseCircuitsAreAFixpointAfterOneRoundAndSimulateAlike)
{
    int round_trips = 0;
    std::set<std::string> circuits;
    for (const E2eCase& c : e2e_cases()) {
        if (!circuits.insert(file_text(c.ctc)).second)
            continue;
        SCOPED_TRACE(c.name);
        TempDir dir;
        fs::copy(c.ctc.parent_path(), dir.path(), fs::copy_options::recursive);
        std::unique_ptr<Circuit> first;
        try {
            first = build((dir.path() / c.ctc.filename()).string());
        } catch (const Error&) {
            continue;
        } catch (const std::exception&) {
            continue;
        }
        std::string first_file = (dir.path() / "first.ctc").string();
        std::string first_text = written(*first, first_file);
        auto second = build(first_file);
        EXPECT_EQ(written(*second, (dir.path() / "second.ctc").string()), first_text);
        EXPECT_EQ(table_of(second.get(), c.tv), table_of(first.get(), c.tv));
        ++round_trips;
    }
    EXPECT_GT(round_trips, 40);
}
