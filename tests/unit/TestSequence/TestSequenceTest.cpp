#include "Core/TestSequence/TestSequence.h"

#include "tests/unit/ErrorText.h"
#include "tests/unit/TempDir.h"

#include "Core/Support/Error.h"
#include "Core/TestSequence/TestSequenceFileReader.h"

#include <climits>
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

Strings texts(const std::vector<SignalData>& signals)
{
    Strings result;
    for (const SignalData& signal : signals)
        result.push_back(signal.text);
    return result;
}

// Inputs, then "|", then outputs, of the header and of every row.
Strings layout(const TestSequence& sequence)
{
    Strings all = texts(sequence.header()->inputs());
    all.push_back("|");
    for (const std::string& name : texts(sequence.header()->outputs()))
        all.push_back(name);
    for (const TestVector* row : sequence.vectors()) {
        all.push_back("/");
        for (const std::string& value : texts(row->inputs()))
            all.push_back(value);
        all.push_back("|");
        for (const std::string& value : texts(row->outputs()))
            all.push_back(value);
    }
    return all;
}

}  // namespace

TEST(TestSequenceTest, BuildsTheExampleSequence)
{
    TestSequence empty(TSInitEmpty);
    EXPECT_EQ(empty.header(), nullptr);
    EXPECT_EQ(empty.nof_vectors(), 0);
    EXPECT_FALSE(empty.has_delta_time());
    EXPECT_EQ(empty.get_output_value("y", 0), "?");

    TestSequence example(TSInitExample);
    ASSERT_NE(example.header(), nullptr);
    EXPECT_EQ(example.header()->comment_text(), "New test sequence");
    EXPECT_EQ(example.header()->line_number(), -1);
    EXPECT_TRUE(example.has_delta_time());
    EXPECT_EQ(layout(example), (Strings{"<example>", "|", "<example>", "/", "U", "|", "U"}));
    EXPECT_EQ(example.get_vector(0)->header(), example.header());
    EXPECT_EQ(example.get_output_value("<example>", 0), "U");
    EXPECT_TRUE(TestVectorHeader().has_delta_time());
}

TEST(TestSequenceTest, HeaderNamesItsColumns)
{
    std::vector<std::string> fields{"time", "a", "~b", "==(dT)=>", "%~y", "~%z"};
    TestVectorHeader header(fields, 1, "");
    EXPECT_EQ(fields, (Strings{"a", "~b", "==(dT)=>", "%~y", "~%z"}));
    EXPECT_EQ(header.nof_columns(), 7);
    EXPECT_EQ(header.nof_fields(), 5);
    EXPECT_EQ(header.separator_name_2(), "==(dT)=>");
    // "%" comes before "~": "~%z" is a reversed port named "%z".
    EXPECT_TRUE(header.is_output_net(0));
    EXPECT_FALSE(header.is_output_net(1));
    const Strings names{"Time", "a", "b", "=>", "y", "%z", "Comment", ""};
    const bool reversed[] = {false, false, true, false, true, true, false, false};
    for (int column = 0; column < 8; ++column) {
        EXPECT_EQ(header.column_name(column), names[column]) << column;
        EXPECT_EQ(header.is_column_to_be_reversed(column), reversed[column]) << column;
    }
    EXPECT_TRUE(header.is_input_column(2));
    EXPECT_FALSE(header.is_input_column(3));
    EXPECT_EQ(header.delta_time_column(), 3);
    EXPECT_TRUE(header.is_output_column(4));
    EXPECT_TRUE(header.is_output_column(5));
    EXPECT_TRUE(header.is_comment_column(6));
    EXPECT_EQ(header.column_to_output_index(5), 1);
    EXPECT_EQ(header.is_column_to_be_reversed(-1), false);
}

