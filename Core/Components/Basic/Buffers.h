// Delay line, three-state buffers and the 1-of-4 demultiplexer.
//
// They live like gates: a change on any input asks for an evaluation one delay later, and the
// evaluation reads the inputs as they stood one delay earlier and writes at its own time, so each is
// a pure transport delay.
//
// - Delay: "out" repeats "in".
// - ThreeStateBuf, BusBuffer: "_g" H releases "out" (z); "_g" u gives u; any other "_g" (L) passes
//   "in" as it stands, so an undefined input comes out undefined.
// - Demux1to4: enable "x" H drives every output H; "x" u makes them all u; "x" L drives the output
//   that the select inputs name L and the rest H. A select with an undefined bit gives u on all.
//   Outputs and "x" are active low. Pin form: select "s1" "s0", outputs "y0".."y3"; bus form: select
//   port "S" (2 bits), output port "Y" (4 bits, bit i is output i).
//
// Timing parameter of all: delay, ns from an input change to the output.
#ifndef MORVANE_CORE_COMPONENTS_BUFFERS_H
#define MORVANE_CORE_COMPONENTS_BUFFERS_H

#include "Core/Components/Component.h"
#include "Core/Components/ParaMap.h"

#include <string>
#include <vector>

/// "out" follows "in" one delay later. Default delay 3 ns.
class Delay : public SingleDelayComponent
{
public:
    static constexpr const char* class_name = "Delay";
    static ParaMap default_parameters();
    static std::string parameter_description();

    Delay(const std::string& instance_name, const ParaMap& params);
    Delay(const std::string& instance_name, int delay);

    void evaluate(int time) override;

private:
    void _init();

    Pin* _in = nullptr;   // input
    Pin* _out = nullptr;  // output
};

/// One bit with an active-low output enable "_g". Default delay 3 ns.
class ThreeStateBuf : public SingleDelayComponent
{
public:
    static constexpr const char* class_name = "ThreeStateBuf";
    static ParaMap default_parameters();
    static std::string parameter_description();

    ThreeStateBuf(const std::string& instance_name, const ParaMap& params);
    ThreeStateBuf(const std::string& instance_name, int delay);

    void evaluate(int time) override;

private:
    void _init();

    Pin* _in = nullptr;   // input
    Pin* _g = nullptr;    // output enable, active low
    Pin* _out = nullptr;  // output
};

/// `size` bits with one active-low output enable "_g". Default delay 10 ns, 8 bits.
class BusBuffer : public SingleDelayComponent
{
public:
    static constexpr const char* class_name = "BusBuffer";
    static ParaMap default_parameters();
    /// Both defaults it quotes read 10, although the width's is 8.
    static std::string parameter_description();

    /// The width comes from "size" at construction and stays.
    BusBuffer(const std::string& instance_name, const ParaMap& params);
    BusBuffer(const std::string& instance_name, int delay, int size);

    /// "delay" and "size".
    std::vector<std::string> get_valid_param_keys() override;
    void evaluate(int time) override;

    int size() const { return _size; }

private:
    void _init();

    int _size = 8;         // bits of "in" and "out"
    Port* _in = nullptr;   // input, `size` bits
    Port* _out = nullptr;  // output, `size` bits
    Pin* _g = nullptr;     // output enable, active low
};

/// 1-of-4 decoder with an active-low enable, on pins or on two buses. Default delay 10 ns.
class Demux1to4 : public SingleDelayComponent
{
public:
    static constexpr const char* class_name = "Demux1to4";
    static ParaMap default_parameters();
    static std::string parameter_description();

    /// Reads "delay" (10 without it) and "bus_io" (false without it), then makes the pins of that form.
    Demux1to4(const std::string& instance_name, const ParaMap& params);
    Demux1to4(const std::string& instance_name, int delay, bool bus_io);

    void evaluate(int time) override;
    /// Reads "delay" and "bus_io" again; the ports stay those of the form it was made in. The valid
    /// keys stay "delay" alone.
    void update_after_param_change() override;

    bool bus_io() const { return _bus_io; }

private:
    void _init();
    /// The select inputs at `time` as two bits, "s1" the higher.
    Value _select_value(int time);
    /// The pattern's last letter goes to output 0.
    void _set(const char* pattern, int time);

    bool _bus_io = false;    // bus form instead of pins
    Pin* _x = nullptr;       // enable, active low
    Pin* _y[4] = {};         // pin form: outputs y0..y3, active low
    Pin* _s0 = nullptr;      // pin form: select, low bit
    Pin* _s1 = nullptr;      // pin form: select, high bit
    Port* _s_bus = nullptr;  // bus form: select "S", 2 bits
    Port* _y_bus = nullptr;  // bus form: outputs "Y", 4 bits
};

#endif  // MORVANE_CORE_COMPONENTS_BUFFERS_H
