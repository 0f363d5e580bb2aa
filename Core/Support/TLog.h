// An indented trace on standard output for dumps and diagnostics.
#ifndef MORVANE_CORE_SUPPORT_TLOG_H
#define MORVANE_CORE_SUPPORT_TLOG_H

/// Each live TLog opens one level of indentation; lines print at the depth of the innermost one.
class TLog
{
public:
    /// Opens a level; a non-null format prints its line at the new depth.
    [[gnu::format(printf, 2, 3)]] explicit TLog(const char* format = nullptr, ...);
    virtual ~TLog();

    TLog(const TLog&) = delete;
    TLog& operator=(const TLog&) = delete;

    /// Prints one line at the present depth.
    [[gnu::format(printf, 2, 3)]] void operator()(const char* format, ...);

    static void enable_logging() { logging = true; }
    static void disable_logging() { logging = false; }
    static void set_indent_string(const char* indent) { indent_string = indent; }

    static int instance_counter;       // depth of the innermost open TLog; -1 with none open
    static bool logging;               // off: depth still counts, nothing prints
    static const char* indent_string;  // printed once per depth level

protected:
    void _pre_print();
    void _post_print();
};

#endif  // MORVANE_CORE_SUPPORT_TLOG_H
