// The complete record of a signal's values by time, and who hears of its changes.
#ifndef MORVANE_CORE_SIMULATION_VALUEHISTORY_H
#define MORVANE_CORE_SIMULATION_VALUEHISTORY_H

#include "Core/Simulation/Dir.h"
#include "Core/Simulation/HistoryRecords.h"
#include "Core/Simulation/Value.h"

#include <climits>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

class ValueHistory;

/// One change as its subscribers hear of it.
struct ValueChange
{
    const Value& old_value;  // in force at `time` before the change
    const Value& new_value;  // being stored
    int time;                // ns
};

/// Who wants to hear of a history's changes; components listen to their inputs this way.
class ValueChangeSubscriber
{
public:
    virtual ~ValueChangeSubscriber() = default;
    /// Called before the new value is stored, so reading `source` at the change's time gives the old one.
    virtual void value_changed(const ValueHistory* source, ValueChange& change) = 0;
};

/// A width and every value it was given, by time. By default nothing is forgotten during a run, so
/// the printer, the verifier and the parts that look back for a flank or a hold time can read any
/// time. A history that nobody reads after the run may be given a window instead: it then keeps what
/// is in force from that many ns before the present on, and stores no value that changes nothing.
/// A time without an entry has the value of the latest earlier entry; before the first, all u.
class ValueHistory
{
public:
    /// The window of a history that keeps every entry as it was set.
    static constexpr int full_history = -1;

    /// One entry as the readers get it; the history itself keeps only the time and the letters.
    struct Entry
    {
        int time;     // ns
        Value value;  // set at that time; the last set of a time wins
    };

    /// The entries in ascending time, each made when it is read.
    class Entries
    {
    public:
        class iterator
        {
        public:
            using value_type = Entry;
            using difference_type = std::ptrdiff_t;

            iterator(const ValueHistory* history, std::size_t i) : _history(history), _i(i) {}
            Entry operator*() const { return _history->_entry(_i); }
            iterator& operator++()
            {
                ++_i;
                return *this;
            }
            bool operator==(const iterator& other) const { return _i == other._i; }
            bool operator!=(const iterator& other) const { return _i != other._i; }

        private:
            const ValueHistory* _history;  // not owned
            std::size_t _i;                // entry index
        };

        explicit Entries(const ValueHistory* history) : _history(history) {}
        iterator begin() const { return iterator(_history, 0); }
        iterator end() const { return iterator(_history, size()); }
        std::size_t size() const { return _history->_records.size(); }
        bool empty() const { return size() == 0; }
        Entry operator[](std::size_t i) const { return _history->_entry(i); }
        Entry front() const { return _history->_entry(0); }
        Entry back() const { return _history->_entry(size() - 1); }

    private:
        const ValueHistory* _history;  // not owned
    };

    /// A size of 0 lets the first set decide the width.
    explicit ValueHistory(unsigned size);
    virtual ~ValueHistory() = default;

    ValueHistory(const ValueHistory&) = delete;
    ValueHistory& operator=(const ValueHistory&) = delete;

    /// Notifies the subscribers if the value in force at `time` changes, then stores it, replacing an
    /// entry of the same time. Times may come in any order. A width other than size() throws Error.
    virtual void set(const Value& value, int time);
    /// The value in force at `time`.
    virtual Value value(int time) const final
    {
        if (!_records.empty() && time >= _records.last_time())
            return _value_from(_records.last_letters());
        return _earlier_value(time);
    }
    virtual unsigned size() const final { return _size; }
    /// The letters in force at `time` where they lie in the history as they stand, valid until the
    /// next change of the history; null before the first entry or where an entry is still unsized.
    const char* letters_at(int time) const
    {
        if (_records.empty() || _has_blank_entries)
            return nullptr;
        if (time >= _records.last_time())
            return _records.last_letters();
        std::size_t i = _records.upper_bound(time);
        return i > 0 ? _records.letters(i - 1) : nullptr;
    }

    /// Changes to the entries, counted as HistoryRecords::edits counts them.
    std::uint32_t edits() const { return _records.edits(); }
    /// The time of the latest entry; the lowest int without one.
    int last_entry_time() const { return _records.empty() ? INT_MIN : _records.last_time(); }
    unsigned nof_values() const { return static_cast<unsigned>(_records.size()); }
    /// In ascending time.
    Entries entries() const { return Entries(this); }
    /// Drops all entries; width and subscribers stay.
    void clear()
    {
        _records.clear();
        _has_blank_entries = false;
        _trimmed = false;
    }

    /// Keeps what is in force from `reach` ns before the present on, and no entry that repeats the
    /// value in force; full_history (the default) keeps every entry as it was set.
    void set_window(int reach) { _window = reach; }
    int window() const { return _window; }
    /// Where windows read the present: the simulator's time, which it registers while it lives.
    static void set_present(const int* time) { _present = time; }

    /// Twice is once.
    void add_change_subscriber(ValueChangeSubscriber* subscriber);
    void remove_change_subscriber(ValueChangeSubscriber* subscriber);
    bool has_change_subscriber(const ValueChangeSubscriber* subscriber) const;
    /// Whether this history is the base of a Port, so that a subscriber can reach the port cheaply.
    bool is_port() const { return _is_port; }

