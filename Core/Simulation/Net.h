// A bundle of wires joining ports, which resolves what its drivers put on it.
#ifndef MORVANE_CORE_SIMULATION_NET_H
#define MORVANE_CORE_SIMULATION_NET_H

#include "Core/Circuit/BaseObject.h"
#include "Core/Simulation/Dir.h"
#include "Core/Simulation/DriveStatus.h"
#include "Core/Simulation/PinSpec.h"
#include "Core/Simulation/ValueHistory.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

class Port;

/// What an update reads of a net besides its history. A base of Net, so that it lies in the object
/// right behind the history, ahead of the name and the comment.
struct NetWiring
{
    std::vector<Port*> _ports;                         // in order of attaching, both sides; not owned
    std::map<const Port*, const PinSpec*> _pin_specs;  // ports that cover only some bits: which ones
    // The ports by their part in an update, in order of attaching, made again from _ports when the
    // connections have changed: an update then touches no port it doesn't read or set.
    std::vector<Port*> _drivers;       // inputs inside and outputs outside
    std::vector<Port*> _inouts;        // drivers or not by their history
    std::vector<Port*> _listeners;     // inputs outside and outputs inside
    std::uint64_t _roles_version = 0;  // Net::_connections_version when made, 0 never
    bool _outputs_listen = false;      // a listener is an output, which hears repeated values too
    // The drivers and the listeners again, in the object, when there are few: most nets have one
    // driver and a listener or two, and the lists' own memory would be one more fetch an update.
    static constexpr std::size_t near_roles = 3;
    Port* _near_drivers[near_roles] = {};
    Port* _near_listeners[near_roles] = {};
    std::uint32_t _nof_drivers = 0;    // of _drivers
    std::uint32_t _nof_listeners = 0;  // of _listeners
    Port* const* _driver_list() const { return _nof_drivers <= near_roles ? _near_drivers : _drivers.data(); }
    Port* const* _listener_list() const
    {
        return _nof_listeners <= near_roles ? _near_listeners : _listeners.data();
    }
};

/// On every update the net gathers, bit by bit, what each attached port drives, resolves it, records
/// the result and hands it to the ports that listen (inputs on their outside, outputs on their inside).
/// Nets tied together by an inout port are one electrical node: drivers are gathered through the
/// port and an update passes across. A port narrower than the net covers the bits its pin spec names.
class Net : public ValueHistory, private NetWiring, public BaseObject, public CommentableObject
{
public:
    /// A width of 0 lets the first port attached decide it.
    explicit Net(int width);
    Net(const std::string& name, int width);
    /// Frees its own pin specs, clears the pointers of the ports that point here, then calls the
    /// destruction callback.
    ~Net() override;

    Net(const Net&) = delete;
    Net& operator=(const Net&) = delete;

    /// Attaches a port of the net's width on side q. A port already on a net on that side, or of
    /// another width, throws Error.
    void add(Port* port, Morvane::IntExtQual q);
    /// Attaches a port to the bits that `spec` names; the spec must be as wide as the port.
    void add(Port* port, PinSpec* spec, Morvane::IntExtQual q);
    /// The same with a spec "a:b" that the net makes and frees.
    void add(Port* port, int a, int b, Morvane::IntExtQual q);
    /// Detaches the port from this net, whichever side it is on.
    void remove(Port* port);
    void disconnect_ports();
    /// Clears the port's pointer only; the port stays in the list.
    void disconnect_port(Port* port, Morvane::IntExtQual q);
    /// Takes over all ports of `other`, on the sides they had there. `other` ends with no ports and
    /// with this net's pin specs, while this net's are dropped.
    void steal_all_ports(Net* other);

    std::vector<Port*>& ports() { return _ports; }
    const std::vector<Port*>& ports() const { return _ports; }
    void set_destruction_callback(std::function<void(Net*)> callback) { _destruction_callback = callback; }
    /// Adds this net and every net reachable from it through inout ports.
    void collect_connected_nets(std::set<Net*>& nets);

    /// The recorded value, narrowed to the bits of `port`'s pin spec if it has one here.
    Value value(int time, const Port* port) const
    {
        return _pin_specs.empty() ? ValueHistory::value(time) : _narrowed_value(time, port);
    }
    using ValueHistory::value;
    /// The letters in force at `time` where the net has no pin specs and they lie in its history
    /// (see ValueHistory::letters_at); null otherwise.
    const char* whole_letters_at(int time) const { return _pin_specs.empty() ? letters_at(time) : nullptr; }
    /// Resolves this net's own drivers; with `follow`, also those inside the inout ports that hang on
    /// it from the outside with an inner net of the same width.
    Value local_value(int time, bool follow);
    /// Resolves every bit into `out` (made the net's width) and records nothing.
    void compute_value(int time, Value& out);
    /// The nets an update has passed through. Each branch of a walk over tied nets takes its own
    /// copy, as a set passed by value would; groups are small, so their nets are kept in place.
    class Visited
    {
    public:
        Visited() : _count(0) {}

        // The value a net of a tied group resolved for the whole group, while it holds: drivers
        // that hold their own letters, and Port::nof_stores() as it was then.
        const Value* group_value = nullptr;
        std::uint64_t group_stamp = 0;

