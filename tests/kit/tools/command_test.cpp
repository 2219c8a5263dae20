// SPDX-License-Identifier: BSD-3-Clause
// The command line: exit status, messages, and what happens to files that exist.
#include <sys/wait.h>

#include <cstdlib>

#include "kit/kitRun.h"

namespace {

using test::contentOf;
using test::KitOutcome;
using test::runKit;
using test::TempDir;
using test::Words;

/// A small design named d in a folder, with more options.
KitOutcome generateIn(const TempDir& dir, const Words& more = {})
{
    Words words{"gen", dir.path("d"), "--components", "1000", "--cell-types", "3"};
    words.insert(words.end(), more.begin(), more.end());
    return runKit(words);
}

struct BadCase {
    const char* name;
    Words words;        ///< behind `gen OUT`
    std::string naming; ///< what the message must have
};

void PrintTo(const BadCase& row, std::ostream* out)
{
    *out << row.name;
}

class BadOption : public testing::TestWithParam<BadCase> {};

TEST_P(BadOption, GetsOneLineAndStatusTwo)
{
    const TempDir dir;
    Words words{"gen", dir.path("d")};
    words.insert(words.end(), GetParam().words.begin(), GetParam().words.end());
    const KitOutcome outcome = runKit(words);
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.output, "");
    EXPECT_EQ(outcome.error.rfind("vireloce-kit: ", 0), 0U) << outcome.error;
    EXPECT_EQ(outcome.error.find('\n'), outcome.error.size() - 1) << outcome.error;
    EXPECT_NE(outcome.error.find(GetParam().naming), std::string::npos) << outcome.error;
    EXPECT_TRUE(std::filesystem::is_empty(dir.path("")));
}

const BadCase BAD_CASES[] = {
    {"TooFewComponents", {"--components", "999"}, "--components: Value 999 not in range 1000 to 10000000"},
    {"TooManyComponents", {"--components", "10000001"}, "--components"},
    {"NoCellTypes", {"--cell-types", "0"}, "--cell-types"},
    {"NoSolutions", {"--solutions", "0"}, "--solutions"},
    {"TooManySolutions", {"--solutions", "65"}, "--solutions"},
    {"OverfullRows", {"--utilization", "96"}, "--utilization"},
    {"EmptyRows", {"--utilization", "9"}, "--utilization"},
    {"ShortRows", {"--sites-per-row", "49"}, "--sites-per-row"},
    {"NegativeMacros", {"--macros", "-1"}, "--macros"},
    {"TinyStep", {"--site-step", "9"}, "--site-step"},
    {"NarrowWindow", {"--window-sites", "4"}, "--window-sites"},
    {"FlatWindow", {"--window-rows", "0"}, "--window-rows"},
    {"TooManyWideNets", {"--wide-nets", "101"}, "--wide-nets"},
    {"MoreThanAllMirrored", {"--mirrored", "101"}, "--mirrored"},
    {"TextForANumber", {"--components", "many"}, "--components"},
    {"NumberWithATail", {"--components", "2000x"}, "--components"},
    {"NegativeSeed", {"--seed", "-1"}, "--seed: Value -1 is not a whole number from 0 to 2^64 - 1"},
    {"HugeSeed", {"--seed", "18446744073709551616"}, "--seed"},
    {"BrokenSeed", {"--seed", "1.5"}, "--seed"},
    {"NoValue", {"--components"}, "--components"},
    {"UnknownOption", {"--colour"}, "--colour"},
    {"SecondName", {"other"}, "other"},
    {"RowsTooLong", {"--sites-per-row", "44151"}, "--sites-per-row times --site-step is over 16777216"},
    {"LibraryTooLarge",
     {"--cell-types", "1000"},
     "--cell-types times one more than --solutions is over 11000"},
    {"RowsTooHigh",
     {"--components", "1000000", "--utilization", "10", "--sites-per-row", "50", "--site-step", "1900"},
     " rows are too high for 32-bit coordinates"},
    {"MacrosThatDoNotFit", {"--macros", "10000", "--components", "1000"}, "--macros: 10000 do not fit"},
};

INSTANTIATE_TEST_SUITE_P(KitCommand, BadOption, testing::ValuesIn(BAD_CASES),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(KitCommand, NeedsASubcommandAndAName)
{
    for (const Words& words : {Words{}, Words{"gen"}, Words{"print"}}) {
        const KitOutcome outcome = runKit(words);
        EXPECT_EQ(outcome.status, 2);
        EXPECT_EQ(outcome.error.find('\n'), outcome.error.size() - 1) << outcome.error;
    }
}

TEST(KitCommand, HelpExplainsEveryOption)
{
    const KitOutcome outcome = runKit({"gen", "--help"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.error, "");
    for (const char* option : {"OUT", "--cell-path", "--seed", "--force", "--components", "--utilization",
                               "--sites-per-row", "--macros", "--site-step", "--mirrored", "--cell-types",
                               "--solutions", "--window-sites", "--window-rows", "--wide-nets"}) {
        EXPECT_NE(outcome.output.find(option), std::string::npos) << option;
    }
}

TEST(KitCommand, SaysInOneLineWhatItMade)
{
    const TempDir dir;
    const KitOutcome outcome = generateIn(dir);
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output.rfind(dir.path("d") + ": 1000 components on ", 0), 0U) << outcome.output;
    EXPECT_NE(outcome.output.find(" 80 % utilized"), std::string::npos) << outcome.output;
    EXPECT_EQ(outcome.output.find('\n'), outcome.output.size() - 1);
}

TEST(KitCommand, LeavesTheDesignsFilesAlone)
{
    const TempDir dir;
    EXPECT_EQ(generateIn(dir).status, 0);
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(dir.path(""))) {
        names.push_back(std::filesystem::relative(entry.path(), dir.path("")).string());
    }
    std::sort(names.begin(), names.end());
    EXPECT_EQ(names, (Words{"d.cells", "d.colors", "d.colors/C0.color", "d.colors/C1.color",
                            "d.colors/C2.color", "d.netlist", "d.pins", "d.place"}));
}

