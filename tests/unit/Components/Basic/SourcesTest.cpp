#include "Core/Components/Basic/Sources.h"

#include "tests/unit/Components/PartHarness.h"
#include "tests/unit/ErrorText.h"

#include "Core/Support/Error.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

TEST(SourcesTest, WaveformsWrittenByInit)
{
    struct Row
    {
        const char* type;  // as a file names it
        const char* spec;  // instance specification
        int end_time;      // ns, handed to init
        const char* want;  // the output's record
    };
    const Row rows[] = {
        {"High", "s", 100, "0H "},
        {"Low", "s", 100, "0L "},
        {"PullUp", "s", 100, "0p "},
        {"PullDown", "s", 100, "0n "},
        {"Step", "s", 1000, "0L 100H "},
        {"Step", "s(inverted=1)", 1000, "0H 100L "},
        {"Step", "s(inverted=7,delay=0x20)", 1000, "0H 32L "},
        {"Step", "s(inverted=-1)", 1000, "0H 100L "},    // numbers are read without a sign
        {"Step", "s(inverted=true)", 1000, "0L 100H "},  // no number reads as -1: not inverted
        {"Step", "s(delay=0)", 1000, "0H "},             // the edge replaces the level of time 0
        {"Oscillator", "s", 2500, "0H 500L 1000H 1500L 2000H 2500L "},
        {"Oscillator", "s", 2499, "0H 500L 1000H 1500L 2000H 2500L "},
        {"Oscillator", "s", 1999, "0H 500L 1000H 1500L "},
        {"Oscillator", "s", 999, "0H 500L "},
        {"Oscillator", "s(offset=100)", 2500, "0L 100H 600L 1100H 1600L 2100H 2600L "},
        // A period of 5 ns: the high phase is the shorter one.
        {"Oscillator", "s(frequency=200000000)", 10, "0H 2L 5H 7L 10H 12L "},
        // At 1 GHz the high phase is 0 ns long: each falling edge replaces its rising one.
        {"Oscillator", "s(frequency=1e9)", 2, "0L 1L 2L "},
        {"Oscillator", "s(frequency=2.5e6,offset=30)", 800, "0L 30H 230L 430H 630L 830H 1030L "},
    };
    ComponentFactory factory;
    for (const Row& r : rows) {
        Component* c = factory.create(r.type, r.spec);
        c->init(r.end_time);
        EXPECT_EQ(record_of(*c->port("out")), r.want) << r.type << " " << r.spec << " up to " << r.end_time;
        c->reset();
        EXPECT_EQ(record_of(*c->port("out")), "") << r.type;
    }
}

TEST(SourcesTest, ConstValues)
{
    struct Row
    {
        const char* spec;  // instance specification of a Const
        const char* want;  // the value written at time 0
    };
    const Row rows[] = {
        {"c", "HHHHHHHH"},
        {"c(size=4,value=ff)", "HHHH"},
        {"c(size=4)", "HHHH"},  // the factory supplies the default value
        {"c(size=12,value=3)", "LLLLLLLLLLHH"},
        {"c(size=0x10,value=a5)", "LLLLLLLLHLHLLHLH"},
        {"c(size=8,value=Z)", "LLLLzzzz"},
        {"c(size=6,value=1LH)", "LLLHLH"},
    };
    ComponentFactory factory;
    for (const Row& r : rows) {
        auto* c = dynamic_cast<Const*>(factory.create("Const", r.spec));
        // The value stands from construction on, and again after a reset and init.
        EXPECT_EQ(record_of(*c->port("out")), std::string("0") + r.want + " ") << r.spec;
        c->reset();
        EXPECT_EQ(c->port("out")->nof_values(), 0u);
        c->init(500);
        c->evaluate(300);
        EXPECT_EQ(record_of(*c->port("out")), std::string("0") + r.want + " ") << r.spec;
    }
}

TEST(SourcesTest, ConstNeedsSizeAndValue)
{
    struct Row
    {
        const char* params;   // the whole map
        const char* message;  // what the constructor throws
    };
    const Row rows[] = {
        {"", "A Const unit needs a 'size' parameter."},
        {"(value=ff)", "A Const unit needs a 'size' parameter."},
        {"(size=8)", "A Const unit needs a 'value' parameter."},
    };
    for (const Row& r : rows) {
        EXPECT_EQ(error_of([&] { Const c("c", ParaMap(std::string(r.params))); }), r.message) << r.params;
    }
}
