// SPDX-License-Identifier: BSD-3-Clause
// The two kinds of pictures.

#include "kit/engines/view/conflicts.h"
#include "kit/engines/view/html.h"
#include "kit/engines/view/scenes.h"
#include "kit/engines/view/svg.h"
#include "support/pattern.h"

namespace {

using namespace kit::view;
using kit::Json;
using kit::view::Cell; // and not the placer's
using test::arrayOf;
using test::jsonOf;
using test::occurrences;
using test::pictureOf;
using test::smallScene;

const char* const ODD = "a<b>&\"c\"</script><!--";

Scene oddScene()
{
    Scene scene = smallScene();
    scene.title = scene.rows[0].name = scene.macros[0].name = scene.kinds[0].name = scene.cells[0].name =
        scene.pins[0].name = ODD;
    return scene;
}

/// What is wrong with the nesting of an XML text, empty if nothing is.
std::string faultOfXml(const std::string& text)
{
    std::vector<std::string> open;
    for (const test::Match& part :
         test::matchesOf(text, "<\\?[^<>]*\\?>|<(/?)([a-z]+)((?: [a-zA-Z:]+=\"[^\"<]*\")*)\\s*(/?)>|<|"
                               "&(?!(amp|lt|gt|quot|#39);)")) {
        const std::string& all = part[0];
        if (all.starts_with("<?")) {
            continue;
        }
        if (all == "<" || all == "&") {
            return "stray " + text.substr(part.at, 60);
        }
        if (!part[1].empty()) {
            if (open.empty() || open.back() != part[2]) {
                return "unexpected " + all;
            }
            open.pop_back();
        } else if (part[4].empty()) {
            open.push_back(part[2]);
        }
    }
    return open.empty() ? "" : "left open: " + open.back();
}

TEST(ViewXmlCheck, FindsFaults)
{
    EXPECT_EQ(faultOfXml("<a x=\"1\"><b/>c</a>"), "");
    EXPECT_NE(faultOfXml("<a><b></a>"), "");
    EXPECT_NE(faultOfXml("<a>"), "");
    EXPECT_NE(faultOfXml("<a>1 < 2</a>"), "");
    EXPECT_NE(faultOfXml("<a>b & c</a>"), "");
}

TEST(ViewSvg, IsWellFormedWhateverTheNames)
{
    EXPECT_EQ(faultOfXml(pictureOf(smallScene(), writeSvg)), "");
    const std::string odd = pictureOf(oddScene(), writeSvg);
    EXPECT_EQ(faultOfXml(odd), "");
    EXPECT_NE(odd.find("a&lt;b&gt;&amp;&quot;c&quot;&lt;/script&gt;"), std::string::npos);
}

TEST(ViewSvg, HasEverythingOfASmallPlacement)
{
    Scene scene = smallScene();
    scene.moved = true;
    const std::string svg = pictureOf(scene, writeSvg);
    EXPECT_EQ(occurrences(svg, "<title>row "), 2U);
    EXPECT_EQ(occurrences(svg, "<title>macro ram"), 1U);
    EXPECT_EQ(occurrences(svg, "(INV), solution"), 2U);
    EXPECT_EQ(occurrences(svg, "<title>u0 and u1</title>"), 1U);                  // the conflict
    EXPECT_NE(svg.find("class=\"stitch\" d=\"M20 182l18 18"), std::string::npos); // of u2 alone
    EXPECT_NE(svg.find("class=\"move\" d=\"M200 600l-100 0"), std::string::npos); // of u0
    EXPECT_NE(svg.find("3 cells, 2 rows, 1 macro, 1 stitch, 1 conflict"), std::string::npos);
    EXPECT_NE(svg.find("fill=\"#0072B2\" d=\"M10 600h20v150h-20zM10 450h20v150h-20z\""),
              std::string::npos);                                                         // u0
    EXPECT_NE(svg.find("fill=\"#D55E00\" d=\"M10 200h20v150h-20z\""), std::string::npos); // u2
    EXPECT_NE(svg.find("fill=\"#009E73\" d=\"M240 450h20v300h-20zM10 50h20v150h-20z\""),
              std::string::npos); // u1, u2
}

TEST(ViewSvg, MetalWithoutColoursIsGrey)
{
    Scene scene = smallScene();
    scene.coloured = false;
    for (Cell& cell : scene.cells) {
        cell.colouring = -1;
    }
    const std::string svg = pictureOf(scene, writeSvg);
    EXPECT_NE(svg.find("class=\"metal\" fill=\"#7f858c\" d=\"M10 600"), std::string::npos);
    EXPECT_NE(svg.find("fill=\"#0072B2\" d=\"\""), std::string::npos);
    EXPECT_EQ(svg.find(" conflict"), std::string::npos);
}

Scene sceneOfCells(int64_t count, bool metal)
{
    Scene scene = smallScene();
    scene.conflicts.clear();
    scene.cells.clear();
    for (int32_t i = 0; i < count; ++i) {
        scene.cells.push_back(
            {"u" + std::to_string(i), metal ? 1 : -1, {i % 1000 * 300, i / 1000 * 400}, {}, -1});
    }
    return scene;
}

TEST(ViewSvg, TooMuchMetalIsLeftOutAndTheTitleSaysSo)
{
    EXPECT_EQ(detailOf(sceneOfCells(MOST_SVG_METAL, true)), Detail::METAL);
    Scene scene = sceneOfCells(MOST_SVG_METAL, true);
    scene.cells.back().kind = 0; // two rectangles instead of one
    EXPECT_EQ(detailOf(scene), Detail::BOXES);
    const std::string svg = pictureOf(scene, writeSvg);
    EXPECT_NE(svg.find("Simplified: cells are boxes"), std::string::npos);
    EXPECT_EQ(svg.find("class=\"mask\""), std::string::npos);
    EXPECT_LT(svg.size(), 3'000'000U);
}

TEST(ViewSvg, TooManyCellsAreLeftOutAndTheTitleSaysSo)
{
    EXPECT_EQ(detailOf(sceneOfCells(MOST_SVG_CELLS, false)), Detail::METAL); // there is none
    const Scene scene = sceneOfCells(MOST_SVG_CELLS + 1, false);
    EXPECT_EQ(detailOf(scene), Detail::MAP);
    const std::string svg = pictureOf(scene, writeSvg);
    EXPECT_NE(svg.find("Simplified: no cells"), std::string::npos);
    EXPECT_EQ(svg.find("<g class=\"cell\""), std::string::npos);
    EXPECT_LT(svg.size(), 3'000'000U);
}

/// Conflicts at some places.
std::vector<Conflict> conflictsAt(const std::vector<std::pair<int32_t, int32_t>>& places)
{
    std::vector<Conflict> conflicts;
    for (const auto& [x, y] : places) {
        conflicts.push_back({0, 1, {x - 10, y - 10, x + 10, y + 10}});
    }
    return conflicts;
}

TEST(ViewConflicts, AreGatheredBySquares)
{
    const std::vector<ConflictMark> marks =
        gathered(conflictsAt({{150, 10}, {10, 10}, {30, 90}, {50, 50}, {-1, 10}, {10, 100}}), 100);
    ASSERT_EQ(marks.size(), 4U);
    EXPECT_EQ(marks[0].x, -1);
    EXPECT_EQ(marks[1].x, 30);
    EXPECT_EQ(marks[1].y, 50);
    EXPECT_EQ(marks[1].count, 3);
    EXPECT_EQ(marks[2].x, 150);
    EXPECT_EQ(marks[3].y, 100);
}

TEST(ViewSvg, ConflictsAreMarkedFromAfarInEveryDetail)
{
    struct Row {
        int64_t cells;
        bool metal;
        Detail detail;
    };
    for (const Row& row : {Row{60'000, true, Detail::METAL}, Row{MOST_SVG_CELLS + 1, false, Detail::MAP}}) {
        Scene scene = sceneOfCells(row.cells, row.metal);
        scene.coloured = true;
        ASSERT_EQ(detailOf(scene), row.detail);
        const Box bounds = boundsOf(scene);
        scene.conflicts = conflictsAt({{bounds.xl + 500, bounds.yl + 500},
                                       {bounds.xl + 700, bounds.yl + 500},
                                       {bounds.xh - 500, bounds.yh - 500}});
        const std::string svg = pictureOf(scene, writeSvg);
        const std::string marks = svg.substr(svg.find("<g class=\"conflicts\">"));
        EXPECT_NE(marks.find("<title>2 conflicts</title>"), std::string::npos);
        EXPECT_NE(marks.find(">2</text>"), std::string::npos);
        EXPECT_NE(marks.find("<title>1 conflict</title>"), std::string::npos);
        EXPECT_EQ(faultOfXml(marks.substr(0, marks.find("</g>") + 4)), "");
    }
}

TEST(ViewSvg, ConflictsNearbyAreTheirOwnMarks)
{
    EXPECT_EQ(pictureOf(smallScene(), writeSvg).find("class=\"conflicts\""), std::string::npos);
}

TEST(ViewSvg, TheLargestMetalStaysBelowAFewMb)
{
    EXPECT_LT(pictureOf(sceneOfCells(MOST_SVG_METAL, true), writeSvg).size(), 6'000'000U);
}

TEST(ViewPage, HoldsTheDesign)
{
    const Json data = jsonOf(pictureOf(smallScene(), writeHtml));
    EXPECT_EQ(data["title"], "small.place");
    EXPECT_EQ(data["dbuPerMicron"], 1000);
    EXPECT_EQ(data["rows"].size(), 2U);
    EXPECT_EQ(data["macros"][0]["name"], "ram");
    EXPECT_EQ(data["stretches"], Json::array({0, 0, 1000, 400, 0, 400, 800, 800}));
    EXPECT_EQ(data["bounds"], Json::array({0, 0, 1000, 800}));
    EXPECT_EQ(data["pins"][0], (Json{{"name", "in"}, {"x", -50}, {"y", 200}}));
    EXPECT_EQ(data["coloured"], true);
    EXPECT_EQ(data["moved"], false);
}

TEST(ViewPage, HoldsTheLibrary)
{
    const Json inv = jsonOf(pictureOf(smallScene(), writeHtml))["kinds"][0];
    EXPECT_EQ(inv["name"], "INV");
    EXPECT_EQ(inv["width"], 200);
    EXPECT_EQ(inv["metal"], Json::array({10, 50, 30, 200, 0, 10, 200, 30, 350, 1}));
    EXPECT_EQ(inv["joints"], Json::array({0, 1, 10, 200, 30, 200}));
    EXPECT_EQ(inv["stitches"], Json::array({0, 1}));
    EXPECT_EQ(inv["masks"], Json::array({"00", "12"}));
}

TEST(ViewPage, CellsAreInTheOrderOfTheirRowsAndNetsFollow)
{
    Scene scene = smallScene();
    std::swap(scene.cells[0], scene.cells[2]); // file order u2, u1, u0; rows have u0, u1, u2
    const std::string page = pictureOf(scene, writeHtml);
    EXPECT_EQ(test::decoded(test::scriptOf(page, "id=\"names\">")), "u0\nu1\nu2\n");
    EXPECT_EQ(arrayOf<int32_t>(page, "x"), (std::vector<int32_t>{0, 200, 0}));
    EXPECT_EQ(arrayOf<int32_t>(page, "y"), (std::vector<int32_t>{0, 0, 400}));
    EXPECT_EQ(arrayOf<uint16_t>(page, "kind"), (std::vector<uint16_t>{0, 1, 0}));
    EXPECT_EQ(arrayOf<uint16_t>(page, "colouring"), (std::vector<uint16_t>{0, 0, 1}));
    EXPECT_EQ(arrayOf<int32_t>(page, "stripes"), (std::vector<int32_t>{0, 2, 3, 3}));
    EXPECT_EQ(arrayOf<int32_t>(page, "netBegin"), (std::vector<int32_t>{0, 2, 4}));
    EXPECT_EQ(arrayOf<int32_t>(page, "members"), (std::vector<int32_t>{-1, 2, 2, 0}));
    EXPECT_EQ(arrayOf<int32_t>(page, "conflictList"), (std::vector<int32_t>{2, 1, 180, 50, 240, 350}));
}

TEST(ViewPage, UnknownKindsAndSolutionsAreMarked)
{
    Scene scene = smallScene();
    scene.cells[1].kind = scene.cells[1].colouring = -1;
    const std::string page = pictureOf(scene, writeHtml);
    EXPECT_EQ(arrayOf<uint16_t>(page, "kind")[1], NO_INDEX);
    EXPECT_EQ(arrayOf<uint16_t>(page, "colouring")[1], NO_INDEX);
}

TEST(ViewPage, TheInputPlacementIsThereIfItIsKnown)
{
    Scene scene = smallScene();
    EXPECT_TRUE(arrayOf<int32_t>(pictureOf(scene, writeHtml), "beforeX").empty());
    scene.moved = true;
    scene.cells[0].before = {600, 0, /*mirrored=*/true};
    scene.cells[1].place.flipped = true;
    const std::string page = pictureOf(scene, writeHtml);
    EXPECT_EQ(arrayOf<int32_t>(page, "beforeX"), (std::vector<int32_t>{600, 300, 0}));
    EXPECT_EQ(arrayOf<int32_t>(page, "beforeOrder"), (std::vector<int32_t>{1, 0, 2}));
    EXPECT_EQ(arrayOf<int32_t>(page, "beforeStripes"), (std::vector<int32_t>{0, 2, 3, 3}));
    EXPECT_EQ(arrayOf<uint8_t>(page, "turns"), (std::vector<uint8_t>{4, 2, 0}));
    EXPECT_TRUE(jsonOf(page).contains("densityBefore"));
}

TEST(ViewPage, OddNamesAreKeptAndBreakNothing)
{
    const std::string page = pictureOf(oddScene(), writeHtml);
    const Json data = jsonOf(page);
    EXPECT_EQ(data["title"], ODD);
    EXPECT_EQ(data["kinds"][0]["name"], ODD);
    EXPECT_EQ(data["pins"][0]["name"], ODD);
    EXPECT_EQ(test::decoded(test::scriptOf(page, "id=\"names\">")), std::string(ODD) + "\nu1\nu2\n");
    EXPECT_EQ(page.find(ODD), std::string::npos);
    const std::string plain = pictureOf(smallScene(), writeHtml);
    for (const char* const tag : {"<script", "</script", "<!--", "<b>"}) {
        EXPECT_EQ(occurrences(page, tag), occurrences(plain, tag)) << tag;
    }
}

TEST(ViewPage, NeedsNothingFromOutside)
{
    const std::string page = pictureOf(smallScene(), writeHtml);
    for (const char* const reference :
         {"src=", "href=", "http:", "https:", "@import", "url(", "fetch(", "import("}) {
        EXPECT_EQ(page.find(reference), std::string::npos) << reference;
    }
    EXPECT_NE(page.find("default-src 'none'"), std::string::npos);
    EXPECT_EQ(page.find("@data@"), std::string::npos);
    EXPECT_EQ(page.find("@script@"), std::string::npos);
}

TEST(ViewPage, HasALayerForEverything)
{
    const std::string page = pictureOf(smallScene(), writeHtml);
    for (const char* const layer : {"rows", "segments", "macros", "cells", "names", "mask0", "mask1", "mask2",
                                    "metal", "stitches", "conflicts", "displacement", "pins", "density"}) {
        EXPECT_EQ(occurrences(page, std::string("{id: \"") + layer + "\""), 1U) << layer;
    }
}

TEST(ViewPage, ACellTakesFewBytes)
{
    const size_t some = pictureOf(sceneOfCells(1'000, true), writeHtml).size();
    const size_t more = pictureOf(sceneOfCells(11'000, true), writeHtml).size();
    EXPECT_LT(more - some, 10'000U * 30U);
}

} // namespace
