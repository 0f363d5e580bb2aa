#include "Core/Components/Buffers.h"

#include "PartHarness.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

std::string keys_of(Component* c)
{
    std::string keys;
    for (const std::string& k : c->get_valid_param_keys())
        keys += k + " ";
    return keys;
}

}  // namespace

TEST(BuffersTest, FactoryRowsWithTheirDefaults)
{
    struct Row
    {
        const char* type;        // as a file names it
        const char* spec;        // instance specification
        const char* ports;       // in order, see port_list
        const char* parameters;  // the merged map
        int delay;               // ns, as applied
    };
    const Row rows[] = {
        {"Delay", "d", "in< out> ", "(delay=3)", 3},
        {"ThreeStateBuf", "d", "in< _g< out> ", "(delay=3)", 3},
        {"BusBuffer", "d", "in<8 out>8 _g< ", "(delay=10,size=8)", 10},
        {"BusBuffer", "d(size=16,delay=2)", "in<16 out>16 _g< ", "(delay=2,size=16)", 2},
        {"Demux1to4", "d", "x< y0> y1> y2> y3> s0< s1< ", "(delay=10)", 10},
        {"Demux1to4", "d(bus_io=yes)", "x< S<2 Y>4 ", "(bus_io=yes,delay=10)", 10},
        {"Demux1to4", "d(bus_io=0,delay=4)", "x< y0> y1> y2> y3> s0< s1< ", "(bus_io=0,delay=4)", 4},
    };
    ComponentFactory factory;
    for (const Row& r : rows) {
        auto* c = dynamic_cast<SingleDelayComponent*>(factory.create(r.type, r.spec));
        ASSERT_NE(c, nullptr) << r.type;
        EXPECT_EQ(c->type_name(), r.type);
        EXPECT_EQ(port_list(c), r.ports) << r.spec;
        EXPECT_EQ(c->get_parameter_string(), r.parameters) << r.spec;
        EXPECT_EQ(c->delay(), r.delay) << r.spec;
        // "bus_io" is read, but not listed.
        EXPECT_EQ(keys_of(c), std::string(r.type) == "BusBuffer" ? "delay size " : "delay ") << r.type;
    }
    for (const char* type : {"Delay", "ThreeStateBuf"})
        EXPECT_EQ(ComponentFactory::parameter_description(type), "<b>delay</b> The gate delay in ns.");
    EXPECT_EQ(
        ComponentFactory::parameter_description("BusBuffer"),
        "<b>delay</b> The buffer delay in ns. Default is 10 ns\n<b>size</b> The buffer bit width. Default "
        "is 10.");
    EXPECT_EQ(
        ComponentFactory::parameter_description("Demux1to4"),
        "<b>delay</b> The gate delay in ns.<p><b>bus_io</b> If set to 'true', 'yes' or '1', the IO will "
        "be bus-based instead of pin-based. I.e.there will be one 2-bit bus input and a 4-bit bus "
        "output,instead of two invidual input pins, and four individual output pins.");
}

TEST(BuffersTest, CodeFormsKeepTheirArgumentsWithoutParameters)
{
    BusBuffer bus("b", 0, 5);
    EXPECT_EQ(port_list(&bus), "in<5 out>5 _g< ");
    EXPECT_EQ(bus.delay(), 0);
    Demux1to4 demux("d", 7, true);
    EXPECT_EQ(port_list(&demux), "x< S<2 Y>4 ");
    EXPECT_TRUE(demux.bus_io());
    EXPECT_EQ(demux.parameters().size(), 0u);
    Demux1to4 plain("p", ParaMap());
    EXPECT_EQ(plain.delay(), 10);
    EXPECT_FALSE(plain.bus_io());
    // A new map changes the flag and the delay, not the ports made at construction.
    plain.set_parameters(ParaMap(std::string("(bus_io=true,delay=1)")));
    EXPECT_TRUE(plain.bus_io());
    EXPECT_EQ(plain.delay(), 1);
    EXPECT_EQ(port_list(&plain), "x< y0> y1> y2> y3> s0< s1< ");
    plain.port("x")->set(Value("L"), 0);
    plain.port("s0")->set(Value("H"), 0);
    plain.port("s1")->set(Value("L"), 0);
    plain.evaluate(1);
    EXPECT_EQ(record_of(*plain.port("y1")), "1L ");
}

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

TEST(BuffersTest, DelayPassesEveryChangeOneDelayLater)
{
    PartHarness h;
    Component* delay = h.part("Delay", "d(delay=5)");
    Port* src = h.source("src");
    h.net("in", {src, delay->port("in")});
    Net* out = h.net("out", {delay->port("out")});
    src->set(Value("L"), 0);
    src->set(Value("H"), 10);
    src->set(Value("L"), 12);
    simulator()->simulate(100);
    EXPECT_EQ(record_of(*out), "5L 15H 17L ");
}

TEST(BuffersTest, ThreeStateBusWithPullUp)
{
    PartHarness h;
    Component* a = h.part("ThreeStateBuf", "A");
    Component* b = h.part("ThreeStateBuf", "B");
    Component* pull = h.part("PullUp", "P");
    Port* a_in = h.source("a_in");
    Port* a_g = h.source("a_g");
    Port* b_in = h.source("b_in");
    Port* b_g = h.source("b_g");
    h.net("a_in", {a_in, a->port("in")});
    h.net("a_g", {a_g, a->port("_g")});
    h.net("b_in", {b_in, b->port("in")});
    h.net("b_g", {b_g, b->port("_g")});
    Net* bus = h.net("bus", {a->port("out"), b->port("out"), pull->port("out")});

    simulator()->reset(100);
    a_in->set(Value("L"), 0);
    b_in->set(Value("H"), 0);
    a_g->set(Value("H"), 0);
    b_g->set(Value("H"), 0);
    a_g->set(Value("L"), 10);  // A drives L
    a_g->set(Value("H"), 20);  // B drives H
    b_g->set(Value("L"), 20);
    a_g->set(Value("L"), 30);  // both drive: conflict
    a_g->set(Value("H"), 40);  // both released: pulled up
    b_g->set(Value("H"), 40);
    simulator()->simulate(100);
    // Until the buffers are first evaluated their outputs are undefined.
    EXPECT_EQ(changes_of(*bus), "0u 3H 13L 23H 33u 43H ");
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
