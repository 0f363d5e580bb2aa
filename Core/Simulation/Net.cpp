#include "Core/Simulation/Net.h"

#include "Core/Simulation/Port.h"
#include "Core/Support/Error.h"
#include "Core/Support/TLog.h"

#include <algorithm>
#include <array>
#include <climits>
#include <cstdint>
#include <cstring>
#include <string>

using Morvane::BitState;
using Morvane::Inout;
using Morvane::Input;
using Morvane::Inside;
using Morvane::IntExtQual;
using Morvane::Output;
using Morvane::Outside;

std::uint64_t Net::_nof_recorded_updates = 0;
std::uint64_t Net::_connections_version = 1;

Net::Net(int width) : Net("", width) {}

Net::Net(const std::string& name, int width) : ValueHistory(static_cast<unsigned>(width)), BaseObject(name) {}

Net::~Net()
{
    for (PinSpec* spec : _owned_pin_specs)
        delete spec;
    for (Port* port : _ports) {
        if (port->net(Inside) == this)
            port->set_net(nullptr, Inside);
        if (port->net(Outside) == this)
            port->set_net(nullptr, Outside);
    }
    if (_destruction_callback)
        _destruction_callback(this);
}

void Net::add(Port* port, IntExtQual q)
{
    _check_net_side(q, port);
    _check_size(port);
    _add(q, port);
}

void Net::add(Port* port, PinSpec* spec, IntExtQual q)
{
    _check_net_side(q, port);
    if (static_cast<unsigned>(spec->size()) != port->size())
        throw Error("Port and pin-spec sizes does not match: %d bits in port and %d bits in pin-spec.",
                    static_cast<int>(port->size()), spec->size());
    _pin_specs[port] = spec;
    _add(q, port);
}

void Net::add(Port* port, int a, int b, IntExtQual q)
{
    auto* spec = new PinSpec(a, b);
    _owned_pin_specs.insert(spec);
    add(port, spec, q);
}

void Net::_check_net_side(IntExtQual q, Port* port)
{
    Net* taken = port->net(q);
    if (taken == nullptr)
        return;
    // The text names the port's inside net; a port that has only an outside one names that.
    Net* named = port->net(Inside) != nullptr ? port->net(Inside) : taken;
    throw Error("The port '%s' already belongs to net '%s' (on the %s), and is being attempted to be added "
                "to net '%s'.",
                port->name().c_str(), named->name().c_str(), q == Outside ? "outside" : "inside",
                name().c_str());
}

void Net::_check_size(Port* port)
{
    if (size() == 0)
        _set_size(port->size());
    if (port->size() != size())
        throw Error("The port '%s' has size %d, but is added to net '%s' with size %d.", port->name().c_str(),
                    static_cast<int>(port->size()), name().c_str(), static_cast<int>(size()));
}

void Net::_add(IntExtQual q, Port* port)
{
    _ports.push_back(port);
    port->set_net(this, q);
}

void Net::remove(Port* port)
{
    _pin_specs.erase(port);
    std::erase(_ports, port);
    if (port->net(Inside) == this)
        port->set_net(nullptr, Inside);
    else
        port->set_net(nullptr, Outside);
}

void Net::disconnect_ports()
{
    for (Port* port : _ports) {
        if (port->net(Inside) == this)
            port->set_net(nullptr, Inside);
        if (port->net(Outside) == this)
            port->set_net(nullptr, Outside);
    }
    _ports.clear();
}

void Net::disconnect_port(Port* port, IntExtQual q)
{
    port->set_net(nullptr, q);
}

void Net::steal_all_ports(Net* other)
{
    for (Port* port : other->_ports) {
        if (port->net(Inside) == other) {
            port->set_net(nullptr, Inside);
            add(port, Inside);
        }
        if (port->net(Outside) == other) {
            port->set_net(nullptr, Outside);
            add(port, Outside);
        }
    }
    // Pin specs stay behind: the other net gets this one's, and this one keeps none.
    other->_pin_specs = _pin_specs;
    _pin_specs.clear();
    other->_ports.clear();
}

void Net::collect_connected_nets(std::set<Net*>& nets)
{
    nets.insert(this);
    for (Port* port : _ports) {
        if (port->dir() != Inout)
            continue;
        Net* outside = port->net(Outside);
        if (outside != nullptr && nets.count(outside) == 0)
            outside->collect_connected_nets(nets);
        Net* inside = port->net(Inside);
        if (inside != nullptr && nets.count(inside) == 0)
            inside->collect_connected_nets(nets);
    }
}

