// A processor chip on a bench of stimuli, nets and a test memory, for the tests of the chips.
#ifndef MORVANE_TESTS_UNIT_COMPONENTS_PROCESSORBENCH_H
#define MORVANE_TESTS_UNIT_COMPONENTS_PROCESSORBENCH_H

#include "tests/unit/Components/PartHarness.h"

#include <cstdint>
#include <string>
#include <vector>

inline constexpr int period = 1000;  // ns, a 1 MHz clock; it falls at every multiple of this

// 64 KiB that answer reads at once: "Dout" shows the byte at "A" while "_R/W" is H and "A" is a
// number, and floats otherwise; a write is stored when "PHI2" falls with "_R/W" L.
class TestMemory : public Component
{
public:
    TestMemory() : Component("TestMemory", "mem", ParaMap()), bytes(0x10000, 0)
    {
        _a = make_port(16, Morvane::Input, "A");
        _rw = make_pin(Morvane::Input, "_R/W");
        _phi2 = make_pin(Morvane::Input, "PHI2");
        _din = make_port(8, Morvane::Input, "Din");
        _dout = make_port(8, Morvane::Output, "Dout");
    }

    void port_changed_value(Port* port, const Value&, const Value&, int time) override
    {
        request_evaluation(time, this, port);
    }
    void evaluate(int time) override
    {
        Value a = _a->value(time);
        bool read = _rw->value(time) == 'H';
        if (_phi2->negative_flank_at(time) && _rw->value(time) == 'L' && a.is_integer()) {
            Value d = _din->value(time);
            bytes[static_cast<std::size_t>(a.integer())] =
                d.is_integer() ? static_cast<uint8_t>(d.integer()) : 0xEE;
        }
        Value out("ZZZZZZZZ");
        if (read && a.is_integer())
            out.set_to(bytes[static_cast<std::size_t>(a.integer())]);
        _dout->set(out, time);
    }
    std::vector<std::string> get_valid_param_keys() override { return {}; }
    void update_after_param_change() override {}

    void load(uint16_t at, const std::vector<uint8_t>& program)
    {
        for (uint8_t b : program)
            bytes[at++] = b;
    }

    std::vector<uint8_t> bytes;  // the memory, by address

private:
    Port* _a = nullptr;     // address
    Pin* _rw = nullptr;     // H read, L write
    Pin* _phi2 = nullptr;   // writes are taken at its fall
    Port* _din = nullptr;   // the data bus, heard
    Port* _dout = nullptr;  // the data bus, driven
};

// A processor chip from the factory: a 1 MHz clock, an input stimulus on every other input (all H
// unless a test says otherwise), and nets on every output. The data bus goes to a test memory, or to
// a stimulus of its own when `with_memory` is false.
template <class Chip> struct ProcessorBench
{
    explicit ProcessorBench(bool with_memory = true, const std::string& spec = "cpu")
    {
        cpu = dynamic_cast<Chip*>(h.part(Chip::class_name, spec));
        const char* rw_pin = cpu->port("_R/W") != nullptr ? "_R/W" : "R/W";
        if (cpu->port("BE") != nullptr) {
            h.net("be", {be, cpu->port("BE")});
        }
        h.net("phi0", {clk, cpu->port("PHI0")});
        h.net("res", {res, cpu->port("_RES")});
        h.net("irq", {irq, cpu->port("_IRQ")});
        h.net("nmi", {nmi, cpu->port("_NMI")});
        h.net("rdy", {rdy, cpu->port("RDY")});
        h.net("so", {so, cpu->port("_SO")});
        if (with_memory) {
            h.root.add(&mem, false);
            a = h.net("a", {cpu->port("A"), mem.port("A")});
            rw = h.net("rw", {cpu->port(rw_pin), mem.port("_R/W")});
            phi2 = h.net("phi2", {cpu->port("PHI2"), mem.port("PHI2")});
            d = h.net("d", {cpu->port("D"), mem.port("Din"), mem.port("Dout")});
        } else {
            a = h.net("a", {cpu->port("A")});
            rw = h.net("rw", {cpu->port(rw_pin)});
            phi2 = h.net("phi2", {cpu->port("PHI2")});
            d = h.net("d", {cpu->port("D"), data});
        }
        simulator()->reset(0);
        for (Port* p : {res, irq, nmi, rdy, so, be})
            p->set(Value("H"), 0);
    }
    ~ProcessorBench() { h.root.remove(&mem); }

    /// Clock periods from 0 on: L for the first half, H for the second.
    void clock(int periods)
    {
        for (int i = 0; i < periods; ++i) {
            clk->set(Value("L"), i * period);
            clk->set(Value("H"), i * period + period / 2);
        }
    }
    /// Program at `at`, with the reset vector pointing there.
    void program(uint16_t at, const std::vector<uint8_t>& code)
    {
        mem.load(at, code);
        mem.load(0xFFFC, {static_cast<uint8_t>(at), static_cast<uint8_t>(at >> 8)});
    }
    void run(int periods)
    {
        clock(periods);
        simulator()->simulate(periods * period);
    }

    PartHarness h;
    TestMemory mem;                    // on the bus unless the data come from `data`
    Port* clk = h.source("clk");       // "PHI0"
    Port* res = h.source("res");       // "_RES"
    Port* irq = h.source("irq");       // "_IRQ"
    Port* nmi = h.source("nmi");       // "_NMI"
    Port* rdy = h.source("rdy");       // "RDY"
    Port* so = h.source("so");         // "_SO"
    Port* data = h.source("data", 8);  // the data bus without memory
    Port* be = h.source("be");         // "BE", where the chip has it
    Chip* cpu = nullptr;               // the part
    Net* a = nullptr;                  // on "A"
    Net* rw = nullptr;                 // on "_R/W" or "R/W"
    Net* phi2 = nullptr;               // on "PHI2"
    Net* d = nullptr;                  // on "D"
};

// A value as a test reads it: one bit as its letter, a number in hexadecimal, else the letters.
inline std::string shown(const Value& value)
{
    return value.size() == 1 ? std::string(value) : value.readable();
}

// The changes of a history from `from` to `to` ns, as "<time>:<value> ".
inline std::string wave(const ValueHistory& history, int from, int to)
{
    std::string text;
    std::string last;
    for (const auto& entry : history.entries()) {
        std::string now = shown(entry.value);
        if (now == last)
            continue;
        last = now;
        if (entry.time >= from && entry.time <= to)
            text += std::to_string(entry.time) + ":" + now + " ";
    }
    return text;
}

// The valid addresses up to `to` ns in order: one for each cycle, since "A" is undefined between two.
inline std::string addresses(const ValueHistory& history, int to)
{
    std::string text;
    std::string last;
    for (const auto& entry : history.entries()) {
        std::string now = shown(entry.value);
        if (entry.time <= to && now != last && entry.value.is_integer())
            text += now + " ";
        last = now;
    }
    return text;
}

#endif  // MORVANE_TESTS_UNIT_COMPONENTS_PROCESSORBENCH_H
