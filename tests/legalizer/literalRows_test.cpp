// SPDX-License-Identifier: BSD-3-Clause
#include "legalizer/literalRows.h"

#include <gtest/gtest.h>

#include "legalizer/programs.h"

namespace {

using test::Literal;
using test::LiteralRows;

/// Compares a program over rows with the same one over lists of edges.
template <class OverRows, class OverEdges>
void expectEqual(OverRows overRows, OverEdges overEdges)
{
    test::onRandomSegments([&](test::RandomSegment& random) {
        LiteralRows rows(random.design, *random.segment);
        std::invoke(overRows, rows);
        Literal edges(random.design, *random.segment);
        std::invoke(overEdges, edges);
        EXPECT_EQ(rows.places(), edges.places());
    });
}

TEST(LiteralRows, PlaceAsTheListOfEdges)
{
    expectEqual(&LiteralRows::solveOSR, &Literal::solveOSR);
}

TEST(LiteralRows, PlaceAndColourAsTheListOfEdges)
{
    expectEqual(&LiteralRows::solveTPLOSR, &Literal::solveTPLOSR);
}

} // namespace
