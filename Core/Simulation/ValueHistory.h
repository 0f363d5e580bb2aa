// The complete record of a signal's values by time, and who hears of its changes.
#ifndef MORVANE_CORE_SIMULATION_VALUEHISTORY_H
#define MORVANE_CORE_SIMULATION_VALUEHISTORY_H

#include "Core/Simulation/Dir.h"
#include "Core/Simulation/Value.h"

#include <cstdint>
#include <string>
#include <vector>

class ValueHistory;

/// One change as its subscribers hear of it.
struct ValueChange
{
    Value old_value;  // in force at `time` before the change
    Value new_value;  // being stored
    int time;         // ns
};

/// Who wants to hear of a history's changes; components listen to their inputs this way.
class ValueChangeSubscriber
{
public:
    virtual ~ValueChangeSubscriber() = default;
    /// Called before the new value is stored, so reading `source` at the change's time gives the old one.
    virtual void value_changed(const ValueHistory* source, ValueChange& change) = 0;
};

/// A width and every value it was given, by time. Nothing is forgotten during a run, so the printer,
/// the verifier and the parts that look back for a flank or a hold time can read any time.
/// A time without an entry has the value of the latest earlier entry; before the first, all u.
class ValueHistory
{
public:
    struct Entry
    {
        int time;     // ns
        Value value;  // set at that time; the last set of a time wins
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
    virtual Value value(int time) const;
    virtual unsigned size() const { return _size; }

    unsigned nof_values() const { return static_cast<unsigned>(_values.size()); }
    /// In ascending time.
    const std::vector<Entry>& entries() const { return _values; }
    /// Drops all entries; width and subscribers stay.
    void clear() { _values.clear(); }

    /// Twice is once.
    void add_change_subscriber(ValueChangeSubscriber* subscriber);
    void remove_change_subscriber(ValueChangeSubscriber* subscriber);
    bool has_change_subscriber(const ValueChangeSubscriber* subscriber) const;

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
    void _notify_subscribers(const Value& old_value, const Value& new_value, int time);
    /// Sizes an empty history; a net takes its width from the first port attached.
    void _set_size(unsigned size) { _size = size; }
    /// The entry in force at `time`: the last at or before it; null before the first entry.
    const Entry* _entry_at(int time) const;

private:
    /// Index of the first entry at or after `time`.
    std::size_t _lower_bound(int time) const;
    /// Index of the first entry later than `time`.
    std::size_t _upper_bound(int time) const;

    unsigned _size;                                    // bits; 0 until the first set sizes it
    std::vector<Entry> _values;                        // ascending time, one entry per time
    std::vector<ValueChangeSubscriber*> _subscribers;  // ascending address, no duplicates, not owned
};

#endif  // MORVANE_CORE_SIMULATION_VALUEHISTORY_H
