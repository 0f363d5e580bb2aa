#include "Core/Circuit/CircuitSpec.h"

#include "tests/unit/ErrorText.h"
#include "tests/unit/TempDir.h"

#include "Core/Support/Error.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <random>
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
        {"a double brace",
         {{"main.ctc", "Circuit x {\n}}\n"}},
         "Error in main.ctc:1: Illegal keyword: '}}'."},
        {"quotes before the keyword",
         {{"main.ctc", "foo \"x\n"}},
         "Error in main.ctc:1: Unterminated string."},
        {"a comment inside single quotes",
         {{"main.ctc", "MetaData k 'a#b'\n"}},
         "Error in main.ctc:1: Syntax error in path specification statement."},
        {"an import without a path",
         {{"main.ctc", "\nImport x.ctc\n"}},
         "Error in main.ctc:2: Syntax error in path specification statement."},
        {"an unclosed single quote",
         {{"main.ctc", "ImportPath 'lib\n"}},
         "Error in main.ctc:1: Syntax error in path specification statement."},
        {"circuit without a body", {{"main.ctc", "Circuit x\n"}}, "Circuit syntax error in main.ctc:1."},
        {"circuit file in single quotes",
         {{"main.ctc", "Circuit x 'f.ctc'\n"}},
         "Unrecognized field following Circuit keyword in main.ctc:1: ''f.ctc''"},
        // A block has no file name of its own to report.
        {"circuit syntax inside a block",
         {{"main.ctc", "Circuit x {\nCircuit y\n}\n"}},
         "Circuit syntax error in :2."},
        {"text after a brace",
         {{"main.ctc", "Circuit x {\n} y\n"}},
         "Unrecognized field following } keyword in :2: 'y'"},
        {"a missing import",
         {{"main.ctc", "Import \"sub/missing.ctc\"\n"}},
         "Error: File not found: 'sub/missing.ctc'."},
        {"nets sharing a pin in a block",
         {{"main.ctc", "Circuit C {\nNet n1 a.x e.f\nNet n2 a.x b.y\n}\n"}},
         "Error in line main.ctc:2: net 'n1' and net 'n2' shares the pin 'a.x'."},
        {"net line",
         {{"main.ctc", "Net n\n"}},
         "Error in main.ctc:1: Net needs a name and at least one port: Net <name> <ports...>"},
        {"port line",
         {{"main.ctc", "\n\nPort Input 8x a\n"}},
         "Error on line 3, in file main.ctc: port size must be a number. '8x' is not."},
        // The root's counter stands still inside a block, and lags behind after it.
        {"illegal keyword in a block",
         {{"main.ctc", "\nCircuit x {\nUnit A a\nfoo\n}\n"}},
         "Error in main.ctc:2: Illegal keyword: 'foo'."},
        {"line count after a block",
         {{"main.ctc", "Circuit x {\nUnit A a\n}\nfoo\n"}},
         "Error in main.ctc:2: Illegal keyword: 'foo'."},
        {"line objects in a block count right",
         {{"main.ctc", "Circuit x {\nUnit A a\nPin Input\n}\n"}},
         "Error on line 3, in file main.ctc: Pin takes at least 2 arguments: Pin <direction> <name>"},
        {"an error in an import",
         {{"main.ctc", "Unit A a\nImport \"sub/a.ctc\"\n"}, {"sub/a.ctc", "Unit A b\nbad\n"}},
         "Error in sub/a.ctc:2: Illegal keyword: 'bad'."},
        {"line count after an import",
         {{"main.ctc", "Import \"a.ctc\"\nbad\n"}, {"a.ctc", "\n\n\n"}},
         "Error in main.ctc:2: Illegal keyword: 'bad'."},
        // Inside a circuit file the root's name and count stand still.
        {"keyword error in a circuit file",
         {{"main.ctc", "\nCircuit X \"x.ctc\"\n"}, {"x.ctc", "Unit A a\nbad\n"}},
         "Error in main.ctc:2: Illegal keyword: 'bad'."},
        {"line error in a circuit file",
         {{"main.ctc", "\nCircuit X \"x.ctc\"\n"}, {"x.ctc", "Unit A a\n\n\nUnit A\n"}},
         "Error on line 4, in file main.ctc: Unit takes at least 2 arguments: Unit <type> <name>"},
        {"nets sharing a pin in a circuit file",
         {{"main.ctc", "Circuit X \"x.ctc\"\n"}, {"x.ctc", "Net n1 a.x e.f\n\nNet n2 a.x b.y\n"}},
         "Error in line main.ctc:1: net 'n1' and net 'n2' shares the pin 'a.x'."},
        {"an import cycle",
         {{"main.ctc", "Import \"sub/a.ctc\"\n"},
          {"sub/a.ctc", "Import \"b.ctc\"\n"},
          {"sub/b.ctc", "Import \"../main.ctc\"\n"}},
         "Error: Circular import of 'sub/../main.ctc': the file is already being read."},
        {"a circuit file that names itself",
         {{"main.ctc", "Circuit X \"main.ctc\"\n"}},
         "Error: Circular import of 'main.ctc': the file is already being read."},
    };
    for (const Case& c : cases) {
        TempDir dir;
        EXPECT_EQ(read_error(dir, c.files), c.message) << c.what;
    }
}

