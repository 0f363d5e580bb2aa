// 74-series combinational chips that compute in their own evaluation: the 3-to-8 decoder with
// address latch, the octal three-state buffer, the 4-bit adder, the 8-bit comparator and the
// 4-to-16 decoder.
//
// All read their inputs one delay back and write at the evaluation's time, so every input change
// is answered on its own, one delay later. Undefined inputs are no errors: each table below says
// what they give. A floating input reads as U.
#ifndef MORVANE_CORE_COMPONENTS_CHIPS74DECODERS_H
#define MORVANE_CORE_COMPONENTS_CHIPS74DECODERS_H

#include "Core/Circuit/Circuit.h"
#include "Core/Components/Component.h"
#include "Core/Components/ParaMap.h"

#include <memory>
#include <string>

class Split;

/// 3-to-8 decoder with address latch, outputs active low: pins "A", "B", "C" (address, C high),
/// "_GL" (latch enable), "G1", "_G2"; port "Y", 8 bits, bit i is output i.
///
/// In order:
/// - "_GL" L, "G1" H, "_G2" L: transparent, the addressed output L, the rest H;
/// - undefined enables: "_G2" u with "G1" u or H, or "_G2" L with "G1" u, whatever "_GL" is, select
///   the addressed output as if transparent;
/// - "_GL" H, "G1" H, "_G2" L: latched, the address as it stood when "_GL" was last L; all U if it
///   never was;
/// - anything else ("G1" L, "_G2" H, "_GL" u with the chip enabled): all H.
/// An undefined address bit counts as L. The latch keeps no state: the address is found by walking
/// "_GL"'s history back one ns at a time. Default delay 38 ns.
class DM74LS137 : public SingleDelayComponent
{
public:
    static constexpr const char* class_name = "DM74LS137";
    static ParaMap default_parameters();
    static std::string parameter_description();

    DM74LS137(const std::string& instance_name, const ParaMap& params);
    DM74LS137(const std::string& instance_name, int delay);

    void evaluate(int time) override;

private:
    void _init();
    /// C·4 + B·2 + A at `time`; a bit counts as 1 only if it is H.
    int _get_index(int time);
    /// Drives output `index` of `y` L; the letter is ignored, the output is always L.
    static void _set_index(Value& y, int index, char letter);

    Pin* _a = nullptr;   // address, bit 0
    Pin* _b = nullptr;   // address, bit 1
    Pin* _c = nullptr;   // address, bit 2
    Pin* _gl = nullptr;  // latch enable "_GL", active low: the address passes while L
    Pin* _g1 = nullptr;  // enable, active high
    Pin* _g2 = nullptr;  // enable "_G2", active low
    Port* _y = nullptr;  // outputs, 8 bits, active low
};

/// Octal three-state buffer in two halves of four: for n = 1, 2, port "nA" in, port "nY" out (4 bits
/// each), pin "n_G" in. "n_G" H releases "nY" (z), u gives u, any other (L) passes "nA" as read:
/// a floating "nA" comes out U. Default delay 33 ns.
class DM74LS244 : public SingleDelayComponent
{
public:
    static constexpr const char* class_name = "DM74LS244";
    static ParaMap default_parameters();
    static std::string parameter_description();

    DM74LS244(const std::string& instance_name, const ParaMap& params);
    DM74LS244(const std::string& instance_name, int delay);

    void evaluate(int time) override;

private:
    void _init();

    Port* _in[2] = {};   // "1A", "2A", 4 bits each
    Port* _out[2] = {};  // "1Y", "2Y", 4 bits each
    Pin* _g[2] = {};     // "1_G", "2_G", output enables, active low
};

/// 4-bit binary full adder: ports "A", "B" (4 bits) in, "C" (4 bits, the sum) out, pin "cin" in,
/// pin "cout" out. "C" = A + B + cin modulo 16, "cout" H on overflow. Any undefined bit in the
/// inputs gives "C" all U and "cout" U. Default delay 24 ns.
class DM74LS283 : public SingleDelayComponent
{
public:
    static constexpr const char* class_name = "DM74LS283";
    static ParaMap default_parameters();
    static std::string parameter_description();

    DM74LS283(const std::string& instance_name, const ParaMap& params);
    DM74LS283(const std::string& instance_name, int delay);

