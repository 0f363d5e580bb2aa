#include "Core/Circuit/HistoryWindows.h"

#include "tests/unit/TempDir.h"

#include "Core/Circuit/Circuit.h"
#include "Core/Circuit/CircuitFileReader.h"
#include "Core/Simulation/Net.h"
#include "Core/Simulation/Port.h"

#include <gtest/gtest.h>
#include <memory>
#include <set>

namespace {

// A sub-circuit with an inverter of 7 ns, a gate of 4 ns, and a flip-flop that doesn't say how far
// back it reads.
const char* circuit_file = "Pin Input a\n"
                           "Pin Output y q\n"
                           "Circuit Buf {\n"
                           "   Pin Input i\n"
                           "   Pin Output o\n"
                           "   Unit Inv n(delay=7)\n"
                           "   Net ni i n.in\n"
                           "   Net no o n.out\n"
                           "}\n"
                           "Unit Buf b\n"
                           "Unit And g(delay=4)\n"
                           "Unit 74x74 ff\n"
                           "Net na a g.a b.i\n"
                           "Net nb b.o g.b\n"
                           "Net ny g.out y ff.D1\n"
                           "Net nq ff.Q1 q\n";

}  // namespace

TEST(HistoryWindowsTest, EachHistoryCoversItsReadersAndNamedOnesStayWhole)
{
    TempDir dir;
    dir.write("main.ctc", circuit_file);
    std::unique_ptr<Circuit> root(CircuitFileReader::new_circuit("main.ctc"));
    std::set<const ValueHistory*> keep;
    add_histories_read_through(root->find_port("y"), keep);
    window_histories(*root, keep);

    constexpr int full = ValueHistory::full_history;
    struct Row
    {
        const char* name;  // a net, or a port if it has a dot or is a root port
        bool is_net;
        int window;  // one ns more than the farthest reader reads back
    };
    const Row rows[] = {
        {"g.a", false, 5},  {"b.n.in", false, 8},   {"b.i", false, 1},  {"a", false, 1},
        {"na", true, 5},    {"b.ni", true, 8},      {"nb", true, 5},    {"ny", true, full},
        {"y", false, full}, {"ff.D1", false, full}, {"nq", true, full}, {"q", false, 1},
    };
    for (const Row& r : rows) {
        const ValueHistory* history =
            r.is_net ? static_cast<const ValueHistory*>(root->find_net(r.name)) : root->find_port(r.name);
        ASSERT_NE(history, nullptr) << r.name;
        EXPECT_EQ(history->window(), r.window) << r.name;
    }
}
