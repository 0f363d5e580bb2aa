#include "Core/Components/Basic/Gates.h"

#include "tests/unit/Components/PartHarness.h"

#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

namespace {

struct Network : PartHarness
{
    Gate* gate(const std::string& type, const std::string& spec)
    {
        return dynamic_cast<Gate*>(part(type, spec));
    }
};

}  // namespace

TEST(GatesTest, TruthTablesWithUndefinedAndFloatingInputs)
{
    struct Row
    {
        const char* a;     // input a, or the Inv input
        const char* b;     // input b
        const char* want;  // And Nand Or Nor Xor Xnor, then Inv of a
    };
    const Row rows[] = {
        {"L", "L", "LHLHLHH"}, {"L", "H", "LHHLHLH"}, {"H", "L", "LHHLHLL"}, {"H", "H", "HLHLLHL"},
        {"L", "U", "LHuuuuH"}, {"U", "H", "uuHLuuu"}, {"u", "u", "uuuuuuu"}, {"U", "L", "LHuuuuu"},
        {"Z", "H", "HLHLLHL"}, {"z", "L", "LHLHLHL"}, {"z", "z", "HLLHLHL"}, {"H", "u", "uuHLuuL"},
    };
    const char* types[] = {"And", "Nand", "Or", "Nor", "Xor", "Xnor"};
    ComponentFactory factory;
    for (const Row& r : rows) {
        for (int i = 0; i < 6; ++i) {
            Component* g = factory.create(types[i], "g");
            // Unconnected inputs read their own record as it stands: a z arrives as z.
            g->port("a")->set(Value(r.a), 0);
            g->port("b")->set(Value(r.b), 0);
            g->evaluate(3);
            EXPECT_STREQ(g->port("out")->ValueHistory::value(3).c_str(), std::string(1, r.want[i]).c_str())
                << types[i] << "(" << r.a << ", " << r.b << ")";
        }
        Component* inv = factory.create("Inv", "i");
        inv->port("in")->set(Value(r.a), 0);
        inv->evaluate(3);
        EXPECT_STREQ(inv->port("out")->ValueHistory::value(3).c_str(), std::string(1, r.want[6]).c_str())
            << "Inv(" << r.a << ")";
    }
}

TEST(GatesTest, EveryInputChangeIsAnsweredOneDelayLater)
{
    struct Row
    {
        const char* type;                                 // gate type
        const char* spec;                                 // instance
        const char* b;                                    // input b from 0 on
        std::vector<std::pair<int, const char*>> a_sets;  // input a by time
        const char* want;                                 // the output's record
    };
    const Row rows[] = {
        // Both inputs change at 0: two evaluations at 5 write the same value; a pulse shorter than
        // the delay passes.
        {"And", "U1(delay=5)", "H", {{0, "L"}, {10, "H"}, {12, "L"}}, "5L 15H 17L "},
        // A floating net reads U, which the L on the other input doesn't decide; then the H does.
        {"Or", "U1", "L", {{0, "Z"}, {10, "H"}}, "3u 13H "},
    };
    for (const Row& r : rows) {
        Network n;
        Gate* gate = n.gate(r.type, r.spec);
        Port* a = n.source("a");
        Port* b = n.source("b");
        n.net("a", {a, gate->port("a")});
        n.net("b", {b, gate->port("b")});
        b->set(Value(r.b), 0);
        for (const auto& [time, letters] : r.a_sets)
            a->set(Value(letters), time);
        simulator()->simulate(100);
        EXPECT_EQ(record_of(*gate->port("out")), r.want) << r.type;
    }
}

TEST(GatesTest, LargerDelayBeforeTheEvaluationReadsFurtherBack)
{
    Network n;
    Gate* inv = n.gate("Inv", "U1");
    Port* src = n.source("src");
    n.net("in", {src, inv->port("in")});
    src->set(Value("L"), 100);
    simulator()->simulate(100);  // the change at 100 asks for an evaluation at 103
    inv->set_delay(50);
    simulator()->simulate(200);  // at 103 the input is read at 53, before it was set
    EXPECT_EQ(record_of(*inv->port("out")), "103u ");
}

TEST(GatesTest, OutputsOnOneNetResolveByTheTable)
{
    Network n;
    Gate* inv = n.gate("Inv", "U1");
    Port* s1 = n.source("s1");
    Port* pull = n.source("pull");
    Port* other = n.source("other");
    n.net("in", {s1, inv->port("in")});
    Net* shared = n.net("shared", {inv->port("out"), pull, other});
    pull->set(Value("p"), 0);
    other->set(Value("z"), 0);
    s1->set(Value("L"), 0);
    s1->set(Value("H"), 10);
    other->set(Value("H"), 30);
    other->set(Value("z"), 40);
    simulator()->simulate(100);
    // Until 3 the gate's output is undefined; then it beats the pull-up and the released output,
    // until a second strong driver makes the net undefined.
    EXPECT_EQ(record_of(*shared), "0u 3H 13L 30u 40L ");
}
