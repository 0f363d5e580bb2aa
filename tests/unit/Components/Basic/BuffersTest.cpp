#include "Core/Components/Basic/Buffers.h"

#include "tests/unit/Components/PartHarness.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

TEST(BuffersTest, ThreeStateBufTruthTable)
{
    struct Row
    {
        const char* in;   // input letter
        const char* g;    // enable letter
        const char* out;  // written one delay later
    };
    const Row rows[] = {
        {"H", "L", "H"}, {"L", "l", "L"}, {"U", "L", "U"}, {"u", "L", "u"}, {"z", "L", "z"},
        {"H", "H", "z"}, {"L", "h", "z"}, {"H", "u", "u"}, {"L", "U", "u"}, {"L", "p", "L"},
    };
    ComponentFactory factory;
    for (const Row& r : rows) {
        Component* buf = factory.create("ThreeStateBuf", "b");
        // Unconnected inputs read their own record as it stands.
        buf->port("in")->set(Value(r.in), 0);
        buf->port("_g")->set(Value(r.g), 0);
        buf->evaluate(3);
        EXPECT_EQ(record_of(*buf->port("out")), std::string("3") + r.out + " ") << r.in << " " << r.g;
    }
}

TEST(BuffersTest, BusBufferEnablesReleasesAndUndefines)
{
    struct Row
    {
        const char* g;    // enable letter
        const char* out;  // written one delay later
    };
    const Row rows[] = {
        {"L", "HHHHLLLLHLHLzzzz"},
        {"H", "zzzzzzzzzzzzzzzz"},
        {"u", "uuuuuuuuuuuuuuuu"},
        {"n", "HHHHLLLLHLHLzzzz"},
    };
    ComponentFactory factory;
    for (const Row& r : rows) {
        Component* buf = factory.create("BusBuffer", "b(size=16)");
        buf->port("in")->set(Value("HHHHLLLLHLHLzzzz"), 0);
        buf->port("_g")->set(Value(r.g), 0);
        buf->port("in")->set(Value("LLLLLLLLLLLLLLLL"), 11);
        buf->evaluate(10);
        EXPECT_EQ(record_of(*buf->port("out")), std::string("10") + r.out + " ") << r.g;
    }
}

TEST(BuffersTest, DemultiplexerInBothForms)
{
    struct Row
    {
        const char* x;   // enable
        const char* s1;  // select, high bit
        const char* s0;  // select, low bit
        const char* y;   // y3 y2 y1 y0 one delay later; empty when nothing is written
    };
    const Row rows[] = {
        {"H", "L", "L", "HHHH"}, {"h", "H", "H", "HHHH"}, {"u", "L", "L", "UUUU"}, {"U", "H", "H", "UUUU"},
        {"L", "L", "L", "HHHL"}, {"L", "L", "H", "HHLH"}, {"L", "H", "L", "HLHH"}, {"l", "H", "H", "LHHH"},
        {"L", "u", "L", "UUUU"}, {"L", "L", "U", "UUUU"}, {"L", "n", "p", "HHHL"}, {"z", "L", "L", ""},
        {"p", "H", "H", ""},
    };
    ComponentFactory factory;
    for (const Row& r : rows) {
        Component* pins = factory.create("Demux1to4", "d");
        pins->port("x")->set(Value(r.x), 0);
        pins->port("s1")->set(Value(r.s1), 0);
        pins->port("s0")->set(Value(r.s0), 0);
        pins->evaluate(10);
        std::string y;
        for (const char* name : {"y3", "y2", "y1", "y0"}) {
            const Port* p = pins->port(name);
            if (p->nof_values() != 0)
                y += p->entries().back().value.c_str();
        }
        EXPECT_EQ(y, r.y) << "pins: x=" << r.x << " s1=" << r.s1 << " s0=" << r.s0;

        Component* bus = factory.create("Demux1to4", "d(bus_io=true)");
        bus->port("x")->set(Value(r.x), 0);
        bus->port("S")->set(Value(std::string(r.s1) + r.s0), 0);
        bus->evaluate(10);
        std::string want = *r.y != '\0' ? std::string("10") + r.y + " " : "";
        EXPECT_EQ(record_of(*bus->port("Y")), want) << "bus: x=" << r.x << " s1=" << r.s1 << " s0=" << r.s0;
    }
}
