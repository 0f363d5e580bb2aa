#include "Core/TestSequence/TestSequenceFileWriter.h"

#include "tests/unit/E2eCases.h"
#include "tests/unit/TempDir.h"

#include "Core/Support/Error.h"
#include "Core/Support/StringUtils.h"
#include "Core/TestSequence/TestSequence.h"

#include <exception>
#include <gtest/gtest.h>
#include <memory>
#include <sstream>
#include <string>

namespace {

std::string written(TestSequence& sequence, const std::string& file)
{
    TestSequenceFileWriter().write_sequence(&sequence, file, sequence.has_delta_time());
    return file_text(file);
}

std::string signal_text(const SignalData& signal)
{
    return std::string(signal.is_net ? "%" : "") + (signal.reversed ? "~" : "") + toupper(signal.text);
}

// Columns, rows, options and assignments; case does not count in values.
std::string described(const TestSequence& sequence)
{
    std::ostringstream out;
    for (const ComponentOptions* options : sequence.component_options())
        out << options->name() << options->get_options_string() << "\n";
    for (const PortAssignment* assignment : sequence.port_assignments())
        out << assignment->port_name() << "=" << assignment->value() << "\n";
    const TestVectorHeader* header = sequence.header();
    out << "time";
    for (const SignalData& input : header->inputs())
        out << " " << signal_text(input);
    out << (header->has_delta_time() ? " ==(dT)=>" : " =>");
    for (const SignalData& output : header->outputs())
        out << " " << signal_text(output);
    for (const TestVector* row : sequence.vectors()) {
        out << "\n" << row->time() << "+" << row->delta_time();
        for (const SignalData& input : row->inputs())
            out << " " << signal_text(input);
        out << " =>";
        for (const SignalData& output : row->outputs())
            out << " " << signal_text(output);
    }
    return out.str();
}

// A reversed net output comes back as a port named "%name"; behind a delta-time field an output takes
// its reversal from the column to its right.
bool reads_back_otherwise(const TestSequence& sequence)
{
    for (const SignalData& output : sequence.header()->outputs())
        if (output.reversed && (output.is_net || sequence.has_delta_time()))
            return true;
    return false;
}

struct ExactCase
{
    const char* quirk;
    const char* file;
    const char* expected;
};

const ExactCase exact_cases[] = {
    {"zero-padded times, no delta column", "time a => b\n5 H L\n100 L H\n",
     "time a => b \n0005 H    L \n0100 L    H \n"},
    {"widths of the expanded text, values compact", "time d => q\n0 A 5\n",
     "time    d =>    q \n0000    A       5 \n"},
    {"reversed columns; a reversed net comes out as ~%", "time ~a => %~q %n b\n0 3 C 1 H\n",
     "time   ~a =>  ~%q   %n b \n0000    3       C    1 H \n"},
    {"comments before and behind objects, options and assignments",
     "# file\n# comment\n\nu1(delay=20,x=1) # opt\nen = H\n# two\n# lines\ntime a => b # head\n0 H L # row\n",
     "# file\n# comment\n\nu1(delay=20, x=1) # opt\n\nen=H\n\n# two\n# lines\ntime a => b  # head\n"
     "0000 H    L  # row\n"},
};

}  // namespace

TEST(TestSequenceFileWriterTest, WritesEachQuirkExactly)
{
    for (const ExactCase& c : exact_cases) {
        SCOPED_TRACE(c.quirk);
        TempDir dir;
        dir.write("in.tv", c.file);
        TestSequence sequence("in.tv");
        EXPECT_EQ(written(sequence, "out.tv"), c.expected);
        EXPECT_EQ(sequence.filename(), "out.tv");
    }
}

// Every case's test vector file that reads: written and read again, it holds the same.
TEST(TestSequenceFileWriterTest, CaseSequencesReadBackEqual)
{
    int round_trips = 0;
    for (const E2eCase& c : e2e_cases()) {
        SCOPED_TRACE(c.name);
        std::unique_ptr<TestSequence> first;
        try {
            first = std::make_unique<TestSequence>(c.tv.string());
        } catch (const Error&) {
            continue;
        } catch (const std::exception&) {
            continue;
        }
        if (reads_back_otherwise(*first))
            continue;
        TempDir dir;
        written(*first, "again.tv");
        EXPECT_EQ(described(TestSequence("again.tv")), described(*first));
        ++round_trips;
    }
    EXPECT_GT(round_trips, 50);
}
