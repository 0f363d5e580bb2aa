#include "Core/Support/SimLog.h"

void SimLog::log(LogLevel level, const char* format, ...)
{
    va_list args;
    va_start(args, format);
    log(level, format, args);
    va_end(args);
}
