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
#include "Core/Components/CPUs/ProcessorPins.h"
#include "Core/Components/ParaMap.h"

#include <cstdint>
#include <string>

/// The NMOS core as the chip runs it: decimal mode on, no 6510 port.
struct Nmos6502Core
{
    using State = m6502_t;
    static uint64_t init(State* c)
    {
        m6502_desc_t desc{};
        desc.bcd_disabled = false;
        return m6502_init(c, &desc);
    }
    static uint64_t tick(State* c, uint64_t pins) { return m6502_tick(c, pins); }
    static uint8_t status(const State* c) { return m6502_p(c); }
    static void set_status(State* c, uint8_t p) { m6502_set_p(c, p); }
};

/// The chip "MOS6502": the pins and timing of ProcessorPins, driven straight from the core.
class MOS6502 : public ProcessorPart<MOS6502, Nmos6502Core>
{
public:
    static constexpr const char* class_name = "MOS6502";
    static ParaMap default_parameters();
    static std::string parameter_description();

    /// Makes the pins and the inner data bus, and applies the parameters.
    MOS6502(const std::string& instance_name, const ParaMap& params);

    /// The core back in its reset sequence, the inner bus cleared; the count of low "_RES" flanks stays.
    void reset() override;
    /// Answers a change of `port` at `time`.
    void evaluate_port(int time, Port* port) override;

    /// The clock outputs at `time`, then every output refreshed from what it holds at `time`.
    void _update_outputs(int time);

private:
    friend class ProcessorPart<MOS6502, Nmos6502Core>;

    void _update_inputs(int time) { _read_control_pins(time); }
    char _reset_level(int time) { return _level(_res, time); }
    void _emit_status(int flank) { _emit_bit(_sync, _is_fetching_opcode(), flank); }
};

#endif  // MORVANE_CORE_COMPONENTS_CPUS_MOS6502_MOS6502_H
