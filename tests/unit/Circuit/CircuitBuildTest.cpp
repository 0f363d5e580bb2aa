#include "CircuitHarness.h"
#include "tests/unit/ErrorText.h"
#include "tests/unit/TempDir.h"

#include "Core/Circuit/Circuit.h"
#include "Core/Circuit/CircuitFileReader.h"
#include "Core/Simulation/EventSimulator.h"
#include "Core/Support/Error.h"

#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace {

using Files = std::map<std::string, std::string>;

std::unique_ptr<Circuit> load(const TempDir& dir, const Files& files, const std::string& root = "main.ctc")
{
    for (const auto& [name, text] : files)
        dir.write(name, text);
    return std::unique_ptr<Circuit>(CircuitFileReader::new_circuit(root));
}

std::string build_error(const TempDir& dir, const Files& files)
{
    return error_of([&] { load(dir, files); });
}

// A set-reset latch of two Nand gates, inputs active low, in a library folder of its own.
const char* latch_file = "# Set-reset latch, inputs active low.\n"
                         "Pin Input _s _r\n"
                         "Pin Output q\n"
                         "Unit Nand n1 n2\n"
                         "Net s _s n1.a\n"
                         "Net r _r n2.b\n"
                         "Net q q n1.out n2.a\n"
                         "Net qn n2.out n1.b\n";

const char* main_file = "ImportPath \"lib/parts\"\n"
                        "Circuit Latch \"latch.ctc\"\n"
                        "\n"
                        "# Two inverters in a row.\n"
                        "Circuit Buf {\n"
                        "   Pin Input i\n"
                        "   Pin Output o\n"
                        "   Unit Inv a b\n"
                        "   Net i i a.in\n"
                        "   Net m a.out b.in\n"
                        "   Net o b.out o\n"
                        "}\n"
                        "Pin Input s0 r0 s1 r1 x\n"
                        "Pin Output q0 q1 y\n"
                        "Unit Latch l[2]\n"
                        "Unit Buf buf\n"
                        "Net ns0 s0 l[0]._s\n"
                        "Net nr0 r0 l[0]._r\n"
                        "Net ns1 s1 l[1]._s\n"
                        "Net nr1 r1 l[1]._r\n"
                        "Net nq0 l[0].q q0\n"
                        "Net nq1 l[1].q q1\n"
                        "Net nx x buf.i\n"
                        "Net ny buf.o y\n";

}  // namespace

TEST(CircuitBuildTest, FileWithDeclaredAndImportedTypesSimulates)
{
    TempDir dir;
    auto top = load(dir, {{"main.ctc", main_file}, {"lib/parts/latch.ctc", latch_file}});
    EXPECT_NE(top->find_net("l[1].qn"), top->find_net("l[0].qn"));

    SimulatorGuard guard(*top);
    simulator()->reset(100);
    for (const char* name : {"s0", "r0", "s1", "r1"})
        top->port(name)->set(Value("H"), 0);
    // The same stimuli reach both latches but for one pulse each: they keep opposite states.
    top->port("s0")->set(Value("L"), 10);
    top->port("s0")->set(Value("H"), 20);
    top->port("r1")->set(Value("L"), 10);
    top->port("r1")->set(Value("H"), 20);
    top->port("x")->set(Value("H"), 5);
    simulator()->simulate(50);
    EXPECT_STREQ(top->port("q0")->ValueHistory::value(50).c_str(), "H");
    EXPECT_STREQ(top->port("q1")->ValueHistory::value(50).c_str(), "L");
    // The net records every update, also one that repeats its value.
    EXPECT_EQ(record_of(*top->find_net("l[0].q")), "3u 13H 19H 23H ");
    EXPECT_EQ(record_of(*top->port("q1")), "3u 16L ");
    EXPECT_EQ(record_of(*top->port("y")), "11H ");
}

