// MOS 6502 microprocessor (NMOS): the cycle-stepped core of m6502.h on the pins of the chip, clocked
// by "PHI0", with the bus timing of the data sheet.
//
// At every evaluation, in this order:
// - "_IRQ", "_NMI" and "RDY" are read as they stand; only L asserts them, so u and z are inactive.
//   RDY low halts the core on a read cycle.
// - "_SO" low sets V, at every evaluation that a change of "_SO" asked for while it is low.
// - On a falling "PHI0" (H, then L): "_RES" L counts the flank and holds the core. Otherwise the
//   core restarts its reset sequence if "_RES" is H after two or more low flanks; a read cycle takes
//   the data bus into the core (an undefined bus leaves the byte of the last cycle); the core runs
//   one cycle. Address, "_R/W" and "SYNC" of the cycle now due are emitted, also while held.
// - On a rising "PHI0", with "_RES" H, a write cycle drives its data on "D".
// - "PHI1" follows "PHI0" inverted and "PHI2" as it is, at once; both u for any other level.
//
// Timing parameters, ns: t_ads (200) falling clock until address, "_R/W" and "SYNC" are valid; t_ah
// (10) falling clock until they go undefined; t_mds (25) rising clock until write data are valid;
// t_dhw (10) falling clock until the data of a write are released (Z) or, when the next cycle
// writes too, go undefined.
//
// The chip makes no events of its own and has no delay from pin to core. It starts in the reset
// sequence of the core: no pulse on "_RES" is needed.
#ifndef MORVANE_CORE_COMPONENTS_CPUS_MOS6502_MOS6502_H
#define MORVANE_CORE_COMPONENTS_CPUS_MOS6502_MOS6502_H

#include "Core/Components/CPUs/MOS6502/m6502.h"
#include "Core/Components/Component.h"
#include "Core/Components/ParaMap.h"
#include "Core/Simulation/BitState.h"
#include "Core/Simulation/EventSimulator.h"
#include "Core/Simulation/Net.h"
#include "Core/Simulation/Port.h"
#include "Core/Simulation/Value.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

/// The chip "MOS6502". The data bus "D" hangs on an inner net, "databus", where the processor reads
/// at "d_read" and drives at "d_write"; the net resolves the bus with whatever else drives it.
class MOS6502 : public Component
{
public:
    static constexpr const char* class_name = "MOS6502";
    static ParaMap default_parameters();
    static std::string parameter_description();

    /// Makes the pins and the inner data bus, and applies the parameters.
    MOS6502(const std::string& instance_name, const ParaMap& params);
    ~MOS6502() override;

    /// The core back in its reset sequence, the inner bus cleared; the count of low "_RES" flanks stays.
    void reset() override;
    /// Releases the inner data bus from before the first event.
    void init(int end_time) override;
    /// The form without a port: flanks from the clock level of the last call, the moment of a flank
    /// taken halfway between that call and this one.
    void evaluate(int time) override;
    /// Answers a change of `port` at `time`.
    void evaluate_port(int time, Port* port) override;
    /// "t_ads", "t_ah", "t_mds", "t_dhw"
    std::vector<std::string> get_valid_param_keys() override;
    /// Every input change is evaluated at its own time: all timing is in the outputs.
    void port_changed_value(Port* port, const Value& old_value, const Value& new_value, int time) override;
    /// Reads the four times; a missing key keeps the time as it was.
    void update_after_param_change() override;
    /// A clock flank looks one ns back; everything else is read at the present.
    int history_reach() const override { return 1; }

    /// The status register of the core.
    uint8_t sr() const { return m6502_p(&_core); }

