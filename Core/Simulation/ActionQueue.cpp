#include "Core/Simulation/ActionQueue.h"

namespace {

constexpr std::uint32_t free_bucket = 0;

}  // namespace

bool ActionQueue::push(EvalAction&& action)
{
    std::size_t hash = action.hash();
    if (_find(action, hash) != _entries.size())
        return false;
    _entries.push_back(std::move(action));
    if (!_index_table.empty()) {
        _hashes.push_back(hash);
        // Keep the table at most half full so probes stay short.
        if (_entries.size() * 2 > _index_table.size())
            _rebuild_index(_index_table.size() * 2);
        else
            _index(static_cast<std::uint32_t>(_entries.size() - 1), hash);
    } else if (_entries.size() > scan_limit) {
        _hashes.clear();
        for (const EvalAction& entry : _entries)
            _hashes.push_back(entry.hash());
        _rebuild_index(64);
    }
    return true;
}

bool ActionQueue::contains(const EvalAction& action) const
{
    return _find(action, action.hash()) != _entries.size();
}

void ActionQueue::clear()
{
    _entries.clear();
    _index_table.clear();
    _hashes.clear();
}

std::size_t ActionQueue::_find(const EvalAction& action, std::size_t hash) const
{
    if (_index_table.empty()) {
        for (std::size_t i = 0; i < _entries.size(); ++i)
            if (_entries[i] == action)
                return i;
        return _entries.size();
    }
    std::size_t mask = _index_table.size() - 1;
    for (std::size_t b = hash & mask;; b = (b + 1) & mask) {
        std::uint32_t slot = _index_table[b];
        if (slot == free_bucket)
            return _entries.size();
        std::size_t i = slot - 1;
        if (_hashes[i] == hash && _entries[i] == action)
            return i;
    }
}

void ActionQueue::_rebuild_index(std::size_t buckets)
{
    _index_table.assign(buckets, free_bucket);
    for (std::size_t i = 0; i < _entries.size(); ++i)
        _index(static_cast<std::uint32_t>(i), _hashes[i]);
}

void ActionQueue::_index(std::uint32_t entry, std::size_t hash)
{
    std::size_t mask = _index_table.size() - 1;
    std::size_t b = hash & mask;
    while (_index_table[b] != free_bucket)
        b = (b + 1) & mask;
    _index_table[b] = entry + 1;
}
