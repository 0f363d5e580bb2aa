#include "Core/Support/Error.h"

#include <gtest/gtest.h>
#include <string>

TEST(ErrorTest, FormatsPrintfStyle)
{
    Error e("Can't find port_name '%s' (%d).", "a.b", 7);
    EXPECT_EQ(e.message(), "Can't find port_name 'a.b' (7).");
}

TEST(ErrorTest, CutsLongTextAt2047Chars)
{
    std::string long_text(5000, 'x');
    Error e("%s", long_text.c_str());
    EXPECT_EQ(e.message().size(), 2047u);
}

TEST(ErrorTest, ErrorWithPosKeepsBaseTextEmpty)
{
    try {
        throw ErrorWithPos(3, 9, "bad token '%s'", "=");
    } catch (const Error& e) {
        EXPECT_EQ(e.message(), "");
        const auto& with_pos = static_cast<const ErrorWithPos&>(e);
        EXPECT_EQ(with_pos.pos_message(), "bad token '='");
        EXPECT_EQ(with_pos.line(), 3);
        EXPECT_EQ(with_pos.column(), 9);
    }
}
