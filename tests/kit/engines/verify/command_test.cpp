// SPDX-License-Identifier: BSD-3-Clause
// The subcommand verify from files to exit status.

#include "kit/base/files/writeOutput.h"
#include "kit/base/text/json.h"
#include "kit/formats/placer/colors.h"
#include "kit/formats/placer/reader.h"
#include "kit/kitRun.h"

namespace {

using namespace test;
using kit::Json;
using kit::placer::ColorRecord;

/// A generated design and its initial placement with the first solution of each cell.
class FirstSolutions {
public:
    explicit FirstSolutions(const Words& options = {}) : m_files(options)
    {
        kit::Findings findings;
        design = kit::placer::readDesign({m_files.base(), m_files.lib()}, findings);
        EXPECT_TRUE(findings.empty());
        for (const kit::placer::Component& comp : design.components) {
            const auto& solution = design.cells[static_cast<size_t>(comp.cell)].solutions.front();
            records.push_back({comp.name, comp.cellName, 0, solution.stitches, solution.masks});
        }
    }

    KitOutcome verify(const Words& more = {}) const
    {
        test::writeOutput(colors(), [this](kit::OutputFile& out) { kit::placer::writeColors(records, out); });
        Words words{"verify", place(), "--colors", colors(), "--cell-path", m_files.lib()};
        words.insert(words.end(), more.begin(), more.end());
        return runKit(words);
    }

    std::string place() const { return m_files.base() + ".place"; }
    std::string cells() const { return m_files.base() + ".cells"; }
    std::string colors() const { return m_dir.path("first.colors"); }
    std::string library() const { return m_files.lib(); }
    std::string path(const std::string& name) const { return m_dir.path(name); }

