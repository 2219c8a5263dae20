// SPDX-License-Identifier: BSD-3-Clause
#include "kit/design/rowKinds.h"

#include <gtest/gtest.h>

namespace {

using kit::placer::Cell;
using kit::placer::Solution;
using Masks = std::vector<int32_t>;

/// A cell with solutions of these masks, with as many stitches as the second number says.
Cell cellOf(const std::vector<std::pair<Masks, int32_t>>& solutions)
{
    Cell cell;
    for (const auto& [masks, stitches] : solutions) {
        cell.solutions.push_back({.stitches = stitches, .masks = masks});
    }
    return cell;
}

struct PairCase {
    const char* name;
    std::vector<std::pair<Masks, int32_t>> solutions;
    bool want;
};

const PairCase PAIRS[] = {
    {"SecondHalfHasMasks1And2Exchanged",
     {{{0, 1, 2}, 1}, {{0, 0, 1}, 0}, {{0, 2, 1}, 1}, {{0, 0, 2}, 0}},
     true},
    {"RailsAloneAreTheirOwnPair", {{{0, 0}, 0}, {{0, 0}, 0}}, true},
    {"NoSolutions", {}, false},
    {"OddNumber", {{{0}, 0}}, false},
    {"OtherOrder", {{{0, 1, 2}, 0}, {{0, 0, 1}, 0}, {{0, 0, 2}, 0}, {{0, 2, 1}, 0}}, false},
    {"OtherMasks", {{{0, 1}, 0}, {{0, 0}, 0}}, false},
    {"OtherStitches", {{{0, 1}, 0}, {{0, 2}, 1}}, false},
};

class KitRowKindsPaired : public testing::TestWithParam<PairCase> {};

TEST_P(KitRowKindsPaired, IsToldByTheSolutions)
{
    EXPECT_EQ(kit::design::isPaired(cellOf(GetParam().solutions)), GetParam().want);
}

INSTANTIATE_TEST_SUITE_P(All, KitRowKindsPaired, testing::ValuesIn(PAIRS),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(KitRowKinds, EverySecondBottomEdgeIsOfTheOtherKind)
{
    std::vector<kit::placer::Row> rows;
    for (const int32_t y : {5600, 0, 1400, 1400, 2800}) { // two side by side, and a hole
        rows.emplace_back().y = y;
    }
    const kit::design::RowKinds kinds(rows);
    EXPECT_FALSE(kinds.isOther(0));
    EXPECT_TRUE(kinds.isOther(1400));
    EXPECT_FALSE(kinds.isOther(2800));
    EXPECT_TRUE(kinds.isOther(5600));
    EXPECT_TRUE(kinds.isOther(1500)) << "above the bottom edge of a row";
    EXPECT_FALSE(kinds.isOther(-1)) << "below all rows";
}

} // namespace
