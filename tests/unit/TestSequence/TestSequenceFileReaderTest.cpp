#include "Core/TestSequence/TestSequenceFileReader.h"

#include "tests/unit/ErrorText.h"
#include "tests/unit/TempDir.h"

#include "Core/Support/Error.h"
#include "Core/Support/Regex.h"
#include "Core/TestSequence/TestSequence.h"

#include <chrono>
#include <gtest/gtest.h>
#include <memory>
#include <random>
#include <string>
#include <vector>

using Strings = std::vector<std::string>;

namespace {

// Opens the classifier to the tests.
class Classifier : public TestSequenceFileReader
{
public:
    static LineType kind(const std::string& line) { return _categorize_line(line); }
};

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
    ASSERT_EQ(sequence->nof_component_options(), 1);
    EXPECT_EQ(sequence->get_component_options(0)->name(), "u1");
    EXPECT_EQ(sequence->get_component_options(0)->get_value("delay"), "20");
    EXPECT_TRUE(sequence->get_component_options(0)->has_blank_comment());
    ASSERT_EQ(sequence->nof_port_assignments(), 1);
    EXPECT_EQ(sequence->get_port_assignment(0)->port_name(), "en");
    EXPECT_EQ(sequence->get_port_assignment(0)->value(), "H");

    const TestVectorHeader* header = sequence->header();
    ASSERT_NE(header, nullptr);
    EXPECT_EQ(texts(header->inputs()), (Strings{"clk", "d"}));
    EXPECT_TRUE(header->is_input_reversed(1));
    EXPECT_TRUE(header->has_delta_time());
    EXPECT_EQ(texts(header->outputs()), (Strings{"carry", "q"}));
    EXPECT_TRUE(header->is_output_net(0));
    EXPECT_EQ(header->comment_text(), "the columns");
    EXPECT_EQ(header->line_number(), 6);

    ASSERT_EQ(sequence->nof_vectors(), 2);
    const TestVector* first = sequence->get_vector(0);
    EXPECT_EQ(first->time(), 0);
    EXPECT_EQ(first->delta_time(), 5);
    EXPECT_EQ(texts(first->inputs()), (Strings{"L", "LHLH"}));
    EXPECT_EQ(texts(first->outputs()), (Strings{"L", "H"}));
    EXPECT_EQ(first->comment_text(), "first row");
    EXPECT_EQ(first->line_number(), 7);
    EXPECT_EQ(first->header(), header);
    EXPECT_EQ(texts(sequence->get_vector(1)->inputs()), (Strings{"H", "HHLL"}));
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
        {"comments only", "# a\n\n# b\n", "Test vector file ('main.tv') must at least contain a header.\n"},
        {"a line of no kind", "time a => b\n\t!bad  # note\n",
         "Syntax error on line 2 in test file 'main.tv': '!bad'"},
        {"a tab behind the time", "time a => b\n0\tH L\n",
         "Syntax error on line 2 in test file 'main.tv': '0\tH L'"},
        {"a row without fields", "time a => b\n100\n",
         "Syntax error on line 2 in test file 'main.tv': '100'"},
        {"a row ahead of the header", "u(x=1)\n0 H\ntime a\n",
         "Test vector parse error on line 2 in file 'main.tv': a header must precede the test vectors"},
        {"the delta field counts", "time a ==(dT)=> b\n0 H L\n",
         "Error on line 2: Missing fields: 3 in header, 2 in vector."},
        {"a separator in a row", "time a b => c\n0 H => L\n",
         "Error on line 2: Illegal character in vector: '='."},
        {"P expands to p", "time a => b\n0 H P\n", "Error on line 2: Illegal character in vector: 'p'."},
        {"a minus sign", "time a ==(dT)=> b\n0 H -5 L\n",
         "Error on line 2: Illegal character in vector: '-'."},
        {"a delta time past 64 bits", "time a ==(dT)=> b\n0 H 99999999999999999999 L\n",
         "Error on line 2: delta-time-specification not an integer: '99999999999999999999'"},
        {"a net as input", "\ntime a %b => c\n", "Error on line 2: inputs can't be nets."},
        {"falling times", "time a\n5 H\n7 L\n6 H\n",
         "Time must move strictly forward in test file. In file 'main.tv': 6 cannot come after 7."},
        // The order of times is checked only once the whole file has been read.
        {"a later error first", "time a\n5 H\n5 L\n6 Q\n",
         "Error on line 4: Illegal character in vector: 'Q'."},
        {"component options", "u1(a=b=c)\n", "Too many equal signs in options string: 'a=b=c'"},
    };
    for (const Case& c : cases) {
        TempDir dir;
        EXPECT_EQ(read_error(dir, c.text), c.message) << c.what;
    }
}

