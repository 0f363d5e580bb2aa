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

TEST(TLogTest, DisabledLoggingStillCountsDepth)
{
    CaptureStdout();
    TLog::disable_logging();
    {
        TLog a("hidden");
        EXPECT_EQ(TLog::instance_counter, 0);
        TLog::enable_logging();
        a("shown");
    }
    EXPECT_EQ(GetCapturedStdout(), "shown\n");
}

TEST(TLogTest, NullFormatOpensALevelSilentlyWithTheIndentString)
{
    CaptureStdout();
    TLog::set_indent_string("..");
    {
        TLog a;
        TLog b("deep");
    }
    TLog::set_indent_string("   ");
    EXPECT_EQ(GetCapturedStdout(), "..deep\n");
}
