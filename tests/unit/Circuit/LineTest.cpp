#include "Core/Circuit/Line.h"

#include "tests/unit/ErrorText.h"

#include "Core/Support/Error.h"

#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <vector>

using Tokens = std::vector<std::string>;

TEST(LineTest, RejectsBadLinesWithTheirMessages)
{
    struct Case
    {
        Tokens tokens;        // the line
        const char* message;  // the Error
    };
    const Case cases[] = {
        {{"Net", "n", "a.x", "b.y", "a.x"}, "Error in a.ctc:5: Repeated port: 'a.x'."},
        {{"Port", "Input", "8"},
         "Error on line 5, in file a.ctc: Port takes at least 3 arguments: Port <direction> <size> <name>"},
        // The size is checked before the direction.
        {{"Port", "Sideways", "x", "a"},
         "Error on line 5, in file a.ctc: port size must be a number. 'x' is not."},
        {{"Port", "input", "1", "a"},
         "Error on line 5, in file a.ctc: port direction must Input or Output, 'input' is neither."},
        {{"Port", "Input", "-2147483649", "a"},
         "Error on line 5, in file a.ctc: port size '-2147483649' is too large."},
        {{"Unit", "And", "g[1000001]"},
         "Error on line 5, in file a.ctc: Unit array 'g[1000001]' is too large: at most 1000000 instances."},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(error_of([&] {
                      Tokens t = c.tokens;
                      if (t[0] == "Net")
                          NetLine(t, 5, "a.ctc");
                      else if (t[0] == "Port")
                          PortLine(t, 5, "a.ctc");
                      else
                          UnitLine(t, 5, "a.ctc");
                  }),
                  c.message)
            << c.tokens.back();
    }
}

TEST(LineTest, UnitLineExpandsArrayNames)
{
    struct Case
    {
        Tokens names;
        Tokens expanded;
    };
    const Case cases[] = {
        {{"g[3]"}, {"g[0]", "g[1]", "g[2]"}},
        {{"g[0]"}, {}},
        {{"a[2]", "b", "a[2]"}, {"a[0]", "a[1]", "b", "a[0]", "a[1]"}},
        {{"g[007]"}, {"g[0]", "g[1]", "g[2]", "g[3]", "g[4]", "g[5]", "g[6]"}},
        {{"a[x]", "[2]", "a[]", "a[2]b", "a[1][2]"}, {"a[x]", "[2]", "a[]", "a[2]b", "a[1][2]"}},
        // Parameters without "=" still match, and the expanded names fail later in the factory.
        {{"u(fast)[2]", "u(x=1)[2]"}, {"u(fast)[0]", "u(fast)[1]", "u(x=1)[2]"}},
    };
    for (const Case& c : cases) {
        Tokens tokens{"Unit", "And"};
        tokens.insert(tokens.end(), c.names.begin(), c.names.end());
        EXPECT_EQ(UnitLine(tokens, 1, "f").names, c.expanded) << c.names[0];
    }
}