// The scans stand in for these expressions: telling examples and random lines over the characters that
// matter to them must be classified alike.
TEST(TestSequenceFileReaderTest, ClassifiesAsTheExpressionsDo)
{
    const std::regex expressions[] = {
        std::regex("[a-zA-Z0-9_][a-zA-Z0-9_.]*[(].*[)].*"),
        std::regex("[a-zA-Z0-9_][a-zA-Z0-9_.]*\\s*=\\s*[a-zA-Z0-9_]+.*"),
        std::regex("time.*"),
        std::regex("[0-9]+ .*"),
        std::regex("^$"),
    };
    auto expected_kind = [&](const std::string& line) {
        for (int kind = 0; kind < 5; ++kind) {
            if (std::regex_match(line, expressions[kind]))
                return static_cast<TestSequenceFileReader::LineType>(kind + 1);
        }
        return TestSequenceFileReader::UnknownLine;
    };
    const char* examples[] = {"u1(delay=20)", "time(x)", "u1 (x)", "a(=1)",   "en = H", "a.b\t=\vx y",
                              "time=5",       "100=5",   "a = ~1", "timer x", "Time a", "007 H",
                              "0\tH",         "100",     "=> x",   ""};
    for (const char* line : examples)
        EXPECT_EQ(Classifier::kind(line), expected_kind(line)) << line;
    EXPECT_EQ(Classifier::kind("100=5"), TestSequenceFileReader::StaticPortAssignmentLine);
    EXPECT_EQ(Classifier::kind("0\tH"), TestSequenceFileReader::UnknownLine);

    const std::string alphabet = "a0_.()= \t\v~#t-\x80";
    std::mt19937 random(12345);
    for (int n = 0; n < 50000; ++n) {
        std::string line;
        int length = static_cast<int>(random() % 9);
        for (int i = 0; i < length; ++i)
            line += alphabet[random() % alphabet.size()];
        if (random() % 8 == 0)
            line = "time" + line;
        ASSERT_EQ(Classifier::kind(line), expected_kind(line)) << '"' << line << '"';
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

TEST(TestSequenceFileReaderTest, GathersCommentsForTheFileAndForLines)
{
    struct Case
    {
        const char* what;
        const char* text;
        const char* file_comment;
        const char* header_comment;
        const char* row_comment;
    };
    const Case cases[] = {
        {"a block then an empty line", "# f1\n#f2\n\n# h\ntime a\n0 H\n", "f1\nf2", "h", ""},
        {"content with a comment ends the file comment", "# f\ntime a # h\n# r\n0 H\n", "f", "h", "r"},
        // Content without a comment leaves the file comment open until the next empty line.
        {"content without a comment", "# h\ntime a\n# r\n0 H\n\n", "", "h", "r"},
        {"gathered text at the empty line", "# h\ntime a\n# lost\n\n0 H\n", "lost", "h", ""},
        {"a blank line of blanks", "# f\n   \ntime a\n0 H\n", "f", "", ""},
        {"empty comment lines", "time a #\n#\n0 H\n", "", "", ""},
    };
    for (const Case& c : cases) {
        TempDir dir;
        try {
            auto sequence = read(dir, c.text);
            EXPECT_EQ(sequence->get_file_comment(), c.file_comment) << c.what;
            EXPECT_EQ(sequence->header()->comment_text(), c.header_comment) << c.what;
            if (sequence->nof_vectors() > 0) {
                EXPECT_EQ(sequence->get_vector(0)->comment_text(), c.row_comment) << c.what;
            }
        } catch (const Error& e) {
            ADD_FAILURE() << c.what << ": " << e.message();
        }
    }
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
    EXPECT_EQ(sequence->get_component_options(0)->name(), "top.u1");
    EXPECT_EQ(sequence->get_component_options(0)->get_options_string(), "delay=20,fast=true");
    EXPECT_EQ(sequence->get_component_options(0)->comment_text(), "slow");
    ASSERT_EQ(sequence->nof_port_assignments(), 2);
    EXPECT_EQ(sequence->get_port_assignment(0)->comment_text(), "tie low");
    EXPECT_EQ(sequence->get_port_assignment(1)->port_name(), "x.y");
    EXPECT_EQ(sequence->get_port_assignment(1)->value(), "FF");
    // A "#" inside double quotes starts no comment.
    EXPECT_EQ(sequence->get_component_options(1)->get_value("s"), "\"#x\"");
    EXPECT_EQ(sequence->get_component_options(1)->comment_text(), "c");
}

TEST(TestSequenceFileReaderTest, ReadsEdgeFiles)
{
    TempDir dir;
    auto header_only = read(dir, "time a b => y");
    EXPECT_EQ(header_only->nof_vectors(), 0);
    EXPECT_EQ(header_only->max_time(), 0);
    EXPECT_FALSE(header_only->has_delta_time());

    auto no_outputs = read(dir, "\r\ntime a\r\n5 H\r\n");
    EXPECT_EQ(no_outputs->header()->nof_outputs(), 0);
    EXPECT_EQ(no_outputs->get_vector(0)->line_number(), 3);

    // Repeated separators and an empty name after "%" are taken as they come.
    auto odd_header = read(dir, "time a => b => % ==(dT)=>\n");
    EXPECT_EQ(texts(odd_header->header()->outputs()), (Strings{"b", ""}));
    EXPECT_TRUE(odd_header->header()->has_delta_time());

    const char bytes[] = "\x7f"
                         "ELF\x02\x01\x00\x00\xff\n\x01";
    EXPECT_EQ(read_error(dir, std::string(bytes, sizeof bytes - 1)).rfind("Syntax error on line 1", 0), 0u);

    std::string long_value(10000, 'H');
    auto long_row = read(dir, "time a\n0 " + long_value + "\n");
    EXPECT_EQ(long_row->get_vector(0)->input(0).text, long_value);
    std::string long_junk(10000, '!');
    EXPECT_EQ(read_error(dir, long_junk).size(), 2047u);
    EXPECT_EQ(
        read_error(dir, "u(" + std::string(10000, 'x') + ")\nx = " + long_value + "\ntime " + long_value),
        "no error");
}

TEST(TestSequenceFileReaderTest, ReadsManyRowsInLinearTime)
{
    TempDir dir;
    std::string text = "time clk d[8] ==(dT)=> q\n";
    for (int t = 0; t < 100000; ++t)
        text += std::to_string(t * 10) + " " + (t % 2 ? "H" : "L") + " A5 3 x\n";
    dir.write("main.tv", text);
    auto start = std::chrono::steady_clock::now();
    TestSequence sequence("main.tv");
    auto elapsed = std::chrono::steady_clock::now() - start;
    EXPECT_EQ(sequence.nof_vectors(), 100000);
    EXPECT_EQ(sequence.max_time(), 999993);
    // Generous for a sanitizer build; a release build takes a small fraction of this.
    EXPECT_LT(elapsed, std::chrono::seconds(10));
}
