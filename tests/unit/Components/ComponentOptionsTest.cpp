#include "Core/Components/ComponentOptions.h"

#include "tests/unit/ErrorText.h"

#include "Core/Support/Error.h"

#include <functional>
#include <gtest/gtest.h>
#include <map>
#include <string>

using Options = std::map<std::string, std::string>;

TEST(ComponentOptionsTest, ParsesNameAndOptions)
{
    struct Case
    {
        const char* text;
        const char* name;
        Options options;
    };
    const Case cases[] = {
        {"U1(delay=5,fast)", "U1", {{"delay", "5"}, {"fast", "true"}}},
        {"U1()", "U1", {}},
        {"a.b.u1( delay = 5 , fast )", "a.b.u1", {{"delay", "5"}, {"fast", "true"}}},
        {"u1 (x=1)", "u1 ", {{"x", "1"}}},
        {"(x=1)", "", {{"x", "1"}}},
        {"u1(x=1) trailing", "u1", {{"x", "1"}}},
        {"u1(p=(a),q=2)", "u1", {{"p", "(a)"}, {"q", "2"}}},
        {"u1(a=,b)", "u1", {{"a", "true"}, {"b", "true"}}},
        {"u1(a,,b)", "u1", {{"a", "true"}, {"b", "true"}}},
        {"u1(a=1,a=2)", "u1", {{"a", "2"}}},
        {"u1(\"s=1\")", "u1", {{"\"s", "1\""}}},
    };
    for (const Case& c : cases) {
        ComponentOptions options(c.text, "why");
        EXPECT_EQ(options.name(), c.name) << c.text;
        EXPECT_EQ(options.options(), c.options) << c.text;
    }
}

TEST(ComponentOptionsTest, RejectsMalformedTextWithItsMessage)
{
    struct Case
    {
        std::function<void()> make;
        const char* message;
    };
    const Case cases[] = {
        {[] { ComponentOptions("", ""); }, "Parse error: component options must have an opening parenthesis"},
        {[] { ComponentOptions("u1", ""); },
         "Parse error: component options must have an opening parenthesis"},
        {[] { ComponentOptions("u1(a=1", ""); },
         "Parse error: component options must have an closing parenthesis"},
        {[] { ComponentOptions("u1)(", ""); },
         "Parse error: component options must have an closing parenthesis"},
        {[] { ComponentOptions("U1(a=b=c)", ""); }, "Too many equal signs in options string: 'a=b=c'"},
        {[] { ComponentOptions("U1(x=1, y==2)", ""); }, "Too many equal signs in options string: ' y==2'"},
        {[] { PortAssignment("A", ""); }, "Too few equal signs in port assignment: 'A'"},
        {[] { PortAssignment("A=", ""); }, "Too few equal signs in port assignment: 'A='"},
        {[] { PortAssignment("", ""); }, "Too few equal signs in port assignment: ''"},
        {[] { PortAssignment("A=1=2", ""); }, "Too many equal signs in port assignment: 'A=1=2'"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(error_of(c.make), c.message);
}

TEST(ComponentOptionsTest, PortAssignmentTrimsNameAndValue)
{
    PortAssignment assignment("  en \t=  H ", "tie");
    EXPECT_EQ(assignment.port_name(), "en");
    EXPECT_EQ(assignment.value(), "H");
    EXPECT_EQ(PortAssignment("=1", "").port_name(), "");
}
