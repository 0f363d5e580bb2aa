// The event engine's actions in compact form: a store of records, and ordered lists over it.
#ifndef MORVANE_CORE_SIMULATION_ACTIONLIST_H
#define MORVANE_CORE_SIMULATION_ACTIONLIST_H

#include "Core/Simulation/Value.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

class ActionList;
class Port;

/// One action as the engine keeps it: 32 bytes, where an action with its own `Value` took 64 and
/// more. A component action needs no value (its value is always the marker Q); a net action's value
/// of up to 8 bits lies in the record, a wider one in the store's letters.
struct ActionRecord
{
    static constexpr std::uint32_t none = 0xffffffffu;  // no next record
    /// `value` of a net action whose letters are in the record: this plus their number.
    static constexpr std::uint32_t in_record = 0xfffffff0u;
    static constexpr unsigned record_letters = 8;  // room for letters in the record

    void* target;                  // the Component to evaluate or the Net to update
    Port* port;                    // the port that caused the action, or null
    std::uint32_t next;            // the next record of the same list, or none
    std::uint32_t value;           // 0 for a component action; for a net action in_record + width, or
                                   // 1 + where its value lies, with the top bit for letters in a block of a
                                   // size class
    char letters[record_letters];  // of a net action's value of up to 8 bits, not terminated
};

/// Records and the letters of their values, in chunks that never move, so that a record stays
/// where it is while the actions it runs add others. Emptied as a whole, or list by list once the
/// store reuses what it is given back; the chunks are kept for the next use until the store dies.
class ActionStore
{
public:
    ActionStore() = default;
    ~ActionStore();
    ActionStore(const ActionStore&) = delete;
    ActionStore& operator=(const ActionStore&) = delete;

    /// A component action (value null) or a net action, linked to nothing yet.
    std::uint32_t add(void* target, Port* port, const Value* value)
    {
        std::uint32_t id;
        if (_free_records != ActionRecord::none) {
            id = _free_records;
            _free_records = (*this)[id].next;
            --_nof_free;
        } else if ((_count & chunk_mask) != 0) {
            id = _count++;
        } else {
            id = _new_record();
        }
        ActionRecord& record = (*this)[id];
        record.target = target;
        record.port = port;
        record.next = ActionRecord::none;
        record.value = 0;
        if (value == nullptr)
            return id;
        unsigned width = value->size();
        if (width > ActionRecord::record_letters) {
            // Placing letters adds chunks of letters, never of records: the record stays put.
            record.value = _place_value(*value);
            return id;
        }
        // Most nets are narrow: their letters travel in the record.
        record.value = ActionRecord::in_record + width;
        Morvane::copy_letters(record.letters, value->c_str(), width);
        return id;
    }
    ActionRecord& operator[](std::uint32_t id) { return _chunks[id >> chunk_shift][id & chunk_mask]; }
    const ActionRecord& operator[](std::uint32_t id) const
    {
        return _chunks[id >> chunk_shift][id & chunk_mask];
    }
    bool is_net_action(std::uint32_t id) const { return (*this)[id].value != 0; }
    /// The value the action was requested with: the marker Q for a component action.
    Value value(std::uint32_t id) const;
    /// Whether two requests are equal: same kind, target and port, and the recorded value equals
    /// `value` the way Value compares (over the recorded value's width).
    bool equals(std::uint32_t id, void* target, Port* port, const Value* value) const;
    /// Forgets every record; the memory stays for reuse.
    void clear();
    /// Whether letters go into blocks of a few size classes, which `release` gives back for reuse,
    /// instead of being packed. Records are given back either way.
    void set_reuse(bool reuse) { _reuse = reuse; }
    /// Gives back the records linked from `first` on, and their letters if they took a block.
    void release(std::uint32_t first);
    /// The same for the records of a list; at once where none took a block.
    void release(const ActionList& list);
    /// Records in use.
    std::size_t size() const { return _count - _nof_free; }
    /// Bytes taken from the system.
    std::size_t bytes() const { return (_nof_chunks + _letter_chunks.size()) * chunk_bytes; }

private:
    static constexpr unsigned chunk_shift = 18;  // records per chunk, as a power of 2: 4 huge pages
    static constexpr std::uint32_t chunk_mask = (1u << chunk_shift) - 1;
    static constexpr std::size_t chunk_bytes = sizeof(ActionRecord) << chunk_shift;  // also a letter chunk

    static constexpr unsigned letter_classes = 6;           // blocks of 8 << class bytes, up to 256
    static constexpr std::uint32_t in_block = 0x80000000u;  // marks a record's letters in a block

    const unsigned char* _letters_at(std::uint32_t value) const;
    unsigned char* _letters_at(std::uint32_t value)
    {
        return const_cast<unsigned char*>(static_cast<const ActionStore*>(this)->_letters_at(value));
    }
    /// Where a wide value's letters went, as a record keeps it.
    std::uint32_t _place_value(const Value& value);
    /// A record of a new chunk.
    std::uint32_t _new_record();
    /// Where `bytes` of letters go: 1 + their offset, as a record keeps it.
    std::uint32_t _place_letters(std::size_t bytes);