void Net::_sort_roles()
{
    _roles_version = _connections_version;
    _drivers.clear();
    _inouts.clear();
    _listeners.clear();
    _outputs_listen = false;
    for (Port* port : _ports) {
        switch (port->dir()) {
        case Inout:
            _inouts.push_back(port);
            continue;
        case Input:
            if (port->net(Inside) == this)
                _drivers.push_back(port);
            if (port->net(Outside) == this)
                _listeners.push_back(port);
            continue;
        case Output:
            if (port->net(Outside) == this)
                _drivers.push_back(port);
            if (port->net(Inside) == this) {
                _listeners.push_back(port);
                _outputs_listen = true;
            }
            continue;
        }
    }
    _nof_drivers = static_cast<std::uint32_t>(_drivers.size());
    _nof_listeners = static_cast<std::uint32_t>(_listeners.size());
    std::copy_n(_drivers.begin(), std::min<std::size_t>(_nof_drivers, near_roles), _near_drivers);
    std::copy_n(_listeners.begin(), std::min<std::size_t>(_nof_listeners, near_roles), _near_listeners);
}

Value Net::_narrowed_value(int time, const Port* port) const
{
    auto it = _pin_specs.find(port);
    if (it == _pin_specs.end())
        return ValueHistory::value(time);
    Value whole = ValueHistory::value(time);
    Value narrowed(static_cast<int>(port->size()));
    for (unsigned i = 0; i < narrowed.size(); ++i)
        narrowed[i] = whole[static_cast<unsigned>(it->second->dense_to_sparse(static_cast<int>(i)))];
    return narrowed;
}

Value Net::local_value(int time, bool follow)
{
    PortDriveStatus status(static_cast<int>(size()));
    for (Port* port : _ports) {
        if (port->drives(this)) {
            status.record_value(port->value(time));
            continue;
        }
        if (!follow || port->dir() != Inout || port->net(Outside) != this)
            continue;
        Net* inner = port->net(Inside);
        if (inner != nullptr && inner->size() == size())
            status.record_value(inner->local_value(time, true));
    }
    return status.resulting_value();
}

void Net::compute_value(int time, Value& out)
{
    if (out.size() != size())
        out.set_size(size());
    if (_compute_value_fast(time, out) || _compute_value_tied(time, out, nullptr))
        return;
    for (unsigned bit = 0; bit < size(); ++bit)
        out[bit] = Morvane::letter(_compute_bit_value(bit, time));
}

namespace {

// The counts of the drivers of one bit, as PinDriveStatus keeps them, one byte each in a word:
// every driver, then H, L, z, p and n. No count passes 255, so a byte never carries into the next.
using BitDrivers = std::uint64_t;

constexpr BitDrivers one_driver(char c)
{
    switch (Morvane::lower_letter(c)) {
    case 'h':
        return 0x0101;
    case 'l':
        return 0x010001;
    case 'z':
        return 0x01000001;
    case 'p':
        return 0x0100000001;
    case 'n':
        return 0x010000000001;
    default:
        return 0x01;
    }
}

// What `of` gives for each of the 256 letters, looked up by the letter's byte.
template <typename T, typename Of> constexpr std::array<T, 256> letter_table(Of of)
{
    std::array<T, 256> table{};
    for (int c = 0; c < 256; ++c)
        table[static_cast<std::size_t>(c)] = of(static_cast<char>(c));
    return table;
}

constexpr std::array<BitDrivers, 256> driver_table = letter_table<BitDrivers>(one_driver);

void resolve_counts(const BitDrivers* counts, unsigned width, Value& out)
{
    // The bits of a bus mostly have the same drivers in the same states.
    BitDrivers last = 0;
    char letter = 'z';
    char* letters = out.letters();
    for (unsigned bit = 0; bit < width; ++bit) {
        BitDrivers c = counts[bit];
        if (c != last || bit == 0) {
            auto byte = [c](int i) { return static_cast<unsigned>((c >> (8 * i)) & 0xff); };
            letter = Morvane::letter(resolve_drivers(byte(0), byte(1), byte(2), byte(3), byte(4), byte(5)));
            last = c;
        }
        letters[width - 1 - bit] = letter;
    }
}

// What a bit reads with this letter from its only driver.
constexpr char single_driver_letter(char c)
{
    switch (Morvane::lower_letter(c)) {
    case 'h':
    case 'p':
        return 'H';
    case 'l':
    case 'n':
        return 'L';
    case 'z':
        return 'z';
    default:
        return 'u';
    }
}

constexpr std::array<char, 256> single_driver_table = letter_table<char>(single_driver_letter);

// A table, as for the counts: a chain of compares per letter is the cost of most updates.
char resolve_single_driver(char c)
{
    return single_driver_table[static_cast<unsigned char>(c)];
}

// Whether every letter is z, in either case.
bool all_tristate(const char* letters, unsigned width)
{
    // Eight at a time: z and Z differ in the bit that the mask sets.
    constexpr std::uint64_t case_bits = 0x2020202020202020ull;
    constexpr std::uint64_t zs = 0x7a7a7a7a7a7a7a7aull;
    unsigned i = 0;
    for (; i + 8 <= width; i += 8) {
        std::uint64_t word;
        std::memcpy(&word, letters + i, sizeof word);
        if ((word | case_bits) != zs)
            return false;
    }
    for (; i < width; ++i) {
        if ((letters[i] | 0x20) != 'z')
            return false;
    }
    return true;
}

// The drivers of a net, or of a group of tied nets, that all cover every bit. A driver that drives z
// on every bit changes no bit's resolution, so while at most one drives anything else, that one's
// letters resolve alone, as on a bus where one part drives at a time. Past that, counts per bit.
class Drivers
{
public:
    explicit Drivers(unsigned width) : _width(width) {}

