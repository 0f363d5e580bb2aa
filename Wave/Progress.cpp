#include "Wave/Progress.h"

#include "Core/Simulation/EventSimulator.h"

#include <csignal>
#include <cstring>
#include <sys/time.h>
#include <unistd.h>

namespace {

constexpr long interval_us = 250000;
volatile sig_atomic_t end_of_run = 0;  // ns, for the handler
volatile sig_atomic_t line_shown = 0;  // the handler wrote a line that stop() erases

std::size_t append(char* buffer, std::size_t size, std::size_t at, const char* text)
{
    while (*text != '\0' && at + 1 < size)
        buffer[at++] = *text++;
    return at;
}

std::size_t append_number(char* buffer, std::size_t size, std::size_t at, long long number)
{
    char digits[24];
    int n = 0;
    do {
        digits[n++] = static_cast<char>('0' + number % 10);
        number /= 10;
    } while (number > 0);
    while (n > 0 && at + 1 < size)
        buffer[at++] = digits[--n];
    return at;
}

void on_timer(int)
{
    EventSimulator* engine = EventSimulator::get_instance();
    if (engine == nullptr)
        return;
    char line[128];
    std::size_t length = Progress::format(line, sizeof line, engine->time(), end_of_run);
    ssize_t ignored = write(STDERR_FILENO, line, length);
    (void)ignored;
    line_shown = 1;
}

void arm(long microseconds)
{
    itimerval timer{};
    timer.it_interval.tv_usec = microseconds;
    timer.it_value.tv_usec = microseconds;
    setitimer(ITIMER_REAL, &timer, nullptr);
}

}  // namespace

std::size_t Progress::format(char* buffer, std::size_t size, int time, int end_time)
{
    if (time < 0)
        time = 0;
    std::size_t at = append(buffer, size, 0, "\rSimulated ");
    at = append_number(buffer, size, at, time);
    at = append(buffer, size, at, " of ");
    at = append_number(buffer, size, at, end_time);
    at = append(buffer, size, at, " ns (");
    at = append_number(buffer, size, at, end_time > 0 ? 100LL * time / end_time : 100);
    at = append(buffer, size, at, "%)\033[K");
    buffer[at] = '\0';
    return at;
}

void Progress::start(int end_time)
{
    if (_running || !isatty(STDERR_FILENO))
        return;
    end_of_run = end_time;
    struct sigaction action
    {
    };
    action.sa_handler = on_timer;
    action.sa_flags = SA_RESTART;
    sigemptyset(&action.sa_mask);
    sigaction(SIGALRM, &action, nullptr);
    arm(interval_us);
    _running = true;
}

void Progress::stop()
{
    if (!_running)
        return;
    arm(0);
    signal(SIGALRM, SIG_DFL);
    _running = false;
    if (line_shown) {
        ssize_t ignored = write(STDERR_FILENO, "\r\033[K", 4);
        (void)ignored;
        line_shown = 0;
    }
}
