#include "Core/Circuit/CircuitSpec.h"

#include "tests/unit/ErrorText.h"
#include "tests/unit/TempDir.h"

#include "Core/Support/Error.h"

#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <string>
#include <vector>

using Strings = std::vector<std::string>;
using Files = std::map<std::string, std::string>;

namespace {

// Writes the files and reads "main.ctc"; the message of the Error, or "no error".
std::string read_error(const TempDir& dir, const Files& files)
{
    for (const auto& [name, text] : files)
        dir.write(name, text);
    return error_of([] { CircuitSpec spec("main.ctc"); });
}

std::unique_ptr<CircuitSpec> read(const TempDir& dir, const std::string& text, const Files& others = {})
{
    dir.write("main.ctc", text);
    for (const auto& [name, content] : others)
        dir.write(name, content);
    return std::make_unique<CircuitSpec>("main.ctc");
}

}  // namespace

TEST(CircuitSpecTest, ReportsEachErrorWithItsFileAndLine)
{
    struct Case
    {
        const char* what;
        Files files;
        const char* message;
    };
    const Case cases[] = {
        {"keywords are case-sensitive",
         {{"main.ctc", "# c\nunit a b\n"}},
         "Error in main.ctc:2: Illegal keyword: 'unit'."},
        {"an import without quotes",
         {{"main.ctc", "\nImport x.ctc\n"}},
         "Error in main.ctc:2: Syntax error in path specification statement."},
        {"circuit without a body", {{"main.ctc", "Circuit x\n"}}, "Circuit syntax error in main.ctc:1."},
        // A block has no file name of its own to report.
        {"circuit syntax inside a block",
         {{"main.ctc", "Circuit x {\nCircuit y\n}\n"}},
         "Circuit syntax error in :2."},
        {"nets sharing a pin in a block",
         {{"main.ctc", "Circuit C {\nNet n1 a.x e.f\nNet n2 a.x b.y\n}\n"}},
         "Error in line main.ctc:2: net 'n1' and net 'n2' shares the pin 'a.x'."},
        // The earliest first net, then the earliest second one, whatever the order of the paths.
        {"the first pair of nets sharing a pin",
         {{"main.ctc", "Net n0 a.x b.x\nNet n1 a.x c.y\nNet n2 b.x d.z\n"}},
         "Error in line main.ctc:1: net 'n0' and net 'n1' shares the pin 'a.x'."},
        // The root's counter stands still inside a block, and lags behind after it.
        {"illegal keyword in a block",
         {{"main.ctc", "\nCircuit x {\nUnit A a\nfoo\n}\n"}},
         "Error in main.ctc:2: Illegal keyword: 'foo'."},
        {"line objects in a block count right",
         {{"main.ctc", "Circuit x {\nUnit A a\nPin Input\n}\n"}},
         "Error on line 3, in file main.ctc: Pin takes at least 2 arguments: Pin <direction> <name>"},
        {"an error in an import",
         {{"main.ctc", "Unit A a\nImport \"sub/a.ctc\"\n"}, {"sub/a.ctc", "Unit A b\nbad\n"}},
         "Error in sub/a.ctc:2: Illegal keyword: 'bad'."},
        // Inside a circuit file the root's name and count stand still.
        {"keyword error in a circuit file",
         {{"main.ctc", "\nCircuit X \"x.ctc\"\n"}, {"x.ctc", "Unit A a\nbad\n"}},
         "Error in main.ctc:2: Illegal keyword: 'bad'."},
        {"nets sharing a pin in a circuit file",
         {{"main.ctc", "Circuit X \"x.ctc\"\n"}, {"x.ctc", "Net n1 a.x e.f\n\nNet n2 a.x b.y\n"}},
         "Error in line main.ctc:1: net 'n1' and net 'n2' shares the pin 'a.x'."},
        {"an import cycle",
         {{"main.ctc", "Import \"sub/a.ctc\"\n"},
          {"sub/a.ctc", "Import \"b.ctc\"\n"},
          {"sub/b.ctc", "Import \"../main.ctc\"\n"}},
         "Error: Circular import of 'sub/../main.ctc': the file is already being read."},
    };
    for (const Case& c : cases) {
        TempDir dir;
        EXPECT_EQ(read_error(dir, c.files), c.message) << c.what;
    }
}

