#include "Cli/StdOutSimLog.h"

#include <cstdio>

void StdOutSimLog::log(LogLevel level, const char* format, va_list args)
{
    if (!logging_enabled())
        return;
    char buffer[1024];
    vsnprintf(buffer, sizeof buffer, format, args);

    FILE* stream = stdout;
    int intensity = 0;
    int colour = 34;
    switch (level) {
    case information:
        colour = 30;
        break;
    case warning:
        intensity = 1;
        colour = 35;
        break;
    case error:
        stream = stderr;
        intensity = 1;
        colour = 31;
        break;
    }
    fprintf(stream, "\033[%d;%dm%s\033[0m\n", intensity, colour, buffer);
}
