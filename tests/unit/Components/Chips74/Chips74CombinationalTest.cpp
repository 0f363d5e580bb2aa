#include "tests/unit/Components/PartHarness.h"

#include "Core/Components/Chips74/Chips74Decoders.h"
#include "Core/Components/Chips74/Chips74Gates.h"

#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <utility>
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
std::string outputs_of(Component* c, const std::string& names, int t = 0)
{
    std::istringstream in(names);
    std::string name;
    std::string text;
    while (in >> name) {
        Port* p = c->port(name);
        // A bus the chip drives through an inner net reads that net.
        text += name + "=" +
                (p->nof_values() != 0 ? p->entries().back().value.c_str() : p->value(t).c_str()) + " ";
    }
    return text;
}

/// The delay a chip applies, whichever base it has.
int delay_of(Component* c)
{
    if (auto* decoder = dynamic_cast<DM74LS154*>(c))
        return decoder->delay();
    return dynamic_cast<SingleDelayComponent*>(c)->delay();
}

}  // namespace

TEST(Chips74CombinationalTest, DelaysByTypeAndFamily)
{
    // clang-format off
    const std::pair<const char*, int> rows[] = {
        {"74LS00 u", 10}, {"74LS04 u", 10}, {"74LS08 u", 13}, {"74LS32 u", 14}, {"74LS125 u", 25},
        {"74LS139 u", 38}, {"74LS137 u", 38}, {"74LS244 u", 33}, {"74LS283 u", 24}, {"74LS154 u", 23},
        {"74x688 u", 25}, {"74x688 u(family=ALS)", 22}, {"74x688 u(family=ALS,delay=30)", 30},
        {"74LS00 u(delay=20)", 20},
    };
    // clang-format on
    ComponentFactory factory;
    for (const auto& [spec, delay] : rows) {
        std::string text = spec;
        Component* c = factory.create(text.substr(0, text.find(' ')), text.substr(text.find(' ') + 1));
        EXPECT_EQ(delay_of(c), delay) << spec;
        // Inner parts take the chip's delay once the parameters are applied.
        if (auto* chip = dynamic_cast<InnerPartsChip*>(c)) {
            for (const auto& part : chip->inner_parts())
                EXPECT_EQ(part->delay(), delay) << spec;
        }
    }
}

TEST(Chips74CombinationalTest, LatchedDecoderHoldsTheAddressOfTheLastOpenNanosecond)
{
    ComponentFactory factory;
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
        {"74LS137", "_GL=L G1=H _G2=L C=H B=L A=H", "Y=HHLHHHHH "},  // transparent
        {"74LS137", "_GL=L G1=H _G2=L C=u B=H A=H", "Y=HHHHLHHH "},  // an undefined address bit counts as L
        {"74LS137", "_GL=L G1=L _G2=L C=H B=H A=H", "Y=HHHHHHHH "},
        {"74LS137", "_GL=L G1=H _G2=H C=H B=H A=H", "Y=HHHHHHHH "},
        {"74LS137", "_GL=H G1=u _G2=u C=L B=H A=L", "Y=HHHHHLHH "},  // undefined enables select
        {"74LS137", "_GL=H G1=u _G2=L C=H B=H A=H", "Y=LHHHHHHH "},
        {"74LS137", "_GL=u G1=H _G2=L C=H B=H A=H", "Y=HHHHHHHH "},  // latch enable undefined
        {"74LS137", "_GL=H G1=H _G2=L C=H B=H A=H", "Y=UUUUUUUU "},  // latched, never open
        {"74LS154", "_G1=L _G2=L D=L C=L B=H A=H", "Y=HHHHHHHHHHHHLHHH Y3=L Y4=H "},
        {"74LS154", "_G1=l _G2=l D=H C=H B=H A=H", "Y=LHHHHHHHHHHHHHHH "},
        {"74LS154", "_G1=H _G2=L D=L C=L B=L A=L", "Y=HHHHHHHHHHHHHHHH "},
        {"74LS154", "_G1=L _G2=H D=L C=L B=L A=L", "Y=HHHHHHHHHHHHHHHH "},
        {"74LS154", "_G1=H _G2=L D=L C=L B=L A=U", "Y=UUUUUUUUUUUUUUUU "},  // U wins even when disabled
        {"74LS154", "_G1=L _G2=u D=L C=L B=L A=L", "Y=UUUUUUUUUUUUUUUU "},
        {"74LS154", "_G1=L _G2=L D=L C=L B=p A=H", "Y=HHHHHHHHHHHHHHLH "},  // only H counts as 1
    };
    ComponentFactory factory;
    for (const Row& r : rows) {
        Component* chip = factory.create(r.type, "u");
        set_inputs(chip, r.inputs);
        chip->evaluate(delay_of(chip));
        std::string names;
        std::istringstream in(r.outputs);
        std::string item;
        while (in >> item)
            names += item.substr(0, item.rfind('=')) + " ";
        EXPECT_EQ(outputs_of(chip, names, delay_of(chip)), r.outputs) << r.type << ": " << r.inputs;
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