TEST(CircuitSpecTest, ReadsTheTwoHalfAdders)
{
    TempDir dir;
    auto spec = read(dir, "# Two half adders side by side.\n"
                          "# This block is followed by an empty line and so is a file comment.\n"
                          "\n"
                          "MetaData title \"two half adders\"\n"
                          "\n"
                          "Circuit HalfAdder {\n"
                          "   # Inputs of the stage.\n"
                          "   Pin Input a b\n"
                          "   Pin Output sum carry\n"
                          "   Unit Xor x\n"
                          "   Unit And g(delay=7)\n"
                          "   Net a a x.a g.a\n"
                          "   Net b b x.b g.b\n"
                          "   Net sum sum x.out\n"
                          "   Net carry carry g.out\n"
                          "}\n"
                          "\n"
                          "Port Input 1 p q\n"
                          "Pin Output s0 c0\n"
                          "Unit HalfAdder ha[2]\n"
                          "# The first stage.\n"
                          "Net in_p p ha[0].a ha[1].a\n"
                          "Net in_q q ha[0].b ha[1].b\n"
                          "Net out_s s0 ha[0].sum\n"
                          "Net out_c c0 ha[0].carry   # carry of stage 0\n");
    EXPECT_EQ(spec->filename(), "main.ctc");
    EXPECT_FALSE(spec->is_declared_locally());
    EXPECT_EQ(spec->file_comments(),
              Strings{"Two half adders side by side.\n"
                      "This block is followed by an empty line and so is a file comment.\n"});
    ASSERT_EQ(spec->meta_data().size(), 1u);
    EXPECT_EQ(spec->meta_data()[0].key, "title");
    EXPECT_EQ(spec->meta_data()[0].value, "two half adders");
    ASSERT_EQ(spec->ports().size(), 1u);
    EXPECT_EQ(spec->ports()[0].names, (Strings{"p", "q"}));
    // The root's count lags behind by the ten lines of the block.
    EXPECT_EQ(spec->ports()[0].line_number, 8);
    ASSERT_EQ(spec->units().size(), 1u);
    EXPECT_EQ(spec->units()[0].type, "HalfAdder");
    EXPECT_EQ(spec->units()[0].names, (Strings{"ha[0]", "ha[1]"}));
    EXPECT_EQ(spec->nof_units(), 2);
    ASSERT_EQ(spec->nof_nets(), 4);
    EXPECT_EQ(spec->nets()[0].comment_text(), "The first stage.\n");
    EXPECT_EQ(spec->nets()[3].comment_text(), "carry of stage 0\n");
    EXPECT_EQ(spec->nets()[3].line_number, 15);

    ASSERT_EQ(spec->circuits().size(), 1u);
    const CircuitSpec* child = spec->circuits()[0];
    EXPECT_EQ(child->name(), "HalfAdder");
    EXPECT_TRUE(child->is_declared_locally());
    EXPECT_EQ(child->filename(), "main.ctc");
    ASSERT_EQ(child->pins().size(), 2u);
    EXPECT_EQ(child->pins()[0].comment_text(), "Inputs of the stage.\n");
    EXPECT_EQ(child->pins()[0].line_number, 8);
    EXPECT_EQ(child->nets()[0].ports, (Strings{"a", "x.a", "g.a"}));
    EXPECT_EQ(child->nets()[3].line_number, 15);
}

