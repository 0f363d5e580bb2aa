#include "tests/unit/Components/PartHarness.h"
#include "tests/unit/ErrorText.h"

#include "Core/Components/Chips74/Chips74Decoders.h"
#include "Core/Components/Chips74/Chips74Gates.h"

#include <gtest/gtest.h>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

namespace {

/// Sets each "name=letters" of the list as the port's own record at time 0: unconnected inputs read it.
void set_inputs(Component* c, const std::string& assignments)
{
    std::istringstream in(assignments);
    std::string item;
    while (in >> item) {
        std::size_t eq = item.rfind('=');
        Port* p = c->port(item.substr(0, eq));
        ASSERT_NE(p, nullptr) << item;
        p->set(Value(item.substr(eq + 1)), 0);
    }
}

/// The last letters each named port was given, as "name=letters ...".
std::string outputs_of(Component* c, const std::string& names)
{
    std::istringstream in(names);
    std::string name;
    std::string text;
    while (in >> name) {
        const Port* p = c->port(name);
        text += name + "=" + (p->nof_values() != 0 ? p->entries().back().value.c_str() : "") + " ";
    }
    return text;
}

/// The sixteen pins of a 74LS154 from "Y15" down to "Y0", as recorded last.
std::string pins_of_154(Component* c)
{
    std::string letters;
    for (int i = 15; i >= 0; --i) {
        const Port* p = c->port("Y" + std::to_string(i));
        letters += p->nof_values() != 0 ? p->entries().back().value.c_str() : "-";
    }
    return letters;
}

}  // namespace

TEST(Chips74CombinationalTest, FactoryRowsWithTheirDefaults)
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
        {"74LS00", "u", "A1< B1< Y1> A2< B2< Y2> A3< B3< Y3> A4< B4< Y4> ", "(delay=10)", 10},
        {"74LS04", "u", "A1< Y1> A2< Y2> A3< Y3> A4< Y4> A5< Y5> A6< Y6> ", "(delay=10)", 10},
        {"74LS08", "u", "A1< B1< Y1> A2< B2< Y2> A3< B3< Y3> A4< B4< Y4> ", "(delay=13)", 13},
        {"74LS32", "u", "A1< B1< Y1> A2< B2< Y2> A3< B3< Y3> A4< B4< Y4> ", "(delay=14)", 14},
        {"74LS125", "u", "A1< C1< Y1> A2< C2< Y2> A3< C3< Y3> A4< C4< Y4> ", "(delay=25)", 25},
        {"74LS139", "u", "E1< A1<2 O1>4 E2< A2<2 O2>4 ", "(delay=38)", 38},
        {"74LS137", "u", "A< B< C< _GL< G1< _G2< Y>8 ", "(delay=38)", 38},
        {"74LS244", "u", "1A<4 1Y>4 1_G< 2A<4 2Y>4 2_G< ", "(delay=33)", 33},
        {"74LS283", "u", "A<4 B<4 C>4 cin< cout> ", "(delay=24)", 24},
        {"74x688", "u", "_G< _P=Q> P<8 Q<8 ", "(family=LS)", 25},
        {"74x688", "u(family=ALS)", "_G< _P=Q> P<8 Q<8 ", "(family=ALS)", 22},
        {"74x688", "u(family=ALS,delay=30)", "_G< _P=Q> P<8 Q<8 ", "(delay=30,family=ALS)", 30},
        {"74LS00", "u(delay=20)", "A1< B1< Y1> A2< B2< Y2> A3< B3< Y3> A4< B4< Y4> ", "(delay=20)", 20},
    };
    ComponentFactory factory;
    for (const Row& r : rows) {
        auto* c = dynamic_cast<SingleDelayComponent*>(factory.create(r.type, r.spec));
        EXPECT_EQ(port_list(c), r.ports) << r.spec;
        EXPECT_EQ(c->get_parameter_string(), r.parameters) << r.spec;
        EXPECT_EQ(c->delay(), r.delay) << r.spec;
        // Inner parts take the chip's delay once the parameters are applied.
        if (auto* chip = dynamic_cast<InnerPartsChip*>(c)) {
            for (const auto& part : chip->inner_parts())
                EXPECT_EQ(part->delay(), r.delay) << r.spec;
        }
    }

    auto* decoder = dynamic_cast<DM74LS154*>(factory.create("74LS154", "d"));
    std::string pins;
    for (int i = 0; i < 16; ++i)
        pins += "Y" + std::to_string(i) + "> ";
    EXPECT_EQ(port_list(decoder), "A< B< C< D< _G1< _G2< Y>16 " + pins);
    EXPECT_EQ(decoder->delay(), 23);
}

