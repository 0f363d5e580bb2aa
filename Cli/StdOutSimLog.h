// The report sink of the command line: coloured lines, errors on standard error.
#ifndef MORVANE_CLI_STDOUTSIMLOG_H
#define MORVANE_CLI_STDOUTSIMLOG_H

#include "Core/Support/SimLog.h"

class StdOutSimLog : public SimLog
{
public:
    using SimLog::log;
    [[gnu::format(printf, 3, 0)]] void log(LogLevel level, const char* format, va_list args) override;
    void clear() override {}
};

#endif  // MORVANE_CLI_STDOUTSIMLOG_H
