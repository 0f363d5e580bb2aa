#include "Core/Simulation/DriveStatus.h"

#include "Core/Support/Error.h"

#include <algorithm>

using Morvane::BitState;

PinDriveStatus::PinDriveStatus(int output_ports, int highs, int lows, int tri_states, int pull_ups,
                               int pull_downs)
    : _output_ports(static_cast<std::uint8_t>(output_ports)),
      _highs(static_cast<std::uint8_t>(highs)),
      _lows(static_cast<std::uint8_t>(lows)),
      _tri_states(static_cast<std::uint8_t>(tri_states)),
      _pull_ups(static_cast<std::uint8_t>(pull_ups)),
      _pull_downs(static_cast<std::uint8_t>(pull_downs))
{
}

void PinDriveStatus::_throw_too_many_drivers()
{
    throw Error("*** ERROR: Maximum size of a a network is reached. Max 255 ports per net.");
}

void PinDriveStatus::record_value(char c)
{
    if (_output_ports == 255)
        _throw_too_many_drivers();
    ++_output_ports;
    switch (Morvane::lower_letter(c)) {
    case 'h':
        ++_highs;
        break;
    case 'l':
        ++_lows;
        break;
    case 'z':
        ++_tri_states;
        break;
    case 'p':
        ++_pull_ups;
        break;
    case 'n':
        ++_pull_downs;
        break;
    default:
        // u, x and anything unknown: a driver of no known state.
        break;
    }
}

PinDriveStatus PinDriveStatus::operator+=(const PinDriveStatus& other)
{
    if (_output_ports + other._output_ports >= 256)
        _throw_too_many_drivers();
    _output_ports = static_cast<std::uint8_t>(_output_ports + other._output_ports);
    _highs = static_cast<std::uint8_t>(_highs + other._highs);
    _lows = static_cast<std::uint8_t>(_lows + other._lows);
    _tri_states = static_cast<std::uint8_t>(_tri_states + other._tri_states);
    _pull_ups = static_cast<std::uint8_t>(_pull_ups + other._pull_ups);
    _pull_downs = static_cast<std::uint8_t>(_pull_downs + other._pull_downs);
    return *this;
}

BitState PinDriveStatus::resulting_value() const
{
    return resolve_drivers(_output_ports, _highs, _lows, _tri_states, _pull_ups, _pull_downs);
}

PortDriveStatus::PortDriveStatus(int width) : _width(static_cast<std::uint8_t>(width))
{
    if (_dynamic_alloc())
        _dynamic_array = new PinDriveStatus[_width];
}

PortDriveStatus::PortDriveStatus(const PortDriveStatus& other) : _width(other._width)
{
    if (_dynamic_alloc())
        _dynamic_array = new PinDriveStatus[_width];
    std::copy(other._array(), other._array() + _width, _array());
}

PortDriveStatus::~PortDriveStatus()
{
    delete[] _dynamic_array;
}

void PortDriveStatus::record_value(Value value)
{
    if (value.size() != _width)
        throw Error("*** ERROR: mismatch between Port and PortDriveStatus sizes; %d vs %d",
                    static_cast<int>(value.size()), static_cast<int>(_width));
    const char* letters = value.c_str();
    PinDriveStatus* pins = _array();
    // The letters run from the most significant bit.
    for (unsigned i = 0; i < _width; ++i)
        pins[i].record_value(letters[_width - 1 - i]);
}

PortDriveStatus PortDriveStatus::operator+=(const PortDriveStatus& other)
{
    if (other._width != _width)
        throw Error("*** ERROR: mismatch between PortDriveStatus sizes; %d vs %d", static_cast<int>(_width),
                    static_cast<int>(other._width));
    PinDriveStatus* pins = _array();
    const PinDriveStatus* others = other._array();
    for (unsigned i = 0; i < _width; ++i)
        pins[i] += others[i];
    return *this;
}

Value PortDriveStatus::resulting_value() const
{
    Value result(static_cast<int>(_width));
    const PinDriveStatus* pins = _array();
    for (unsigned i = 0; i < _width; ++i)
        result[i] = Morvane::letter(pins[i].resulting_value());
    return result;
}
