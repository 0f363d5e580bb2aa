// The channel through which parts report to the user while a simulation runs.
#ifndef MORVANE_CORE_SUPPORT_SIMLOG_H
#define MORVANE_CORE_SUPPORT_SIMLOG_H

#include <cstdarg>

enum LogLevel
{
    information = 0,
    warning = 1,
    error = 2,
};

/// An abstract report sink; the command line supplies the one real sink.
class SimLog
{
public:
    SimLog() = default;
    virtual ~SimLog() = default;

    /// Formats and hands the line to the sink, if logging is enabled there.
    [[gnu::format(printf, 3, 4)]] void log(LogLevel level, const char* format, ...);
    [[gnu::format(printf, 3, 0)]] virtual void log(LogLevel level, const char* format, va_list args) = 0;
    virtual void clear() = 0;

    void enable_logging(bool enable) { _logging_enabled = enable; }
    bool logging_enabled() const { return _logging_enabled; }

private:
    bool _logging_enabled = true;  // a disabled sink drops every line
};

#endif  // MORVANE_CORE_SUPPORT_SIMLOG_H