TEST(CircuitSpecTest, AttachesCommentsByTheirRules)
{
    TempDir dir;
    auto spec = read(dir, "# first\n"
                          "   \n"  // blanks do not end a block
                          "# second\n"
                          "Unit A a b#on the line\n"
                          "#\n"
                          "Unit A c\n"
                          "# to the file\n"
                          "MetaData k \"a#b\"   # also the file's\n"
                          "# kept\n"
                          "ImportPath \"lib\"\n"
                          "#\n"
                          "   \t\n"
                          "Net n c.x c.y # with the line\n"
                          "# x\n"
                          "\n"
                          "#\n"
                          "MetaData \"x\"\n"
                          "MetaData k 'v\"w\"'\n"
                          "# lost at the end\n");
    ASSERT_EQ(spec->units().size(), 2u);
    EXPECT_EQ(spec->units()[0].names, (Strings{"a", "b"}));
    EXPECT_EQ(spec->units()[0].comment_text(), "first\nsecond\non the line\n");
    // An empty comment still counts as a line of the block.
    EXPECT_EQ(spec->units()[1].comment_text(), "\n");
    EXPECT_EQ(spec->meta_data()[0].value, "a#b");
    EXPECT_EQ(spec->meta_data()[0].comment_text(), "");
    // A blank-only block is no file comment; a single argument is key and value at once.
    EXPECT_EQ(spec->meta_data()[1].key, "\"x\"");
    EXPECT_EQ(spec->meta_data()[1].value, "x");
    EXPECT_EQ(spec->meta_data()[1].comment_text(), "\n");
    EXPECT_EQ(spec->meta_data()[2].value, "v\"w\"");
    EXPECT_EQ(spec->import_paths(), Strings{"lib"});
    // A blank-only block stays gathered and goes with the next statement.
    EXPECT_EQ(spec->nets()[0].comment_text(), "\nwith the line\n");
    EXPECT_EQ(spec->file_comments(), (Strings{"to the file\nalso the file's\n", "kept\n", "x\n"}));
}

TEST(CircuitSpecTest, SplitsTokensAtBlanksAndTabsOnly)
{
    TempDir dir;
    auto spec = read(dir, "\tUnit\tA  \"a b\"  x\"c d\"y\r\nUnit A p\vq \f\r\n");
    EXPECT_EQ(spec->units()[0].names, (Strings{"\"a b\"", "x\"c d\"y"}));
    EXPECT_EQ(spec->units()[1].names, Strings{"p\vq"});
}

TEST(CircuitSpecTest, OpensBlocksAndReadsCircuitFiles)
{
    TempDir dir;
    auto spec = read(dir,
                     "Circuit A {junk more\n"
                     "Unit X a\n"
                     "Circuit B {\n"
                     "Unit Y b\n"
                     "}\n"
                     "}# a plain brace\n"
                     "Circuit F \"parts/f.ctc\"\n"
                     "Unit F f\n",
                     {{"parts/f.ctc", "Unit Z z\nImport \"g.ctc\"\n"}, {"parts/g.ctc", "Unit G g\n"}});
    ASSERT_EQ(spec->circuits().size(), 2u);
    const CircuitSpec* a = spec->circuits()[0];
    EXPECT_EQ(a->name(), "A");
    ASSERT_EQ(a->circuits().size(), 1u);
    EXPECT_EQ(a->circuits()[0]->units()[0].names, Strings{"b"});
    const CircuitSpec* f = spec->circuits()[1];
    EXPECT_EQ(f->name(), "F");
    EXPECT_EQ(f->filename(), "parts/f.ctc");
    EXPECT_FALSE(f->is_declared_locally());
    // The circuit file's imports resolve beside it and land in its scope.
    ASSERT_EQ(f->units().size(), 2u);
    EXPECT_EQ(f->units()[1].type, "G");
    ASSERT_EQ(spec->units().size(), 1u);
    EXPECT_EQ(spec->units()[0].line_number, 3);
    EXPECT_EQ(spec->units()[0].filename, "main.ctc");
}

