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
        const char* what;
        std::function<void()> make;
        const char* message;
    };
    const Case cases[] = {
        {"net without port",
         [] {
             Tokens t{"Net", "n"};
             NetLine(t, 4, "a.ctc");
         },
         "Error in a.ctc:4: Net needs a name and at least one port: Net <name> <ports...>"},
        {"net with a port twice",
         [] {
             Tokens t{"Net", "n", "a.x", "b.y", "a.x"};
             NetLine(t, 5, "a.ctc");
         },
         "Error in a.ctc:5: Repeated port: 'a.x'."},
        {"pin without name",
         [] {
             Tokens t{"Pin", "Input"};
             PinLine(t, 6, "a.ctc");
         },
         "Error on line 6, in file a.ctc: Pin takes at least 2 arguments: Pin <direction> <name>"},
        {"port without name",
         [] {
             Tokens t{"Port", "Input", "8"};
             PortLine(t, 7, "a.ctc");
         },
         "Error on line 7, in file a.ctc: Port takes at least 3 arguments: Port <direction> <size> <name>"},
        {"port size with a suffix",
         [] {
             Tokens t{"Port", "Input", "8x", "a"};
             PortLine(t, 8, "a.ctc");
         },
         "Error on line 8, in file a.ctc: port size must be a number. '8x' is not."},
        {"size is checked first",
         [] {
             Tokens t{"Port", "Sideways", "x", "a"};
             PortLine(t, 9, "a.ctc");
         },
         "Error on line 9, in file a.ctc: port size must be a number. 'x' is not."},
        {"port direction",
         [] {
             Tokens t{"Port", "input", "1", "a"};
             PortLine(t, 9, "a.ctc");
         },
         "Error on line 9, in file a.ctc: port direction must Input or Output, 'input' is neither."},
        {"unit without name",
         [] {
             UnitLine(Tokens{"Unit", "And"}, 10, "a.ctc");
         },
         "Error on line 10, in file a.ctc: Unit takes at least 2 arguments: Unit <type> <name>"},
        {"unit array too large",
         [] {
             UnitLine(Tokens{"Unit", "And", "g[1000001]"}, 11, "a.ctc");
         },
         "Error on line 11, in file a.ctc: Unit array 'g[1000001]' is too large: at most 1000000 instances."},
        {"negative port size beyond 32 bits",
         [] {
             Tokens t{"Port", "Input", "-2147483649", "a"};
             PortLine(t, 14, "a.ctc");
         },
         "Error on line 14, in file a.ctc: port size '-2147483649' is too large."},
    };
    for (const Case& c : cases)
        EXPECT_EQ(error_of(c.make), c.message) << c.what;
}

TEST(LineTest, NetLineTakesNameAndPortsAndWarnsOnASinglePort)
{
    Tokens tokens{"Net", "n", "a.x", "b.y"};
    testing::internal::CaptureStderr();
    NetLine net(tokens, 3, "f.ctc");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(net.name, "n");
    EXPECT_EQ(net.ports, (Tokens{"a.x", "b.y"}));
    EXPECT_EQ(tokens, (Tokens{"a.x", "b.y"}));  // keyword and name are taken off the caller's tokens

    // A forgotten net name makes the first port the name.
    Tokens forgotten{"Net", "a.x", "b.y"};
    testing::internal::CaptureStderr();
    NetLine single(forgotten, 12, "f.ctc");
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "*** WARNING f.ctc:12: Only one port in Net. May indicate missing net name.\n");
    EXPECT_EQ(single.name, "a.x");
    EXPECT_EQ(single.ports, Tokens{"b.y"});
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
        {{"g[007]"}, {"g[0]", "g[1]", "g[2]", "g[3]", "g[4]", "g[5]", "g[6]"}},
        {{"a[2]", "b", "a[2]"}, {"a[0]", "a[1]", "b", "a[0]", "a[1]"}},
        {{"a[x]"}, {"a[x]"}},
        {{"[2]"}, {"[2]"}},
        {{"a[]"}, {"a[]"}},
        {{"a[2]b"}, {"a[2]b"}},
        {{"a[1][2]"}, {"a[1][2]"}},
        {{"a.b[2]"}, {"a.b[2]"}},
        // Parameters without "=" still match, and the expanded names fail later in the factory.
        {{"u(fast)[2]"}, {"u(fast)[0]", "u(fast)[1]"}},
        {{"u(x=1)[2]"}, {"u(x=1)[2]"}},
        {{"g(delay=7)"}, {"g(delay=7)"}},
    };
    for (const Case& c : cases) {
        Tokens tokens{"Unit", "And"};
        tokens.insert(tokens.end(), c.names.begin(), c.names.end());
        UnitLine unit(tokens, 1, "f");
        EXPECT_EQ(unit.type, "And");
        EXPECT_EQ(unit.names, c.expanded) << c.names[0];
    }

    std::string long_name(10000, 'a');
    EXPECT_EQ(UnitLine(Tokens{"Unit", "And", long_name + "[2]"}, 1, "f").names.back(), long_name + "[1]");
    EXPECT_EQ(UnitLine(Tokens{"Unit", "And", long_name + "]"}, 1, "f").names[0], long_name + "]");
}
