// What all drivers of a net put on one bit, and the state that bit takes.
#ifndef MORVANE_CORE_SIMULATION_DRIVESTATUS_H
#define MORVANE_CORE_SIMULATION_DRIVESTATUS_H

#include "Core/Simulation/BitState.h"
#include "Core/Simulation/Value.h"

#include <cstdint>

/// The state of a bit from the counts of its drivers: all of them (o), H, L, z, pull-ups, pull-downs.
constexpr Morvane::BitState resolve_drivers(unsigned o, unsigned h, unsigned l, unsigned t, unsigned p,
                                            unsigned n)
{
    if (o == t)
        return Morvane::BitState::Tristate;
    if (p != 0 && n != 0)
        return Morvane::BitState::Undefined;
    if (o - t - h - l - p - n == 0 && h + l < 2) {
        // A strong driver overrides a pull.
        if (h != 0)
            return Morvane::BitState::High;
        if (l != 0)
            return Morvane::BitState::Low;
        if (p != 0)
            return Morvane::BitState::High;
        if (n != 0)
            return Morvane::BitState::Low;
    }
    return Morvane::BitState::Undefined;
}

/// Counts the drivers of one bit by kind. Resolution, in order:
/// - every driver z (or none at all): z;
/// - a pull-up and a pull-down together: u, whatever else drives;
/// - a single strong driver (H or L) and otherwise only z and pulls: its state;
/// - only pulls of one kind, and z: H for pull-ups, L for pull-downs;
/// - anything else: u. Two strong drivers conflict even when they agree, and a u or x driver makes u.
/// At most 255 drivers per bit.
class PinDriveStatus
{
public:
    PinDriveStatus(int output_ports = 0, int highs = 0, int lows = 0, int tri_states = 0, int pull_ups = 0,
                   int pull_downs = 0);
    virtual ~PinDriveStatus() = default;

    PinDriveStatus(const PinDriveStatus&) = default;
    PinDriveStatus& operator=(const PinDriveStatus&) = default;

    unsigned nof_output_ports() const { return _output_ports; }
    unsigned nof_highs() const { return _highs; }
    unsigned nof_lows() const { return _lows; }
    unsigned nof_tri_states() const { return _tri_states; }
    unsigned nof_pull_ups() const { return _pull_ups; }
    unsigned nof_pull_downs() const { return _pull_downs; }

    /// Counts one driver; a letter of no known kind counts as a driver of unknown state.
    /// The 256th driver throws Error.
    void record_value(char c);
    void record_value(const Morvane::BitState& state) { record_value(Morvane::letter(state)); }
    /// Adds the other's drivers; together more than 255 throws Error. Returns a copy of the sum.
    PinDriveStatus operator+=(const PinDriveStatus& other);

    /// Capital H or L, small u or z; pulls never come out as p or n.
    Morvane::BitState resulting_value() const;

private:
    [[noreturn]] static void _throw_too_many_drivers();

    std::uint8_t _output_ports;  // every driver recorded
    std::uint8_t _highs;         // drivers of H
    std::uint8_t _lows;          // drivers of L
    std::uint8_t _tri_states;    // drivers of z
    std::uint8_t _pull_ups;      // drivers of p
    std::uint8_t _pull_downs;    // drivers of n
};

/// The drivers of every bit of a port or net; bit 0 is the least significant. Up to 8 bits need no heap.
class PortDriveStatus
{
public:
    explicit PortDriveStatus(int width);
    PortDriveStatus(const PortDriveStatus& other);
    PortDriveStatus& operator=(const PortDriveStatus&) = delete;
    virtual ~PortDriveStatus();

    unsigned width() const { return _width; }
    /// Unchecked.
    PinDriveStatus& pin(int i) { return _array()[i]; }
    const PinDriveStatus& pin(int i) const { return _array()[i]; }

    /// One driver per bit; a value of another width throws Error.
    void record_value(Value value);
    /// Bit by bit; another width throws Error. Returns a copy of this status.
    PortDriveStatus operator+=(const PortDriveStatus& other);
    Value resulting_value() const;

private:
    static constexpr unsigned small_capacity = 8;  // bits kept in the object

    bool _dynamic_alloc() const { return _width > small_capacity; }
    PinDriveStatus* _array() { return _dynamic_alloc() ? _dynamic_array : _small_array; }
    const PinDriveStatus* _array() const { return _dynamic_alloc() ? _dynamic_array : _small_array; }

    PinDriveStatus _small_array[small_capacity];  // the bits of a narrow status
    PinDriveStatus* _dynamic_array = nullptr;     // owned, the bits of a status wider than 8; else null
    std::uint8_t _width;                          // bits
};

#endif  // MORVANE_CORE_SIMULATION_DRIVESTATUS_H
