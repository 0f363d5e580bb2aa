#include "Core/Simulation/ActionList.h"

#include "Core/Simulation/Value.h"
#include "Core/Support/HugePages.h"

#include <cstdint>
#include <cstring>
#include <new>

namespace {

constexpr std::uint32_t free_bucket = 0;

}  // namespace

ActionStore::~ActionStore()
{
    for (std::size_t i = 0; i < _nof_chunks; ++i)
        release_huge(_chunks[i], chunk_bytes);
    for (unsigned char* chunk : _letter_chunks)
        release_huge(chunk, chunk_bytes);
}

std::uint32_t ActionStore::_new_record()
{
    if ((_count >> chunk_shift) == _nof_chunks) {
        if (_nof_chunks == max_chunks)
            throw std::bad_alloc();
        _chunks[_nof_chunks++] = static_cast<ActionRecord*>(allocate_huge(chunk_bytes));
    }
    return _count++;
}

std::uint32_t ActionStore::_place_letters(std::size_t bytes)
{
    if (_reuse) {
        // Size classes, so that a released block serves any later value of its class.
        unsigned size_class = 0;
        while ((std::size_t{8} << size_class) < bytes)
            ++size_class;
        if (std::uint32_t block = _free_letters[size_class]) {
            std::memcpy(&_free_letters[size_class], _letters_at(block), sizeof block);
            return block;
        }
        bytes = std::size_t{8} << size_class;
    }
    if (_letters_used + bytes > chunk_bytes || _letters == nullptr) {
        if (_letters != nullptr)
            ++_letter_chunk;
        _letters_used = 0;
        if (_letter_chunk == _letter_chunks.size())
            _letter_chunks.push_back(static_cast<unsigned char*>(allocate_huge(chunk_bytes)));
        _letters = _letter_chunks[_letter_chunk];
    }
    auto where = static_cast<std::uint32_t>(_letter_chunk * chunk_bytes + _letters_used) + 1;
    _letters_used += bytes;
    return _reuse ? where | in_block : where;
}

std::uint32_t ActionStore::_place_value(const Value& value)
{
    unsigned width = value.size();
    std::uint32_t where = _place_letters(1 + std::size_t{width});
    unsigned char* place = _letters_at(where);
    place[0] = static_cast<unsigned char>(width);
    const char* letters = value.c_str();
    for (unsigned i = 0; i < width; ++i)
        place[1 + i] = static_cast<unsigned char>(letters[i]);
    return where;
}

void ActionStore::release(std::uint32_t first)
{
    if (first == ActionRecord::none)
        return;
    std::uint32_t last = first;
    for (std::uint32_t id = first; id != ActionRecord::none; id = (*this)[id].next) {
        last = id;
        ++_nof_free;
        std::uint32_t block = (*this)[id].value;
        if ((block & in_block) == 0 || block >= ActionRecord::in_record)
            continue;
        unsigned char* letters = _letters_at(block);
        unsigned size_class = 0;
        while ((std::size_t{8} << size_class) < 1 + std::size_t{letters[0]})
            ++size_class;
        std::memcpy(letters, &_free_letters[size_class], sizeof block);
        _free_letters[size_class] = block;
    }
    (*this)[last].next = _free_records;
    _free_records = first;
}

void ActionStore::release(const ActionList& list)
{
    if (list.first() == ActionRecord::none)
        return;
    if (list.wide()) {
        release(list.first());
        return;
    }
    (*this)[list.last()].next = _free_records;
    _free_records = list.first();
    _nof_free += static_cast<std::uint32_t>(list.size());
}

const unsigned char* ActionStore::_letters_at(std::uint32_t value) const
{
    std::size_t offset = (value & ~in_block) - 1;
    return _letter_chunks[offset / chunk_bytes] + offset % chunk_bytes;
}

Value ActionStore::value(std::uint32_t id) const
{
    const ActionRecord& record = (*this)[id];
    if (record.value == 0)
        return Value("Q");
    if (record.value >= ActionRecord::in_record)
        return Value::from_letters(record.letters, record.value - ActionRecord::in_record);
    const unsigned char* letters = _letters_at(record.value);
    return Value::from_letters(reinterpret_cast<const char*>(letters + 1), letters[0]);
}

