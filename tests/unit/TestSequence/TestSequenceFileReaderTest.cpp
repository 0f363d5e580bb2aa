#include "Core/TestSequence/TestSequenceFileReader.h"

#include "tests/unit/ErrorText.h"
#include "tests/unit/TempDir.h"

#include "Core/Support/Error.h"
#include "Core/TestSequence/TestSequence.h"

#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

using Strings = std::vector<std::string>;

namespace {

std::unique_ptr<TestSequence> read(const TempDir& dir, const std::string& text)
{
    dir.write("main.tv", text);
    return std::make_unique<TestSequence>("main.tv");
}

std::string read_error(const TempDir& dir, const std::string& text)
{
    return error_of([&] { read(dir, text); });
}

Strings texts(const std::vector<SignalData>& signals)
{
    Strings result;
    for (const SignalData& signal : signals)
        result.push_back(signal.text);
    return result;
}

}  // namespace

TEST(TestSequenceFileReaderTest, ReadsTheCounterExample)
{
    TempDir dir;
    auto sequence = read(dir, "# Counter stimulus\n"
                              "# second line of the file comment\n"
                              "\n"
                              "u1(delay=20)\n"
                              "en = H\n"
                              "time clk ~d ==(dT)=> %carry q   # the columns\n"
                              "0    L   A  5        L     H    # first row\n"
                              "100  H   3  5        x     L\n");
    EXPECT_EQ(sequence->get_file_comment(), "Counter stimulus\nsecond line of the file comment");
    EXPECT_EQ(sequence->get_component_options(0)->get_value("delay"), "20");
    EXPECT_EQ(sequence->get_port_assignment(0)->value(), "H");

    const TestVectorHeader* header = sequence->header();
    ASSERT_NE(header, nullptr);
    EXPECT_EQ(texts(header->inputs()), (Strings{"clk", "d"}));
    EXPECT_TRUE(header->is_input_reversed(1));
    EXPECT_TRUE(header->has_delta_time());
    EXPECT_EQ(texts(header->outputs()), (Strings{"carry", "q"}));
    EXPECT_TRUE(header->is_output_net(0));
    EXPECT_EQ(header->comment_text(), "the columns");

    ASSERT_EQ(sequence->nof_vectors(), 2);
    const TestVector* first = sequence->get_vector(0);
    EXPECT_EQ(first->delta_time(), 5);
    EXPECT_EQ(texts(first->inputs()), (Strings{"L", "LHLH"}));
    EXPECT_EQ(texts(first->outputs()), (Strings{"L", "H"}));
    EXPECT_EQ(first->comment_text(), "first row");
    EXPECT_EQ(first->line_number(), 7);
    EXPECT_EQ(sequence->max_time(), 105);
}

TEST(TestSequenceFileReaderTest, ReportsEachErrorWithItsLineAndFile)
{
    struct Case
    {
        const char* what;
        std::string text;
        std::string message;
    };
    const Case cases[] = {
        {"a line of no kind", "time a => b\n\t!bad  # note\n",
         "Syntax error on line 2 in test file 'main.tv': '!bad'"},
        {"a row without fields", "time a => b\n100\n",
         "Syntax error on line 2 in test file 'main.tv': '100'"},
        {"the delta field counts", "time a ==(dT)=> b\n0 H L\n",
         "Error on line 2: Missing fields: 3 in header, 2 in vector."},
        {"a separator in a row", "time a b => c\n0 H => L\n",
         "Error on line 2: Illegal character in vector: '='."},
        {"P expands to p", "time a => b\n0 H P\n", "Error on line 2: Illegal character in vector: 'p'."},
        {"a minus sign", "time a ==(dT)=> b\n0 H -5 L\n",
         "Error on line 2: Illegal character in vector: '-'."},
        {"a delta time past 64 bits", "time a ==(dT)=> b\n0 H 99999999999999999999 L\n",
         "Error on line 2: delta-time-specification not an integer: '99999999999999999999'"},
        // The order of times is checked only once the whole file has been read.
        {"a later error first", "time a\n5 H\n5 L\n6 Q\n",
         "Error on line 4: Illegal character in vector: 'Q'."},
    };
    for (const Case& c : cases) {
        TempDir dir;
        EXPECT_EQ(read_error(dir, c.text), c.message) << c.what;
    }
}

