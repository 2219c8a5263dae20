// SPDX-License-Identifier: BSD-3-Clause
// The subcommand from its files to the picture.
#include "kit/base/fault.h"
#include "kit/engines/view/conflicts.h"
#include "kit/engines/view/inputs.h"
#include "kit/engines/view/scenes.h"

namespace {

using namespace kit::view;
using test::contentOf;
using test::jsonOf;
using test::KitOutcome;
using test::TempDir;
using test::Words;

/// Runs `view`.
KitOutcome runView(Words words)
{
    words.insert(words.begin(), "view");
    return test::runKit(words);
}

/// A row of two cells whose metal is 100 library units apart, in files.
class ViewFiles : public testing::Test {
protected:
    ViewFiles()
    {
        m_dir.write("d.cells", "1 INV");
        m_dir.write("d.place", placement(380));
        m_dir.write("d.pins", "1 in 0 700");
        m_dir.write("d.netlist", "1 3 in u1 u2");
        std::filesystem::create_directory(m_dir.path("lib"));
        m_dir.write("lib/INV.color", "190 1400 0 2 1 0 -85 190 85 1 30 500 60 900 2 0 0 1 0 0 2");
        m_dir.write("o.place", placement(760));
        m_dir.write("o.colors", "VIRELOCE COLORS 1\nCOMPONENTS 2\nu1 INV 0 0 0 1\nu2 INV 0 0 0 1\nEND\n");
    }

    static std::string placement(int32_t x)
    {
        return "ROW r0 core 0 0 N DO 10 BY 1 STEP 380 0 ;\nROW r1 core 0 2800 FS DO 10 BY 1 STEP 380 0 ;\n"
               "COMPONENTS 2 ;\n- u1 INV + PLACED ( 0 0 ) N\n ;\n- u2 INV + PLACED ( " +
               std::to_string(x) + " 0 ) N\n ;\nEND COMPONENTS\n";
    }

    /// What is drawn of the files.
    Scene read(const Options& options) const
    {
        kit::Findings findings;
        const Scene scene = readScene(findInputs(options), options.minDist, findings);
        EXPECT_TRUE(findings.empty());
        return scene;
    }

    Options base() const
    {
        Options options;
        options.placement = m_dir.path("d");
        options.cellDir = m_dir.path("lib");
        return options;
    }