    // Reads what `port` drives at `time`; false where its width is not the net's.
    bool add(Port* port, int time)
    {
        if (port->size() != _width)
            return false;
        // Most drivers are part outputs, whose letters are read in place.
        if (const char* letters = port->own_driven_letters(time)) {
            still_from = std::max(still_from, port->last_entry_time());
            _add(letters, true);
            return true;
        }
        own = false;
        still_from = INT_MAX;
        Value driven = port->value(time);
        if (driven.size() != _width)
            return false;
        _add(driven.c_str(), false);
        return true;
    }
    void resolve(Value& out) const
    {
        if (_counting) {
            resolve_counts(_counts, _width, out);
            return;
        }
        char* resolved = out.letters();
        if (_single == nullptr) {
            std::memset(resolved, 'z', _width);
            return;
        }
        for (unsigned bit = 0; bit < _width; ++bit)
            resolved[bit] = resolve_single_driver(_single[bit]);
    }

    bool own = true;           // every driver's letters came from its own history
    int still_from = INT_MIN;  // ns, the latest entry of any driver; the highest int if one was not own

private:
    // `lasting`: the letters stay where they are while the net resolves.
    void _add(const char* letters, bool lasting)
    {
        if (_width == 0)
            return;
        if (_nof_drivers == 255)
            throw Error("*** ERROR: Maximum size of a a network is reached. Max 255 ports per net.");
        ++_nof_drivers;
        if (_counting) {
            _count(letters);
        } else if (!all_tristate(letters, _width)) {
            if (_single == nullptr) {
                if (!lasting) {
                    std::memcpy(_kept, letters, _width);
                    letters = _kept;
                }
                _single = letters;
            } else {
                _counting = true;
                std::memset(_counts, 0, _width * sizeof(BitDrivers));
                _count(_single);
                _count(letters);
            }
        }
    }
    // One more driver on each bit; the letters come most significant first.
    void _count(const char* letters)
    {
        for (unsigned bit = 0; bit < _width; ++bit)
            _counts[bit] += driver_table[static_cast<unsigned char>(letters[_width - 1 - bit])];
    }

    unsigned _width;                // bits of the net
    unsigned _nof_drivers = 0;      // all of them, z or not
    const char* _single = nullptr;  // letters of the one driver that drives more than z, or null
    char _kept[256];                // those letters where they would not stay
    bool _counting = false;         // a second such driver came: _counts holds them all
    BitDrivers _counts[256];        // per bit, least significant first; only while counting
};

}  // namespace

bool Net::_compute_value_fast(int time, Value& out)
{
    // Without pin specs and tied nets every driver covers every bit at the same place, so reading
    // each driver once gives the counts, and the first error, of the bit-by-bit walk.
    if (!_pin_specs.empty())
        return false;
    _know_roles();
    if (!_inouts.empty())
        return false;
    unsigned width = size();
    Port* const* drivers = _driver_list();
    if (_nof_drivers == 1) {
        // The common net: one driver, whose letters resolve one by one.
        Port* driver = drivers[0];
        if (driver->size() != width)
            return false;
        auto resolve = [&out, width](const char* letters) {
            char* resolved = out.letters();
            for (unsigned bit = 0; bit < width; ++bit)
                resolved[bit] = resolve_single_driver(letters[bit]);
        };
        if (const char* letters = driver->own_driven_letters(time)) {
            resolve(letters);
            return true;
        }
        Value driven = driver->value(time);
        if (driven.size() != width)
            return false;
        resolve(driven.c_str());
        return true;
    }
    Drivers gathered(width);
    for (std::size_t d = 0; d < _nof_drivers; ++d) {
        if (!gathered.add(drivers[d], time))
            return false;
    }
    gathered.resolve(out);
    return true;
}

