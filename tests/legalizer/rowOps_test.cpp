// SPDX-License-Identifier: BSD-3-Clause
// The row operations: every instruction set against plain loops.
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <cctype>
#include <string>
#include <vector>

#include "legalizer/randomDesign.h"
#include "legalizer/rowOps.h"

namespace {

using test::Random;
using vireloce::RowOps;
using vireloce::rowOpsHere;
using vireloce::rowSpace;
using vireloce::RowTerm;
using vireloce::UNREACHABLE;

using Row = std::vector<int32_t>;

constexpr int32_t MOST_ENTRIES = 70;
constexpr int32_t MARK = -77777777;

/// fall(), one entry after the other.
Row plainFall(const std::vector<RowTerm>& terms, const int32_t* costs, int32_t count)
{
    Row out;
    int32_t before = UNREACHABLE;
    for (int32_t k = 0; k < count; ++k) {
        int32_t way = terms[0].row[k] + terms[0].cost;
        for (const RowTerm& term : terms) {
            way = std::min(way, term.row[k] + term.cost);
        }
        before = std::min(before, way + costs[k]);
        out.push_back(before);
    }
    return out;
}

/// A cost of a row: small, negative, or not to be reached.
int32_t anyValue(Random& random)
{
    switch (random.pick(0, 5)) {
    case 0:
        return UNREACHABLE;
    case 1:
        return UNREACHABLE - random.pick(0, 2);
    case 2:
        return -random.pick(1, 1 << 28);
    case 3:
        return random.pick(0, 1 << 29);
    default:
        return random.pick(0, 5);
    }
}

Row anyRow(Random& random, int32_t size)
{
    Row row(static_cast<size_t>(size));
    std::generate(row.begin(), row.end(), [&random] { return anyValue(random); });
    return row;
}

/// Name of an instruction set as a test may be called.
std::string nameOf(const testing::TestParamInfo<const RowOps*>& row)
{
    std::string name(row.param->name);
    std::erase_if(name, [](unsigned char c) { return std::isalnum(c) == 0; });
    return name;
}

class EveryRowOps : public testing::TestWithParam<const RowOps*> {};

TEST_P(EveryRowOps, AddsARowAndWritesExactlyItsEntries)
{
    Random random(1);
    for (int32_t count = 0; count <= MOST_ENTRIES; ++count) {
        for (int32_t start = 0; start < 4; ++start) { // not aligned
            Row row = anyRow(random, MOST_ENTRIES + 40);
            Row added(static_cast<size_t>(start + count)); // no entry more than are to be read
            std::generate(added.begin(), added.end(), [&random] { return random.pick(-9, 1 << 20); });
            Row want = row;
            for (int32_t k = 0; k < count; ++k) {
                want[static_cast<size_t>(start + k)] += added[static_cast<size_t>(start + k)];
            }
            GetParam()->add(row.data() + start, added.data() + start, count);
            ASSERT_EQ(row, want) << "count " << count << " start " << start;
        }
    }
}

TEST_P(EveryRowOps, FallsAsAPlainLoopDoesForAllCountsTermsAndStarts)
{
    Random random(2);
    for (int32_t count = 1; count <= MOST_ENTRIES; ++count) {
        for (int32_t numTerms = 1; numTerms <= 6; ++numTerms) {
            const int32_t space = rowSpace(count);
            std::vector<Row> rows;
            std::vector<RowTerm> terms;
            for (int32_t t = 0; t < numTerms; ++t) { // starts that are not aligned, no entry behind the space
                const int32_t start = random.pick(0, 16);
                rows.push_back(anyRow(random, start + space));
                terms.push_back({rows.back().data() + start, random.pick(-3, 1 << 20)});
            }
            Row costs(static_cast<size_t>(space));
            std::generate(costs.begin(), costs.end(), [&random] { return random.pick(0, 4); });
            Row out(static_cast<size_t>(space + 2), MARK);
            GetParam()->fall(out.data() + 1, terms.data(), numTerms, costs.data(), count);
            ASSERT_EQ(Row(out.begin() + 1, out.begin() + 1 + count), plainFall(terms, costs.data(), count))
                << "count " << count << " terms " << numTerms;
            ASSERT_EQ(out.front(), MARK) << "wrote before the row";
            ASSERT_EQ(out.back(), MARK) << "wrote behind the row's space";
        }
    }
}

TEST_P(EveryRowOps, NeverFallsFromAboveUnreachable)
{
    const Row costs(static_cast<size_t>(rowSpace(MOST_ENTRIES)), 1 << 24);
    const Row row(costs.size(), UNREACHABLE);
    for (int32_t count = 1; count <= MOST_ENTRIES; ++count) {
        const RowTerm term{row.data(), 1 << 24};
        Row out(costs.size(), MARK);
        GetParam()->fall(out.data(), &term, 1, costs.data(), count);
        ASSERT_EQ(Row(out.begin(), out.begin() + count), Row(static_cast<size_t>(count), UNREACHABLE));
    }
}

TEST_P(EveryRowOps, CarryTheLeastOfAnEntryToAllBehindItAndToNoneBefore)
{
    for (int32_t at = 0; at < MOST_ENTRIES; ++at) {
        Row row(static_cast<size_t>(rowSpace(MOST_ENTRIES)), 50);
        row[static_cast<size_t>(at)] = 7;
        const Row costs(row.size(), 0);
        const RowTerm term{row.data(), 0};
        Row out(row.size(), MARK);
        GetParam()->fall(out.data(), &term, 1, costs.data(), MOST_ENTRIES);
        for (int32_t k = 0; k < MOST_ENTRIES; ++k) {
            ASSERT_EQ(out[static_cast<size_t>(k)], k < at ? 50 : 7) << "entry " << k << " least at " << at;
        }
    }
}

RC_GTEST_PROP(RowOps, AllSetsGiveTheSameToTheBit, ())
{
    const auto count = *rc::gen::inRange(1, 200);
    const auto numTerms = *rc::gen::inRange(1, 9);
    Random random(*rc::gen::arbitrary<uint32_t>());
    std::vector<Row> rows;
    std::vector<RowTerm> terms;
    for (int32_t t = 0; t < numTerms; ++t) {
        rows.push_back(anyRow(random, rowSpace(count)));
        terms.push_back({rows.back().data(), random.pick(-5, 5)});
    }
    Row costs(static_cast<size_t>(rowSpace(count)));
    std::generate(costs.begin(), costs.end(), [&random] { return random.pick(-2, 2); });
    const Row want = plainFall(terms, costs.data(), count);
    for (const RowOps* ops : rowOpsHere()) {
        Row out(costs.size());
        ops->fall(out.data(), terms.data(), numTerms, costs.data(), count);
        out.resize(static_cast<size_t>(count));
        RC_ASSERT(out == want);
    }
}

INSTANTIATE_TEST_SUITE_P(RowOps, EveryRowOps, testing::ValuesIn(rowOpsHere().begin(), rowOpsHere().end()),
                         nameOf);

TEST(RowOpsHere, BeginsWithASetThatRunsEverywhereAndNamesEachOnce)
{
    const auto all = rowOpsHere();
    ASSERT_FALSE(all.empty());
    for (size_t i = 0; i < all.size(); ++i) {
        for (size_t j = 0; j < i; ++j) {
            EXPECT_STRNE(all[i]->name, all[j]->name);
        }
    }
}

TEST(RowOpsHere, HoldsTheBestSetAsItsLast)
{
    EXPECT_EQ(&vireloce::bestRowOps(), rowOpsHere().back());
}

TEST(RowSpace, IsTheNextMultipleOfABlock)
{
    for (int32_t count = 0; count <= 100; ++count) {
        EXPECT_EQ(rowSpace(count) % vireloce::ROW_BLOCK, 0);
        EXPECT_GE(rowSpace(count), count);
        EXPECT_LT(rowSpace(count), count + vireloce::ROW_BLOCK);
    }
}

} // namespace