TEST(TestSequenceFileReaderTest, ParsesRowValues)
{
    TempDir dir;
    auto sequence = read(dir, "  time a ~b c => y ~z   \n"
                              "007 U u ~AB 1F ~3\n"
                              "8 hL 1 ~1 X zZ\n");
    const TestVector* row = sequence->get_vector(0);
    EXPECT_EQ(row->time(), 7);
    EXPECT_EQ(row->delta_time(), 0);
    // Capitals expand to four bits, small letters stay single; the header's "~" reverses the column.
    EXPECT_EQ(texts(row->inputs()), (Strings{"uuuu", "u", "HHLHLHLH"}));
    EXPECT_FALSE(row->input(1).reversed);
    EXPECT_TRUE(row->input(2).reversed);
    // A "~" in a reversed column cancels out.
    EXPECT_EQ(texts(row->outputs()), (Strings{"LLLHHHHH", "LLHH"}));
    EXPECT_TRUE(row->output(1).reversed);
    EXPECT_EQ(texts(sequence->get_vector(1)->inputs()), (Strings{"hL", "HLLL", "HLLL"}));
    EXPECT_EQ(texts(sequence->get_vector(1)->outputs()), (Strings{"xxxx", "zzzzz"}));
}

TEST(TestSequenceFileReaderTest, ShiftsOutputReversalBehindADeltaField)
{
    TempDir dir;
    auto plain = read(dir, "time a => ~p q\n0 1 1 C\n");
    EXPECT_EQ(texts(plain->get_vector(0)->outputs()), (Strings{"HLLL", "HHLL"}));

    // With a delta field each output takes the reversal flag of the output to its right, the last none.
    auto shifted = read(dir, "time a ==(dT)=> ~p q ~r\n0 1 7 1 C 3\n");
    const TestVector* row = shifted->get_vector(0);
    EXPECT_EQ(row->delta_time(), 7);
    EXPECT_EQ(texts(row->outputs()), (Strings{"LLLH", "LLHH", "LLHH"}));
}

TEST(TestSequenceFileReaderTest, KeepsSettingsAnywhereWithTheirComments)
{
    TempDir dir;
    auto sequence = read(dir, "time a\n"
                              "# slow\n"
                              "top.u1( delay = 20 , fast )\n"
                              "0 H\n"
                              "en=L # tie low\n"
                              "x.y = FF\n"
                              "u2(s=\"#x\") # c\n");
    ASSERT_EQ(sequence->nof_component_options(), 2);
    EXPECT_EQ(sequence->get_component_options(0)->get_options_string(), "delay=20,fast=true");
    EXPECT_EQ(sequence->get_component_options(0)->comment_text(), "slow");
    EXPECT_EQ(sequence->get_port_assignment(0)->comment_text(), "tie low");
    EXPECT_EQ(sequence->get_port_assignment(1)->value(), "FF");
    // A "#" inside double quotes starts no comment.
    EXPECT_EQ(sequence->get_component_options(1)->get_value("s"), "\"#x\"");
    EXPECT_EQ(sequence->get_component_options(1)->comment_text(), "c");
}

TEST(TestSequenceFileReaderTest, ReadsEdgeFiles)
{
    TempDir dir;
    auto no_outputs = read(dir, "\r\ntime a\r\n5 H\r\n");
    EXPECT_EQ(no_outputs->header()->nof_outputs(), 0);
    EXPECT_EQ(no_outputs->get_vector(0)->line_number(), 3);

    // Repeated separators and an empty name after "%" are taken as they come.
    auto odd_header = read(dir, "time a => b => % ==(dT)=>\n");
    EXPECT_EQ(texts(odd_header->header()->outputs()), (Strings{"b", ""}));
    EXPECT_TRUE(odd_header->header()->has_delta_time());

    // Long lines are read whole; a message quoting one is cut.
    std::string long_value(10000, 'H');
    EXPECT_EQ(
        read_error(dir, "u(" + std::string(10000, 'x') + ")\nx = " + long_value + "\ntime " + long_value),
        "no error");
    EXPECT_EQ(read_error(dir, std::string(10000, '!')).size(), 2047u);
}