    void evaluate(int time) override;

private:
    void _init();

    Port* _a = nullptr;    // addend, 4 bits
    Port* _b = nullptr;    // addend, 4 bits
    Port* _c = nullptr;    // sum, 4 bits
    Pin* _cin = nullptr;   // carry in
    Pin* _cout = nullptr;  // carry out
};

/// 8-bit identity comparator: pin "_G" in, pin "_P=Q" out, ports "P", "Q" (8 bits) in. "_G" H gives
/// "_P=Q" H; "_G" L gives L when P equals Q, H when they differ, U when either has an undefined bit;
/// "_G" in any other state gives U.
///
/// Timing by "family": "LS" 25 ns (the default), "ALS" 22 ns; "delay" overrides the family. Another
/// family throws Error.
class SN74x688 : public SingleDelayComponent
{
public:
    static constexpr const char* class_name = "SN74x688";
    static ParaMap default_parameters();
    static std::string parameter_description();

    /// The family's delay, then "delay" if given.
    SN74x688(const std::string& instance_name, const ParaMap& params);
    /// The delay as given; no family is read.
    SN74x688(const std::string& instance_name, int delay);

    /// "delay", "family".
    std::vector<std::string> get_valid_param_keys() override;
    void evaluate(int time) override;
    /// The family's delay, then "delay" if given.
    void update_after_param_change() override;
    /// "<br>Delay: <i>25</i>" and the like.
    std::string aux_info_string() override;

private:
    void _init();
    void _set_delay_from_family(const ParaMap& params);

    Pin* _g = nullptr;               // enable "_G", active low
    Pin* _p_eq_q = nullptr;          // output "_P=Q", L on equality
    Port* _p = nullptr;              // 8 bits
    Port* _q = nullptr;              // 8 bits
    int _last_evaluation_time = -1;  // ns; kept, read by nothing
};

/// 4-to-16 decoder, outputs active low: pins "A", "B", "C", "D" (address, D high), "_G1", "_G2"
/// (enables, active low); port "Y" (16 bits); then output pins "Y0" to "Y15".
///
/// Both enables L drive the addressed output L, the rest H; an enable H gives all H; any U among
/// the six inputs gives all sixteen U, even with an enable H. An address bit counts as 1 only if H.
///
/// A circuit of its own: the result goes straight into the history of the inner net "y_net" on
/// "Y", and the inner Split "ysplit" hands it to the sixteen pins at once. Default delay 23 ns.
class DM74LS154 : public Circuit
{
public:
    static constexpr const char* class_name = "DM74LS154";
    static ParaMap default_parameters();
    static std::string parameter_description();

    DM74LS154(const std::string& instance_name, const ParaMap& params);
    DM74LS154(const std::string& instance_name, int delay);
    /// Takes the Split's pins out of the own list and the Split out of the circuit before it dies.
    ~DM74LS154() override;

    /// Asks for an evaluation one delay after the change.
    void port_changed_value(Port* port, const Value& old_value, const Value& new_value, int time) override;
    void evaluate(int time) override;
    /// Reads "delay"; a missing key leaves the delay as it was.
    void update_after_param_change() override;
    /// Clears "y_net", resets the Split and the own ports.
    void reset() override;

    int delay() const { return _delay; }

private:
    void _init();
    /// D·8 + C·4 + B·2 + A at `time`; a bit counts as 1 only if it is H.
    int _get_index(int time);
    /// Drives output `index` of `y` L.
    static void _set_index(Value& y, int index);

    int _delay = 0;                 // ns, input change to the outputs
    Pin* _a = nullptr;              // address, bit 0
    Pin* _b = nullptr;              // address, bit 1
    Pin* _c = nullptr;              // address, bit 2
    Pin* _d = nullptr;              // address, bit 3
    Pin* _g1 = nullptr;             // enable "_G1", active low
    Pin* _g2 = nullptr;             // enable "_G2", active low
    Port* _y = nullptr;             // all outputs, 16 bits, bit i is "Yi"
    std::unique_ptr<Split> _split;  // "ysplit": "Y" to the pins "Y0".."Y15"; owns those pins
    Net* _y_net = nullptr;          // inner net between "Y" and the Split; owned by the net factory
};

#endif  // MORVANE_CORE_COMPONENTS_CHIPS74DECODERS_H
