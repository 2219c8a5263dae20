// SPDX-License-Identifier: BSD-3-Clause
// A real library: its colour files, judged by their geometry and compared with those of an independent
// script.
#include <filesystem>
#include <set>

#include "kit/base/text/text.h"
#include "kit/engines/color/judge.h"
#include "kit/engines/color/run.h"
#include "kit/formats/placer/reader.h"
#include "kit/kitRun.h"

namespace {

using namespace test;
using kit::placer::Cell;

const std::string LEF = VIRELOCE_KIT_EXAMPLES "/raw/Nangate45_stdcell.lef";
const std::string OTHERS = VIRELOCE_KIT_EXAMPLES "/nangate45_color";
constexpr int32_t DISTANCE = 185;

/// The cells that cannot be coloured: four of their shapes are all closer than 185 to one another.
const std::set<std::string> UNCOLOURABLE{"OAI221_X1", "OAI221_X2", "OAI222_X4", "OAI22_X1", "XNOR2_X2"};

KitOutcome color(const std::string& dir, const Words& more = {})
{
    Words words{"color", "--lef", LEF, "--layer", "metal1", "-o", dir};
    words.insert(words.end(), more.begin(), more.end());
    return runKit(words);
}

std::vector<Cell> readFolder(const std::string& dir)
{
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(dir)) {
        if (entry.path().extension() == ".color") {
            names.push_back(entry.path().stem().string());
        }
    }
    std::sort(names.begin(), names.end());
    kit::placer::Design design;
    kit::Findings findings;
    kit::placer::readCells(names, dir, design, findings);
    EXPECT_TRUE(findings.empty());
    return design.cells;
}

/// The library, coloured once with conflicts allowed.
class KitColorLibrary : public testing::Test {
protected:
    static void SetUpTestSuite()
    {
        s_dir = new TempDir;
        s_outcome = new KitOutcome(color(s_dir->path("lib"), {"--allow-conflicts"}));
        s_cells = new std::vector<Cell>(readFolder(s_dir->path("lib")));
    }
    static void TearDownTestSuite()
    {
        delete s_cells;
        delete s_outcome;
        delete s_dir;
    }

    inline static TempDir* s_dir = nullptr;
    inline static KitOutcome* s_outcome = nullptr;
    inline static std::vector<Cell>* s_cells = nullptr;
};

TEST_F(KitColorLibrary, HasAFileForEveryCell)
{
    EXPECT_EQ(s_cells->size(), 135U);
    EXPECT_EQ(s_outcome->status, 1);
    EXPECT_NE(
        s_outcome->output.find("135 cells, layer metal1, site 0.19 x 1.4 um, distance 185 (0.185 um)\n"),
        std::string::npos)
        << s_outcome->output;
}

TEST_F(KitColorLibrary, SolutionsAreFreeOfConflictsButForFiveCells)
{
    for (const Cell& cell : *s_cells) {
        for (size_t i = 0; i < cell.solutions.size(); ++i) {
            const Judgement judgement = judgeSolution(cell, i, 2, DISTANCE);
            EXPECT_EQ(judgement.conflicts, UNCOLOURABLE.count(cell.name)) << cell.name << ' ' << i;
        }
    }
}

TEST_F(KitColorLibrary, ShapesAreTheMetalOfTheLef)
{
    kit::Findings findings;
    const kit::color::Library library = kit::lefdef::readLibrary({LEF}, "metal1", findings);
    ASSERT_TRUE(findings.empty());
    for (const kit::lefdef::LefMacro& macro : library.lef.macros) {
        const auto cell = std::find_if(s_cells->begin(), s_cells->end(),
                                       [&](const Cell& other) { return other.name == macro.name; });
        ASSERT_NE(cell, s_cells->end()) << macro.name;
        Rects metal;
        const auto add = [&metal](const std::vector<kit::lefdef::LefShape>& shapes) {
            for (const kit::lefdef::LefShape& shape : shapes) {
                const auto unit = [](kit::lefdef::Length length) {
                    return static_cast<int32_t>(length / 1000);
                };
                metal.push_back({unit(shape.points[0].x), unit(shape.points[0].y), unit(shape.points[1].x),
                                 unit(shape.points[1].y)});
            }
        };
        for (const kit::lefdef::LefPin& pin : macro.pins) {
            add(pin.shapes);
        }
        add(macro.obstructions);
        Rects both = metal;
        int64_t sum = 0;
        for (const kit::placer::Shape& shape : cell->shapes) {
            both.insert(both.end(), shape.rects.begin(), shape.rects.end());
            sum += areaOf(shape.rects);
        }
        EXPECT_EQ(areaOf(both), areaOf(metal)) << macro.name; // none is added
        EXPECT_EQ(sum, areaOf(metal)) << macro.name;          // none is missing or in two shapes
    }
}