TEST(CircuitSpecTest, ReadsBlocksCommentsAndLineNumbers)
{
    TempDir dir;
    auto spec = read(dir, "# Two half adders side by side.\n"
                          "# This block is followed by an empty line and so is a file comment.\n"
                          "\n"
                          "Circuit HalfAdder {\n"
                          "   # Inputs of the stage.\n"
                          "   Pin Input a b\n"
                          "   Unit And g(delay=7)\n"
                          "   Net a a g.a\n"
                          "}\n"
                          "\n"
                          "Port Input 1 p q\n"
                          "Unit HalfAdder ha[2]\n"
                          "# The first stage.\n"
                          "Net in_p p ha[0].a ha[1].a\n"
                          "Net in_q q ha[0].b   # stage 0\n");
    EXPECT_EQ(spec->file_comments(),
              Strings{"Two half adders side by side.\n"
                      "This block is followed by an empty line and so is a file comment.\n"});
    // The root's count lags behind by the lines of the block.
    EXPECT_EQ(spec->ports()[0].line_number, 6);
    EXPECT_EQ(spec->nets()[0].comment_text(), "The first stage.\n");
    EXPECT_EQ(spec->nets()[1].comment_text(), "stage 0\n");
    EXPECT_EQ(spec->nets()[1].line_number, 10);
    ASSERT_EQ(spec->circuits().size(), 1u);
    const CircuitSpec* child = spec->circuits()[0];
    EXPECT_TRUE(child->is_declared_locally());
    EXPECT_EQ(child->pins()[0].comment_text(), "Inputs of the stage.\n");
    EXPECT_EQ(child->pins()[0].line_number, 6);
    EXPECT_EQ(child->nets()[0].ports, (Strings{"a", "g.a"}));
}

TEST(CircuitSpecTest, AttachesCommentsByTheirRules)
{
    TempDir dir;
    auto spec = read(dir, "# first\n"
                          "   \n"  // blanks do not end a block
                          "# second\n"
                          "Unit A a b#on the line\n"
                          "# to the file\n"
                          "MetaData k \"a#b\"   # also the file's\n"
                          "#\n"
                          "   \t\n"
                          "Net n c.x c.y # with the line\n"
                          "MetaData \"x\"\n"
                          "MetaData k 'v\"w\"'\n"
                          "# lost at the end\n");
    EXPECT_EQ(spec->units()[0].names, (Strings{"a", "b"}));
    EXPECT_EQ(spec->units()[0].comment_text(), "first\nsecond\non the line\n");
    EXPECT_EQ(spec->meta_data()[0].value, "a#b");
    // A single argument is key and value at once.
    EXPECT_EQ(spec->meta_data()[1].key, "\"x\"");
    EXPECT_EQ(spec->meta_data()[1].value, "x");
    EXPECT_EQ(spec->meta_data()[2].value, "v\"w\"");
    // A blank-only block is no file comment: it stays gathered and goes with the next statement.
    EXPECT_EQ(spec->nets()[0].comment_text(), "\nwith the line\n");
    EXPECT_EQ(spec->file_comments(), (Strings{"to the file\nalso the file's\n"}));

    // Tokens split at blanks and tabs only.
    auto tokens = read(dir, "\tUnit\tA  \"a b\"  x\"c d\"y\r\nUnit A p\vq \f\r\n");
    EXPECT_EQ(tokens->units()[0].names, (Strings{"\"a b\"", "x\"c d\"y"}));
    EXPECT_EQ(tokens->units()[1].names, Strings{"p\vq"});
}

