#include "Core/Simulation/HistoryRecords.h"

#include "Core/Support/HugePages.h"

#include <algorithm>
#include <cstdlib>
#include <new>
#include <vector>

namespace {

constexpr unsigned smallest_page = 32;          // bytes of a history's first page
constexpr std::uint8_t largest_class = 7;       // pages stop doubling at 32 << 7 = 4 KiB
constexpr std::size_t chunk_bytes = 32u << 20;  // taken from the system at a time, in huge pages

// Pages of the size classes, carved from chunks in huge pages and kept for reuse when a history is
// cleared. Under AddressSanitizer every page is a malloc block instead, so that the checks see each.
class PagePool
{
public:
    char* allocate(std::uint8_t size_class)
    {
        std::size_t bytes = std::size_t{smallest_page} << size_class;
        _in_use += bytes;
#if defined(__SANITIZE_ADDRESS__)
        return static_cast<char*>(std::malloc(bytes));
#else
        if (_free[size_class] != nullptr) {
            char* block = _free[size_class];
            std::memcpy(&_free[size_class], block, sizeof(char*));
            return block;
        }
        if (_chunk_left < bytes)
            _new_chunk();
        char* block = _chunk_next;
        _chunk_next += bytes;
        _chunk_left -= bytes;
        return block;
#endif
    }

    void release(char* block, std::uint8_t size_class)
    {
        _in_use -= std::size_t{smallest_page} << size_class;
#if defined(__SANITIZE_ADDRESS__)
        std::free(block);
#else
        std::memcpy(block, &_free[size_class], sizeof(char*));
        _free[size_class] = block;
#endif
    }

    std::size_t in_use() const
    {
        return _in_use;
    }

private:
    void _new_chunk()
    {
        // The rest of the old chunk is lost; it is less than one largest page.
        _chunk_next = static_cast<char*>(allocate_huge(chunk_bytes));
        _chunk_left = chunk_bytes;
    }

    char* _free[largest_class + 1] = {};  // first free block of each class, linked through the blocks
    char* _chunk_next = nullptr;          // where the next new block starts
    std::size_t _chunk_left = 0;          // bytes, what is left of the chunk
    std::size_t _in_use = 0;              // bytes, handed out and not given back
};

// Never destroyed: histories in static objects may outlive any other owner.
PagePool& pool()
{
    static PagePool* the_pool = new PagePool;
    return *the_pool;
}

}  // namespace

void HistoryRecords::clear()
{
    for (std::uint32_t i = 0; i < _nof_pages; ++i)
        pool().release(_pages[i].data, _pages[i].size_class);
    std::free(_pages);
    _pages = nullptr;
    _nof_pages = 0;
    _tail = nullptr;
    _tail_count = 0;
    _tail_capacity = 0;
    _count = 0;
    ++_edits;
}

void HistoryRecords::widen_blank(unsigned width)
{
    std::vector<int> times;
    for (std::size_t i = 0; i < _count; ++i)
        times.push_back(time(i));
    clear();
    set_width(width);
    const char blank[256] = {};
    for (int t : times)
        append(t, blank);
}

void HistoryRecords::insert(std::size_t i, int t, const char* new_letters)
{
    std::vector<int> times;
    std::vector<char> all_letters;
    for (std::size_t j = 0; j < _count; ++j) {
        times.push_back(time(j));
        all_letters.insert(all_letters.end(), letters(j), letters(j) + _width);
    }
    unsigned width = _width;
    clear();
    set_width(width);
    for (std::size_t j = 0; j <= times.size(); ++j) {
        if (j == i)
            append(t, new_letters);
        if (j < times.size())
            append(times[j], all_letters.data() + j * width);
    }
}

void HistoryRecords::pop_back()
{
    if (_tail_count == 1) {
        Page& tail = _pages[--_nof_pages];
        pool().release(tail.data, tail.size_class);
        const Page& page = _pages[_nof_pages - 1];
        _tail = page.data;
        _tail_count = static_cast<std::uint16_t>(tail.first - page.first);
        _tail_capacity =
            static_cast<std::uint16_t>((std::size_t{smallest_page} << page.size_class) / _stride());
    } else {
        --_tail_count;
    }
    --_count;
    ++_edits;
    const char* last = _tail + (_tail_count - 1) * _stride();
    _last_time = _time_of(last);
    _copy_last(last + sizeof(int));
}