    kit::placer::Design design;
    std::vector<ColorRecord> records;

private:
    GeneratedDesign m_files;
    TempDir m_dir;
};

Json countsOf(const KitOutcome& outcome)
{
    return Json::parse(outcome.output).at("counts");
}

TEST(KitVerifyCommand, LegalPlacementWithConflictsAloneHasStatusOne)
{
    const FirstSolutions files;
    const KitOutcome outcome = files.verify({"--json"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.error, "");
    const Json counts = countsOf(outcome);
    for (const auto& [kind, count] : counts.members()) {
        EXPECT_EQ(count.asInteger() > 0, kind == "conflict") << kind;
    }
}

TEST(KitVerifyCommand, WithoutADistanceTheGeneratedPlacementIsClean)
{
    const KitOutcome outcome = FirstSolutions().verify({"--mindp", "0"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_NE(outcome.output.find(".place: clean, 0 errors, 0 notes\n"), std::string::npos) << outcome.output;
}

TEST(KitVerifyCommand, CellListGivesTheSame)
{
    const FirstSolutions files({"--macros", "2", "--site-step", "123"});
    EXPECT_EQ(files.verify().output, files.verify({"--cells", files.cells()}).output);
}

TEST(KitVerifyCommand, CellThatIsNotInTheListIsUnknown)
{
    const FirstSolutions files;
    std::string list = "1\n" + files.design.cells[0].name + "\n";
    std::ofstream(files.path("short.cells")) << list;
    const KitOutcome outcome = files.verify({"--cells", files.path("short.cells"), "--json"});
    EXPECT_EQ(outcome.status, 1);
    const auto first =
        std::count_if(files.records.begin(), files.records.end(),
                      [&](const ColorRecord& record) { return record.cell == files.design.cells[0].name; });
    EXPECT_EQ(countsOf(outcome).at("unknown-cell"), files.records.size() - static_cast<size_t>(first));
}

TEST(KitVerifyCommand, MarkersAreWrittenWhereAsked)
{
    const FirstSolutions files;
    const KitOutcome outcome = files.verify({"--json", "--lyrdb", files.path("m.lyrdb")});
    const std::string xml = contentOf(files.path("m.lyrdb"));
    int items = 0;
    for (size_t at = xml.find("<item>"); at != std::string::npos; at = xml.find("<item>", at + 1)) {
        ++items;
    }
    EXPECT_EQ(countsOf(outcome).at("conflict"), items);
}

TEST(KitVerifyCommand, MarkersNeverReplaceAnInput)
{
    const FirstSolutions files;
    files.verify();
    std::filesystem::create_symlink(files.place(), files.path("link"));
    const std::string cell = files.library() + "/" + files.design.cells.front().name + ".color";
    for (const std::string& input : {files.place(), files.colors(), files.path("link"), cell}) {
        const std::string before = contentOf(input);
        const KitOutcome outcome = files.verify({"--lyrdb", input});
        EXPECT_EQ(outcome.status, 2);
        EXPECT_NE(outcome.error.find(input + " is an input"), std::string::npos) << outcome.error;
        EXPECT_EQ(contentOf(input), before);
    }
}

TEST(KitVerifyCommand, WorstLimitsTheTable)
{
    const FirstSolutions files;
    const std::string head = "distance  shape pairs  mask  cells\n";
    const auto rowsOf = [&](const std::string& worst) {
        const std::string text = files.verify({"--worst", worst}).output;
        const std::string rest = text.substr(text.find(head) + head.size());
        return std::count(rest.begin(), rest.begin() + static_cast<std::ptrdiff_t>(rest.find("\n\n") + 1),
                          '\n');
    };
    EXPECT_EQ(rowsOf("3"), 3);
    EXPECT_EQ(rowsOf("7"), 7);
}

TEST(KitVerifyCommand, ColoursThatAreCutShortHaveStatusTwo)
{
    const FirstSolutions files;
    EXPECT_EQ(files.verify({"--mindp", "0"}).status, 0);
    std::string text = contentOf(files.colors());
    text.resize(text.size() - 4); // without END
    std::ofstream(files.colors()) << text;
    const KitOutcome outcome = runKit({"verify", files.place(), "--colors", files.colors(), "--cell-path",
                                       files.place() + "/../d.colors", "--mindp", "0"});
    EXPECT_EQ(outcome.status, 2);
}

TEST(KitVerifyCommand, CellWithoutAFileHasStatusTwo)
{
    FirstSolutions files;
    std::filesystem::remove(files.design.cells[1].path);
    const KitOutcome outcome = files.verify();
    EXPECT_EQ(outcome.status, 2);
    EXPECT_NE(outcome.output.find(" [no-file]\n"), std::string::npos) << outcome.output;
}

/// Places a generated design by algorithm 0 and judges the result; the placer reports no conflict.
KitOutcome verifyPlaced(const std::string& mirrored)
{
    const GeneratedDesign files({"--mirrored", mirrored});
    const TempDir dir;
    const std::string out = dir.path("out");
    const KitOutcome placed =
        runKit({"place", files.base(), "--cell-path", files.lib(), "-o", out, "--quiet"});
    EXPECT_EQ(placed.status, mirrored == "0" ? 0 : 1) << placed.error;
    EXPECT_NE(placed.output.find("final conflict #         = 0\n"), std::string::npos) << placed.output;
    return runKit(
        {"verify", out + ".place", "--colors", out + ".colors", "--cell-path", files.lib(), "--json"});
}

TEST(KitVerifyCommand, PlacedDesignWithoutMirroredCellsIsClean)
{
    EXPECT_EQ(verifyPlaced("0").status, 0);
}

TEST(KitVerifyCommand, MirroredCellsAreTooCloseWhereThePlacerReportsNone)
{
    const KitOutcome outcome = verifyPlaced("30");
    EXPECT_EQ(outcome.status, 1);
    const Json counts = countsOf(outcome);
    for (const auto& [kind, count] : counts.members()) {
        EXPECT_EQ(count.asInteger() > 0, kind == "conflict") << kind;
    }
}

struct UsageCase {
    const char* name;
    Words words; ///< behind `verify`
    std::string naming;
};

void PrintTo(const UsageCase& row, std::ostream* out)
{
    *out << row.name;
}

class BadVerify : public testing::TestWithParam<UsageCase> {};

TEST_P(BadVerify, GetsOneLineAndStatusTwo)
{
    Words words{"verify"};
    words.insert(words.end(), GetParam().words.begin(), GetParam().words.end());
    const KitOutcome outcome = runKit(words);
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.output, "");
    EXPECT_NE(outcome.error.find(GetParam().naming), std::string::npos) << outcome.error;
    EXPECT_EQ(std::count(outcome.error.begin(), outcome.error.end(), '\n'), 1);
}

const UsageCase USAGE_CASES[] = {
    {"NoPlacement", {"--colors", "c", "--cell-path", "l"}, "PLACE"},
    {"NoColours", {"p", "--cell-path", "l"}, "--colors"},
    {"NoLibrary", {"p", "--colors", "c"}, "--cell-path"},
    {"NegativeDistance", {"p", "--colors", "c", "--cell-path", "l", "--mindp", "-1"}, "--mindp"},
    {"HugeDistance", {"p", "--colors", "c", "--cell-path", "l", "--mindp", "10001"}, "--mindp"},
    {"NegativeRows", {"p", "--colors", "c", "--cell-path", "l", "--worst", "-1"}, "--worst"},
    {"NoSuchPlacement", {"/no/p", "--colors", "c", "--cell-path", "l"}, "/no/p"},
};

INSTANTIATE_TEST_SUITE_P(KitVerifyCommand, BadVerify, testing::ValuesIn(USAGE_CASES),
                         [](const auto& row) { return std::string(row.param.name); });

} // namespace
