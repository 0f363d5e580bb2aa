#include "Core/Simulation/ValueHistory.h"

#include "Core/Simulation/ValueText.h"
#include "Core/Support/Error.h"
#include "Core/Support/NumberText.h"
#include "Core/Support/TLog.h"

#include <algorithm>
#include <climits>
#include <cstring>
#include <functional>

const int* ValueHistory::_present = nullptr;

ValueHistory::ValueHistory(unsigned size) : _size(size) {}

void ValueHistory::set(const Value& value, int time)
{
    if (_records.empty() && _size == 0)
        _size = value.size();
    if (_size != value.size())
        throw Error("ValueHistory: mismatching type width. ValueHistory width=%d, but value width=%d\n",
                    static_cast<int>(value.size()), static_cast<int>(size()));

    if (!_records.empty() && time >= _records.last_time()) {
        // The common case, a value at or after the latest entry, compares letters in place and makes
        // the old value only for subscribers that hear of a change.
        const char* last = _records.last_letters();
        const char* letters = value.c_str();
        bool blank = _has_blank_entries && last[0] == '\0';  // an empty value equals every value
        bool windowed = _window != full_history && !_has_blank_entries;
        // A window stores no repeat, and a repeat changes nothing a subscriber would hear of.
        if (windowed && Morvane::identical_letters(last, letters, _size))
            return;
        if (!blank && _subscriber_count() != 0 && !Morvane::same_letters(last, letters, _size))
            _notify_change_from(last, value, time);
        if (time > _records.last_time()) {
            _records.append(time, letters);
            if (windowed && _records.tail_page_is_new())
                _forget_before_window();
        } else if (!windowed || !_takes_back_last_change(letters)) {
            _records.overwrite(_records.size() - 1, letters);
        }
        return;
    }
    // Subscribers hear first: whoever reads this history at `time` meanwhile still sees the old value.
    Value old_value = this->value(time);
    if (old_value != value)
        _notify_subscribers(old_value, value, time);
    _store(value, time);
}

void ValueHistory::_notify_change_from(const char* last, const Value& value, int time)
{
    Value old_value = _value_from(last);
    ValueChange change{old_value, value, time};
    _notify_subscribers(change);
}

bool ValueHistory::_takes_back_last_change(const char* letters)
{
    // A change of the last entry's time back to the value before it needs no entry.
    std::size_t n = _records.size();
    if (n < 2 || !Morvane::identical_letters(_records.letters(n - 2), letters, _size))
        return false;
    _records.pop_back();
    return true;
}

void ValueHistory::_forget_before_window()
{
    if (_present == nullptr || *_present == INT_MIN)
        return;
    long long keep_from = static_cast<long long>(*_present) - _window;
    if (keep_from > INT_MIN && _records.drop_pages_before(static_cast<int>(keep_from)))
        _trimmed = true;
}

void ValueHistory::_store(const Value& value, int time)
{
    if (_records.empty())
        _records.set_width(value.size());
    // Runs are recorded in ascending time, so the last entry is the common place to write.
    std::size_t n = _records.size();
    if (n == 0 || time > _records.last_time()) {
        _records.append(time, value.c_str());
        return;
    }
    std::size_t i = _records.upper_bound(time);
    if (i > 0 && _records.time(i - 1) == time) {
        _records.overwrite(i - 1, value.c_str());
        return;
    }
    _records.insert(i, time, value.c_str());
}

Value ValueHistory::_earlier_value(int time) const
{
    std::ptrdiff_t i = _index_at(time);
    return i >= 0 ? _value_of(static_cast<std::size_t>(i)) : Value(static_cast<int>(size()));
}

void ValueHistory::_set_size(unsigned size)
{
    // Entries of width 0 read back as empty values; their letters become NUL markers.
    if (!_records.empty() && size != _records.width()) {
        _records.widen_blank(size);
        _has_blank_entries = true;
    }
    _size = size;
}

void ValueHistory::add_change_subscriber(ValueChangeSubscriber* subscriber)
{
    if (!_subscribers) {
        if (_subscriber == nullptr || _subscriber == subscriber) {
            _subscriber = subscriber;
            return;
        }
        _subscribers = std::make_unique<std::vector<ValueChangeSubscriber*>>(1, _subscriber);
        _subscriber = nullptr;
    }
    auto it = std::lower_bound(_subscribers->begin(), _subscribers->end(), subscriber,
                               std::less<ValueChangeSubscriber*>());
    if (it == _subscribers->end() || *it != subscriber)
        _subscribers->insert(it, subscriber);
}

void ValueHistory::remove_change_subscriber(ValueChangeSubscriber* subscriber)
{
    if (_subscribers)
        std::erase(*_subscribers, subscriber);
    else if (_subscriber == subscriber)
        _subscriber = nullptr;
}

bool ValueHistory::has_change_subscriber(const ValueChangeSubscriber* subscriber) const
{
    if (_subscribers)
        return std::find(_subscribers->begin(), _subscribers->end(), subscriber) != _subscribers->end();
    return subscriber != nullptr && _subscriber == subscriber;
}

void ValueHistory::_notify_subscribers(const Value& old_value, const Value& new_value, int time)
{
    ValueChange change{old_value, new_value, time};
    _notify_subscribers(change);
}

void ValueHistory::_notify_list_from(std::size_t i, ValueChange& change)
{
    for (; i < _subscribers->size(); ++i)
        (*_subscribers)[i]->value_changed(this, change);
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
    for (std::size_t i = _records.lower_bound(low); i < _records.size() && _records.time(i) <= high; ++i) {
        if (_value_of(i) != reference)
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
    for (std::size_t i = _records.lower_bound(low); i < _records.size() && _records.time(i) <= high; ++i) {
        if (_value_of(i) != expected)
            return false;
    }
    return true;
}

int ValueHistory::time_of_last_change(int time) const
{
    std::size_t end = _records.upper_bound(time);
    if (end == 0)
        return INT_MIN;
    const Value in_force = _value_of(end - 1);
    for (std::size_t i = end - 1; i > 0; --i) {
        if (_value_of(i - 1) != in_force)
            return _records.time(i);
    }
    // Before the first entry the value was all u; a first entry of u changed nothing. A window keeps
    // no repeated value, so its first entry began the value it holds.
    if (_trimmed)
        return _records.time(0);
    if (Value(static_cast<int>(size())) == in_force)
        return INT_MIN;
    return _records.time(0);
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
    for (std::size_t i = 0; i < _records.size(); ++i)
        log("%d: %s", _records.time(i), _value_of(i).c_str());
}
