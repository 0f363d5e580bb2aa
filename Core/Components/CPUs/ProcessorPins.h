// What the two processor chips share on their pins: the clock, the timed address, R/W and data lines,
// the inner data bus, the three interrupt and ready inputs, and the four bus timing parameters.
//
// ProcessorPins holds the pins and the timing and knows nothing of a core. ProcessorPart<Chip, Core>
// puts a core on them: it runs the core on the falling clock and calls the chip class for what the
// two chips do differently (which inputs they read, how "_RES" acts, which lines they drive), without
// a virtual call on the way.
#ifndef MORVANE_CORE_COMPONENTS_CPUS_PROCESSORPINS_H
#define MORVANE_CORE_COMPONENTS_CPUS_PROCESSORPINS_H

#include "Core/Components/CPUs/cpu65.h"
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

/// An output that is set ahead of the running time, and how far ahead it was set.
struct PlantedOutput
{
    /// Sets the port at `time` and keeps the latest time it was given.
    void plant(const Value& value, int time);
    /// Port::update at `time`, for an output whose history may reach past it.
    void refresh(int time);
    /// Sets this output at `time` to what `from` holds then.
    void copy(PlantedOutput& from, int time) { plant(from.port->value(time), time); }

    Port* port = nullptr;   // not owned
    int planted = no_time;  // ns, latest time it was set for
};

/// The pins, the inner data bus and the bus timing of a processor chip. The data bus "D" hangs on an
/// inner net, "databus", where the processor reads at "d_read" and drives at "d_write"; the net
/// resolves the bus with whatever else drives it.
class ProcessorPins : public Component
{
public:
    ~ProcessorPins() override;

    /// The help on "t_ads", "t_ah", "t_mds" and "t_dhw".
    static std::string timing_description();

    /// Releases the inner data bus from before the first event.
    void init(int end_time) override;
    /// "t_ads", "t_ah", "t_mds", "t_dhw"
    std::vector<std::string> get_valid_param_keys() override;
    /// Every input change is evaluated at its own time: all timing is in the outputs.
    void port_changed_value(Port* port, const Value& old_value, const Value& new_value, int time) override;
    /// Reads the four times; a missing key keeps the time as it was.
    void update_after_param_change() override;

    // The steps the evaluations are made of, usable one by one.
    bool _is_a_read_cycle() const { return (_pins & cpu65_pin_rw) != 0; }
    bool _is_a_write_cycle() const { return (_pins & cpu65_pin_rw) == 0; }
    bool _is_fetching_opcode() const { return (_pins & cpu65_pin_sync) != 0; }
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

protected:
    ProcessorPins(const char* class_name, const std::string& instance_name, const ParaMap& params);

    /// "A", "D" with the inner bus, the read/write pin of the given name, then "_IRQ" to "_RES".
    void _make_pins(const char* rw_name);
    /// Forgets the clock, the inner bus and what was planted.
    void _reset_pins();
    /// "_IRQ", "_NMI" and "RDY" into the pin word.
    void _read_control_pins(int time);
    void _emit_address(int flank);
    void _emit_rw(int flank);
    /// u from t_ah after the flank, then H or L from t_ads.
    void _emit_bit(PlantedOutput& line, bool high, int flank);
    void _update_clocks(int time);
    /// The letter of a one-bit input at `time`, in lower case.
    static char _level(Pin* pin, int time) { return Morvane::lower_letter(pin->letter(time)); }

    uint64_t _pins = 0;         // the pin word between ticks
    char _last_clock = 'u';     // "PHI0" at the last evaluate(int), lower case
    int _last_time = -1;        // ns, time of the last evaluate(int)
    int _reset_low_cycles = 0;  // falling clock flanks seen with "_RES" low; kept over reset()
    int _t_ads = 200;           // ns, falling clock to address, R/W and SYNC valid
    int _t_ah = 10;             // ns, falling clock to address, R/W and SYNC undefined
    int _t_mds = 25;            // ns, rising clock to write data valid
    int _t_dhw = 10;            // ns, falling clock to write data released