TEST(KitCommand, CellFilesGoWhereTheyAreTold)
{
    const TempDir dir;
    EXPECT_EQ(generateIn(dir, {"--cell-path", dir.path("some/where")}).status, 0);
    EXPECT_TRUE(std::filesystem::exists(dir.path("some/where/C2.color")));
    EXPECT_FALSE(std::filesystem::exists(dir.path("d.colors")));
}

class ExistingFile : public testing::TestWithParam<const char*> {};

TEST_P(ExistingFile, IsNotReplacedUnasked)
{
    const TempDir dir;
    const std::string old = dir.write(GetParam(), "old");
    const KitOutcome refused = generateIn(dir, {"--cell-path", dir.path("lib")});
    EXPECT_EQ(refused.status, 2);
    EXPECT_EQ(refused.error,
              "vireloce-kit: " + old + " exists: choose another name, or --force to replace it\n");
    EXPECT_EQ(contentOf(old), "old");

    EXPECT_EQ(generateIn(dir, {"--cell-path", dir.path("lib"), "--force"}).status, 0);
    EXPECT_NE(contentOf(old), "old");
}

INSTANTIATE_TEST_SUITE_P(KitCommand, ExistingFile,
                         testing::Values("d.place", "d.pins", "d.netlist", "d.cells", "lib/C1.color"));

TEST(KitCommand, AFolderThatIsNotThereGetsOneLine)
{
    const TempDir dir;
    const KitOutcome outcome =
        runKit({"gen", dir.path("no/d"), "--components", "1000", "--cell-path", dir.path("lib")});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.error,
              "vireloce-kit: cannot write " + dir.path("no/d.cells") + ": No such file or directory\n");
}

TEST(KitCommand, AFileInPlaceOfTheCellFolderGetsOneLine)
{
    const TempDir dir;
    const KitOutcome outcome = generateIn(dir, {"--cell-path", dir.write("lib", "a file")});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.error.rfind("vireloce-kit: cannot make the folder " + dir.path("lib"), 0), 0U)
        << outcome.error;
    EXPECT_EQ(outcome.error.find('\n'), outcome.error.size() - 1);
}

TEST(KitCommand, VersionIsPrinted)
{
    const KitOutcome outcome = runKit({"--version"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output, "vireloce-kit " VIRELOCE_VERSION "\n");
}

struct Misspelling {
    const char* name;
    Words words;
    std::string message;
};

class MisspeltName : public testing::TestWithParam<Misspelling> {};

TEST_P(MisspeltName, GetsTheOneThatIsMostAlike)
{
    const KitOutcome outcome = runKit(GetParam().words);
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.error, "vireloce-kit: " + GetParam().message + "\n");
}

const Misspelling MISSPELLINGS[] = {
    {"Subcommand", {"plase", "b"}, "there is no subcommand plase; did you mean place?"},
    {"SubcommandOfSweep", {"sweep", "rum", "d"}, "there is no subcommand rum; did you mean run?"},
    {"Option", {"verify", "p", "--colours", "c"}, "there is no option --colours; did you mean --colors?"},
    {"OptionWithItsValue", {"gen", "x", "--sed=1"}, "there is no option --sed; did you mean --seed?"},
    {"NothingAlike", {"gen", "x", "--zzzzzzzz"}, "there is no option --zzzzzzzz"},
    {"NoSubcommandAlike", {"print"}, "there is no subcommand print"},
};

INSTANTIATE_TEST_SUITE_P(KitCommand, MisspeltName, testing::ValuesIn(MISSPELLINGS),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(KitCommand, EarlierSpellingsOfOptionsAreAccepted)
{
    const TempDir dir;
    EXPECT_EQ(generateIn(dir, {"--cell-dir", dir.path("lib"), "--utilisation=70"}).status, 0);
    EXPECT_TRUE(std::filesystem::exists(dir.path("lib/C2.color")));
    EXPECT_EQ(runKit({"view", dir.path("d.place"), "--out", dir.path("d.svg")}).status, 0);
    EXPECT_TRUE(std::filesystem::exists(dir.path("d.svg")));
    const KitOutcome help = runKit({"gen", "--help"});
    EXPECT_EQ(help.output.find("--cell-dir"), std::string::npos);
}

TEST(KitCommand, TheProgramItselfGivesTheStatus)
{
    const TempDir dir;
    const auto statusOf = [&dir](const std::string& options) {
        const std::string command = "exec '" VIRELOCE_KIT_PROGRAM "' gen '" + dir.path("d") + "' " + options +
                                    " >'" + dir.path("log") + "' 2>&1";
        return WEXITSTATUS(std::system(command.c_str()));
    };
    EXPECT_EQ(statusOf("--components 1000"), 0);
    EXPECT_TRUE(std::filesystem::exists(dir.path("d.place")));
    EXPECT_EQ(statusOf("--components 1000"), 2);
    EXPECT_EQ(statusOf("--components 1"), 2);
}

} // namespace
