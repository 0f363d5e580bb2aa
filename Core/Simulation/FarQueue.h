// Requests for later times kept as a plain sequence while they come in ascending time.
#ifndef MORVANE_CORE_SIMULATION_FARQUEUE_H
#define MORVANE_CORE_SIMULATION_FARQUEUE_H

#include <cstddef>
#include <cstdint>
#include <vector>

/// The time and the record of each request that came no earlier than the one before it, in the order
/// they came. A clock lays out its whole waveform when a run starts: millions of slots that would
/// each cost a map node and a list, at 8 bytes an entry here.
class FarQueue
{
public:
    struct Entry
    {
        int time;          // ns
        std::uint32_t id;  // the action's record in the engine's store
    };

    bool empty() const { return _head == _entries.size(); }
    /// Whether a request for `time` keeps the order: no entry is later.
    bool takes(int time) const { return empty() || time >= _entries.back().time; }
    void push(int time, std::uint32_t id) { _entries.push_back(Entry{time, id}); }
    /// Only while not empty.
    const Entry& front() const { return _entries[_head]; }
    void pop_front()
    {
        ++_head;
        if (_head == _entries.size()) {
            clear();
        } else if (_head >= compact_from && 2 * _head >= _entries.size()) {
            // What has gone is dropped now and then, so a long run doesn't keep its whole start.
            _entries.erase(_entries.begin(), _entries.begin() + static_cast<std::ptrdiff_t>(_head));
            _head = 0;
        }
    }
    void clear()
    {
        _entries.clear();
        _head = 0;
    }
    const Entry* begin() const { return _entries.data() + _head; }
    const Entry* end() const { return _entries.data() + _entries.size(); }

private:
    static constexpr std::size_t compact_from = 4096;  // entries gone before the front is dropped

    std::vector<Entry> _entries;  // ascending time; those before _head have gone
    std::size_t _head = 0;        // the first entry still queued
};

#endif  // MORVANE_CORE_SIMULATION_FARQUEUE_H