TEST(CircuitSpecTest, ImportsAndCircuitFilesResolveBesideTheirFile)
{
    TempDir dir;
    auto spec = read(dir,
                     "Unit A a\n"
                     "Import \"sub/one.ctc\"\n"
                     "Unit A b\n"
                     "Circuit F \"sub/f.ctc\"\n"
                     "Circuit Box {\n"
                     "Import \"sub/two.ctc\"\n"
                     "}# a plain brace\n",
                     {{"sub/one.ctc", "\n\nUnit B one\nImport \"two.ctc\"\n"},
                      {"sub/two.ctc", "Unit C two\n"},
                      {"sub/f.ctc", "Unit Z z\nImport \"two.ctc\"\n"}});
    const std::vector<UnitLine>& units = spec->units();
    ASSERT_EQ(units.size(), 4u);
    EXPECT_EQ(units[1].names, Strings{"one"});
    EXPECT_EQ(units[1].line_number, 3);
    EXPECT_EQ(units[1].filename, "sub/one.ctc");
    EXPECT_EQ(units[2].filename, "sub/two.ctc");
    EXPECT_EQ(units[3].line_number, 3);
    EXPECT_EQ(units[3].filename, "main.ctc");
    const CircuitSpec* f = spec->circuits()[0];
    EXPECT_EQ(f->filename(), "sub/f.ctc");
    EXPECT_FALSE(f->is_declared_locally());
    ASSERT_EQ(f->units().size(), 2u);
    EXPECT_EQ(f->units()[1].type, "C");
    // Inside a block the import is taken as written, from the working directory.
    EXPECT_EQ(spec->circuits()[1]->units()[0].names, Strings{"two"});

    // The import paths are searched for the last component of the name only, and only those read before.
    dir.write("lib1/b.ctc", "Unit One b\n");
    dir.write("lib2/b.ctc", "Unit Two b\n");
    auto searched = read(dir, "ImportPath \"nowhere\"\n"
                              "ImportPath \"lib1\"\n"
                              "Import \"a/b.ctc\"\n"
                              "ImportPath \"lib2\"\n"
                              "Circuit Inner {\n"
                              "Import \"b.ctc\"\n"
                              "}\n");
    EXPECT_EQ(searched->import_paths(), (Strings{"nowhere", "lib1", "lib2"}));
    EXPECT_EQ(searched->units()[0].type, "One");
    EXPECT_EQ(searched->units()[0].filename, "a/b.ctc");
    EXPECT_EQ(searched->circuits()[0]->units()[0].type, "One");
    EXPECT_EQ(read_error(dir, {{"main.ctc", "Import \"c.ctc\"\nImportPath \"lib2\"\n"}}),
              "Error: File not found: 'c.ctc'.");
}

TEST(CircuitSpecTest, AcceptsOddButValidFilesAndSurvivesHostileOnes)
{
    TempDir dir;
    // Empty, comments only, a last line without a newline, and a block left open.
    EXPECT_EQ(read(dir, "")->nof_units(), 0);
    EXPECT_EQ(read(dir, "# only\n# comments")->file_comments().size(), 0u);
    EXPECT_EQ(read(dir, "Unit A a")->nof_units(), 1);
    // An open block in an import goes on in the importer.
    auto carried = read(dir, "Import \"open.ctc\"\nUnit B after\n", {{"open.ctc", "Circuit A {\n"}});
    EXPECT_EQ(carried->nof_units(), 0);
    EXPECT_EQ(carried->circuits()[0]->units()[0].names, Strings{"after"});
    // The same file twice, one after the other, is no cycle.
    EXPECT_EQ(read(dir, "Import \"a.ctc\"\nImport \"a.ctc\"\n", {{"a.ctc", "Unit A a\n"}})->nof_units(), 2);
    // Two nets in different scopes may share a path.
    EXPECT_EQ(read(dir, "Net n a.x a.y\nCircuit C {\nNet n a.x a.y\n}\n")->nof_nets(), 1);

    std::string long_name(10000, 'n');
    auto spec = read(dir, "Unit A " + long_name + "\n");
    EXPECT_EQ(spec->units()[0].names[0].size(), 10000u);
    EXPECT_EQ(read_error(dir, {{"main.ctc", long_name + "\n"}}).size(), 2047u);
    // Nesting as deep as the limit reads; a failure part-way frees every scope read so far.
    std::string nested;
    for (int i = 0; i < CircuitSpec::max_nesting_depth; ++i)
        nested += "Circuit C {\n";
    EXPECT_EQ(read(dir, nested)->circuits().size(), 1u);
    EXPECT_EQ(read_error(dir, {{"main.ctc", nested + "bad\n"}}),
              "Error in main.ctc:1: Illegal keyword: 'bad'.");
}
