// An insertion-ordered queue of actions with a constant-time test for an equal action.
#ifndef MORVANE_CORE_SIMULATION_ACTIONQUEUE_H
#define MORVANE_CORE_SIMULATION_ACTIONQUEUE_H

#include "Core/Simulation/EvalAction.h"

#include <cstddef>
#include <cstdint>
#include <vector>

/// First in, first out; an action equal to one already held is dropped. Small queues are scanned;
/// past a few entries an open-addressed index over the entries' hashes takes over.
class ActionQueue
{
public:
    /// Appends the action unless an equal one is held; true if it was appended.
    bool push(EvalAction&& action);
    bool contains(const EvalAction& action) const;

    std::size_t size() const { return _entries.size(); }
    bool empty() const { return _entries.empty(); }
    const EvalAction& operator[](std::size_t i) const { return _entries[i]; }
    auto begin() const { return _entries.begin(); }
    auto end() const { return _entries.end(); }
    void clear();

private:
    static constexpr std::size_t scan_limit = 8;  // entries looked through before indexing

    std::size_t _find(const EvalAction& action, std::size_t hash) const;
    void _rebuild_index(std::size_t buckets);
    void _index(std::uint32_t entry, std::size_t hash);

    std::vector<EvalAction> _entries;         // in order of first request
    std::vector<std::uint32_t> _index_table;  // entry + 1 per bucket, 0 when free; empty while small
    std::vector<std::size_t> _hashes;         // hash of each entry, kept once indexing starts
};

#endif  // MORVANE_CORE_SIMULATION_ACTIONQUEUE_H
