#include "Core/Support/ProfilingTimer.h"

#include "Core/Support/NumberText.h"
#include "Core/Support/TLog.h"

#include <cstdio>

namespace {

timeval system_clock()
{
    timeval now;
    gettimeofday(&now, nullptr);
    return now;
}

}  // namespace

int ProfilingTimer::_instance_counter = -1;
const char* ProfilingTimer::_indent_string = "|  ";
std::map<std::string, long long> ProfilingTimer::_accumulated_time;
std::map<std::string, int> ProfilingTimer::_number_of_calls;
ProfilingTimer::Clock ProfilingTimer::_clock = system_clock;

ProfilingTimer::ProfilingTimer(const std::string& name) : _name(name)
{
    // A new outermost timer starts a new set of sums.
    if (_instance_counter == -1)
        _clear_accumulated_statistics();
    ++_instance_counter;
    start();
}

ProfilingTimer::~ProfilingTimer()
{
    if (!_name.empty())
        print_lap_time("end", false);
    --_instance_counter;
    if (_instance_counter == -1)
        _print_accumulated_statistics();
}

ProfilingTimer::Clock ProfilingTimer::set_clock(Clock clock)
{
    Clock previous = _clock;
    _clock = clock != nullptr ? clock : system_clock;
    return previous;
}

void ProfilingTimer::start()
{
    if (!_name.empty()) {
        _pre_print();
        TLog("%s: start", _name.c_str());
    }
    _set_now();
    _start_time = _now;
    _last_time = _now;
}

void ProfilingTimer::print_lap_time(const std::string& what, bool accumulate)
{
    long long total = 0;
    long long lap = _get_lap_time(total);
    _pre_print();
    TLog("%s:%s: %s (%s)", _name.c_str(), what.c_str(), time_to_str(lap, 1).c_str(),
         time_to_str(total, 1).c_str());
    if (accumulate)
        _add_to_stats(what, lap);
}

void ProfilingTimer::accumulate_lap_time(const std::string& what)
{
    _add_to_stats(what, _get_lap_time());
}

long long ProfilingTimer::_get_lap_time()
{
    _set_now();
    long long lap = _difference(_last_time, _now);
    _update_last_time();
    return lap;
}

long long ProfilingTimer::_get_lap_time(long long& total)
{
    long long lap = _get_lap_time();
    total = _difference(_start_time, _now);
    return lap;
}

long long ProfilingTimer::_difference(const timeval& from, const timeval& to)
{
    return (static_cast<long long>(to.tv_sec) - from.tv_sec) * 1000000000LL +
           (static_cast<long long>(to.tv_usec) - from.tv_usec) * 1000LL;
}

void ProfilingTimer::_pre_print() const
{
    for (int i = 0; i < _instance_counter; ++i)
        fputs(_indent_string, stdout);
}

void ProfilingTimer::_add_to_stats(const std::string& what, long long ns)
{
    _accumulated_time[what] += ns;
    ++_number_of_calls[what];
}

void ProfilingTimer::_clear_accumulated_statistics()
{
    _accumulated_time.clear();
    _number_of_calls.clear();
}

void ProfilingTimer::_print_accumulated_statistics()
{
    if (_accumulated_time.empty())
        return;
    TLog log("====== Accumulated statistics ====");
    for (const auto& [what, ns] : _accumulated_time) {
        int calls = _number_of_calls[what];
        log("%s: tot= %s, calls=%d, avg=%s", what.c_str(), time_to_str(ns, 0).c_str(), calls,
            time_to_str(ns / calls, 0).c_str());
    }
}