TEST(CircuitBuildTest, FixedOrderCommentsAndMetaData)
{
    TempDir dir;
    auto top = load(dir, {{"main.ctc", "# A file comment.\n"
                                       "\n"
                                       "MetaData title \"two gates\"\n"
                                       "MetaData title 'again'\n"
                                       "# The wire.\n"
                                       "Net n a g1.a g2.a\n"
                                       "Pin Input a  # pin a\n"
                                       "Pin Output y(ztr=off) z\n"
                                       "# Two gates.\n"
                                       "Unit Local g1 g2\n"
                                       "Port Inout 4 d e  # data\n"
                                       "Circuit Local {\n"
                                       "   Pin Input a b\n"
                                       "}\n"
                                       "# Last words.\n"
                                       "\n"}});
    std::vector<std::string> ports;
    for (const Port* p : top->ports())
        ports.push_back(p->name() + "/" + p->comment_text());
    EXPECT_EQ(ports, (std::vector<std::string>{"d/data\n", "e/", "a/pin a\n", "y/", "z/"}));
    EXPECT_FALSE(top->port("y")->z_translation());
    EXPECT_EQ(top->find_component("g1")->comment_text(), "Two gates.\n");
    EXPECT_EQ(top->find_net("n")->ports().size(), 3u);
    EXPECT_EQ(top->get_meta_data_vector("title"), (std::vector<std::string>{"two gates", "again"}));
    EXPECT_EQ(top->get_comment(1)->text(), "Last words.\n");
}

TEST(CircuitBuildTest, EveryBuildErrorHasItsMessage)
{
    struct Case
    {
        const char* what;  // the slip
        const char* text;  // main.ctc
        const char* want;  // the message
    };
    const Case cases[] = {
        {"two declarations of one name", "Circuit X {\n}\nCircuit X {\n}\n",
         "Error: Duplicated sub-circuits 'X' within circuit 'main.ctc'."},
        // Lines of a block do not advance the count of the scope around it.
        {"type of the enclosing scope", "Circuit A {\n}\nCircuit B {\n  Unit A a\n}\n",
         "Error at main.ctc:3: Component type not found: 'A'."},
        {"instance name twice", "Unit And g[2] g[1]\n",
         "Error in main.ctc:1: Duplicated component instance name: 'g[0]'."},
        {"pin direction", "Pin Sideways a\n", "Unsupported pin direction 'Sideways' on line 1."},
        {"pin twice", "Pin Input a a\n", "Error in main.ctc:1: pin/port name duplication 'a'."},
        // Ports are made before pins, so the pin's line is named.
        {"port after pin", "Pin Input a\nPort Output 2 a(ztr=on)\n",
         "Error in main.ctc:1: pin/port name duplication 'a'."},
        {"net name twice", "Unit And x\nNet n x.a\nNet n x.b\n",
         "Duplicate net names: 'n', in circuit 'main.ctc'."},
    };
    for (const Case& c : cases) {
        TempDir dir;
        EXPECT_EQ(build_error(dir, {{"main.ctc", c.text}}), c.want) << c.what;
    }
}

// Each level holds two instances of the one below, so a few lines would ask for 2^30 parts.
TEST(CircuitBuildTest, InstancesThatMultiplyBeyondTheLimitAreRefused)
{
    std::string text;
    for (int k = 30; k > 0; --k)
        text += "Circuit T" + std::to_string(k) + " {\n";
    text += "Circuit T0 {\n  Unit Inv g\n}\n";
    for (int k = 1; k <= 30; ++k)
        text += "Unit T" + std::to_string(k - 1) + " x y\n}\n";
    text += "Unit T30 top\n";

    const int saved_limit = Circuit::max_nof_parts;
    Circuit::max_nof_parts = 1000;
    TempDir dir;
    // Each copy carries the declarations inside, so T5 weighs 768; T6 holds its declaration and
    // cannot take a copy beside it. The line is counted within T6's block, as block lines do not
    // advance the count around them.
    std::string error = build_error(dir, {{"main.ctc", text}});
    Circuit::max_nof_parts = saved_limit;
    EXPECT_EQ(error, "Error at main.ctc:27: Circuit 'T6' would hold more than 1000 parts.");
}

TEST(CircuitBuildTest, UnconnectedInputsOncePerInstanceNeverInTheDeclaration)
{
    TempDir dir;
    auto top = load(dir, {{"main.ctc", "Circuit Half {\n"
                                       "   Pin Input a b\n"
                                       "   Unit And g\n"
                                       "   Net a a g.a\n"
                                       "}\n"
                                       "Pin Input in\n"
                                       "Unit Half h[2]\n"
                                       "Net n in h[0].a h[0].b h[1].a\n"}});
    LineLog sink;
    top->set_simlog(&sink);
    top->check_connections();
    const std::vector<std::string> want = {
        "1 [g(And) in h[0] | WARNING] Input port 'b' of component 'And'/'g' is not connected.",
        "1 [h[1](Half) in main.ctc | WARNING] Input port 'b' of component 'Half'/'h[1]' is not connected.",
        "1 [g(And) in h[1] | WARNING] Input port 'b' of component 'And'/'g' is not connected.",
    };
    EXPECT_EQ(sink.lines, want);
}