TEST(Chips74CombinationalTest, ComparatorFamilyFromNewParameters)
{
    ComponentFactory factory;
    auto* cmp = dynamic_cast<SingleDelayComponent*>(factory.create("74x688", "c(family=ALS)"));
    cmp->set_parameters(ParaMap(std::string("(family=LS)")));
    EXPECT_EQ(cmp->delay(), 25);
    cmp->set_parameters(ParaMap());  // without a family the LS timing stands
    EXPECT_EQ(cmp->delay(), 25);
    EXPECT_EQ(error_of([&] { cmp->set_parameters(ParaMap(std::string("(family=als,delay=5)"))); }),
              "Error: unknown/unsupported device family of SN74x688: 'als'.");
}

TEST(Chips74CombinationalTest, InnerPartsTakeTheChipDelayOnlyWithParameters)
{
    // Declared before the harness, so that the circuit lets go of it before it dies.
    auto direct = std::make_unique<DM74LS32>("direct", ParaMap(std::string("(delay=14)")));
    PartHarness h;
    Component* applied = h.part("74LS32", "applied(delay=20)");
    h.root.add(direct.get(), false);
    DM74LS32 coded("coded", 7);
    EXPECT_EQ(coded.inner_parts()[0]->delay(), 7);
    EXPECT_EQ(coded.parameters().size(), 0u);

    // Made directly, the chip reads its delay but the gates keep the 3 ns they were made with.
    EXPECT_EQ(direct->delay(), 14);
    EXPECT_EQ(direct->inner_parts()[3]->delay(), 3);

    Port* a = h.source("a");
    Port* b = h.source("b");
    h.net("a", {a, applied->port("A1"), direct->port("A1")});
    h.net("b", {b, applied->port("B1"), direct->port("B1")});
    Net* applied_y = h.net("applied_y", {applied->port("Y1")});
    Net* direct_y = h.net("direct_y", {direct->port("Y1")});
    simulator()->reset(300);
    a->set(Value("L"), 0);
    b->set(Value("L"), 0);
    a->set(Value("H"), 100);
    a->set(Value("L"), 200);
    simulator()->simulate(300);
    // Chip and gates evaluate at the same times and write the same values.
    EXPECT_EQ(changes_of(*applied_y), "20L 120H 220L ");
    // The gate answers 3 ns after the change; the chip's own evaluation, 14 ns after, repeats it.
    EXPECT_EQ(changes_of(*direct_y), "3L 103H 203L ");

    direct->set_parameters(ParaMap(std::string("(delay=14)")));
    EXPECT_EQ(direct->inner_parts()[0]->delay(), 14);
    h.root.remove(direct.get());
}