TEST(CircuitSpecTest, ImportsReadInPlaceAndKeepTheirLineNumbers)
{
    TempDir dir;
    auto spec =
        read(dir,
             "Unit A a\n"
             "Import \"sub/one.ctc\"\n"
             "Unit A b\n"
             "Import 'sub/one.ctc'\n"
             "Circuit Box {\n"
             "Import \"sub/two.ctc\"\n"
             "}\n",
             {{"sub/one.ctc", "\n\nUnit B one\nImport \"two.ctc\"\n"}, {"sub/two.ctc", "Unit C two\n"}});
    ASSERT_EQ(spec->units().size(), 6u);
    const std::vector<UnitLine>& units = spec->units();
    EXPECT_EQ(units[1].names, Strings{"one"});
    EXPECT_EQ(units[1].line_number, 3);
    EXPECT_EQ(units[1].filename, "sub/one.ctc");
    EXPECT_EQ(units[2].names, Strings{"two"});
    EXPECT_EQ(units[2].filename, "sub/two.ctc");
    EXPECT_EQ(units[3].names, Strings{"b"});
    EXPECT_EQ(units[3].line_number, 3);
    EXPECT_EQ(units[3].filename, "main.ctc");
    // Inside a block the import is taken as written, from the working directory.
    ASSERT_EQ(spec->circuits()[0]->units().size(), 1u);
    EXPECT_EQ(spec->circuits()[0]->units()[0].names, Strings{"two"});
    EXPECT_TRUE(spec->circuits()[0]->is_declared_locally());

    // Beside the importing file, but from the working directory inside a block.
    dir.write("top/main.ctc", "Import \"a.ctc\"\nCircuit B {\nImport \"a.ctc\"\n}\n");
    dir.write("top/a.ctc", "Unit Top t\n");
    dir.write("a.ctc", "Unit Cwd c\n");
    CircuitSpec top("top/main.ctc");
    EXPECT_EQ(top.units()[0].type, "Top");
    EXPECT_EQ(top.circuits()[0]->units()[0].type, "Cwd");
}

TEST(CircuitSpecTest, SearchesImportPathsForTheLastComponentOnly)
{
    TempDir dir;
    dir.write("lib1/b.ctc", "Unit One b\n");
    dir.write("lib2/b.ctc", "Unit Two b\n");
    dir.write("lib2/c.ctc", "Unit Two c\n");
    auto spec = read(dir, "ImportPath \"nowhere\"\n"
                          "ImportPath \"lib1\"\n"
                          "Import \"a/b.ctc\"\n"
                          "ImportPath \"lib2\"\n"
                          "Import \"x/y/c.ctc\"\n"
                          "Circuit Inner {\n"
                          "Import \"b.ctc\"\n"
                          "}\n");
    EXPECT_EQ(spec->import_paths(), (Strings{"nowhere", "lib1", "lib2"}));
    ASSERT_EQ(spec->units().size(), 2u);
    EXPECT_EQ(spec->units()[0].type, "One");
    EXPECT_EQ(spec->units()[0].filename, "a/b.ctc");
    EXPECT_EQ(spec->units()[1].type, "Two");
    // Import paths are the root's, whatever the scope.
    EXPECT_TRUE(spec->circuits()[0]->import_paths().empty());
    EXPECT_EQ(spec->circuits()[0]->units()[0].type, "One");

    // A path read after the import does not count.
    EXPECT_EQ(read_error(dir, {{"main.ctc", "Import \"c.ctc\"\nImportPath \"lib2\"\n"}}),
              "Error: File not found: 'c.ctc'.");
}