bool HistoryRecords::drop_pages_before(int t)
{
    std::uint32_t gone = 0;
    while (gone + 1 < _nof_pages && _pages[gone + 1].first_time <= t)
        ++gone;
    if (gone == 0)
        return false;
    std::uint32_t dropped_records = _pages[gone].first;
    for (std::uint32_t i = 0; i < gone; ++i)
        pool().release(_pages[i].data, _pages[i].size_class);
    _nof_pages -= gone;
    std::memmove(_pages, _pages + gone, _nof_pages * sizeof(Page));
    for (std::uint32_t i = 0; i < _nof_pages; ++i)
        _pages[i].first -= dropped_records;
    _count -= dropped_records;
    ++_edits;
    return true;
}

const char* HistoryRecords::_record(std::size_t i) const
{
    const Page& page = _pages[_page_of(i)];
    return page.data + (i - page.first) * _stride();
}

std::size_t HistoryRecords::_page_of(std::size_t i) const
{
    if (i >= _pages[_nof_pages - 1].first)
        return _nof_pages - 1;
    const Page* it = std::upper_bound(_pages, _pages + _nof_pages, i,
                                      [](std::size_t index, const Page& page) { return index < page.first; });
    return static_cast<std::size_t>(it - _pages) - 1;
}

std::size_t HistoryRecords::upper_bound(int t) const
{
    if (_count == 0)
        return 0;
    // A part reading its inputs one delay back mostly lands among the last few records.
    std::size_t stride = _stride();
    const char* record = _tail + (_tail_count - 1) * stride;
    for (std::size_t back = 0; back < 4 && back < _tail_count; ++back, record -= stride) {
        if (_time_of(record) <= t)
            return _count - back;
    }
    // Most lookups fall in the last page; the page list is read only for older times.
    std::size_t page_index = _nof_pages - 1;
    if (t < _time_of(_tail)) {
        const Page* it = std::upper_bound(_pages, _pages + _nof_pages, t,
                                          [](int time, const Page& page) { return time < page.first_time; });
        if (it == _pages)
            return 0;
        page_index = static_cast<std::size_t>(it - _pages) - 1;
    }
    const Page& page = _pages[page_index];
    std::size_t count = page_index + 1 < _nof_pages ? _pages[page_index + 1].first - page.first : _tail_count;
    std::size_t low = 0;
    std::size_t high = count;
    while (low < high) {
        std::size_t mid = low + (high - low) / 2;
        if (_time_of(page.data + mid * stride) <= t)
            low = mid + 1;
        else
            high = mid;
    }
    return page.first + low;
}

std::size_t HistoryRecords::lower_bound(int t) const
{
    // Times are whole numbers: the first at or after t is the first after t - 1.
    return t == INT32_MIN ? 0 : upper_bound(t - 1);
}

std::size_t HistoryRecords::bytes_in_use()
{
    return pool().in_use();
}

void HistoryRecords::_add_page(int first_time)
{
    std::uint8_t size_class = 0;
    if (_nof_pages != 0)
        size_class = static_cast<std::uint8_t>(
            std::min<unsigned>(_pages[_nof_pages - 1].size_class + 1u, largest_class));
    // Wide records need a larger first page: at least two records a page.
    while ((std::size_t{smallest_page} << size_class) < 2 * _stride())
        ++size_class;
    // The page list doubles when it is full: at 0, 1, 2, 4, ... pages.
    if ((_nof_pages & (_nof_pages - 1)) == 0) {
        std::size_t room = _nof_pages == 0 ? 1 : 2 * std::size_t{_nof_pages};
        void* grown = std::realloc(_pages, room * sizeof(Page));
        if (grown == nullptr)
            throw std::bad_alloc();
        _pages = static_cast<Page*>(grown);
    }
    char* data = pool().allocate(size_class);
    _pages[_nof_pages++] = Page{data, _count, first_time, size_class};
    _tail = data;
    _tail_count = 0;
    _tail_capacity = static_cast<std::uint16_t>((std::size_t{smallest_page} << size_class) / _stride());
}
