// A line on a terminal that shows how far a long run has come.
#ifndef MORVANE_WAVE_PROGRESS_H
#define MORVANE_WAVE_PROGRESS_H

#include <string>

/// While it is started, rewrites one line on standard error a few times a second with the time the
/// simulator has reached; stop() erases it. Nothing happens unless standard error is a terminal.
/// The run gives no control back while it lasts, so a timer signal writes the line.
class Progress
{
public:
    Progress() = default;
    ~Progress() { stop(); }
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    void start(int end_time);
    void stop();

    /// The line as it stands at `time`, into `buffer`, without formatted output, which a signal
    /// handler may not use; returns its length.
    static std::size_t format(char* buffer, std::size_t size, int time, int end_time);

private:
    bool _running = false;  // the timer is armed
};

#endif  // MORVANE_WAVE_PROGRESS_H