    PlantedOutput _a;                // address, 16 bits out
    Port* _d = nullptr;              // data bus, 8 bits both ways, no z translation
    PlantedOutput _rw;               // H read, L write
    Pin* _irq = nullptr;             // "_IRQ", active low
    Pin* _nmi = nullptr;             // "_NMI", active low
    Pin* _rdy = nullptr;             // "RDY": low halts
    PlantedOutput _sync;             // H during an opcode fetch
    Pin* _phi0 = nullptr;            // clock in
    Pin* _phi1 = nullptr;            // clock out, inverted
    Pin* _phi2 = nullptr;            // clock out
    Pin* _so = nullptr;              // "_SO", set overflow, active low
    Pin* _res = nullptr;             // "_RES", active low
    std::unique_ptr<Net> _databus;   // inner side of "D"; dies after the two ports below
    std::unique_ptr<Port> _d_read;   // where the processor reads the bus; no owner
    std::unique_ptr<Port> _d_write;  // where the processor drives the bus; no owner
    PlantedOutput _write;            // on _d_write
    // Where the clock step puts address, R/W and write data: the pins themselves, or inner ports
    // that a chip copies to its pins.
    PlantedOutput* _address_to = &_a;
    PlantedOutput* _rw_to = &_rw;
    PlantedOutput* _data_to = &_write;

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

/// A core on the pins. `Core` names the record and its functions: `State`, `init`, `tick`, `status`,
/// `set_status`. `Chip` is the class that derives from this one; it supplies
/// - `_update_inputs(int time)`: the inputs into the pin word;
/// - `_reset_level(int time)`: the letter of "_RES", in lower case, and what it does at once;
/// - `_emit_status(int flank)`: the lines besides address and R/W that a new cycle sets;
/// - `_update_outputs(int time)`: the outputs after a clock change.
template <class Chip, class Core> class ProcessorPart : public ProcessorPins
{
public:
    /// The form without a port: flanks from the clock level of the last call, the moment of a flank
    /// taken halfway between that call and this one.
    void evaluate(int time) override
    {
        Chip& chip = static_cast<Chip&>(*this);
        chip._update_inputs(time);
        // The flank fell somewhere since the last call; halfway is the best guess of when.
        int mid = (_last_time + time + 1) / 2;
        _set_overflow_while_low(time);
        char res = chip._reset_level(time);
        if (_negative_clk_flank(time))
            _falling_step(res, time, mid);
        if (_positive_clk_flank(time) && res == 'h' && _is_a_write_cycle())
            _emit_data(mid);
        _last_time = time;
        _last_clock = _level(_phi0, time);
        chip._update_outputs(time);
    }

    /// The status register of the core.
    uint8_t sr() const { return Core::status(&_core); }
    /// `n` cycles of the core with no pin activity.
    void _skip_ahead(int n)
    {
        for (int i = 0; i < n; ++i)
            _pins = Core::tick(&_core, _pins);
    }
    /// The core at the start of its reset sequence.
    void _reset_init() { _pins = Core::init(&_core); }

protected:
    using ProcessorPins::ProcessorPins;

    /// What evaluate_port does before the outputs: inputs, "_SO", "_RES", and a flank of "PHI0".
    void _evaluate_inputs_and_clock(int time, Port* port)
    {
        Chip& chip = static_cast<Chip&>(*this);
        chip._update_inputs(time);
        // On every evaluation for this pin while it is low, not on its edge alone.
        if (port == _so)
            _set_overflow_while_low(time);
        char res = chip._reset_level(time);
        if (port != _phi0)
            return;
        if (_phi0->negative_flank_at(time))
            _falling_step(res, time, time);
        else if (_phi0->positive_flank_at(time) && res == 'h' && _is_a_write_cycle())
            _emit_data(time);
    }

    /// The cycle that a falling clock ends; `res` is the letter of "_RES", the bus is read and the
    /// outputs timed from `flank`, the data released from `time`.
    void _falling_step(char res, int time, int flank)
    {
        if (res == 'h') {
            // Two low flanks at least make a reset; it starts at the first flank after "_RES" rose.
            if (_reset_low_cycles > 1)
                _reset_init();
            _reset_low_cycles = 0;
        }
        if (res == 'l') {
            // Held: no tick, and the data bus stays as it is.
            ++_reset_low_cycles;
        } else {
            _sample_data_bus(flank);
            _pins = Core::tick(&_core, _pins);
            // The old cycle's write data hold for t_dhw; a new write is undefined until t_mds after
            // the rise.
            if (_is_a_read_cycle())
                _tristate_data_bus(time);
            else
                _set_data_undefined(time);
        }
        _emit_address(flank);
        _emit_rw(flank);
        static_cast<Chip&>(*this)._emit_status(flank);
    }

    void _set_overflow_while_low(int time)
    {
        if (_level(_so, time) == 'l')
            Core::set_status(&_core, Core::status(&_core) | cpu65_vf);
    }

    typename Core::State _core;  // the processor
};

#endif  // MORVANE_CORE_COMPONENTS_CPUS_PROCESSORPINS_H
