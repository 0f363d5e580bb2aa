#include "Core/Simulation/EventSimulator.h"

#include "Core/Circuit/Circuit.h"
#include "Core/Components/Component.h"
#include "Core/Simulation/Net.h"
#include "Core/Simulation/Port.h"
#include "Core/Simulation/ValueHistory.h"
#include "Core/Support/Error.h"
#include "Core/Support/TLog.h"

#include <algorithm>
#include <map>
#include <vector>

EventSimulator* EventSimulator::instance = nullptr;

namespace {

constexpr int prefetch_distance = 4;  // actions of a slot fetched ahead of the one running

using Slots = std::map<int, ActionList>;
constexpr std::size_t max_spare_slots = 256;  // map nodes of dropped slots kept for new ones

// One simulator at a time, so one pool; never destroyed, as nodes are plain memory.
std::vector<Slots::node_type>& spare_slots()
{
    static auto* spare = new std::vector<Slots::node_type>();
    return *spare;
}

// An empty slot at `time`, just before `hint`, in a spare node if there is one.
ActionList& new_slot(Slots& slots, Slots::iterator hint, int time)
{
    std::vector<Slots::node_type>& spare = spare_slots();
    if (spare.empty())
        return slots.emplace_hint(hint, time, ActionList())->second;
    Slots::node_type node = std::move(spare.back());
    spare.pop_back();
    node.key() = time;
    return slots.insert(hint, std::move(node))->second;
}

// The first lines of the part or net and of the port that an action will touch.
void prefetch_action(const ActionRecord& record)
{
    const char* target = static_cast<const char*>(record.target);
    for (int line = 0; line < 5; ++line)
        __builtin_prefetch(target + 64 * line);
    if (const char* port = reinterpret_cast<const char*>(record.port)) {
        for (int line = 0; line < 4; ++line)
            __builtin_prefetch(port + 64 * line);
    }
}

// One literal format, so the compiler checks it; only the indentation differs.
void print_action(TLog& log, const char* indent, const ActionStore& store, std::uint32_t id)
{
    const ActionRecord& record = store[id];
    bool net_action = store.is_net_action(id);
    auto* component = net_action ? nullptr : static_cast<Component*>(record.target);
    auto* net = net_action ? static_cast<Net*>(record.target) : nullptr;
    log("%sC=%s N=%s P=%s V=%s", indent, component != nullptr ? component->instance_name().c_str() : "-",
        net != nullptr ? net->name().c_str() : "-",
        record.port != nullptr ? record.port->name().c_str() : "-", store.value(id).c_str());
}

}  // namespace

EventSimulator::EventSimulator(Circuit& circuit) : _circuit(&circuit)
{
    _register();
}

EventSimulator::EventSimulator(Circuit* circuit) : _circuit(circuit)
{
    _register();
}

void EventSimulator::_register()
{
    if (instance != nullptr)
        throw Error("Simulator already created!\n");
    instance = this;
    _current = _actions.end();
    ValueHistory::set_present(&_time);
}

EventSimulator::~EventSimulator()
{
    if (instance == this) {
        instance = nullptr;
        ValueHistory::set_present(nullptr);
    }
}

EventSimulator* EventSimulator::get_instance(Circuit& circuit)
{
    return get_instance(&circuit);
}

EventSimulator* EventSimulator::get_instance(Circuit* circuit)
{
    if (instance == nullptr)
        new EventSimulator(circuit);
    return instance;
}

void EventSimulator::destroy()
{
    delete instance;
    instance = nullptr;
}

void EventSimulator::reset(int end_time)
{
    _wheel_running = false;
    if (_wheel) {
        for (unsigned b = 0; b < wheel_size; ++b)
            _wheel[b].clear();
    }
    for (std::uint64_t& word : _wheel_bits)
        word = 0;
    _actions.clear();
    _current = _actions.end();
    _far.clear();
    _far_open = true;
    _kept.clear();
    _same_time_actions.clear();
    _same_time_store.clear();
    for (CachedSlot& cached : _slot_cache)
        cached = CachedSlot{};
    _time = no_time;
    if (_circuit != nullptr) {
        _circuit->reset();
        _circuit->init(end_time);
    }
}

