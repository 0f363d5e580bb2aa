#include "Core/Simulation/ValueHistory.h"

#include "Core/Simulation/ValueText.h"
#include "Core/Support/Error.h"
#include "Core/Support/NumberText.h"
#include "Core/Support/TLog.h"

#include <algorithm>
#include <climits>
#include <functional>
#include <memory>
#include <utility>

ValueHistory::ValueHistory(unsigned size) : _size(size) {}

void ValueHistory::set(const Value& value, int time)
{
    if (_values.empty() && _size == 0)
        _size = value.size();
    if (size() != value.size())
        throw Error("ValueHistory: mismatching type width. ValueHistory width=%d, but value width=%d\n",
                    static_cast<int>(value.size()), static_cast<int>(size()));

    // Subscribers hear first: whoever reads this history at `time` meanwhile still sees the old value.
    Value old_value = this->value(time);
    if (old_value != value)
        _notify_subscribers(old_value, value, time);

    // Runs are recorded in ascending time, so the last entry is the common place to write.
    if (_values.empty() || time > _values.back().time) {
        _values.push_back(Entry{time, value});
        return;
    }
    std::size_t i = _upper_bound(time);
    if (i > 0 && _values[i - 1].time == time) {
        // Same width by the check above: replace in place, no store of its own to allocate.
        Value& stored = _values[i - 1].value;
        std::destroy_at(&stored);
        std::construct_at(&stored, value);
        return;
    }
    _values.insert(_values.begin() + static_cast<std::ptrdiff_t>(i), Entry{time, value});
}

Value ValueHistory::value(int time) const
{
    const Entry* entry = _entry_at(time);
    return entry != nullptr ? entry->value : Value(static_cast<int>(size()));
}

const ValueHistory::Entry* ValueHistory::_entry_at(int time) const
{
    if (_values.empty())
        return nullptr;
    if (time >= _values.back().time)
        return &_values.back();
    std::size_t i = _upper_bound(time);
    return i == 0 ? nullptr : &_values[i - 1];
}

std::size_t ValueHistory::_lower_bound(int time) const
{
    auto it = std::lower_bound(_values.begin(), _values.end(), time,
                               [](const Entry& entry, int t) { return entry.time < t; });
    return static_cast<std::size_t>(it - _values.begin());
}

std::size_t ValueHistory::_upper_bound(int time) const
{
    auto it = std::upper_bound(_values.begin(), _values.end(), time,
                               [](int t, const Entry& entry) { return t < entry.time; });
    return static_cast<std::size_t>(it - _values.begin());
}

void ValueHistory::add_change_subscriber(ValueChangeSubscriber* subscriber)
{
    auto it = std::lower_bound(_subscribers.begin(), _subscribers.end(), subscriber,
                               std::less<ValueChangeSubscriber*>());
    if (it == _subscribers.end() || *it != subscriber)
        _subscribers.insert(it, subscriber);
}

void ValueHistory::remove_change_subscriber(ValueChangeSubscriber* subscriber)
{
    std::erase(_subscribers, subscriber);
}

bool ValueHistory::has_change_subscriber(const ValueChangeSubscriber* subscriber) const
{
    return std::find(_subscribers.begin(), _subscribers.end(), subscriber) != _subscribers.end();
}

void ValueHistory::_notify_subscribers(const Value& old_value, const Value& new_value, int time)
{
    ValueChange change{old_value, new_value, time};
    // By index: a subscriber may subscribe others while it is told.
    for (std::size_t i = 0; i < _subscribers.size(); ++i)
        _subscribers[i]->value_changed(this, change);
}

bool ValueHistory::positive_flank_at(int time) const
{
    return size() == 1 && value(time - 1) == 'L' && value(time) == 'H';
}

bool ValueHistory::negative_flank_at(int time) const
{
    return size() == 1 && value(time - 1) == 'H' && value(time) == 'L';
}

bool ValueHistory::changed_at(int time) const
{
    return value(time - 1) != value(time);
}

bool ValueHistory::constant_between(int a, int b) const
{
    int low = std::min(a, b);
    int high = std::max(a, b);
    Value reference = value(low);
    for (std::size_t i = _lower_bound(low); i < _values.size() && _values[i].time <= high; ++i) {
        if (_values[i].value != reference)
            return false;
    }
    return true;
}

bool ValueHistory::constant_between(int a, int b, const Value& expected) const
{
    int low = std::min(a, b);
    int high = std::max(a, b);
    if (value(low) != expected)
        return false;
    for (std::size_t i = _lower_bound(low); i < _values.size() && _values[i].time <= high; ++i) {
        if (_values[i].value != expected)
            return false;
    }
    return true;
}

int ValueHistory::time_of_last_change(int time) const
{
    std::size_t end = _upper_bound(time);
    if (end == 0)
        return INT_MIN;
    const Value& in_force = _values[end - 1].value;
    for (std::size_t i = end - 1; i > 0; --i) {
        if (_values[i - 1].value != in_force)
            return _values[i].time;
    }
    // Before the first entry the value was all u; a first entry of u changed nothing.
    if (Value(static_cast<int>(size())) == in_force)
        return INT_MIN;
    return _values.front().time;
}

std::uint64_t ValueHistory::max_unsigned_value() const
{
    // A 32-bit shift: width 32 wraps to 1 << 0.
    std::int32_t limit = static_cast<std::int32_t>((1u << (size() & 31u)) - 1u);
    return static_cast<std::uint64_t>(static_cast<std::int64_t>(limit));
}

bool ValueHistory::can_accept_value(const std::string& text, Morvane::Dir dir) const
{
    if (is_hex(text))
        return std::stoull(text, nullptr, 16) <= max_unsigned_value();
    std::string bits = hexpand(text);
    bool letters_fit = false;
    if (dir == Morvane::Input)
        letters_fit = is_input_bit_stream(bits);
    else if (dir == Morvane::Output || dir == Morvane::Inout)
        letters_fit = is_output_bit_stream(bits);
    return letters_fit && bits.size() <= size();
}

void ValueHistory::print() const
{
    TLog log;
    for (const Entry& entry : _values)
        log("%d: %s", entry.time, entry.value.c_str());
}
