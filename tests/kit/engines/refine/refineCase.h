// SPDX-License-Identifier: BSD-3-Clause
// Designs whose wires are made shorter.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "kit/base/files/writeOutput.h"
#include "kit/base/text/json.h"
#include "kit/engines/place/schema.h"
#include "kit/engines/refine/model.h"
#include "kit/formats/placer/colors.h"
#include "kit/formats/placer/reader.h"
#include "kit/formats/placer/writer.h"
#include "kit/kitRun.h"
#include "support/pattern.h"

namespace test {

/// A site of 190 DBU, which are library units. BARS is two sites wide, may be mirrored and has a low bar near
/// its left edge and a high one near its right edge, TAP one with a bar in the middle.
inline const std::string BARS_LEF = R"(UNITS DATABASE MICRONS 1000 ; END UNITS
SITE core CLASS CORE ; SIZE 0.19 BY 1.4 ; SYMMETRY Y ; END core
MACRO BARS CLASS CORE ; SIZE 0.38 BY 1.4 ; SYMMETRY X Y ; SITE core ;
  PIN A PORT LAYER metal1 ; RECT 0.04 0.2 0.1 0.6 ; END END A
  PIN Z PORT LAYER metal1 ; RECT 0.26 0.8 0.32 1.2 ; END END Z
END BARS
MACRO TAP CLASS CORE WELLTAP ; SIZE 0.19 BY 1.4 ; OBS LAYER metal1 ; RECT 0.04 0.2 0.15 0.6 ; END END TAP
END LIBRARY
)";

/// A coloring of the bars of a cell.
struct Coloring {
    int32_t stitches = 0;
    std::vector<int32_t> masks;
};

/// A design of some rows, imported, with color files and colors of the test's own. It is placed as it is.
class RefineCase : public testing::Test {
protected:
    void SetUp() override { std::filesystem::create_directory(lib()); }

    /// Color files of both cells.
    void color(const std::vector<Coloring>& bars, const std::vector<Coloring>& tap = {{0, {0}}}) const
    {
        write("BARS", 380, {{40, 200, 100, 600}, {260, 800, 320, 1200}}, bars);
        write("TAP", 190, {{40, 200, 150, 600}}, tap);
    }

    /// Imports components and nets, each a record of a DEF file. Row by row N and FS, from 0 upwards.
    void import(const Words& records, const Words& nets = {}, int32_t rows = 2, int32_t sites = 12) const
    {
        std::string def = "VERSION 5.8 ;\nDESIGN d ;\nUNITS DISTANCE MICRONS 1000 ;\n";
        for (int32_t row = 0; row < rows; ++row) {
            def += "ROW r" + std::to_string(row) + " core 0 " + std::to_string(1400 * row) +
                   (row % 2 == 0 ? " N" : " FS") + " DO " + std::to_string(sites) + " BY 1 STEP 190 0 ;\n";
        }
        def += section("COMPONENTS", records) + section("NETS", nets) + "END DESIGN\n";
        const KitOutcome outcome = runKit({"import", "--lef", m_dir.write("l.lef", BARS_LEF), "--def",
                                           m_dir.write("d.def", def), "-o", base(), "--force"});
        ASSERT_EQ(outcome.status, 0) << outcome.error;
    }

    /// Moves components in the placement, from one place to another.
    void placeAt(const std::vector<std::pair<std::string, std::string>>& moves) const
    {
        std::string place = contentOf(base() + ".place");
        for (const auto& [from, to] : moves) {
            place = replaced(place, "PLACED \\( " + from + " ", "PLACED ( " + to + " ");
        }
        m_dir.write("d.place", place);
    }

    /// Gives each component a solution, beginning with the first.
    void choose(const std::vector<int32_t>& solutions) const
    {
        kit::Findings findings;
        const kit::placer::Design design =
            kit::placer::readDesign({.base = base(), .cellDir = lib()}, findings);
        std::vector<kit::placer::ColorRecord> records;
        for (size_t i = 0; i < design.components.size(); ++i) {
            const kit::placer::Component& comp = design.components[i];
            kit::placer::ColorRecord& record = records.emplace_back();
            record.name = comp.name;
            record.cell = comp.cellName;
            record.solution = solutions.at(i);
            if (record.solution >= 0) {
                const auto& solution =
                    design.cellOf(comp)->solutions.at(static_cast<size_t>(record.solution));
                record.stitches = solution.stitches;
                record.masks = solution.masks;
            }
        }
        writeOutput(base() + ".colors",
                    [&](kit::OutputFile& out) { kit::placer::writeColors(records, out); });
    }

    kit::refine::Inputs inputs() const { return kit::refine::readInputs({.base = base(), .cellDir = lib()}); }

    kit::refine::Built build(const kit::refine::Demands& demands = {}) const
    {
        return kit::refine::buildModel(inputs(), demands);
    }

    /// Runs the subcommand on the placement.
    KitOutcome refine(const Words& more = {}) const
    {
        Words words{"refine", base() + ".place", "--cell-path", lib(), "-o", out()};
        words.insert(words.end(), more.begin(), more.end());
        return runKit(words);
    }

    kit::Json result() const
    {
        const kit::Json json = kit::Json::parse(contentOf(out() + ".json"));
        EXPECT_EQ(faultsOf(json, placeSchema()), Words{});
        return json;
    }

    std::string lib() const { return m_dir.path("lib"); }
    std::string base() const { return m_dir.path("d"); }
    std::string out() const { return m_dir.path("out"); }

    TempDir m_dir;

private:
    static std::string section(const std::string& name, const Words& records)
    {
        std::string text = name + " " + std::to_string(records.size()) + " ;\n";
        for (const std::string& record : records) {
            text += "- " + record + " ;\n";
        }
        return text + "END " + name + "\n";
    }

    void write(const std::string& name, int32_t width, const std::vector<kit::placer::Rect>& bars,
               const std::vector<Coloring>& colorings) const
    {
        kit::placer::Cell cell;
        cell.width = width;
        cell.height = 1400;
        cell.shapes.push_back({.rects = {{0, 0, width, 80}}});
        cell.shapes.push_back({.rects = {{0, 1320, width, 1400}}});
        for (const kit::placer::Rect& bar : bars) {
            cell.shapes.push_back({.rects = {bar}});
        }
        for (const Coloring& coloring : colorings) {
            std::vector<int32_t> masks{0, 0};
            masks.insert(masks.end(), coloring.masks.begin(), coloring.masks.end());
            cell.solutions.push_back({.stitches = coloring.stitches, .masks = std::move(masks)});
        }
        writeOutput(lib() + "/" + name + ".color",
                    [&](kit::OutputFile& file) { kit::placer::writeColorFile(file, cell); });
    }
};

} // namespace test