void EventSimulator::simulate(int end_time)
{
    _max_time = end_time;
    if (_stop_variable != nullptr)
        *_stop_variable = false;
    if (!_keep_finished_slots) {
        _simulate_once(end_time);
        return;
    }
    // A caller that ran once and keeps slots from now on finds the ring's slots in the map, and so
    // are the far queue's; while the map is walked, every request goes there.
    if (_wheel_running)
        _empty_wheel();
    _far_to_map();
    struct Reopen
    {
        bool& open;
        ~Reopen() { open = true; }
    } reopen{_far_open};
    _far_open = false;

    // Slots stay in the map once run, so a second call starts from the first again; unless the
    // caller gave up replay, when each goes as soon as it has run. The map may grow behind the
    // running slot; map iterators survive that.
    _current = _actions.begin();
    while (_current != _actions.end()) {
        _time = _current->first;
        if (_time > end_time)
            return;
        if (_stop_variable != nullptr && *_stop_variable)
            return;
        _run_actions(_current->second);
        _run_same_time_actions();
        if (_keep_finished_slots)
            ++_current;
        else
            _drop_current_slot();
    }
}

void EventSimulator::_simulate_once(int end_time)
{
    // The wheel starts again at the earliest slot: requests between two calls may lie before it.
    _empty_wheel();
    _current = _actions.end();
    int first = 0;
    if (!_earliest_time(first))
        return;
    _wheel_base = first;
    _wheel_running = true;
    _fill_wheel();
    int time = 0;
    for (;;) {
        if (!_next_wheel_time(time)) {
            // Nothing within reach of the wheel: it moves on to the next slot of the map, once
            // the slots asked for a past time are gone.
            _fill_wheel();
            if (_wheel_bits_empty()) {
                if (!_earliest_time(first))
                    return;
                _wheel_base = first;
                _fill_wheel();
            }
            continue;
        }
        _time = time;
        if (_time > end_time)
            return;
        if (_stop_variable != nullptr && *_stop_variable)
            return;
        _wheel_base = time;
        _fill_wheel_if_due();
        unsigned bucket = static_cast<unsigned>(time) & (wheel_size - 1);
        ActionList& slot = _wheel[bucket];
        _run_actions(slot);
        _run_same_time_actions();
        _kept.release(slot);
        slot.clear();
        _wheel_bits[bucket / 64] &= ~(std::uint64_t{1} << (bucket % 64));
    }
}

bool EventSimulator::_earliest_time(int& time) const
{
    if (_actions.empty() && _far.empty())
        return false;
    if (_far.empty())
        time = _actions.begin()->first;
    else if (_actions.empty())
        time = _far.front().time;
    else
        time = std::min(_actions.begin()->first, _far.front().time);
    return true;
}

void EventSimulator::_fill_wheel()
{
    std::int64_t limit = _wheel_base + wheel_size;
    // A slot takes the far queue's requests ahead of the map's, as they were asked for first.
    while (!_far.empty() && _far.front().time < limit) {
        FarQueue::Entry entry = _far.front();
        _far.pop_front();
        if (entry.time < _wheel_base) {
            _kept.release(entry.id);
            continue;
        }
        unsigned bucket = static_cast<unsigned>(entry.time) & (wheel_size - 1);
        if (!_wheel[bucket].link(_kept, entry.id))
            _kept.release(entry.id);
        _wheel_bits[bucket / 64] |= std::uint64_t{1} << (bucket % 64);
    }
    while (!_actions.empty() && _actions.begin()->first < limit) {
        auto first = _actions.begin();
        CachedSlot& cached = _slot_cache[static_cast<unsigned>(first->first) & (slot_cache_size - 1)];
        if (cached.time == first->first)
            cached = CachedSlot{};
        if (first->first < _wheel_base) {
            _kept.release(first->second.first());
        } else {
            unsigned bucket = static_cast<unsigned>(first->first) & (wheel_size - 1);
            std::uint64_t bit = std::uint64_t{1} << (bucket % 64);
            if ((_wheel_bits[bucket / 64] & bit) != 0)
                _relink(first->second.first(), _wheel[bucket]);
            else
                _wheel[bucket] = std::move(first->second);
            _wheel_bits[bucket / 64] |= bit;
        }
        _actions.erase(first);
    }
}