    // Records, chunk_mask + 1 per chunk, in huge pages. A fixed table, so that a record is found
    // from the store itself: the engine looks one up for every action it queues and runs.
    static constexpr std::size_t max_chunks = 4096;  // 2^30 records, 32 GiB
    ActionRecord* _chunks[max_chunks] = {};
    std::size_t _nof_chunks = 0;                       // in use
    std::vector<unsigned char*> _letter_chunks;        // width byte then letters, per net action value
    std::uint32_t _count = 0;                          // records in use
    std::size_t _letter_chunk = 0;                     // the letter chunk being filled
    unsigned char* _letters = nullptr;                 // that chunk, or null before the first net action
    std::size_t _letters_used = 0;                     // bytes of that chunk in use
    bool _reuse = false;                               // released records and letters are used again
    std::uint32_t _free_records = ActionRecord::none;  // released records, linked through next
    std::uint32_t _nof_free = 0;                       // records on that list
    std::uint32_t _free_letters[letter_classes] = {};  // released letter blocks by class, as a record's value
};

/// An insertion-ordered list of actions of one store in which an equal request is dropped. A small
/// filter over targets and ports answers most requests; past it, short lists are scanned and a long
/// one gets a hash index while it is in use.
class ActionList
{
public:
    ActionList() = default;
    ActionList(ActionList&&) = default;
    ActionList& operator=(ActionList&&) = default;

    /// Appends the action unless an equal one is in the list; true if appended.
    bool push(ActionStore& store, void* target, Port* port, const Value* value)
    {
        std::size_t hash = hash_of(target, port);
        std::uint64_t& filter_word = _filter[(hash >> 60) & (filter_words - 1)];
        std::uint64_t filter_bit = std::uint64_t{1} << ((hash >> 54) & 63);
        // Most requests are new: a clear filter bit proves it without looking at the list.
        if ((filter_word & filter_bit) != 0 && _contains(store, target, port, value, hash))
            return false;
        filter_word |= filter_bit;
        _append(store, store.add(target, port, value), hash);
        if (value != nullptr && value->size() > ActionRecord::record_letters)
            _wide = true;
        return true;
    }
    /// Appends a record of the store that is in no list, unless an equal action is in this one;
    /// true if appended. A request kept aside joins its slot this way, as if requested then.
    bool link(ActionStore& store, std::uint32_t id);
    std::uint32_t first() const { return _first; }
    std::uint32_t last() const { return _last; }
    /// Whether a record may keep its letters outside itself, in a block of the store.
    bool wide() const { return _wide; }
    std::size_t size() const { return _count; }
    bool empty() const { return _count == 0; }
    /// Forgets the actions (the store keeps them).
    void clear();
    /// Frees the index; a later request builds it again if it needs one.
    void drop_index()
    {
        _index.reset();
        _indexed = false;
    }

private:
    static constexpr std::uint32_t scan_limit = 8;  // actions looked through before indexing
    // Words of the filter: every slot of the map has one, so it stays small.
    static constexpr std::size_t filter_words = 8;

    /// Equal requests share target and port; the value stays out, since its equality is one-sided.
    /// The filter takes the top bits, the table the low ones: both are mixed.
    static std::size_t hash_of(const void* target, const Port* port)
    {
        std::uint64_t seed = reinterpret_cast<std::uintptr_t>(target) * 0x9e3779b97f4a7c15ull;
        seed ^= reinterpret_cast<std::uintptr_t>(port) * 0xc2b2ae3d27d4eb4full;
        return static_cast<std::size_t>(seed ^ (seed >> 32));
    }
    bool _contains(const ActionStore& store, void* target, Port* port, const Value* value, std::size_t hash);
    void _append(ActionStore& store, std::uint32_t id, std::size_t hash)
    {
        if (_last == ActionRecord::none)
            _first = id;
        else
            store[_last].next = id;
        _last = id;
        ++_count;
        if (_indexed)
            _index_added(store, id, hash);
    }
    void _index_added(const ActionStore& store, std::uint32_t id, std::size_t hash);
    void _build_index(const ActionStore& store, std::size_t buckets);
    void _index_record(std::uint32_t id, std::size_t hash);

    std::uint32_t _first = ActionRecord::none;           // first record in the store
    std::uint32_t _last = ActionRecord::none;            // last record, where the next one is linked
    std::uint32_t _count = 0;                            // records in the list
    bool _wide = false;                                  // a net action's value is wider than a record holds
    std::uint64_t _filter[filter_words] = {};            // a bit per hash of each target and port in it
    bool _indexed = false;                               // _index holds every record of the list
    std::unique_ptr<std::vector<std::uint32_t>> _index;  // id + 1 per bucket, 0 when free; null while short
};

#endif  // MORVANE_CORE_SIMULATION_ACTIONLIST_H