    TempDir m_dir;
};

TEST_F(ViewFiles, FixedCellsAreDrawnInTheirColours)
{
    // The metal of the cell on its left ends 130 library units before the edge; this one's begins 30 behind.
    m_dir.write("o.fixed", "VIRELOCE FIXED 1\nCELLS 2\nINV 1140 0 N 0 f\nNONE 0 2800 FS -1 g\n"
                           "BLOCKS 1\nBLOCK RAM 1700 0 1 r\n1600 1000 1900 1200\nEND\n");
    Options options = base();
    options.placement = m_dir.path("o");
    options.cells = m_dir.path("d.cells");
    options.colors = m_dir.path("o.colors");
    const Scene scene = read(options);
    ASSERT_EQ(scene.cells.size(), 3U) << "without a colour file there is nothing to draw";
    EXPECT_EQ(scene.cells[2].name, "f");
    EXPECT_TRUE(scene.cells[2].isFixed);
    EXPECT_FALSE(scene.cells[1].isFixed);
    EXPECT_EQ(scene.cells[2].colouring, 0);
    EXPECT_EQ(scene.cells[2].place.x, 1140);
    ASSERT_EQ(scene.conflicts.size(), 1U);
    EXPECT_EQ(scene.conflicts[0].left, 1);
    EXPECT_EQ(scene.conflicts[0].right, 2);
}

TEST_F(ViewFiles, ConflictWithTheMetalOfABlockIsShownAtTheCell)
{
    m_dir.write("o.fixed", "VIRELOCE FIXED 1\nCELLS 0\nBLOCKS 1\nBLOCK RAM 1200 0 1 r\n"
                           "1200 1200 1900 1400\nEND\n");
    Options options = base();
    options.placement = m_dir.path("o");
    options.cells = m_dir.path("d.cells");
    options.colors = m_dir.path("o.colors");
    const Scene scene = read(options);
    ASSERT_EQ(scene.conflicts.size(), 1U);
    EXPECT_EQ(scene.conflicts[0].left, 1);
    EXPECT_EQ(scene.conflicts[0].right, 1);
}

TEST_F(ViewFiles, ADesignIsFoundByItsBaseNameOrItsPlacement)
{
    for (const char* const name : {"d", "d.place"}) {
        Options options = base();
        options.placement = m_dir.path(name);
        const Scene scene = read(options);
        EXPECT_EQ(scene.cells.size(), 2U);
        EXPECT_EQ(scene.kinds.size(), 1U);
        EXPECT_EQ(scene.members, (std::vector<int32_t>{-1, 0, 1}));
        EXPECT_EQ(scene.rows.size(), 2U);
        EXPECT_EQ(scene.stretches.size(), 2U);
    }
}

TEST_F(ViewFiles, LibraryLengthsBecomeThoseOfTheDesign)
{
    const Scene scene = read(base());
    EXPECT_EQ(scene.siteWidth, 380);
    EXPECT_EQ(scene.rowHeight, 2800);
    EXPECT_EQ(scene.kinds[0].width, 380);
    EXPECT_EQ(scene.kinds[0].metal[1].box, (Box{60, 1000, 120, 1800}));
}

TEST_F(ViewFiles, UnitsAreThoseOfThePlacement)
{
    EXPECT_EQ(read(base()).dbuPerMicron, 2000); // it does not say
    m_dir.write("d.place", "UNITS DISTANCE MICRONS 1000 ;\n" + contentOf(m_dir.path("d.place")));
    EXPECT_EQ(read(base()).dbuPerMicron, 1000);
}

TEST_F(ViewFiles, MetalWithoutAreaIsNotDrawn)
{
    m_dir.write("lib/INV.color", "190 1400 0 1 4 30 500 60 900 30 500 30 900 30 500 60 500 9 9 9 9 1 0 1");
    EXPECT_EQ(read(base()).kinds[0].metal.size(), 1U);
}

TEST_F(ViewFiles, WhatAResultLacksIsFoundBesideItsInput)
{
    Options options = base();
    options.placement = m_dir.path("o.place");
    options.before = m_dir.path("d.place");
    const InputPaths paths = findInputs(options);
    EXPECT_EQ(paths.cells, m_dir.path("d.cells"));
    EXPECT_EQ(paths.pins, m_dir.path("d.pins"));
    EXPECT_EQ(paths.netlist, m_dir.path("d.netlist"));
    const Scene scene = read(options);
    EXPECT_TRUE(scene.moved);
    EXPECT_EQ(scene.cells[1].place.x, 760);
    EXPECT_EQ(scene.cells[1].before.x, 380);
}

TEST_F(ViewFiles, NamedFilesComeFirst)
{
    Options options = base();
    options.netlist = m_dir.write("other", "0");
    options.cells = m_dir.write("list", "1 INV");
    EXPECT_EQ(findInputs(options).cells, options.cells);
    EXPECT_TRUE(read(options).members.empty());
}

TEST_F(ViewFiles, WithoutAListTheLibraryIsWhatThePlacementNames)
{
    Options options = base();
    options.placement = m_dir.path("o.place");
    const Scene scene = read(options);
    ASSERT_EQ(scene.kinds.size(), 1U);
    EXPECT_EQ(scene.cells[0].kind, 0);
}

TEST_F(ViewFiles, AMissingFileIsAFault)
{
    Options options = base();
    options.colors = m_dir.path("none.colors");
    EXPECT_THROW(findInputs(options), kit::Fault);
    options = base();
    options.placement = m_dir.path("none");
    EXPECT_THROW(findInputs(options), kit::Fault);
}

TEST_F(ViewFiles, ColoursGiveSolutionsAndConflicts)
{
    Options options = base();
    options.colors = m_dir.path("o.colors");
    const Scene touching = read(options); // metal 160 apart
    EXPECT_TRUE(touching.coloured);
    EXPECT_EQ(touching.cells[0].colouring, 0);
    ASSERT_EQ(touching.conflicts.size(), 1U);
    EXPECT_EQ(touching.conflicts[0].left, 0);
    EXPECT_EQ(touching.conflicts[0].right, 1);
    EXPECT_EQ(touching.conflicts[0].box, (Box{120, 1000, 440, 1800}));
    options.minDist = 160;
    EXPECT_TRUE(read(options).conflicts.empty());
    options.minDist = 185;
    options.placement = m_dir.path("o.place");
    EXPECT_TRUE(read(options).conflicts.empty());
}

TEST_F(ViewFiles, ColoursInAnotherOrderAreFoundByName)
{
    Options options = base();
    options.colors =
        m_dir.write("x.colors", "VIRELOCE COLORS 1\nCOMPONENTS 2\nu2 INV 1 0 0 2\nu1 INV 0 0 0 1\nEND\n");
    const Scene scene = read(options);
    EXPECT_EQ(scene.cells[0].colouring, 0);
    EXPECT_EQ(scene.cells[1].colouring, 1);
    EXPECT_TRUE(scene.conflicts.empty());
}

TEST_F(ViewFiles, ColoursOfAnotherDesignAreAFault)
{
    Options options = base();
    options.colors = m_dir.write("x.colors", "VIRELOCE COLORS 1\nCOMPONENTS 1\nv1 INV 0 0 0 1\nEND\n");
    kit::Findings findings;
    EXPECT_THROW(readScene(findInputs(options), 185, findings), kit::Fault);
}

TEST_F(ViewFiles, BothPicturesAreWritten)
{
    for (const char* const name : {"v.svg", "v.html"}) {
        const KitOutcome outcome =
            runView({m_dir.path("o.place"), "-o", m_dir.path(name), "--cell-path", m_dir.path("lib"),
                     "--before", m_dir.path("d"), "--colors", m_dir.path("o.colors")});
        EXPECT_EQ(outcome.status, 0) << outcome.error;
        EXPECT_EQ(outcome.error, "");
    }
    EXPECT_TRUE(contentOf(m_dir.path("v.svg")).starts_with("<?xml"));
    EXPECT_EQ(jsonOf(contentOf(m_dir.path("v.html")))["moved"], true);
}

TEST_F(ViewFiles, OtherEndingsAreRefused)
{
    const KitOutcome outcome = runView({m_dir.path("d"), "-o", m_dir.path("v.png")});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_NE(outcome.error.find(".svg or .html"), std::string::npos);
}

TEST_F(ViewFiles, APictureIsReplacedByForceOnly)
{
    const std::string out = m_dir.write("v.svg", "mine");
    EXPECT_EQ(runView({m_dir.path("d"), "-o", out}).status, 2);
    EXPECT_EQ(contentOf(out), "mine");
    EXPECT_EQ(runView({m_dir.path("d"), "-o", out, "--force"}).status, 0);
    EXPECT_NE(contentOf(out), "mine");
}

TEST_F(ViewFiles, AnInputIsNeverReplaced)
{
    std::filesystem::create_symlink(m_dir.path("d.place"), m_dir.path("v.svg"));
    const std::string before = test::contentOf(m_dir.path("d.place"));
    const KitOutcome outcome =
        runView({m_dir.path("d"), "-o", m_dir.path("v.svg"), "--cell-path", m_dir.path("lib"), "--force"});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_NE(outcome.error.find("v.svg is an input"), std::string::npos) << outcome.error;
    EXPECT_EQ(test::contentOf(m_dir.path("d.place")), before);
}

TEST_F(ViewFiles, WithoutColourFilesTheUserIsTold)
{
    const KitOutcome outcome = runView({m_dir.path("d"), "-o", m_dir.path("v.svg")});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_NE(outcome.error.find("without --cell-path"), std::string::npos);
}

TEST_F(ViewFiles, ErrorsInTheFilesAreTold)
{
    m_dir.write("d.netlist", "1 2 u1 nobody");
    const KitOutcome outcome =
        runView({m_dir.path("d"), "-o", m_dir.path("v.html"), "--cell-path", m_dir.path("lib")});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_NE(outcome.error.find("nobody"), std::string::npos);
}

} // namespace