bool EventSimulator::_next_wheel_time(int& time) const
{
    // Scan the words from the base's slot round to it again: the first set bit is the earliest.
    unsigned start = static_cast<unsigned>(_wheel_base) & (wheel_size - 1);
    for (unsigned step = 0; step <= wheel_size / 64; ++step) {
        unsigned word = (start / 64 + step) % (wheel_size / 64);
        std::uint64_t bits = _wheel_bits[word];
        if (step == 0)
            bits &= ~std::uint64_t{0} << (start % 64);
        else if (step == wheel_size / 64)
            bits &= (std::uint64_t{1} << (start % 64)) - 1;
        if (bits == 0)
            continue;
        unsigned bucket = word * 64 + static_cast<unsigned>(__builtin_ctzll(bits));
        unsigned ahead = (bucket - start) & (wheel_size - 1);
        time = static_cast<int>(_wheel_base + ahead);
        return true;
    }
    return false;
}

void EventSimulator::_empty_wheel()
{
    _wheel_running = false;
    if (!_wheel) {
        _wheel = std::make_unique<ActionList[]>(wheel_size);
        return;
    }
    int time = 0;
    while (_next_wheel_time(time)) {
        unsigned bucket = static_cast<unsigned>(time) & (wheel_size - 1);
        _actions.emplace(time, std::move(_wheel[bucket]));
        _wheel[bucket].clear();
        _wheel_bits[bucket / 64] &= ~(std::uint64_t{1} << (bucket % 64));
    }
}

void EventSimulator::_relink(std::uint32_t first, ActionList& slot)
{
    for (std::uint32_t id = first; id != ActionRecord::none;) {
        std::uint32_t next = _kept[id].next;
        if (!slot.link(_kept, id))
            _kept.release(id);
        id = next;
    }
}

void EventSimulator::_far_to_map()
{
    while (!_far.empty()) {
        int time = _far.front().time;
        ActionList merged;
        for (; !_far.empty() && _far.front().time == time; _far.pop_front()) {
            if (!merged.link(_kept, _far.front().id))
                _kept.release(_far.front().id);
        }
        ActionList& slot = _slot(time);
        _relink(slot.first(), merged);
        slot = std::move(merged);
    }
}

void EventSimulator::_drop_current_slot()
{
    auto done = _current++;
    _kept.release(done->second.first());
    CachedSlot& cached = _slot_cache[static_cast<unsigned>(done->first) & (slot_cache_size - 1)];
    if (cached.time == done->first)
        cached = CachedSlot{};
    // The map node is kept for the next new slot: a run makes and drops one a few times per ns.
    std::vector<Slots::node_type>& spare = spare_slots();
    if (spare.size() < max_spare_slots) {
        spare.push_back(_actions.extract(done));
        spare.back().mapped() = ActionList();
    } else {
        _actions.erase(done);
    }
}

void EventSimulator::_run(const ActionStore& store, std::uint32_t id)
{
    // Read everything first: the action's own requests may add records.
    const ActionRecord& record = store[id];
    int t = _time;
    Port* port = record.port;
    ++_nof_actions_run;
    if (record.value == 0) {
        ++_nof_evaluations_run;
        auto* component = static_cast<Component*>(record.target);
        if (port != nullptr)
            component->evaluate_port(t, port);
        else
            component->evaluate(t);
    } else {
        // The net recomputes from its drivers; the value only told two requests apart.
        static_cast<Net*>(record.target)->update(t);
    }
}