TEST_F(KitColorLibrary, SolutionsDifferAtTheSidesAndComeByStitches)
{
    for (const Cell& cell : *s_cells) {
        std::set<std::vector<int32_t>> views;
        int32_t last = 0;
        for (const kit::placer::Solution& solution : cell.solutions) {
            std::vector<int32_t> view;
            for (size_t i = 0; i < cell.shapes.size(); ++i) {
                const bool seen = std::any_of(
                    cell.shapes[i].rects.begin(), cell.shapes[i].rects.end(),
                    [&](const Rect& rect) { return rect.xl < DISTANCE || cell.width - rect.xh < DISTANCE; });
                view.push_back(seen ? solution.masks[i] : -1);
            }
            EXPECT_TRUE(views.insert(view).second) << cell.name;
            EXPECT_GE(solution.stitches, last) << cell.name;
            last = solution.stitches;
        }
        EXPECT_LE(last, cell.solutions.front().stitches + 2) << cell.name;
        EXPECT_LE(cell.solutions.size(), 12U) << cell.name;
    }
}

TEST_F(KitColorLibrary, EveryPossibleStitchIsOneInSomeSolution)
{
    for (const Cell& cell : *s_cells) {
        for (size_t box = 1; box < cell.headerBoxes.size(); ++box) {
            std::vector<size_t> here;
            for (size_t i = 0; i < cell.shapes.size(); ++i) {
                if (meet(cell.shapes[i].rects, {cell.headerBoxes[box]})) {
                    here.push_back(i);
                }
            }
            ASSERT_EQ(here.size(), 2U);
            EXPECT_TRUE(std::any_of(cell.solutions.begin(), cell.solutions.end(), [&](const auto& solution) {
                return solution.masks[here[0]] != solution.masks[here[1]];
            })) << cell.name;
        }
    }
}

TEST_F(KitColorLibrary, NeedsNoMoreStitchesThanTheScriptsFiles)
{
    int32_t fewer = 0;
    for (const Cell& other : readFolder(OTHERS)) {
        const auto cell = std::find_if(s_cells->begin(), s_cells->end(),
                                       [&](const Cell& own) { return own.name == other.name; });
        ASSERT_NE(cell, s_cells->end()) << other.name;
        EXPECT_EQ(cell->width, other.width);
        EXPECT_EQ(cell->height, other.height);
        if (UNCOLOURABLE.count(cell->name) == 0) {
            EXPECT_LE(cell->solutions[0].stitches, other.solutions[0].stitches) << cell->name;
            fewer += cell->solutions[0].stitches < other.solutions[0].stitches ? 1 : 0;
        }
    }
    EXPECT_EQ(fewer, 2); // MUX2_X2 and OAI222_X1
}

TEST_F(KitColorLibrary, LeavesNoCloserConflictThanTheScriptsFiles)
{
    for (const Cell& other : readFolder(OTHERS)) {
        if (UNCOLOURABLE.count(other.name) == 0) {
            continue;
        }
        const auto cell = std::find_if(s_cells->begin(), s_cells->end(),
                                       [&](const Cell& own) { return own.name == other.name; });
        EXPECT_GE(judgeSolution(*cell, 0, 2, DISTANCE).closest, judgeSolution(other, 0, 2, DISTANCE).closest)
            << other.name;
    }
}

