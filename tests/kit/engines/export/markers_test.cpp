// SPDX-License-Identifier: BSD-3-Clause
// Markers of `verify` on the layout of `export`, for one design in several units.

#include "kit/engines/export/smallExport.h"
#include "kit/formats/gds/gdsReader.h"
#include "support/pattern.h"

namespace {

using namespace test;

/// Corners in micrometres.
struct Corners {
    double x1;
    double y1;
    double x2;
    double y2;
};

struct FramedDesign {
    const char* title;
    int units; ///< DBU of a micrometre
    std::string name;
};

/// Two cells side by side with metal of one mask too close, imported from a DEF file.
class KitMarkers : public testing::TestWithParam<FramedDesign> {
protected:
    KitMarkers()
    {
        m_dir.write("lef", SMALL_LEF);
        m_dir.write("in.def", def());
        m_dir.write("lib/INV.color", SMALL_COLOR);
        run({"import", "--def", m_dir.path("in.def"), "--lef", m_dir.path("lef"), "--layer", "M1", "--site",
             "0.19,1.4", "-o", m_dir.path("in")});
    }

    std::string def() const
    {
        const auto dbu = [](double microns) {
            return std::to_string(std::lround(microns * GetParam().units)) + " ";
        };
        std::string text = "VERSION 5.8 ;\nDESIGN " + GetParam().name + " ;\nUNITS DISTANCE MICRONS " +
                           std::to_string(GetParam().units) + " ;\n";
        for (int row = 0; row < 2; ++row) {
            text += "ROW r" + std::to_string(row) + " core 0 " + dbu(1.4 * row) + (row == 0 ? "N" : "FS") +
                    " DO 10 BY 1 STEP " + dbu(0.19) + "0 ;\n";
        }
        return text + "COMPONENTS 2 ;\n- a INV + PLACED ( " + dbu(0.19) + dbu(1.4) +
               ") FS ;\n- b INV + PLACED ( " + dbu(0.57) + dbu(1.4) + ") FS ;\nEND COMPONENTS\nEND DESIGN\n";
    }

    static void run(const Words& words)
    {
        const KitOutcome outcome = runKit(words);
        EXPECT_LE(outcome.status, 1) << outcome.error;
    }

    /// The result: the cells as they are, and both in a solution with both bars on mask 1.
    void makeResult() const
    {
        for (const char* const extension : {".place", ".map"}) {
            m_dir.write(std::string("out") + extension, contentOf(m_dir.path("in") + extension));
        }
        m_dir.write("out.colors",
                    "VIRELOCE COLORS 1\nCOMPONENTS 2\na INV 0 0 0 0 1 1\nb INV 0 0 0 0 1 1\nEND\n");
        m_dir.write("out.json",
                    R"({"schema":"vireloce-place","version":1,"placement":{},"options":{"cell_path":")" +
                        m_dir.path("lib") + R"("}})");
    }

    /// The boxes of mask 1 in the layout.
    static std::vector<Corners> metalOf(const GdsLibrary& library)
    {
        std::vector<Corners> boxes;
        for (const GdsInstance& instance : library.structures.at(library.order.back()).instances) {
            for (const GdsShape& shape : library.structures.at(instance.structure).shapes) {
                if (shape.layer == 101) {
                    const auto x = [&](size_t i) {
                        return static_cast<double>(shape.points.at(i).first + instance.at.first) *
                               library.userUnit;
                    };
                    const auto y = [&](size_t i) {
                        return static_cast<double>(shape.points.at(i).second + instance.at.second) *
                               library.userUnit;
                    };
                    boxes.push_back({x(0), y(0), x(2), y(2)});
                }
            }
        }
        return boxes;
    }

    TempDir m_dir;
};

/// The edges of all edge pairs.
std::vector<Corners> edgesOf(const std::string& markers)
{
    std::vector<Corners> edges;
    const std::string number = "(-?[0-9.]+)";
    const std::string edge = "\\(" + number + "," + number + ";" + number + "," + number + "\\)";
    for (const test::Match& match : test::matchesOf(markers, edge)) {
        edges.push_back({std::stod(match[1]), std::stod(match[2]), std::stod(match[3]), std::stod(match[4])});
    }
    return edges;
}

