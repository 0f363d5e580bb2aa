// A named connection point of a component, with a net on either side, and the one-bit pin.
#ifndef MORVANE_CORE_SIMULATION_PORT_H
#define MORVANE_CORE_SIMULATION_PORT_H

#include "Core/Circuit/BaseObject.h"
#include "Core/Simulation/Dir.h"
#include "Core/Simulation/Net.h"
#include "Core/Simulation/ValueHistory.h"

#include <cstdint>
#include <string>
#include <vector>

class Component;
class ParaMap;

/// What the event path reads of a port besides its history. A base of Port, so that it lies in the
/// object right behind the history, in the same cache lines, ahead of the name and the comment.
struct PortWiring
{
    Morvane::Dir _dir;            // as seen from the owner
    Component* _component;        // owner; null when made by a factory
    Net* _outside_net = nullptr;  // in the holding circuit; not owned
    Net* _inside_net = nullptr;   // within a sub-circuit or behind an inout pin; not owned
    bool _z_translation = true;   // z read from a net is handed on as U
};

/// Remembers every value it was given, and by its direction decides which nets it drives and which
/// it hears. The outside net lies in the circuit that holds the component; the inside net exists
/// for a sub-circuit's own port and for an inout pin.
///
/// What the owner reads (value) by direction and attached nets:
/// - Input: its outside net, or its own history if it has none;
/// - Output: its inside net, or its own history if it has none;
/// - Inout: the inside net when both exist (undefined where the two disagree), else the one it has;
///   with an inside net only, its own history once a stimulus was set.
/// Bits read from a net as z come out as U unless z translation is off, so an undriven input reads
/// as undefined.
class Port : public ValueHistory, private PortWiring, public BaseObject, public CommentableObject
{
public:
    Port(int size, Morvane::Dir dir, const std::string& name, Component* component);
    /// Name, comment, id, size, direction and z translation; no nets, no history, no subscribers.
    Port(Port* source, Component* component);
    /// Leaves the outside net, then the inside net.
    ~Port() override;

    /// Records the value; an output then asks its outside net to recompute at `time`.
    void set(const Value& value, int time) final;
    /// set for an input: records the value, and asks nothing of a net. In line, as every update of a
    /// net sets its listening inputs this way.
    void hear(const Value& value, int time)
    {
        ++_nof_stores;
        _set(value, time);
    }
    /// Calls of set on any port since the process began: while it stands, every port holds what
    /// it held.
    static std::uint64_t nof_stores() { return _nof_stores; }
    /// The value as the owner sees it, see the class comment. The const form is the recorded value.
    virtual Value value(int time) final
    {
        switch (_dir) {
        case Morvane::Input:
            return _outside_net != nullptr ? _net_value(_outside_net, time) : ValueHistory::value(time);
        case Morvane::Output:
            return _inside_net != nullptr ? _net_value(_inside_net, time) : ValueHistory::value(time);
        case Morvane::Inout:
            break;
        }
        return _inout_value(time);
    }
    using ValueHistory::value;
    /// The first letter of value(time), read in place where it can be: what a part of one-bit
    /// inputs reads, without making a value.
    char letter(int time)
    {
        if (_dir == Morvane::Input && _outside_net != nullptr) {
            if (const char* letters = _outside_net->whole_letters_at(time)) {
                char c = letters[0];
                return _z_translation && (c | 0x20) == 'z' ? 'U' : c;
            }
        }
        return value(time).c_str()[0];
    }
    /// The letters of value(time) where they lie in place: an input on a net without pin specs, whose
    /// z translation is off. Valid until the net changes; null otherwise, and value() then tells.
    const char* plain_letters(int time) const
    {
        if (_dir == Morvane::Input && _outside_net != nullptr && !_z_translation)
            return _outside_net->whole_letters_at(time);
        return nullptr;
    }
    /// The letters of an input's net where they lie in place, before z translation: all that a part
    /// which reads a number, and takes z and U alike as no number, needs. Null otherwise.
    const char* net_letters(int time) const
    {
        return _dir == Morvane::Input && _outside_net != nullptr ? _outside_net->whole_letters_at(time)
                                                                 : nullptr;
    }
    /// The resolved value of this port's own drivers on the net of side q; all u without a net.
    virtual Value local_net_value(int time, Morvane::IntExtQual q, bool follow);
    virtual Morvane::Dir dir() const final { return _dir; }
    virtual void set_dir(Morvane::Dir dir)
    {
        _dir = dir;
        Net::connections_changed();
    }
    virtual Net* net(Morvane::IntExtQual q) const final
    {
        return q == Morvane::Inside ? _inside_net : _outside_net;
    }
    /// Changes only this side: the net's port list stays as it is.
    virtual void set_net(Net* net, Morvane::IntExtQual q);
    virtual void disable_z_translation() { _z_translation = false; }
    virtual void enable_z_translation() { _z_translation = true; }

    /// Refreshes the port from its net: set(value(time), time).
    void update(int time);
    /// Whether this port is a driver of `net` when the net gathers its drivers.
    bool drives(const Net* net) const
    {
        switch (_dir) {
        case Morvane::Input:
            // A sub-circuit's input drives the inner net with what it hears outside.
            return net == _inside_net;
        case Morvane::Output:
            return net == _outside_net;
        case Morvane::Inout:
            return net == _inside_net && _outside_net == nullptr && nof_values() != 0;
        }
        return false;
    }
    /// What this port drives at `time` where that is its own history's letters (an output with no
    /// inside net, the common driver): no copy, valid until the history changes. Null otherwise;
    /// value() then tells.
    const char* own_driven_letters(int time) const
    {
        return _dir == Morvane::Output && _inside_net == nullptr ? letters_at(time) : nullptr;
    }
    /// Leaves the net of side q, if any.
    void disconnect(Morvane::IntExtQual q);
    bool z_translation() const { return _z_translation; }
    Component* component() const { return _component; }

    /// The one option "ztr" (on or off), outputs only; anything else throws Error.
    void set_options(ParaMap& params);
    void print() const;

protected:
    /// Every z, in either case, becomes capital U.
    void _z_translate(Value& value) const
    {
        if (_z_translation)
            value.replace_tristate('U');
    }

private:
    Value _net_value(Net* net, int time)
    {
        Value result = net->value(time, this);
        _z_translate(result);
        return result;
    }
    Value _inout_value(int time);

    static std::uint64_t _nof_stores;  // see nof_stores
};

/// A one-bit port.
class Pin : public Port
{
public:
    Pin(Morvane::Dir dir, const std::string& name);
    Pin(Pin* source, Component* component) : Port(source, component) {}

    /// A stimulus of `count` periods from `start`: L for the first half of each period, H for the
    /// rest. Nothing for a count below 1.
    void set_clock_pattern(int period, int count, int start);
};

/// Owns the ports it makes; they die with it.
class PortFactory
{
public:
    PortFactory() = default;
    PortFactory(const PortFactory&) = delete;
    PortFactory& operator=(const PortFactory&) = delete;
    virtual ~PortFactory();

    Port* create(int size, Morvane::Dir dir, const std::string& name);
    Pin* create_pin(Morvane::Dir dir, const std::string& name);
    /// A pin is copied as a pin.
    Port* copy(Port* source);

private:
    std::vector<Port*> _ports;  // owned, in order of making
};

#endif  // MORVANE_CORE_SIMULATION_PORT_H
