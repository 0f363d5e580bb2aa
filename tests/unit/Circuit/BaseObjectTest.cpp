#include "Core/Circuit/BaseObject.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

class Recorder : public BaseObject
{
public:
    using BaseObject::BaseObject;
    void rename_callback(const std::string& old_name, const std::string& new_name) override
    {
        calls.push_back(old_name + ">" + new_name + "@" + name());
    }
    std::vector<std::string> calls;  // "old>new@name at call time"
};

}  // namespace

TEST(BaseObjectTest, IdsAreTwoHexNumbersOfTheUnseededGenerator)
{
    srand(1);
    BaseObject a("a");
    BaseObject b("b");
    EXPECT_NE(a.id(), b.id());
    EXPECT_LE(a.id().size(), 16u);
    EXPECT_EQ(a.id().find_first_not_of("0123456789abcdef"), std::string::npos);

    srand(1);
    unsigned first = static_cast<unsigned>(rand());
    unsigned second = static_cast<unsigned>(rand());
    char expected[40];
    snprintf(expected, sizeof expected, "%x%x", second, first);
    EXPECT_EQ(a.id(), expected);
}

TEST(BaseObjectTest, RenameKeepsIdAndCopyKeepsSourceId)
{
    Recorder r("old");
    r.set_string("k", "v");
    std::string id = r.id();
    r.set_name("new");
    r.set_name("new");
    EXPECT_EQ(r.id(), id);
    EXPECT_EQ(r.calls, (std::vector<std::string>{"old>new@old", "new>new@new"}));

    BaseObject copy(&r);
    EXPECT_EQ(copy.name(), "new");
    EXPECT_EQ(copy.id(), id);
    EXPECT_EQ(copy.get_string("k", false), "v");
    copy.generate_random_id();
    EXPECT_NE(copy.id(), id);
    copy.set_id("abc");
    EXPECT_EQ(copy.id(), "abc");
}

TEST(BaseObjectTest, CommentBlanknessIsZeroLength)
{
    CommentableObject none;
    EXPECT_TRUE(none.has_blank_comment());
    CommentableObject blank(" ");
    EXPECT_FALSE(blank.has_blank_comment());
    blank.set_comment_text("");
    EXPECT_TRUE(blank.has_blank_comment());
    CommentableObject text("# a note");
    EXPECT_EQ(text.comment_text(), "# a note");
    text.comment().text() += "!";
    EXPECT_EQ(text.comment().text(), "# a note!");
}