bool Net::_find_tied_group()
{
    if (_tied_group_version == _connections_version)
        return _tied_group_resolves;
    _tied_group_version = _connections_version;
    _tied_group_resolves = false;
    _tied_group.assign(1, this);
    constexpr std::size_t max_group =
        16;  // nets of a group resolved in one pass; larger ones walk bit by bit
    unsigned width = size();
    for (std::size_t n = 0; n < _tied_group.size(); ++n) {
        Net* net = _tied_group[n];
        if (!net->_pin_specs.empty() || net->size() != width)
            return false;
        for (Port* port : net->_ports) {
            if (port->dir() != Inout)
                continue;
            Net* other = net->_get_net_of_other_side(port);
            if (other == nullptr ||
                std::find(_tied_group.begin(), _tied_group.end(), other) != _tied_group.end())
                continue;
            if (_tied_group.size() == max_group)
                return false;
            _tied_group.push_back(other);
        }
    }
    _tied_group_resolves = true;
    return true;
}

bool Net::_compute_value_tied(int time, Value& out, bool* drivers_own, int* still_from)
{
    // Without pin specs the bit-by-bit walk visits the same nets in the same order for every bit, so
    // one walk that reads whole values gives the same counts; the only error it can meet, too many
    // drivers, reads the same whichever bit reaches it first.
    if (!_find_tied_group())
        return false;
    Drivers drivers(size());
    // The counts don't depend on the order of the drivers, nor does the one error.
    for (Net* net : _tied_group) {
        net->_know_roles();
        for (Port* port : net->_drivers) {
            if (!drivers.add(port, time))
                return false;
        }
        for (Port* port : net->_inouts) {
            if (port->drives(net) && !drivers.add(port, time))
                return false;
        }
    }
    drivers.resolve(out);
    if (drivers_own != nullptr)
        *drivers_own = drivers.own;
    if (still_from != nullptr)
        *still_from = drivers.still_from;
    return true;
}

void Net::_update(int time, Visited* given)
{
    Value resolved(static_cast<int>(size()));
    // The fast path gives up on any inout port, so when it succeeds no net is tied to this one, and
    // the walk over tied nets needs no set of visited ones.
    if (_compute_value_fast(time, resolved)) {
        _record_and_tell(time, resolved, nullptr);
        return;
    }
    if (given != nullptr) {
        _update_slowly(time, resolved, *given);
        return;
    }
    Visited fresh;
    _update_slowly(time, resolved, fresh);
}

std::uint64_t Net::_group_edits() const
{
    std::uint64_t sum = 0;
    for (const Net* net : _tied_group) {
        for (const Port* port : net->_drivers)
            sum += port->edits();
        for (const Port* port : net->_inouts)
            sum += port->edits();
    }
    return sum;
}

bool Net::_kept_resolution_holds(int time)
{
    // The group and the roles of its nets were known when the resolution was kept, and no
    // connection has changed since. The letters in force are then those it recorded; a cleared
    // history has none, and clearing a driver's is an edit.
    return _kept.version == _connections_version && time >= _kept.at && _kept.still_from <= _kept.at &&
           _group_edits() == _kept.edits && letters_at(time) != nullptr;
}

void Net::_update_slowly(int time, Value& resolved, Visited& visited)
{
    bool own = false;
    int still_from = INT_MAX;
    if (visited.group_value != nullptr && visited.group_stamp == Port::nof_stores()) {
        // A net of the group has just resolved it, and no port has stored anything since: the
        // same drivers give the same letters.
        std::memcpy(resolved.letters(), visited.group_value->c_str(), size());
    } else if (_kept_resolution_holds(time)) {
        std::memcpy(resolved.letters(), letters_at(time), size());
    } else if (_compute_value_tied(time, resolved, &own, &still_from)) {
        // Only what the ports hold went in, so it holds while no port stores anything.
        visited.group_value = own ? &resolved : nullptr;
        visited.group_stamp = Port::nof_stores();
        // Kept before the listeners hear of it: one of them may drive the group at once.
        if (own)
            _kept = KeptResolution{_group_edits(), _connections_version, time, still_from};
    } else {
        for (unsigned bit = 0; bit < size(); ++bit)
            resolved[bit] = Morvane::letter(_compute_bit_value(bit, time));
    }
    _know_roles();
    _record_and_tell(time, resolved, _inouts.empty() ? nullptr : &visited);
}

