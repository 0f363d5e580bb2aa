#include "Core/Support/Error.h"

#include <cstdarg>
#include <cstdio>

namespace {

constexpr int error_buffer_size = 2048;

// The format is the caller's: the attribute lets the compiler check it there.
__attribute__((format(printf, 1, 0))) std::string format_into_buffer(const char* format, va_list args)
{
    char buffer[error_buffer_size];
    int n = vsnprintf(buffer, sizeof buffer, format, args);
    if (n < 0)
        return std::string();
    return std::string(buffer);
}

}  // namespace

Error::Error(const char* format, ...)
{
    va_list args;
    va_start(args, format);
    _message = format_into_buffer(format, args);
    va_end(args);
}

ErrorWithPos::ErrorWithPos(int line, int column, const char* format, ...) : _line(line), _column(column)
{
    va_list args;
    va_start(args, format);
    _pos_message = format_into_buffer(format, args);
    va_end(args);
}