TEST(Chips74CombinationalTest, LatchedDecoderByAddressAndEnables)
{
    struct Row
    {
        const char* inputs;  // own records at 0
        const char* y;       // Y7..Y0 one delay later
    };
    const Row rows[] = {
        {"_GL=L G1=H _G2=L C=H B=L A=H", "HHLHHHHH"},  // transparent
        {"_GL=L G1=H _G2=L C=u B=H A=H", "HHHHLHHH"},  // an undefined address bit counts as L
        {"_GL=L G1=L _G2=L C=H B=H A=H", "HHHHHHHH"},  // G1 L
        {"_GL=L G1=H _G2=H C=H B=H A=H", "HHHHHHHH"},  // _G2 H
        {"_GL=H G1=L _G2=u C=L B=L A=H", "HHHHHHHH"},
        {"_GL=H G1=u _G2=u C=L B=H A=L", "HHHHHLHH"},  // undefined enables select
        {"_GL=L G1=H _G2=u C=L B=H A=H", "HHHHLHHH"},
        {"_GL=H G1=u _G2=L C=H B=H A=H", "LHHHHHHH"},
        {"_GL=u G1=H _G2=L C=H B=H A=H", "HHHHHHHH"},  // latch enable undefined
        {"_GL=H G1=H _G2=L C=H B=H A=H", "UUUUUUUU"},  // latched, never open
    };
    ComponentFactory factory;
    for (const Row& r : rows) {
        Component* decoder = factory.create("74LS137", "d");
        set_inputs(decoder, r.inputs);
        decoder->evaluate(38);
        EXPECT_EQ(outputs_of(decoder, "Y"), std::string("Y=") + r.y + " ") << r.inputs;
    }

    // The latch holds the address of the last ns the latch enable was L.
    Component* decoder = factory.create("74LS137", "d(delay=5)");
    set_inputs(decoder, "_GL=L G1=H _G2=L C=H B=L A=H");
    decoder->port("_GL")->set(Value("H"), 50);
    decoder->port("A")->set(Value("L"), 50);
    decoder->port("C")->set(Value("L"), 60);
    decoder->port("B")->set(Value("H"), 60);
    decoder->evaluate(105);
    EXPECT_EQ(outputs_of(decoder, "Y"), "Y=HHLHHHHH ");
    decoder->port("_GL")->set(Value("L"), 200);
    decoder->port("_GL")->set(Value("H"), 201);
    decoder->evaluate(305);
    EXPECT_EQ(outputs_of(decoder, "Y"), "Y=HHHHHLHH ");
}

TEST(Chips74CombinationalTest, SixteenOutputDecoder)
{
    struct Row
    {
        const char* inputs;  // own records at 0
        const char* pins;    // Y15..Y0 one delay later
    };
    const Row rows[] = {
        {"_G1=L _G2=L D=L C=L B=H A=H", "HHHHHHHHHHHHLHHH"},
        {"_G1=L _G2=L D=H C=H B=H A=H", "LHHHHHHHHHHHHHHH"},
        {"_G1=l _G2=l D=L C=L B=L A=L", "HHHHHHHHHHHHHHHL"},
        {"_G1=H _G2=L D=L C=L B=L A=L", "HHHHHHHHHHHHHHHH"},
        {"_G1=L _G2=H D=L C=L B=L A=L", "HHHHHHHHHHHHHHHH"},
        {"_G1=H _G2=L D=L C=L B=L A=U", "UUUUUUUUUUUUUUUU"},  // U wins even when disabled
        {"_G1=L _G2=u D=L C=L B=L A=L", "UUUUUUUUUUUUUUUU"},
        {"_G1=L _G2=L D=L C=L B=p A=H", "HHHHHHHHHHHHHHLH"},  // only H counts as 1
    };
    ComponentFactory factory;
    for (const Row& r : rows) {
        auto* decoder = dynamic_cast<DM74LS154*>(factory.create("74LS154", "d"));
        set_inputs(decoder, r.inputs);
        decoder->evaluate(23);
        EXPECT_EQ(pins_of_154(decoder), r.pins) << r.inputs;
        // "Y" reads the inner net, which took the value past the event queue.
        std::string y = decoder->port("Y")->value(23);
        EXPECT_EQ(y, r.pins) << r.inputs;
    }
}

