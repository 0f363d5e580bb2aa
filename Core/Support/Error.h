// The one exception type of the system; its text goes to the user unchanged.
#ifndef MORVANE_CORE_SUPPORT_ERROR_H
#define MORVANE_CORE_SUPPORT_ERROR_H

#include <string>

/// A failure reported to the user. Built printf-style; the text is cut at 2047 chars.
class Error
{
public:
    [[gnu::format(printf, 2, 3)]] explicit Error(const char* format, ...);

    const std::string& message() const { return _message; }
    const char* what() const { return _message.c_str(); }

protected:
    Error() = default;

private:
    std::string _message;  // the formatted text; empty for ErrorWithPos
};

/// An Error at a line and column of a file. The base text stays empty: the message lives here only,
/// so a handler that reads it as a plain Error sees an empty text.
class ErrorWithPos : public Error
{
public:
    [[gnu::format(printf, 4, 5)]] ErrorWithPos(int line, int column, const char* format, ...);

    const std::string& pos_message() const { return _pos_message; }
    int line() const { return _line; }
    int column() const { return _column; }

private:
    std::string _pos_message;  // the formatted text
    int _line;                 // 1-based line of the fault
    int _column;               // column of the fault
};

#endif  // MORVANE_CORE_SUPPORT_ERROR_H