bool ActionStore::equals(std::uint32_t id, void* target, Port* port, const Value* value) const
{
    const ActionRecord& record = (*this)[id];
    if (record.target != target || record.port != port || (record.value != 0) != (value != nullptr))
        return false;
    if (value == nullptr)
        return true;
    // As Value compares: over the recorded width, ignoring case; a narrower request differs.
    if (record.value >= ActionRecord::in_record) {
        unsigned width = record.value - ActionRecord::in_record;
        return value->size() >= width && Morvane::same_letters(record.letters, value->c_str(), width);
    }
    const unsigned char* letters = _letters_at(record.value);
    unsigned width = letters[0];
    if (value->size() < width)
        return false;
    return Morvane::same_letters(reinterpret_cast<const char*>(letters + 1), value->c_str(), width);
}

void ActionStore::clear()
{
    _count = 0;
    _free_records = ActionRecord::none;
    _nof_free = 0;
    for (std::uint32_t& block : _free_letters)
        block = 0;
    _letter_chunk = 0;
    _letters_used = 0;
    _letters = nullptr;
}

void ActionList::_index_added(const ActionStore& store, std::uint32_t id, std::size_t hash)
{
    // Keep the table at most half full so probes stay short.
    if (_count * 2 > _index->size())
        _build_index(store, _index->size() * 2);
    else
        _index_record(id, hash);
}

void ActionList::clear()
{
    _first = ActionRecord::none;
    _last = ActionRecord::none;
    _count = 0;
    _wide = false;
    for (std::uint64_t& word : _filter)
        word = 0;
    // The same-time list is emptied every nanosecond; its table is kept for the next one.
    _indexed = false;
}

bool ActionList::link(ActionStore& store, std::uint32_t id)
{
    ActionRecord& record = store[id];
    record.next = ActionRecord::none;
    std::size_t hash = hash_of(record.target, record.port);
    std::uint64_t& filter_word = _filter[(hash >> 60) & (filter_words - 1)];
    std::uint64_t filter_bit = std::uint64_t{1} << ((hash >> 54) & 63);
    if ((filter_word & filter_bit) != 0) {
        // Rare: the value is built only to be compared.
        if (!store.is_net_action(id)) {
            if (_contains(store, record.target, record.port, nullptr, hash))
                return false;
        } else {
            Value value = store.value(id);
            if (_contains(store, record.target, record.port, &value, hash))
                return false;
        }
    }
    filter_word |= filter_bit;
    _append(store, id, hash);
    if (record.value != 0 && record.value < ActionRecord::in_record)
        _wide = true;
    return true;
}

bool ActionList::_contains(const ActionStore& store, void* target, Port* port, const Value* value,
                           std::size_t hash)
{
    if (!_indexed) {
        if (_count <= scan_limit) {
            for (std::uint32_t id = _first; id != ActionRecord::none; id = store[id].next) {
                if (store.equals(id, target, port, value))
                    return true;
            }
            return false;
        }
        std::size_t buckets = 128;
        while (buckets < 2 * static_cast<std::size_t>(_count))
            buckets *= 2;
        _build_index(store, buckets);
    }
    const std::vector<std::uint32_t>& table = *_index;
    std::size_t mask = table.size() - 1;
    for (std::size_t b = hash & mask;; b = (b + 1) & mask) {
        std::uint32_t slot = table[b];
        if (slot == free_bucket)
            return false;
        if (store.equals(slot - 1, target, port, value))
            return true;
    }
}

void ActionList::_build_index(const ActionStore& store, std::size_t buckets)
{
    if (!_index)
        _index = std::make_unique<std::vector<std::uint32_t>>();
    _index->assign(buckets, free_bucket);
    _indexed = true;
    for (std::uint32_t id = _first; id != ActionRecord::none; id = store[id].next)
        _index_record(id, hash_of(store[id].target, store[id].port));
}

void ActionList::_index_record(std::uint32_t id, std::size_t hash)
{
    std::vector<std::uint32_t>& table = *_index;
    std::size_t mask = table.size() - 1;
    std::size_t b = hash & mask;
    while (table[b] != free_bucket)
        b = (b + 1) & mask;
    table[b] = id + 1;
}
