// A log sink for tests that keeps what the code under test reports.
#ifndef MORVANE_TESTS_UNIT_LINELOG_H
#define MORVANE_TESTS_UNIT_LINELOG_H

#include "Core/Support/SimLog.h"

#include <cstdarg>
#include <cstdio>
#include <string>
#include <vector>

/// Keeps every line logged, as "<level> <text>".
class LineLog : public SimLog
{
public:
    void log(LogLevel level, const char* format, va_list args) override
    {
        char line[4096];
        vsnprintf(line, sizeof line, format, args);
        lines.push_back(std::to_string(level) + " " + line);
    }
    using SimLog::log;
    void clear() override { lines.clear(); }

    std::vector<std::string> lines;  // level, a blank, the text
};

#endif  // MORVANE_TESTS_UNIT_LINELOG_H
