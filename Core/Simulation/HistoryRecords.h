// The packed store of a value history: one (time, letters) record per entry, in pages.
#ifndef MORVANE_CORE_SIMULATION_HISTORYRECORDS_H
#define MORVANE_CORE_SIMULATION_HISTORYRECORDS_H

#include "Core/Simulation/BitState.h"

#include <cstddef>
#include <cstdint>
#include <cstring>

/// Records of a fixed number of letters, each a 4-byte time followed at once by the letters: a
/// one-bit signal costs 5 bytes an entry, an 8-bit one 12, where a record holding a `Value` would
/// cost 40. Times are kept in ascending order by the caller.
///
/// The records fill pages that double from 32 bytes up to 4 KiB and are never moved: a port that
/// changes twice wastes little, a long history wastes at most the rest of its last page, and growing
/// copies nothing. The pages come from a pool of huge pages, so that the tails of thousands of
/// histories, which every event touches, don't each cost a TLB miss.
class HistoryRecords
{
public:
    HistoryRecords() = default;
    ~HistoryRecords() { clear(); }
    HistoryRecords(const HistoryRecords&) = delete;
    HistoryRecords& operator=(const HistoryRecords&) = delete;

    std::size_t size() const { return _count; }
    bool empty() const { return _count == 0; }
    /// Letters per record.
    unsigned width() const { return _width; }
    /// Drops all records and gives the pages back; the width may then change.
    void clear();
    /// Only while empty.
    void set_width(unsigned width) { _width = static_cast<std::uint8_t>(width); }
    /// Rewrites every record with `width` letters, all of them NUL.
    void widen_blank(unsigned width);

    /// Changes made to the records since they were made, never reset: records that show the same
    /// count hold the same entries.
    std::uint32_t edits() const { return _edits; }

    int time(std::size_t i) const { return _time_of(_record(i)); }
    /// Only while not empty.
    int last_time() const { return _last_time; }
    const char* letters(std::size_t i) const { return _record(i) + sizeof(int); }
    const char* last_letters() const
    {
        return _width <= copied_letters ? _last_letters : _tail + (_tail_count - 1) * _stride() + sizeof(int);
    }
    /// Replaces the letters of record i.
    void overwrite(std::size_t i, const char* letters)
    {
        char* record = const_cast<char*>(_record(i)) + sizeof(int);
        ++_edits;
        for (unsigned k = 0; k < _width; ++k)
            record[k] = letters[k];
        if (i + 1 == _count)
            _copy_last(letters);
    }

    void append(int time, const char* letters)
    {
        if (_tail_count == _tail_capacity)
            _add_page(time);
        char* record = _tail + _tail_count * _stride();
        std::memcpy(record, &time, sizeof time);
        ++_edits;
        ++_tail_count;
        ++_count;
        _last_time = time;
        if (_width == 1) {
            // Most signals are one bit.
            record[sizeof time] = letters[0];
            _last_letters[0] = letters[0];
            return;
        }
        // Not memcpy: a few bytes of unknown count make a library call.
        Morvane::copy_letters(record + sizeof time, letters, _width);
        _copy_last(letters);
    }
    /// Puts a record before record i; rare, so it rebuilds the pages.
    void insert(std::size_t i, int time, const char* letters);
    /// Drops the last record; only while there are two or more.
    void pop_back();
    /// Whether the last record began a page: the moment to look for pages that can go.
    bool tail_page_is_new() const { return _tail_count == 1; }
    /// Gives back the leading pages whose records all lie before the record in force at `time`;
    /// true if any went. Records are then counted from the first one kept.
    bool drop_pages_before(int time);

    /// Index of the first record later than `time`.
    std::size_t upper_bound(int time) const;
    /// Index of the first record at or after `time`.
    std::size_t lower_bound(int time) const;

    /// Bytes of pages handed out to all histories of the process and not given back.
    static std::size_t bytes_in_use();

private:
    // The last record of a narrow signal is also kept in the object: nearly every read is of the
    // latest value, and the tail page of a history that a run visits now and then is cold in cache.
    static constexpr unsigned copied_letters = 8;

    struct Page
    {
        char* data;               // pool block of the page's size class
        std::uint32_t first;      // index of its first record
        int first_time;           // ns, time of its first record
        std::uint8_t size_class;  // block of 32 << size_class bytes
    };

    std::size_t _stride() const { return sizeof(int) + _width; }
    void _copy_last(const char* letters)
    {
        Morvane::copy_letters(_last_letters, letters, _width < copied_letters ? _width : copied_letters);
    }
    static int _time_of(const char* record)
    {
        int t;
        std::memcpy(&t, record, sizeof t);
        return t;
    }
    const char* _record(std::size_t i) const;
    /// The page that holds record i.
    std::size_t _page_of(std::size_t i) const;
    void _add_page(int first_time);

    char* _tail = nullptr;             // data of the last page, or null
    Page* _pages = nullptr;            // malloc'ed, in order, the last one the tail; room for a power of 2
    std::uint32_t _nof_pages = 0;      // pages in use
    std::uint32_t _count = 0;          // records in all pages
    std::uint16_t _tail_count = 0;     // records in the last page
    std::uint16_t _tail_capacity = 0;  // records that fit in the last page
    std::uint8_t _width = 0;           // letters per record
    int _last_time = 0;                // ns, of the last record
    char _last_letters[copied_letters] = {};  // of the last record, if that many or fewer
    std::uint32_t _edits = 0;                 // see edits
};

#endif  // MORVANE_CORE_SIMULATION_HISTORYRECORDS_H
