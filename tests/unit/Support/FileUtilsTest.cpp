#include "Core/Support/FileUtils.h"

#include "tests/unit/ErrorText.h"

#include "Core/Support/Error.h"

#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>
#include <string>

TEST(FileUtilsTest, ReadsStatsAndMatchesFiles)
{
    char path[] = "/tmp/morvane_strutil_XXXXXX";
    int fd = mkstemp(path);
    ASSERT_GE(fd, 0);
    FILE* f = fdopen(fd, "w");
    fputs("line 1\nline 2\n", f);
    fclose(f);
    EXPECT_EQ(file_contents(path), "line 1\nline 2\n");
    EXPECT_GT(file_modification_time_in_ns(path), 0);
    remove(path);
    EXPECT_EQ(file_modification_time_in_ns(path), 0);
    EXPECT_EQ(error_of([&] { file_contents(path); }), std::string("File '") + path + "' does not exist");

    EXPECT_TRUE(filename_matches_pattern("*.ctc", "adder.ctc"));
    EXPECT_FALSE(filename_matches_pattern("*.ctc", "adder.tv"));
    EXPECT_EQ(relative_file_path("/a/b/c.ctc", "/a/d"), "../b/c.ctc");
}
