// W65C02 microprocessor (CMOS): the cycle-stepped core of w65c02.h on the pins of the chip. It runs
// as MOS6502 does, with these differences:
// - "BE" (bus enable, active high) floats "A", "D" and "R/W" t_bvd after it falls and drives them
//   again t_bvd after it rises; at U they go undefined. Such a state holds until the next flank of
//   "BE", also over what the last clock change had planted on the lines. The processor keeps
//   running meanwhile: the clock step puts address, data and R/W on three inner ports, and each
//   clock change copies what they hold at t_ah, t_ads (and t_dhw, t_mds for the data) onto the pins
//   while "BE" allows.
// - "_VP" is L while the core reads an interrupt vector, timed like "R/W".
// - "SYNC" goes straight to its new level at t_ads, and is L from before the first event.
// - "_RES" low releases the data bus at any input change, in a write cycle too: the inner data port
//   floats t_dhw later, and the pins follow at the next clock change.
// - The inputs are refreshed from their nets at every evaluation, and the outputs change only on a
//   clock change or through "BE".
// - RDY is read from its pin at every evaluation, over the RDY that WAI hands back: with "RDY" high
//   the core goes on past WAI.
//
// Timing parameters, ns: t_ads (30), t_ah (10), t_mds (25), t_dhw (10) as on MOS6502; t_bvd (25)
// from a flank of "BE" until the lines are valid or released.
//
// (The file isn't named W65C02.h: that would differ from the core's header by case alone.)
#ifndef MORVANE_CORE_COMPONENTS_CPUS_W65C02_W65C02CHIP_H
#define MORVANE_CORE_COMPONENTS_CPUS_W65C02_W65C02CHIP_H

#include "Core/Components/CPUs/ProcessorPins.h"
#include "Core/Components/CPUs/W65C02/w65c02.h"
#include "Core/Components/ParaMap.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

/// The CMOS core as the chip runs it, decimal mode on.
struct Cmos65C02Core
{
    using State = w65c02_t;
    static uint64_t init(State* c)
    {
        w65c02_desc_t desc{};
        desc.bcd_disabled = false;
        return w65c02_init(c, &desc);
    }
    static uint64_t tick(State* c, uint64_t pins) { return w65c02_tick(c, pins); }
    static uint8_t status(const State* c) { return w65c02_p(c); }
    static void set_status(State* c, uint8_t p) { w65c02_set_p(c, p); }
};

/// The chip "W65C02": the pins and timing of ProcessorPins, with "_VP", and "BE" between the clock
/// step and the address, data and R/W lines.
class W65C02 : public ProcessorPart<W65C02, Cmos65C02Core>
{
public:
    static constexpr const char* class_name = "W65C02";
    static ParaMap default_parameters();
    static std::string parameter_description();

    /// Makes the pins, the inner data bus and the inner bus ports, and applies the parameters.
    W65C02(const std::string& instance_name, const ParaMap& params);
    ~W65C02() override;

    /// The core back in its reset sequence, the inner ports cleared; the count of low "_RES" flanks
    /// stays.
    void reset() override;
    /// Releases the inner data bus and sets "SYNC" L, both from before the first event.
    void init(int end_time) override;
    /// Answers a change of `port` at `time`.
    void evaluate_port(int time, Port* port) override;
    /// "t_ads", "t_ah", "t_mds", "t_dhw", "t_bvd"
    std::vector<std::string> get_valid_param_keys() override;
    /// A change of "BE" is evaluated t_bvd later, any other at once.
    void port_changed_value(Port* port, const Value& old_value, const Value& new_value, int time) override;
    /// Reads the five times; a missing key keeps the time as it was.
    void update_after_param_change() override;

    bool _is_fetching_vectors() const { return (_pins & w65c02_pin_vp) != 0; }
    /// "_VP" for the cycle now due: u from t_ah, then its level from t_ads.
    void _emit_vp(int flank);
    /// "A", "D" and "R/W" as "BE", read t_bvd before `time`, asks from `time` on.
    void _handle_be_change(int time);
    /// The letter of "_RES" at `time`, lower case; while it is low, a driven bus is released.
    char _handle_reset_signal(int time);
    /// While "BE" allowed it t_bvd ago, the inner ports onto the pins; then the clocks and a refresh.
    void _update_outputs(int time);

private:
    friend class ProcessorPart<W65C02, Cmos65C02Core>;

    void _update_inputs(int time);
    char _reset_level(int time) { return _handle_reset_signal(time); }
    void _emit_status(int flank);
    /// At `time`: floating for "BE" `be` low, the inner ports for high, undefined otherwise.
    void _drive_bus_lines(char be, int time);

    int _t_bvd = 25;                     // ns, "BE" flank to lines valid or released
    int _clock_time = no_time;           // ns, the last clock change the outputs followed
    Pin* _vp = nullptr;                  // "_VP": L during a vector pull
    Pin* _be = nullptr;                  // "BE": bus enable, active high
    PlantedOutput _vp_line;              // on _vp
    std::unique_ptr<Port> _bus_address;  // 16 bits the clock step sets; no name, no owner
    std::unique_ptr<Port> _bus_data;     // 8 bits the same way
    std::unique_ptr<Port> _bus_rw;       // 1 bit the same way
    PlantedOutput _address_in;           // on _bus_address
    PlantedOutput _data_in;              // on _bus_data
    PlantedOutput _rw_in;                // on _bus_rw

    const Value _floating_address{"ZZZZZZZZZZZZZZZZ"};  // "A" while "BE" is low
    const Value _floating{'Z', 1};                      // "R/W" while "BE" is low
    const Value _undefined_level{'U', 1};               // "R/W" while "BE" is undefined
};

#endif  // MORVANE_CORE_COMPONENTS_CPUS_W65C02_W65C02CHIP_H
