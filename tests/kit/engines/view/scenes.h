// SPDX-License-Identifier: BSD-3-Clause
// Small placements to draw, and what is read out of the pictures.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

#include "kit/base/files/outputFile.h"
#include "kit/base/text/decoded.h"
#include "kit/base/text/json.h"
#include "kit/engines/view/scene.h"
#include "kit/kitRun.h"

namespace test {

using namespace kit::view; // NOLINT: the whole file is about it

/// Two rows of 10 sites of 100 DBU, 400 high; three cells of two kinds, a macro, a net, a pin.
///
///     1  [u2: INV     ]        (macro over the last two sites)
///     0  [u0: INV     ][u1: NAND     ]
inline Scene smallScene()
{
    Scene scene;
    scene.title = "small.place";
    scene.dbuPerMicron = 1000;
    scene.siteWidth = 100;
    scene.rowHeight = 400;
    scene.coloured = true;
    scene.rows = {{"row_0", {0, 0, 1000, 400}}, {"row_1", {0, 400, 1000, 800}}};
    scene.stretches = {{0, 0, 1000, 400}, {0, 400, 800, 800}};
    scene.macros = {{"ram", {800, 400, 1000, 800}}};
    const Kind inv{.name = "INV",
                   .width = 200,
                   .metal = {{{10, 50, 30, 200}, 0}, {{10, 200, 30, 350}, 1}},
                   .joints = {{0, 1, {10, 200, 30, 200}}},
                   .colourings = {{0, {0, 0}}, {1, {1, 2}}}};
    const Kind nand{.name = "NAND",
                    .width = 300,
                    .metal = {{{40, 50, 60, 350}, 0}},
                    .joints = {},
                    .colourings = {{0, {2}}}};
    scene.kinds = {inv, nand};
    scene.cells = {
        {"u0", 0, {0, 0}, {100, 0}, 0}, {"u1", 1, {200, 0}, {300, 0}, 0}, {"u2", 0, {0, 400}, {0, 400}, 1}};
    scene.pins = {{"in", -50, 200}};
    scene.netBegin = {0, 2, 4};
    scene.members = {-1, 0, 0, 2};
    scene.conflicts = {{0, 1, {180, 50, 240, 350}}};
    return scene;
}

/// The text that a writer of pictures makes of a placement.
template <typename Write>
std::string pictureOf(const Scene& scene, Write write)
{
    const TempDir dir;
    kit::OutputFile file(dir.path("picture"));
    write(file, scene);
    file.commit();
    return contentOf(dir.path("picture"));
}

/// How often a text is in another.
inline size_t occurrences(const std::string& text, const std::string& part)
{
    size_t count = 0;
    for (size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) {
        ++count;
    }
    return count;
}

/// The text of the element that starts with some text, up to a closing script tag.
inline std::string scriptOf(const std::string& page, const std::string& start)
{
    const size_t begin = page.find(start);
    EXPECT_NE(begin, std::string::npos) << start;
    const size_t from = begin + start.size();
    return page.substr(from, page.find("</script>", from) - from);
}

/// The JSON of a page.
inline kit::Json jsonOf(const std::string& page)
{
    return kit::Json::parse(scriptOf(page, "<script type=\"application/json\" id=\"design\">"));
}

/// An array of a page.
template <typename Number>
std::vector<Number> arrayOf(const std::string& page, const std::string& id)
{
    const std::string bytes = decoded(scriptOf(page, "<script type=\"text/plain\" id=\"" + id + "\">"));
    std::vector<Number> numbers(bytes.size() / sizeof(Number));
    EXPECT_EQ(bytes.size(), numbers.size() * sizeof(Number)) << id;
    std::copy_n(bytes.data(), numbers.size() * sizeof(Number), reinterpret_cast<char*>(numbers.data()));
    return numbers;
}

} // namespace test