TEST(Chips74CombinationalTest, TruthTables)
{
    struct Row
    {
        const char* type;     // factory type
        const char* inputs;   // own records at 0
        const char* outputs;  // written one delay later
    };
    const Row rows[] = {
        {"74LS00", "A2=H B2=H A3=L B3=u A4=H B4=U", "Y2=L Y3=H Y4=u "},
        {"74LS04", "A1=u A5=H A6=L", "Y1=u Y5=L Y6=H "},
        {"74LS08", "A1=L B1=u A2=H B2=H A3=H B3=L", "Y1=L Y2=H Y3=L "},
        {"74LS32", "A1=L B1=L A2=H B2=u A3=L B3=U", "Y1=L Y2=H Y3=u "},
        {"74LS125", "A1=H C1=L A2=H C2=u A3=L C3=H A4=u C4=L", "Y1=H Y2=u Y3=z Y4=u "},
        {"74LS139", "E1=L A1=HL E2=H A2=LL", "O1=HLHH O2=HHHH "},
        {"74LS139", "E1=u A1=LL E2=L A2=uL", "O1=UUUU O2=UUUU "},
        {"74LS139", "E1=L A1=LL E2=L A2=HH", "O1=HHHL O2=LHHH "},
        {"74LS244", "1_G=L 1A=HLHL 2_G=H 2A=HHHH", "1Y=HLHL 2Y=zzzz "},
        {"74LS244", "1_G=u 1A=HLHL 2_G=L 2A=zzzz", "1Y=uuuu 2Y=zzzz "},  // z passes as its own record
        {"74LS244", "1_G=p 1A=LuLH 2_G=z 2A=HLLL", "1Y=LuLH 2Y=HLLL "},
        {"74LS283", "A=HHHH B=LLLL cin=H", "C=LLLL cout=H "},
        {"74LS283", "A=LLHH B=LHLL cin=L", "C=LHHH cout=L "},
        {"74LS283", "A=HHHH B=HHHH cin=H", "C=HHHH cout=H "},
        {"74LS283", "A=HLLL B=HLLL cin=L", "C=LLLL cout=H "},
        {"74LS283", "A=HuLL B=LLLL cin=L", "C=UUUU cout=U "},
        {"74LS283", "A=LLLL B=LLLL cin=z", "C=UUUU cout=U "},
        {"74x688", "_G=L P=HLHLHLHL Q=HLHLHLHL", "_P=Q=L "},
        {"74x688", "_G=L P=HLHLHLHL Q=HLHLHLHH", "_P=Q=H "},
        {"74x688", "_G=L P=HLHLuLHL Q=HLHLHLHL", "_P=Q=U "},
        {"74x688", "_G=H P=HLHLuLHL Q=HLHLHLHL", "_P=Q=H "},
        {"74x688", "_G=u P=HHHHHHHH Q=HHHHHHHH", "_P=Q=U "},
        {"74x688", "_G=n P=HHHHHHHH Q=HHHHHHHH", "_P=Q=U "},
    };
    ComponentFactory factory;
    for (const Row& r : rows) {
        auto* chip = dynamic_cast<SingleDelayComponent*>(factory.create(r.type, "u"));
        set_inputs(chip, r.inputs);
        chip->evaluate(chip->delay());
        std::string names;
        std::istringstream in(r.outputs);
        std::string item;
        while (in >> item)
            names += item.substr(0, item.rfind('=')) + " ";
        EXPECT_EQ(outputs_of(chip, names), r.outputs) << r.type << ": " << r.inputs;
    }
}

TEST(Chips74CombinationalTest, OctalBufferReadsAFloatingInputAsUndefined)
{
    PartHarness h;
    Component* buffer = h.part("74LS244", "b");
    Port* data = h.source("data", 4);
    Port* g = h.source("g");
    h.net("data", {data, buffer->port("1A")});
    h.net("g", {g, buffer->port("1_G")});
    h.net("out", {buffer->port("1Y")});
    simulator()->reset(200);
    g->set(Value("L"), 0);
    data->set(Value("HLzz"), 0);
    data->set(Value("zzzz"), 100);
    simulator()->simulate(200);
    // What the buffer writes; the net then resolves U as u.
    EXPECT_EQ(changes_of(*buffer->port("1Y")), "33HLUU 133UUUU ");
}