TEST_P(KitMarkers, LieOnTheMetalOfTheLayoutUnderItsName)
{
    makeResult();
    run({"verify", m_dir.path("out.place"), "--colors", m_dir.path("out.colors"), "--cell-path",
         m_dir.path("lib"), "--lyrdb", m_dir.path("out.lyrdb")});
    run({"export", m_dir.path("out.json"), "--def", m_dir.path("in.def"), "-o", m_dir.path("new.def"),
         "--gds", m_dir.path("new.gds")});
    const GdsLibrary library = readGds(contentOf(m_dir.path("new.gds")));
    const std::string markers = contentOf(m_dir.path("out.lyrdb"));
    EXPECT_NE(markers.find("<top-cell>" + library.order.back() + "</top-cell>"), std::string::npos)
        << markers;
    const std::vector<Corners> metal = metalOf(library);
    const std::vector<Corners> edges = edgesOf(markers);
    EXPECT_EQ(edges.size(), 2U) << markers;
    for (const Corners& edge : edges) {
        const auto same = [](double a, double b) { return std::abs(a - b) < 1e-6; };
        EXPECT_TRUE(std::any_of(metal.begin(), metal.end(),
                                [&](const Corners& box) {
                                    const auto [low, high] = std::minmax(edge.y1, edge.y2);
                                    return same(edge.x1, edge.x2) &&
                                           (same(edge.x1, box.x1) || same(edge.x1, box.x2)) &&
                                           same(low, box.y1) && same(high, box.y2);
                                }))
            << edge.x1 << " " << edge.y1 << " " << edge.y2;
    }
}

TEST_P(KitMarkers, ResultOfPlaceKeepsNameAndUnits)
{
    run({"place", m_dir.path("in"), "--cell-path", m_dir.path("lib"), "-o", m_dir.path("placed"), "--quiet"});
    const std::string before = contentOf(m_dir.path("in.place"));
    const std::string after = contentOf(m_dir.path("placed.place"));
    const std::string header = before.substr(0, before.find("PROPERTYDEFINITIONS"));
    EXPECT_NE(header.find("\nUNITS DISTANCE MICRONS " + std::to_string(GetParam().units) + " ;\n"),
              std::string::npos);
    EXPECT_TRUE(after.starts_with(header)) << after;
}

INSTANTIATE_TEST_SUITE_P(Each, KitMarkers,
                         testing::Values(FramedDesign{"Of100", 100, "small"},
                                         FramedDesign{"Of1000", 1000, "small"},
                                         FramedDesign{"Of2000", 2000, "small"},
                                         FramedDesign{"Of4000", 4000, "small"},
                                         FramedDesign{"WithALongName", 1000, "top/" + std::string(80, 'x')}),
                         [](const auto& param) { return param.param.title; });

TEST(KitFrameOfAnExport, OtherUnitsThanThePlacementsAreAnError)
{
    SmallExport files("- a INV + PLACED ( 0 0 ) N\n ;\n", "- a INV ;\n");
    files.place = "UNITS DISTANCE MICRONS 2000 ;\n" + files.place;
    const KitOutcome outcome = files.run();
    EXPECT_EQ(outcome.status, 2);
    EXPECT_NE(outcome.error.find("in.def: error: a micrometre has 1000 DBU here, and 2000 in the placement"),
              std::string::npos)
        << outcome.error;
}

TEST(KitFrameOfAnExport, NameIsThatOfThePlacementIfItHasOne)
{
    SmallExport files("- a INV + PLACED ( 0 0 ) N\n ;\n", "- a INV ;\n");
    files.colors = "a INV 1 0 0 0 1 2\n";
    files.place = "DESIGN other ;\n" + files.place;
    files.run({"--gds", files.path("new.gds")});
    EXPECT_EQ(readGds(files.output("new.gds")).order.back(), "other");
}

} // namespace