        bool contains(const Net* net) const
        {
            for (std::size_t i = 0; i < _count; ++i) {
                if (_near[i] == net)
                    return true;
            }
            return std::find(_far.begin(), _far.end(), net) != _far.end();
        }
        void insert(Net* net)
        {
            if (contains(net))
                return;
            if (_count < near_capacity)
                _near[_count++] = net;
            else
                _far.push_back(net);
        }

    private:
        static constexpr std::size_t near_capacity = 6;

        Net* _near[near_capacity];  // the first nets, in order of passing
        std::size_t _count;         // of _near in use
        std::vector<Net*> _far;     // the rest, for long walks
    };

    /// Recomputes and records the value at `time`, updates tied nets not yet in `visited`, and sets
    /// the listening ports.
    void update(int time) { _update(time, nullptr); }
    void update(int time, Visited visited) { _update(time, &visited); }
    /// Records as a history does; the next update of a tied group resolves again.
    void set(const Value& value, int time) override
    {
        _kept.version = 0;
        ValueHistory::set(value, time);
    }

    void print() const;
    /// Updates of any net that recorded a value, since the process began: with windows, which record
    /// only changes, a count of events that stays when the entries are forgotten.
    static std::uint64_t nof_recorded_updates() { return _nof_recorded_updates; }
    /// Tells every net that a port joined or left a net, or changed direction: what a net knows of
    /// the nets tied to it is then built again when next needed.
    static void connections_changed() { ++_connections_version; }

    void _add(Morvane::IntExtQual q, Port* port);
    void _check_size(Port* port);
    void _check_net_side(Morvane::IntExtQual q, Port* port);
    void _update_connected_nets(int time, Visited& visited);
    Morvane::BitState _compute_bit_value(unsigned bit, int time);
    PinDriveStatus _get_drive_status(unsigned bit, int time, std::set<Net*>& visited);
    /// The port's other net as seen from this one: its outside, unless that is this net.
    Net* _get_net_of_other_side(Port* port) const;
    /// Throws std::out_of_range for a port with no spec here.
    const PinSpec* _pin_spec(const Port* port) const { return _pin_specs.at(port); }

private:
    void _know_roles()
    {
        if (_roles_version != _connections_version)
            _sort_roles();
    }
    void _sort_roles();
    /// Whether the group of tied nets resolves in one pass, every net of it keeps a window and no
    /// output listens to any of them.
    bool _group_is_quiet();
    /// update, with the set of the walk it is part of, or none for the first net.
    void _update(int time, Visited* given);
    /// The rest of an update that the one-pass resolution of a lone net couldn't take.
    void _update_slowly(int time, Value& resolved, Visited& visited);
    /// Records the resolved value and hands it on: to the tied nets, walking on with `tied_walk`
    /// if there are any, then to the listening ports.
    void _record_and_tell(int time, const Value& resolved, Visited* tied_walk);
    Value _narrowed_value(int time, const Port* port) const;
    /// All bits in one pass over the ports; false, having recorded nothing, where tied nets or pin
    /// specs need the bit-by-bit walk.
    bool _compute_value_fast(int time, Value& out);
    /// All bits of a group of nets tied by inout ports, each driver read once; false, having
    /// recorded nothing, where a net of the group has pin specs or another width. `drivers_own`,
    /// if given, tells whether every driver's value was its own history's, and `still_from` from
    /// when on they all stand still (the highest int where one was not its own).
    bool _compute_value_tied(int time, Value& out, bool* drivers_own, int* still_from = nullptr);
    /// The edits of the histories of every driver of the group, inout ports included, summed.
    std::uint64_t _group_edits() const;
    /// Whether the group's last resolution by this net holds at `time`: see _kept.
    bool _kept_resolution_holds(int time);
    /// The group of nets tied to this one, this one first, or false where the one-pass resolution
    /// can't take it.
    bool _find_tied_group();

    std::set<PinSpec*> _owned_pin_specs;              // specs this net made and frees
    std::function<void(Net*)> _destruction_callback;  // told when the net dies; may be empty

    // The connections stand still during a run: the group of tied nets is found once.
    std::vector<Net*> _tied_group;          // this net, then the nets tied to it
    bool _tied_group_resolves = false;      // the one-pass resolution can take the group
    std::uint64_t _tied_group_version = 0;  // _connections_version when it was found, 0 never

    // The last resolution of the group by this net, while every driver read its own history: it
    // holds while no driver's history is edited and every driver stood still from then on. A bus
    // hears each part that drives z again, mostly without a change.
    struct KeptResolution
    {
        std::uint64_t edits = 0;    // _group_edits() then
        std::uint64_t version = 0;  // _connections_version then; 0: none kept
        int at = 0;                 // ns
        int still_from = 0;         // ns, the latest entry of any driver then
    } _kept;

    static std::uint64_t _nof_recorded_updates;  // by all nets, see nof_recorded_updates
    static std::uint64_t _connections_version;   // raised on every change of connections
};

/// Owns the nets it makes.
class NetFactory
{
public:
    NetFactory() = default;
    NetFactory(const NetFactory&) = delete;
    NetFactory& operator=(const NetFactory&) = delete;
    virtual ~NetFactory();

    Net* create(const std::string& name, int width);
    Net* create(int width);
    /// Deletes every net that has no ports left.
    void garbage_collect();
    const std::vector<Net*>& nets() const { return _nets; }

private:
    std::vector<Net*> _nets;  // owned, in order of making
};

#endif  // MORVANE_CORE_SIMULATION_NET_H