    /// One bit only: L at time - 1 and H at time.
    bool positive_flank_at(int time) const;
    /// One bit only: H at time - 1 and L at time.
    bool negative_flank_at(int time) const;
    bool changed_at(int time) const;
    /// The value stays as it stood at the earlier time until the later one, both included.
    bool constant_between(int a, int b) const;
    /// The same, and the value is `expected` throughout.
    bool constant_between(int a, int b, const Value& expected) const;
    /// When the value in force at `time` began; the lowest int if it was never anything else.
    int time_of_last_change(int time) const;

    /// (1 << width, shift modulo 32) - 1: the largest number a stimulus may give.
    std::uint64_t max_unsigned_value() const;
    /// Whether a TV cell fits: a hex number that isn't too large, or state letters a port of that
    /// direction may take, no more of them than the width.
    bool can_accept_value(const std::string& text, Morvane::Dir dir) const;

    /// One line per entry: time and letters.
    void print() const;

protected:
    /// set, with its most common case in line: a value of the width, later than every entry.
    void _set(const Value& value, int time)
    {
        if (_records.empty() || _has_blank_entries || value.size() != _size || time <= _records.last_time()) {
            ValueHistory::set(value, time);
            return;
        }
        const char* last = _records.last_letters();
        const char* letters = value.c_str();
        bool windowed = _window != full_history;
        if (windowed && Morvane::identical_letters(last, letters, _size))
            return;
        if (_subscriber_count() != 0 && !Morvane::same_letters(last, letters, _size))
            _notify_change_from(last, value, time);
        _records.append(time, letters);
        if (windowed && _records.tail_page_is_new())
            _forget_before_window();
    }
    /// Tells the subscribers of a change from the letters `last` to `value`.
    void _notify_change_from(const char* last, const Value& value, int time);
    void _notify_subscribers(const Value& old_value, const Value& new_value, int time);
    void _notify_subscribers(ValueChange& change)
    {
        // Most histories have one subscriber: it is told without a walk.
        if (!_subscribers) {
            if (_subscriber == nullptr)
                return;
            _subscriber->value_changed(this, change);
            if (!_subscribers)
                return;
            _notify_list_from(1, change);
            return;
        }
        _notify_list_from(0, change);
    }
    /// Tells the subscribers of the list from the i-th on. By index: a subscriber may subscribe
    /// others while it is told. A single one that does so turns into a list whose first entry it is.
    void _notify_list_from(std::size_t i, ValueChange& change);
    /// Sizes an unsized history; a net takes its width from the first port attached. Entries made
    /// while the width was 0 stay empty values.
    void _set_size(unsigned size);
    void _mark_as_port() { _is_port = true; }
    /// Whether `value` at `time` would repeat, letter for letter, the latest entry at or before it.
    bool _repeats_last(const Value& value, int time) const
    {
        return !_records.empty() && time >= _records.last_time() && !_has_blank_entries &&
               Morvane::identical_letters(_records.last_letters(), value.c_str(), _size);
    }
    /// Index of the entry in force at `time`: the last at or before it; -1 before the first entry.
    std::ptrdiff_t _index_at(int time) const
    {
        std::size_t n = _records.size();
        if (n == 0)
            return -1;
        // Runs read mostly at or after the latest entry.
        if (time >= _records.last_time())
            return static_cast<std::ptrdiff_t>(n - 1);
        return static_cast<std::ptrdiff_t>(_records.upper_bound(time)) - 1;
    }
    /// The value of entry i.
    Value _value_of(std::size_t i) const { return _value_from(_records.letters(i)); }
    /// The value of an entry's letters.
    Value _value_from(const char* letters) const
    {
        if (_has_blank_entries && letters[0] == '\0')
            return Value(0);
        return Value::from_letters(letters, _records.width());
    }

private:
    /// The value in force at a time before the last entry, or of an empty history.
    Value _earlier_value(int time) const;
    std::size_t _subscriber_count() const
    {
        return _subscribers ? _subscribers->size() : (_subscriber != nullptr);
    }
    Entry _entry(std::size_t i) const { return Entry{_records.time(i), _value_of(i)}; }
    void _store(const Value& value, int time);
    /// For a window: drops the last entry if `letters` repeat the one before it; true if so.
    bool _takes_back_last_change(const char* letters);
    /// For a window: gives back the pages that lie wholly before it.
    void _forget_before_window();

    static const int* _present;  // ns, the simulator's time; null without a simulator

    HistoryRecords _records;          // ascending time, one record per time
    unsigned _size;                   // bits; 0 until the first set sizes it
    bool _is_port = false;            // this history is the base of a Port
    bool _has_blank_entries = false;  // entries of width 0 from before _set_size
    bool _trimmed = false;            // entries were forgotten; the first kept one began a value
    int _window = full_history;       // ns kept back from the present, or full_history
    // Most histories have one subscriber or none: it is kept in place, and a list is made only
    // for a second one. Ascending address, no duplicates, not owned.
    ValueChangeSubscriber* _subscriber = nullptr;  // the only one, while the list is null
    std::unique_ptr<std::vector<ValueChangeSubscriber*>> _subscribers;  // all of them, once there were two
};

#endif  // MORVANE_CORE_SIMULATION_VALUEHISTORY_H