TEST_F(KitColorLibrary, IsTheSameWithAnyNumberOfThreads)
{
    const TempDir dir;
    EXPECT_EQ(color(dir.path("two"), {"--allow-conflicts", "--jobs", "3", "--svg"}).status, 1);
    for (const Cell& cell : *s_cells) {
        EXPECT_EQ(contentOf(dir.path("two/" + cell.name + ".color")),
                  contentOf(s_dir->path("lib/" + cell.name + ".color")))
            << cell.name;
    }
}

TEST_F(KitColorLibrary, IsReadByThePlacer)
{
    ParameterGuard parameters;
    OrientMapGuard orientations;
    Design design;
    design.placePath = VIRELOCE_KIT_EXAMPLES "/gcd/gcd";
    design.cellPath = s_dir->path("lib");
    const std::string report = reportOf([&design] { design.initAll(); });
    EXPECT_NE(report.find("STAT | cell type #              = 34\n"), std::string::npos) << report;
    EXPECT_EQ(report.find("WARNING"), std::string::npos) << report;
    EXPECT_EQ(report.find("ERROR"), std::string::npos) << report;
    for (const ::Cell* cell : design.lut.cells) {
        for (size_t s = 0; s < cell->colors.size(); ++s) {
            for (size_t i = 0; i < cell->shapes.size(); ++i) {
                EXPECT_EQ(cell->isVDDGND(static_cast<int>(i), static_cast<int>(s)), i < 2 ? 1 : 0)
                    << cell->name;
            }
        }
    }
}

TEST(KitColorLibraryFiles, PassLint)
{
    const TempDir dir;
    const std::string base = dir.path("gcd");
    for (const char* extension : {".place", ".pins", ".netlist"}) {
        std::filesystem::copy_file(std::string(VIRELOCE_KIT_EXAMPLES "/gcd/gcd") + extension,
                                   base + extension);
    }
    EXPECT_EQ(color(dir.path("lib")).status, 1);
    const std::vector<Cell> cells = readFolder(dir.path("lib"));
    EXPECT_EQ(cells.size(), 130U);
    std::ofstream list(base + ".cells");
    list << cells.size() << '\n';
    for (const Cell& cell : cells) {
        EXPECT_EQ(UNCOLOURABLE.count(cell.name), 0U) << cell.name;
        list << cell.name << '\n';
    }
    list.close();
    const KitOutcome lint = runKit({"lint", base, "--cell-path", dir.path("lib")});
    EXPECT_EQ(lint.output.find(".color"), std::string::npos) << lint.output;
    EXPECT_EQ(lint.output.find(".cells:"), std::string::npos) << lint.output;
    EXPECT_NE(lint.output.find("unknown-cell"),
              std::string::npos); // it has looked: the design uses others, too
}

TEST(KitColorLibraryFiles, AreFreeOfConflictsWithOverlapAndOtherDistances)
{
    struct Spacing {
        int32_t distance;
        int32_t overlap;
    };
    for (const Spacing& rules : {Spacing{185, 20}, Spacing{150, 0}, Spacing{100, 5}, Spacing{220, 0}}) {
        const TempDir dir;
        color(dir.path("lib"),
              {"--mindp", std::to_string(rules.distance), "--stitch-overlap", std::to_string(rules.overlap)});
        int32_t boxes = 0;
        for (const Cell& cell : readFolder(dir.path("lib"))) {
            for (size_t i = 0; i < cell.solutions.size(); ++i) {
                EXPECT_EQ(judgeSolution(cell, i, 2, rules.distance).conflicts, 0) << cell.name;
            }
            for (size_t i = 1; i < cell.headerBoxes.size(); ++i) {
                const Rect& box = cell.headerBoxes[i];
                EXPECT_EQ(std::min(box.xh - box.xl, box.yh - box.yl), rules.overlap) << cell.name;
                ++boxes;
            }
        }
        EXPECT_GT(boxes, 0);
    }
}

} // namespace