TEST(CircuitSpecTest, AcceptsOddButValidFiles)
{
    TempDir dir;
    // Empty, comments only, a last line without a newline, and a block left open.
    EXPECT_EQ(read(dir, "")->nof_units(), 0);
    EXPECT_EQ(read(dir, "# only\n# comments")->file_comments().size(), 0u);
    EXPECT_EQ(read(dir, "Unit A a")->nof_units(), 1);
    auto open = read(dir, "Circuit A {\nUnit B b\n");
    EXPECT_EQ(open->circuits()[0]->nof_units(), 1);
    // An open block in an import goes on in the importer.
    auto carried = read(dir, "Import \"open.ctc\"\nUnit B after\n", {{"open.ctc", "Circuit A {\n"}});
    EXPECT_EQ(carried->nof_units(), 0);
    EXPECT_EQ(carried->circuits()[0]->units()[0].names, Strings{"after"});
    // The same file twice, one after the other, is no cycle.
    EXPECT_EQ(read(dir, "Import \"a.ctc\"\nImport \"a.ctc\"\n", {{"a.ctc", "Unit A a\n"}})->nof_units(), 2);
    // Two nets in different scopes may share a path.
    EXPECT_EQ(read(dir, "Net n a.x a.y\nCircuit C {\nNet n a.x a.y\n}\n")->nof_nets(), 1);
}

TEST(CircuitSpecTest, SurvivesHostileInput)
{
    TempDir dir;
    const char bytes[] = "\x7f"
                         "ELF\x02\x01\x01\x00\x00\x00\xff\xfe\n\x01\x02\"\x03";
    std::string junk(bytes, sizeof bytes - 1);
    EXPECT_EQ(read_error(dir, {{"main.ctc", junk}}).rfind("Error in main.ctc:1: Illegal keyword: '", 0), 0u);

    std::string long_name(10000, 'n');
    auto spec = read(dir, "Unit A " + long_name + "\nNet " + long_name + " " + long_name + ".x " + long_name +
                              ".y\n");
    EXPECT_EQ(spec->units()[0].names[0].size(), 10000u);
    EXPECT_EQ(read_error(dir, {{"main.ctc", long_name + "\n"}}).size(), 2047u);

    // Nesting as deep as the limit reads; one level more is refused before building could recurse
    // that deep.
    std::string nested;
    for (int i = 0; i < CircuitSpec::max_nesting_depth; ++i)
        nested += "Circuit C {\n";
    auto deep = read(dir, nested);
    EXPECT_EQ(deep->circuits().size(), 1u);
    EXPECT_EQ(read_error(dir, {{"main.ctc", nested + "Circuit D {\n"}}),
              "Error in main.ctc:101: Circuit declarations nested deeper than 100 levels.");
    dir.write("sub.ctc", "Circuit S {\n}\n");
    EXPECT_EQ(read_error(dir, {{"main.ctc", nested + "Circuit F \"sub.ctc\"\n"}}),
              "Error in main.ctc:101: Circuit declarations nested deeper than 100 levels.");

    // A failure part-way frees every scope read so far (the leak checker watches this).
    EXPECT_EQ(read_error(dir, {{"main.ctc", nested + "bad\n"}}),
              "Error in main.ctc:1: Illegal keyword: 'bad'.");
}

// The check must name the same pair as comparing every earlier net with every later one.
TEST(CircuitSpecTest, NamesTheFirstPairOfNetsThatShareAPin)
{
    TempDir dir;
    const Strings paths{"a.x", "b.x", "c.x", "d.x", "e.x", "f.x"};
    std::mt19937 random(7);
    for (int round = 0; round < 300; ++round) {
        std::vector<Strings> nets(2 + random() % 5);
        std::string text;
        for (size_t n = 0; n < nets.size(); ++n) {
            Strings pool = paths;
            std::shuffle(pool.begin(), pool.end(), random);
            nets[n].assign(pool.begin(), pool.begin() + 2 + random() % 2);
            text += "Net n" + std::to_string(n);
            for (const std::string& path : nets[n])
                text += " " + path;
            text += "\n";
        }
        std::string expected = "no error";
        for (size_t i = 0; i < nets.size() && expected == "no error"; ++i) {
            for (size_t j = i + 1; j < nets.size() && expected == "no error"; ++j) {
                for (const std::string& path : nets[i]) {
                    if (std::find(nets[j].begin(), nets[j].end(), path) != nets[j].end()) {
                        expected = "Error in line main.ctc:" + std::to_string(i + 1) + ": net 'n" +
                                   std::to_string(i) + "' and net 'n" + std::to_string(j) +
                                   "' shares the pin '" + path + "'.";
                        break;
                    }
                }
            }
        }
        ASSERT_EQ(read_error(dir, {{"main.ctc", text}}), expected) << text;
    }
}
