// A scoped wall clock for finding where time goes: start, laps and end go to the trace.
#ifndef MORVANE_CORE_SUPPORT_PROFILINGTIMER_H
#define MORVANE_CORE_SUPPORT_PROFILINGTIMER_H

#include <map>
#include <string>
#include <sys/time.h>

/// Logs "<name>: start" when made and "<name>:end: <lap> (<total>)" when it goes, indented by the number
/// of timers around it. Laps can be summed up under a name; the sums print when the outermost timer
/// ends. A timer with an empty name prints nothing of its own but still keeps time and counts nesting.
class ProfilingTimer
{
public:
    /// Where the time comes from; replaceable so that tests see fixed times.
    using Clock = timeval (*)();

    explicit ProfilingTimer(const std::string& name);
    virtual ~ProfilingTimer();
    ProfilingTimer(const ProfilingTimer&) = delete;
    ProfilingTimer& operator=(const ProfilingTimer&) = delete;

    /// Starts over: the total and the next lap count from now.
    void start();
    /// Prints the lap and the total so far; with `accumulate` the lap goes to the sums under `what`.
    void print_lap_time(const std::string& what, bool accumulate);
    /// Adds the lap to the sums under `what`, silently.
    void accumulate_lap_time(const std::string& what);

    static void set_indent_string(const char* indent) { _indent_string = indent; }
    /// Null brings back the system clock. Returns the clock that was in use.
    static Clock set_clock(Clock clock);

private:
    void _set_now() { _now = _clock(); }
    void _update_last_time() { _last_time = _now; }
    /// ns since the last lap; moves the lap's start to now.
    long long _get_lap_time();
    /// The same, and the ns since the start in `total`.
    long long _get_lap_time(long long& total);
    /// ns from `from` to `to`.
    static long long _difference(const timeval& from, const timeval& to);
    void _pre_print() const;
    static void _add_to_stats(const std::string& what, long long ns);
    static void _clear_accumulated_statistics();
    static void _print_accumulated_statistics();

    std::string _name;    // "" for a silent timer
    timeval _start_time;  // when start() last ran
    timeval _last_time;   // where the present lap began
    timeval _now;         // the latest reading of the clock

    static int _instance_counter;                               // timers alive, minus one
    static const char* _indent_string;                          // printed once per enclosing timer
    static std::map<std::string, long long> _accumulated_time;  // ns summed up by name
    static std::map<std::string, int> _number_of_calls;         // laps summed up by name
    static Clock _clock;                                        // the system clock unless replaced
};

#endif  // MORVANE_CORE_SUPPORT_PROFILINGTIMER_H
