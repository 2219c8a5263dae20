// SPDX-License-Identifier: BSD-3-Clause
// Rectangles cut and joined, against a model of unit squares.
#include "kit/geometry/pieces.h"

#include <gtest/gtest.h>

#include <array>

#include "kit/formats/lefdef/lef.h"
#include "support/property.h"

namespace {

using namespace kit::geometry;
using Box = Rect;
using kit::lefdef::boxesOf;

constexpr int SIZE = 9;

/// How often each unit square is covered.
using Squares = std::array<std::array<int, SIZE>, SIZE>;

Squares squaresOf(const std::vector<Box>& boxes)
{
    Squares squares{};
    for (const Box& box : boxes) {
        for (auto y = static_cast<size_t>(box.yl); y < static_cast<size_t>(box.yh); ++y) {
            for (auto x = static_cast<size_t>(box.xl); x < static_cast<size_t>(box.xh); ++x) {
                ++squares.at(y).at(x);
            }
        }
    }
    return squares;
}

Squares covered(Squares squares)
{
    for (auto& row : squares) {
        for (int& square : row) {
            square = square > 0 ? 1 : 0;
        }
    }
    return squares;
}

Box anyBox()
{
    const int xl = test::draw(0, SIZE - 1);
    const int yl = test::draw(0, SIZE - 1);
    return {xl, yl, test::draw(xl + 1, SIZE + 1), test::draw(yl + 1, SIZE + 1)};
}

std::vector<Box> anyBoxes(int most)
{
    std::vector<Box> boxes(static_cast<size_t>(test::draw(0, most + 1)));
    for (Box& box : boxes) {
        box = anyBox();
    }
    return boxes;
}

PROPERTY(KitPieces, UnionCoversTheSameOnce)
{
    const std::vector<Box> boxes = anyBoxes(6);
    RC_ASSERT(squaresOf(unite(boxes)) == covered(squaresOf(boxes)));
}

PROPERTY(KitPieces, DifferenceCoversTheRestOnce)
{
    const Box from = anyBox();
    const std::vector<Box> boxes = anyBoxes(5);
    Squares expected = squaresOf({from});
    const Squares taken = squaresOf(boxes);
    for (size_t y = 0; y < SIZE; ++y) {
        for (size_t x = 0; x < SIZE; ++x) {
            expected[y][x] = taken[y][x] > 0 ? 0 : expected[y][x];
        }
    }
    RC_ASSERT(squaresOf(subtract(from, boxes)) == expected);
}

PROPERTY(KitPieces, EveryMaskHasItsMetal)
{
    const std::vector<Box> boxes = anyBoxes(3);
    std::vector<Labelled> metal;
    std::array<std::vector<Box>, 3> ofMask;
    std::vector<Box> all;
    for (const Box& box : anyBoxes(6)) {
        metal.push_back({box, test::draw(0, 3)});
        ofMask[static_cast<size_t>(metal.back().label)].push_back(box);
        all.push_back(box);
    }
    const std::vector<Labelled> pieces = cutByLabel(boxes, metal);
    RC_ASSERT(std::is_sorted(pieces.begin(), pieces.end(),
                             [](const Labelled& a, const Labelled& b) { return a.label < b.label; }));
    const Squares wanted = covered(squaresOf(boxes));
    for (int mask = NO_LABEL; mask < 3; ++mask) {
        std::vector<Box> found;
        for (const Labelled& piece : pieces) {
            if (piece.label == mask) {
                found.push_back(piece.box);
            }
        }
        const Squares there = squaresOf(mask == NO_LABEL ? all : ofMask[static_cast<size_t>(mask)]);
        const Squares squares = squaresOf(found);
        for (size_t y = 0; y < SIZE; ++y) {
            for (size_t x = 0; x < SIZE; ++x) {
                const bool isThere = mask == NO_LABEL ? there[y][x] == 0 : there[y][x] > 0;
                RC_ASSERT(squares[y][x] == (isThere ? wanted[y][x] : 0));
            }
        }
    }
}

TEST(KitPieces, OneBoxOfOneMaskStaysWhole)
{
    const Box box{0, 0, 9, 5};
    EXPECT_EQ(cutByLabel({box}, {{{0, 0, 4, 9}, 2}, {{4, -1, 9, 9}, 2}}), (std::vector<Labelled>{{box, 2}}));
}

TEST(KitPieces, BoxIsCutWhereTheMaskChanges)
{
    EXPECT_EQ(cutByLabel({{0, 0, 9, 5}}, {{{0, 0, 4, 5}, 1}, {{4, 0, 9, 5}, 0}}),
              (std::vector<Labelled>{{{4, 0, 9, 5}, 0}, {{0, 0, 4, 5}, 1}}));
}

TEST(KitPieces, OverlapOfTwoMasksIsOnBoth)
{
    EXPECT_EQ(cutByLabel({{0, 0, 9, 5}}, {{{0, 0, 5, 5}, 0}, {{4, 0, 9, 5}, 1}}),
              (std::vector<Labelled>{{{0, 0, 5, 5}, 0}, {{4, 0, 9, 5}, 1}}));
}

kit::lefdef::LefShape polygonOf(std::vector<kit::lefdef::LefPoint> points)
{
    kit::lefdef::LefShape shape;
    shape.polygon = true;
    shape.points = std::move(points);
    return shape;
}

TEST(KitPieces, PolygonIsCutIntoBoxes)
{
    // An L whose foot lies to the right.
    const auto shape = polygonOf({{0, 0}, {0, 6}, {2, 6}, {2, 3}, {5, 3}, {5, 0}});
    EXPECT_EQ(boxesOf(shape), (std::vector<Box>{{0, 0, 5, 3}, {0, 3, 2, 6}}));
}

TEST(KitPieces, SlantingPolygonHasNoBoxes)
{
    EXPECT_TRUE(boxesOf(polygonOf({{0, 0}, {0, 6}, {2, 5}})).empty());
}

TEST(KitPieces, RectangleIsABoxWhateverCornersItNames)
{
    kit::lefdef::LefShape shape;
    shape.points = {{5, 1}, {2, 7}};
    EXPECT_EQ(boxesOf(shape), (std::vector<Box>{{2, 1, 5, 7}}));
}

} // namespace
