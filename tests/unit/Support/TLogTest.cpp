#include "Core/Support/TLog.h"

#include <gtest/gtest.h>

using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStdout;

TEST(TLogTest, NestedLevelsIndentOnceMoreAndReturn)
{
    CaptureStdout();
    {
        TLog outer("top %d", 1);
        {
            TLog inner("inner");
            inner("line");
        }
        outer("back");
    }
    EXPECT_EQ(GetCapturedStdout(), "top 1\n   inner\n   line\nback\n");
    EXPECT_EQ(TLog::instance_counter, -1);
}

TEST(TLogTest, DisabledLoggingStillCountsDepthAndANullFormatOpensALevelSilently)
{
    CaptureStdout();
    TLog::disable_logging();
    TLog::set_indent_string("..");
    {
        TLog a("hidden");
        TLog::enable_logging();
        TLog b;
        TLog c("deep");
    }
    TLog::set_indent_string("   ");
    EXPECT_EQ(GetCapturedStdout(), "....deep\n");
}