void Net::_record_and_tell(int time, const Value& resolved, Visited* tied_walk)
{
    // A window keeps no repeated value, and the inputs that listen hold it already. Outputs behind
    // the net (a sub-circuit's) still hear it: each passes it on to a net outside, as it always did.
    bool repeated = window() != full_history && _repeats_last(resolved, time);
    if (!repeated) {
        ++_nof_recorded_updates;
        _set(resolved, time);
    }

    if (tied_walk != nullptr && !(repeated && _group_is_quiet())) {
        tied_walk->insert(this);
        _update_connected_nets(time, *tied_walk);
    }

    if (repeated && !_outputs_listen)
        return;
    // A net with many listeners reaches ports all over memory; fetching a few ahead overlaps the misses.
    constexpr std::size_t ahead = 4;
    std::size_t n = _nof_listeners;
    Port* const* listeners = _listener_list();
    for (std::size_t i = 0; i < n; ++i) {
        if (i + ahead < n) {
            const char* next = reinterpret_cast<const char*>(listeners[i + ahead]);
            for (int line = 0; line < 4; ++line)
                __builtin_prefetch(next + 64 * line);
        }
        Port* port = listeners[i];
        if (port->dir() == Input) {
            if (!repeated)
                port->hear(resolved, time);
        } else {
            port->set(resolved, time);
        }
    }
}

bool Net::_group_is_quiet()
{
    // Every update of a net of such a group records the same letters on all of them, so when this
    // one repeats its letters, so would each of the others, and none would tell anyone.
    if (!_find_tied_group())
        return false;
    return std::all_of(_tied_group.begin(), _tied_group.end(), [](Net* net) {
        net->_know_roles();
        return net->window() != full_history && !net->_outputs_listen;
    });
}

void Net::_update_connected_nets(int time, Visited& visited)
{
    for (std::size_t i = 0; i < _ports.size(); ++i) {
        Port* port = _ports[i];
        if (port->dir() != Inout)
            continue;
        Net* other = _get_net_of_other_side(port);
        // Each branch gets its own copy, so a diamond of nets may update one of them twice.
        if (other != nullptr && !visited.contains(other))
            other->update(time, visited);
    }
}

BitState Net::_compute_bit_value(unsigned bit, int time)
{
    std::set<Net*> visited{this};
    return _get_drive_status(bit, time, visited).resulting_value();
}

PinDriveStatus Net::_get_drive_status(unsigned bit, int time, std::set<Net*>& visited)
{
    PinDriveStatus status;
    // A later port without a spec reads the place the last spec pointed at; that is intended.
    unsigned local = bit;
    for (Port* port : _ports) {
        auto spec = _pin_specs.find(port);
        if (spec != _pin_specs.end()) {
            if (!spec->second->includes_bit(static_cast<int>(bit)))
                continue;
            local = static_cast<unsigned>(spec->second->sparse_to_dense(static_cast<int>(bit)));
        }
        if (port->drives(this))
            status.record_value(port->value(time)[local]);
        if (port->dir() != Inout)
            continue;
        Net* other = _get_net_of_other_side(port);
        if (other == nullptr || visited.count(other) != 0)
            continue;
        visited.insert(other);
        unsigned other_bit = local;
        auto other_spec = other->_pin_specs.find(port);
        if (other_spec != other->_pin_specs.end())
            other_bit = static_cast<unsigned>(other_spec->second->dense_to_sparse(static_cast<int>(local)));
        status += other->_get_drive_status(other_bit, time, visited);
    }
    return status;
}

Net* Net::_get_net_of_other_side(Port* port) const
{
    Net* outside = port->net(Outside);
    return outside != this ? outside : port->net(Inside);
}

void Net::print() const
{
    std::string names;
    for (const Port* port : _ports)
        names += port->name() + " ";
    TLog log("Net '%s' %p:  %s", name().c_str(), static_cast<const void*>(this), names.c_str());
    Dict::print();
}

NetFactory::~NetFactory()
{
    for (Net* net : _nets)
        delete net;
    _nets.clear();
}

Net* NetFactory::create(const std::string& name, int width)
{
    Net* net = new Net(name, width);
    _nets.push_back(net);
    return net;
}

Net* NetFactory::create(int width)
{
    Net* net = new Net(width);
    _nets.push_back(net);
    return net;
}

void NetFactory::garbage_collect()
{
    std::erase_if(_nets, [](Net* net) {
        if (!net->ports().empty())
            return false;
        delete net;
        return true;
    });
}