void EventSimulator::_run_actions(ActionList& slot)
{
    // Nothing can join a slot while it runs: requests for the running time go to the same-time list.
    // The parts of a slot lie all over memory; fetching a few actions ahead overlaps their misses.
    std::uint32_t ahead = slot.first();
    for (int k = 0; k < prefetch_distance && ahead != ActionRecord::none; ++k) {
        prefetch_action(_kept[ahead]);
        ahead = _kept[ahead].next;
    }
    for (std::uint32_t id = slot.first(); id != ActionRecord::none; id = _kept[id].next) {
        if (ahead != ActionRecord::none) {
            prefetch_action(_kept[ahead]);
            ahead = _kept[ahead].next;
        }
        _run(_kept, id);
    }
    // A slot that has run is rarely asked for again; its index would only take memory.
    slot.drop_index();
}

void EventSimulator::_run_same_time_actions()
{
    // The list grows while it runs; a zero-delay loop would never end, so the step is bounded.
    int countdown = 1002;
    // Prefetching as for a slot; records that join behind the fetched ones run without it.
    std::uint32_t ahead = _same_time_actions.first();
    for (int k = 0; k < prefetch_distance && ahead != ActionRecord::none; ++k) {
        prefetch_action(_same_time_store[ahead]);
        ahead = _same_time_store[ahead].next;
    }
    for (std::uint32_t id = _same_time_actions.first(); id != ActionRecord::none;
         id = _same_time_store[id].next) {
        if (ahead != ActionRecord::none) {
            prefetch_action(_same_time_store[ahead]);
            ahead = _same_time_store[ahead].next;
        }
        _run(_same_time_store, id);
        if (--countdown == 0)
            throw Error(
                "1000 iterations in same time-event loop: probably a circuit/net circular dependency");
    }
    _same_time_actions.clear();
    _same_time_store.clear();
}

ActionList& EventSimulator::_find_slot(int time)
{
    // Most new slots lie a few steps after the running one or after the last: walking there from
    // a known place spares a descent through a tree of millions of slots, each step a cache miss.
    if (_actions.empty() || time > _actions.rbegin()->first)
        return new_slot(_actions, _actions.end(), time);
    if (_current != _actions.end() && time > _current->first) {
        auto it = std::next(_current);
        for (int step = 0; step < 8 && it != _actions.end() && it->first < time; ++step)
            ++it;
        if (it == _actions.end() || it->first >= time) {
            if (it != _actions.end() && it->first == time)
                return it->second;
            return new_slot(_actions, it, time);
        }
    }
    auto it = _actions.lower_bound(time);
    if (it != _actions.end() && it->first == time)
        return it->second;
    return new_slot(_actions, it, time);
}

void EventSimulator::_print_components_to_evaluate() const
{
    TLog log("Event Simulator Status for t=%d", _time);
    log("- Same time actions:");
    for (std::uint32_t id = _same_time_actions.first(); id != ActionRecord::none;
         id = _same_time_store[id].next)
        print_action(log, "  ", _same_time_store, id);
    log("- Future actions:");
    // Every queue's records lie in the one store: gathered by time, the far queue's first in a slot.
    std::map<int, std::vector<std::uint32_t>> by_time;
    for (const FarQueue::Entry& entry : _far)
        by_time[entry.time].push_back(entry.id);
    auto gather = [&](int time, const ActionList& slot) {
        for (std::uint32_t id = slot.first(); id != ActionRecord::none; id = _kept[id].next)
            by_time[time].push_back(id);
    };
    for (const auto& [time, slot] : _actions)
        gather(time, slot);
    for (unsigned ahead = 0; _wheel_running && ahead < wheel_size; ++ahead) {
        auto time = static_cast<int>(_wheel_base + ahead);
        unsigned bucket = static_cast<unsigned>(time) & (wheel_size - 1);
        if ((_wheel_bits[bucket / 64] >> (bucket % 64)) & 1)
            gather(time, _wheel[bucket]);
    }
    for (const auto& [time, ids] : by_time) {
        log("  t=%d:", time);
        for (std::uint32_t id : ids)
            print_action(log, "    ", _kept, id);
    }
}

EventSimulator* simulator(Circuit& circuit)
{
    return EventSimulator::get_instance(circuit);
}

EventSimulator* simulator(Circuit* circuit)
{
    return EventSimulator::get_instance(circuit);
}

void destroy_simulator()
{
    EventSimulator::destroy();
}