TEST(TestSequenceTest, FindsExpectedOutputValuesBetweenRows)
{
    TempDir dir;
    auto sequence = read(dir, "time a ==(dT)=> y\n"
                              "0   H 5 1\n"
                              "10  H 5 2\n"
                              "20  H 0 3\n"
                              "30  H 5 4\n");
    struct Case
    {
        const char* name;
        int time;
        const char* value;
    };
    const Case cases[] = {
        {"y", 4, "!"},     {"y", 5, "LLLH"},  {"y", 14, "LLLH"}, {"y", 15, "LLHL"},
        {"y", 19, "LLHL"}, {"y", 20, "LLHH"}, {"y", 34, "LLHH"}, {"y", 35, "LHLL"},
        {"y", 36, "!"},    {"q", 5, "?"},     {"a", 5, "?"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(sequence->get_output_value(c.name, c.time), c.value) << c.name << "@" << c.time;

    // A row overtaken by the next one's output time spans nothing and is passed over, even at its own
    // output time.
    auto overtaken = read(dir, "time a ==(dT)=> y\n0 H 50 1\n10 H 0 2\n60 H 0 3\n");
    EXPECT_EQ(overtaken->get_output_value("y", 5), "!");
    EXPECT_EQ(overtaken->get_output_value("y", 10), "LLHL");
    EXPECT_EQ(overtaken->get_output_value("y", 50), "LLHL");
    EXPECT_EQ(overtaken->get_output_value("y", 60), "LLHH");
}

TEST(TestSequenceTest, KeepsHeaderAndRowsInStepWhenEditingColumns)
{
    TempDir dir;
    auto sequence = read(dir, "time a b => y z\n0 1 2 3 4\n5 5 6 7 8\n");
    auto& s = *sequence;
    // Columns: 0 Time, 1 a, 2 b, 3 =>, 4 y, 5 z, 6 Comment.
    s.insert_signal_before(3, "c", "id", false);
    EXPECT_EQ(s.header()->input_id(2), "id");
    s.insert_signal_before(7, "w", "", true);
    s.insert_signal_before(5, "x", "", false);
    EXPECT_TRUE(s.header()->is_output_net(3));
    EXPECT_TRUE(s.get_vector(0)->output(3).is_net);
    EXPECT_EQ(layout(s), (Strings{"a", "b",    "c",    "|", "x", "y", "z",    "w",          //
                                  "/", "LLLH", "LLHL", "U", "|", "U", "LLHH", "LHLL", "U",  //
                                  "/", "LHLH", "LHHL", "U", "|", "U", "LHHH", "HLLL", "U"}));

    // Columns now: 1 a, 2 b, 3 c, 4 =>, 5 x, 6 y, 7 z, 8 w.
    s.move_column_left(1);   // first input: stays
    s.move_column_left(5);   // first output: stays, nothing crosses the separator
    s.move_column_right(3);  // last input: stays
    s.move_column_right(8);  // last output: stays
    s.move_column_right(1);
    s.move_column_left(7);
    EXPECT_EQ(texts(s.header()->inputs()), (Strings{"b", "a", "c"}));
    EXPECT_EQ(texts(s.header()->outputs()), (Strings{"x", "z", "y", "w"}));
    EXPECT_EQ(texts(s.get_vector(1)->inputs()), (Strings{"LHHL", "LHLH", "U"}));
    EXPECT_EQ(texts(s.get_vector(1)->outputs()), (Strings{"U", "HLLL", "LHHH", "U"}));

    s.delete_signal(3);
    s.delete_signal(4);  // now the first output, x
    s.delete_signal(6);  // w
    EXPECT_EQ(layout(s),
              (Strings{"b", "a", "|", "z", "y",  //
                       "/", "LLHL", "LLLH", "|", "LHLL", "LLHH", "/", "LHHL", "LHLH", "|", "HLLL", "LHHH"}));
}

TEST(TestSequenceTest, EditsRowsAndOptions)
{
    TempDir dir;
    auto sequence = read(dir, "u1(x=1)\nu2(y=2)\ntime a\n0 H\n10 L\n20 H\n");
    auto& s = *sequence;
    s.time_translate(1, 5);
    s.time_translate(7, 100);
    EXPECT_EQ(s.get_vector(0)->time(), 0);
    EXPECT_EQ(s.get_vector(1)->time(), 15);
    EXPECT_EQ(s.get_vector(2)->time(), 25);

    auto* row = new TestVector(3);
    s.insert_vector_before(1, row);
    EXPECT_EQ(row->header(), s.header());
    s.remove_vector(0);
    EXPECT_EQ(s.get_vector(0), row);

    // Options are removed by identity; a stranger is left alone.
    ComponentOptions stranger("u1(x=1)", "");
    s.remove_component_option(&stranger);
    s.remove_component_option(s.get_component_options(0));
    ASSERT_EQ(s.nof_component_options(), 1);
    EXPECT_EQ(s.get_component_options(0)->name(), "u2");

    s.append_to_header_comment("one");
    s.append_to_header_comment("two");
    EXPECT_EQ(s.get_header_comment(), "one\ntwo");
}

TEST(TestSequenceTest, ClearAllKeepsTheFileCommentAndName)
{
    TempDir dir;
    dir.write("first.tv", "# from the first\n\ntime a\n0 H\n");
    dir.write("second.tv", "time b\n");
    TestSequence sequence("first.tv");
    sequence.append_to_header_comment("note");
    TestSequenceFileReader reader;
    reader.read_sequence("second.tv", &sequence);
    EXPECT_EQ(sequence.get_file_comment(), "from the first");
    EXPECT_EQ(sequence.get_header_comment(), "");
    EXPECT_EQ(sequence.filename(), "second.tv");
    EXPECT_EQ(sequence.nof_vectors(), 0);
    sequence.clear_all();
    EXPECT_EQ(sequence.header(), nullptr);
    EXPECT_EQ(sequence.get_file_comment(), "from the first");
    sequence.clear_file_comment();
    EXPECT_EQ(sequence.get_file_comment(), "");
}

TEST(TestSequenceTest, RowConvertsTimesAndDeltaTimes)
{
    TestVectorHeader header;  // has delta time and no signals
    std::vector<std::string> fields{"x", "5"};
    EXPECT_EQ(error_of([&] { TestVector(fields, 9, &header, ""); }),
              "Error on line 9: First column must be a number: 'x' is not.");
    std::vector<std::string> row{"12abc", "5x"};
    TestVector vector(row, 3, &header, "");
    EXPECT_EQ(vector.time(), 12);
    EXPECT_EQ(vector.delta_time(), 5);

    const std::pair<const char*, int> deltas[] = {{"7", 7}, {"007", 7}, {"4294967297", 1}, {"-3", -3}};
    for (const auto& [text, value] : deltas) {
        vector.set_delta_time(text);
        EXPECT_EQ(vector.delta_time(), value) << text;
    }
    vector.set_time(INT_MAX);
    vector.set_delta_time(1);
    EXPECT_EQ(vector.output_time(), INT_MIN);
    EXPECT_EQ(vector.input_time(), INT_MAX);
}