    // The steps the evaluations are made of, usable one by one.
    bool _is_a_read_cycle() const { return (_pins & m6502_pin_rw) != 0; }
    bool _is_a_write_cycle() const { return (_pins & m6502_pin_rw) == 0; }
    bool _is_fetching_opcode() const { return (_pins & m6502_pin_sync) != 0; }
    /// `n` cycles of the core with no pin activity.
    void _skip_ahead(int n);
    /// The core at the start of its reset sequence, decimal mode on, no 6510 port.
    void _reset_init();
    /// Sets `mask` in the pin word if `pin` reads `state` at `time`, clears it otherwise.
    void _update_pin(Pin* pin, int time, Morvane::BitState state, uint64_t mask);
    /// "PHI0" at `time` against its level at the last evaluate(int).
    bool _negative_clk_flank(int time);
    bool _positive_clk_flank(int time);
    /// On a read cycle, the byte on the inner bus at `time` goes to the core if it is a number.
    void _sample_data_bus(int time);
    /// The write data of the pin word on the bus from `time` + t_mds.
    void _emit_data(int time);
    /// The bus released from `time` + t_dhw.
    void _tristate_data_bus(int time);
    /// The bus undefined from `time` + t_dhw.
    void _set_data_undefined(int time);
    /// The clock outputs at `time`, then every output refreshed from what it holds at `time`.
    void _update_outputs(int time);

private:
    void _init();
    /// "_IRQ", "_NMI" and "RDY" into the pin word.
    void _update_inputs(int time);
    /// The cycle that a falling clock ends; `res` is the letter of "_RES", the bus is read and the
    /// outputs timed from `flank`, the data released from `time`.
    void _falling_step(char res, int time, int flank);
    void _emit_address(int flank);
    void _emit_rw(int flank);
    void _emit_sync(int flank);
    void _update_clocks(int time);
    /// Sets an output planted ahead of the running time and keeps the latest time it was given.
    void _plant(Port* port, const Value& value, int time, int& planted);
    /// Port::update at `time`, for an output whose history may reach past it.
    void _refresh(Port* port, int planted, int time);
    /// The letter of a one-bit input at `time`, in lower case.
    static char _level(Pin* pin, int time) { return state_letter(pin->value(time)); }

    m6502_t _core;                 // the processor
    uint64_t _pins = 0;            // the pin word between ticks
    char _last_clock = 'u';        // "PHI0" at the last evaluate(int), lower case
    int _last_time = -1;           // ns, time of the last evaluate(int)
    int _reset_low_cycles = 0;     // falling clock flanks seen with "_RES" low; kept over reset()
    int _t_ads = 200;              // ns, falling clock to address, R/W and SYNC valid
    int _t_ah = 10;                // ns, falling clock to address, R/W and SYNC undefined
    int _t_mds = 25;               // ns, rising clock to write data valid
    int _t_dhw = 10;               // ns, falling clock to write data released
    int _a_planted = no_time;      // ns, latest time "A" was set for
    int _rw_planted = no_time;     // ns, latest time "_R/W" was set for
    int _sync_planted = no_time;   // ns, latest time "SYNC" was set for
    int _write_planted = no_time;  // ns, latest time "d_write" was set for

    Port* _a = nullptr;              // address, 16 bits out
    Port* _d = nullptr;              // data bus, 8 bits both ways, no z translation
    Pin* _rw = nullptr;              // "_R/W": H read, L write
    Pin* _irq = nullptr;             // "_IRQ", active low
    Pin* _nmi = nullptr;             // "_NMI", active low
    Pin* _rdy = nullptr;             // "RDY": low halts on a read cycle
    Pin* _sync = nullptr;            // H during an opcode fetch
    Pin* _phi0 = nullptr;            // clock in
    Pin* _phi1 = nullptr;            // clock out, inverted
    Pin* _phi2 = nullptr;            // clock out
    Pin* _so = nullptr;              // "_SO", set overflow, active low
    Pin* _res = nullptr;             // "_RES", active low
    std::unique_ptr<Net> _databus;   // inner side of "D"; dies after the two ports below
    std::unique_ptr<Port> _d_read;   // where the processor reads the bus; no owner
    std::unique_ptr<Port> _d_write;  // where the processor drives the bus; no owner

    // Values set again and again, made once.
    const Value _high{'H', 1};                           // one bit H
    const Value _low{'L', 1};                            // one bit L
    const Value _undefined{'u', 1};                      // one bit u
    const Value _undefined_address{"UUUUUUUUUUUUUUUU"};  // "A" between two cycles
    const Value _floating_data{"ZZZZZZZZ"};              // the bus released
    const Value _undefined_data{"UUUUUUUU"};             // the bus between two writes
    Value _address{16};                                  // scratch: the address to emit
    Value _data{8};                                      // scratch: the write data to emit
};

#endif  // MORVANE_CORE_COMPONENTS_CPUS_MOS6502_MOS6502_H
