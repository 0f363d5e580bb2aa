#include "Core/Support/TLog.h"

#include <cstdarg>
#include <cstdio>

int TLog::instance_counter = -1;
bool TLog::logging = true;
const char* TLog::indent_string = "   ";

TLog::TLog(const char* format, ...)
{
    ++instance_counter;
    if (format == nullptr || !logging)
        return;
    _pre_print();
    va_list args;
    va_start(args, format);
    vprintf(format, args);
    va_end(args);
    _post_print();
}

TLog::~TLog()
{
    --instance_counter;
}

void TLog::operator()(const char* format, ...)
{
    if (!logging)
        return;
    _pre_print();
    va_list args;
    va_start(args, format);
    vprintf(format, args);
    va_end(args);
    _post_print();
}

void TLog::_pre_print()
{
    for (int i = 0; i < instance_counter; ++i)
        fputs(indent_string, stdout);
}

void TLog::_post_print()
{
    fputc('\n', stdout);
    fflush(stdout);
}
