#include "Core/Support/ProfilingTimer.h"

#include <gtest/gtest.h>

using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStdout;

namespace {

long long fake_microseconds = 0;  // the next reading

// Every reading is 1.5 ms after the one before.
timeval fake_clock()
{
    timeval now;
    now.tv_sec = static_cast<time_t>(fake_microseconds / 1000000);
    now.tv_usec = static_cast<suseconds_t>(fake_microseconds % 1000000);
    fake_microseconds += 1500;
    return now;
}

struct FakeClock
{
    FakeClock() : previous(ProfilingTimer::set_clock(fake_clock)) { fake_microseconds = 0; }
    ~FakeClock() { ProfilingTimer::set_clock(previous); }
    ProfilingTimer::Clock previous;  // put back at the end
};

}  // namespace

TEST(ProfilingTimerTest, NestedTimersIndentAndTheSumsPrintWhenTheOutermostEnds)
{
    FakeClock clock;
    CaptureStdout();
    {
        ProfilingTimer outer("load");
        {
            ProfilingTimer inner("parse");
            inner.print_lap_time("lines", true);
            inner.accumulate_lap_time("lines");
        }
        EXPECT_EQ(GetCapturedStdout(), "load: start\n"
                                       "|  parse: start\n"
                                       "|  parse:lines: 1.5 ms (1.5 ms)\n"
                                       "|  parse:end: 1.5 ms (4.5 ms)\n");
        CaptureStdout();
    }
    EXPECT_EQ(GetCapturedStdout(), "load:end: 7.5 ms (7.5 ms)\n"
                                   "====== Accumulated statistics ====\n"
                                   "lines: tot= 3 ms, calls=2, avg=1.5 ms\n");
}

TEST(ProfilingTimerTest, SilentTimerKeepsTimeAndCountsNesting)
{
    FakeClock clock;
    CaptureStdout();
    {
        ProfilingTimer quiet("");
        ProfilingTimer named("step");
        quiet.accumulate_lap_time("wait");
    }
    EXPECT_EQ(GetCapturedStdout(), "|  step: start\n"
                                   "|  step:end: 3.0 ms (3.0 ms)\n"
                                   "====== Accumulated statistics ====\n"
                                   "wait: tot= 3 ms, calls=1, avg=3 ms\n");
}
