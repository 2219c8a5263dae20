// SPDX-License-Identifier: BSD-3-Clause
// Segments made of literals for the kernels, and random ones.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "legalizer/gridProblem.h"
#include "legalizer/randomDesign.h"
#include "legalizer/shiftProblem.h"
#include "legalizer/termTable.h"
#include "qlib/exact.h"
#include "support/extremes.h"

namespace vireloce {

inline bool operator==(const GridPlace& a, const GridPlace& b)
{
    return a.site == b.site && a.solution == b.solution;
}

inline void PrintTo(const GridPlace& place, std::ostream* out)
{
    *out << "site " << place.site << " solution " << place.solution;
}

inline bool operator==(const ShiftPlace& a, const ShiftPlace& b)
{
    return a.shift == b.shift && a.solution == b.solution;
}

inline void PrintTo(const ShiftPlace& place, std::ostream* out)
{
    *out << "shift " << place.shift << " solution " << place.solution;
}

} // namespace vireloce

namespace test {

using Ints = std::vector<int32_t>;
using GridPlaces = std::vector<vireloce::GridPlace>;

constexpr vireloce::GridPlace LEFT_OUT{};
using ShiftPlaces = std::vector<vireloce::ShiftPlace>;

/// A component of a hand-made segment.
struct HandMadeComp {
    int32_t width = 1;           ///< sites
    Ints stitches = {0};         ///< [solution]
    std::vector<Ints> gaps = {}; ///< [solution of the left neighbour][solution] sites; all 0 if empty
    Ints lefts = {};             ///< what its centre must not be left of, sites
    Ints rights = {};            ///< what its centre must not be right of, sites
    int32_t site = 0;            ///< left end before a shift
};

/// A segment.
struct HandMade {
    int32_t numSites = 10;
    float weight = 1.4F;
    std::vector<HandMadeComp> comps = {};

    /// Sites between a component's left neighbour and itself.
    int32_t gap(size_t comp, size_t left, size_t solution) const
    {
        const std::vector<Ints>& gaps = comps[comp].gaps;
        return gaps.empty() ? 0 : gaps.at(left).at(solution);
    }

    /// Cost of a component at a site: what sticks out of its ranges, truncated term by term.
    int32_t cost(size_t comp, int32_t site, size_t solution) const
    {
        const HandMadeComp& c = comps[comp];
        int32_t sum = c.stitches.at(solution);
        for (const int32_t right : c.rights) {
            sum = vireloce::addTruncated(sum, std::max(site + c.width / 2 - right, 0), weight);
        }
        for (const int32_t left : c.lefts) {
            sum = vireloce::addTruncated(sum, std::max(left - c.width / 2 - site, 0), weight);
        }
        return sum;
    }
};

/// What of a hand-made segment a local shift is to choose from.
struct ShiftRange {
    int32_t first = -2;     ///< leftmost shift, sites
    int64_t count = 3;      ///< shifts
    bool prune = false;     ///< leave out states that are dearer than one of the same solution further left
    int32_t solutions = 12; ///< most solutions of a component
};

/// The flat arrays of a hand-made segment. Every solution has a gap class of its own, or equal ones share
/// one.
class HandMadeArrays {
public:
    explicit HandMadeArrays(const HandMade& made, bool shareClasses = true, bool knowsFarthest = true)
    {
        segment.numSites = made.numSites;
        for (const HandMadeComp& comp : made.comps) {
            segment.comps.push_back(nullptr);
            segment.width.push_back(comp.width);
            segment.leftEndBegin.push_back(static_cast<int32_t>(segment.leftEnds.size()));
            segment.leftEnds.insert(segment.leftEnds.end(), comp.lefts.begin(), comp.lefts.end());
            segment.rightEndBegin.push_back(static_cast<int32_t>(segment.rightEnds.size()));
            segment.rightEnds.insert(segment.rightEnds.end(), comp.rights.begin(), comp.rights.end());
            stitches.emplace_back(comp.stitches);
            leftEnds.push_back(comp.site);
        }
        segment.leftEndBegin.push_back(static_cast<int32_t>(segment.leftEnds.size()));
        segment.rightEndBegin.push_back(static_cast<int32_t>(segment.rightEnds.size()));
        weight = made.weight;
        int32_t farthest = made.numSites;
        for (const int32_t left : segment.leftEnds) {
            farthest = std::max(farthest, left);
        }
        segment.farthest = knowsFarthest ? farthest : 0;
        terms.prepare(weight, farthest);
        gapsToLeft.push_back(nullptr);
        for (size_t q = 1; q < made.comps.size(); ++q) {
            addGaps(made, q, shareClasses);
        }
    }
    HandMadeArrays(const HandMadeArrays&) = delete;
    HandMadeArrays& operator=(const HandMadeArrays&) = delete;

    /// As the joint program, or from the start value of the ordered one as that.
    vireloce::GridProblem grid(int32_t unreached) const
    {
        return grid(unreached, unreached == vireloce::ORDERED_UNREACHED);
    }

    vireloce::GridProblem grid(int32_t unreached, bool placesWaiting) const
    {
        return {segment, gapsToLeft, stitches, terms, unreached, placesWaiting};
    }

    vireloce::ShiftProblem shifts(const ShiftRange& range) const
    {
        return {segment,         gapsToLeft,  stitches,    leftEnds,   weight,
                range.solutions, range.first, range.count, range.prune};
    }

    vireloce::SegmentData segment;
    vireloce::TermTable terms;
    float weight = 0.0F;
    std::vector<const vireloce::PairGaps*> gapsToLeft;
    std::vector<std::span<const int32_t>> stitches;
    Ints leftEnds;

private:
    struct Owned {
        vireloce::PairGaps pair;
        Ints classOf;
        Ints gaps;
    };

    void addGaps(const HandMade& made, size_t comp, bool shareClasses)
    {
        const size_t numLeft = made.comps[comp - 1].stitches.size();
        const size_t numRight = made.comps[comp].stitches.size();
        Owned& owned = *m_owned.emplace_back(std::make_unique<Owned>());
        std::vector<Ints> classes; // [gap class][left solution]
        for (size_t j = 0; j < numRight; ++j) {
            Ints gaps;
            for (size_t i = 0; i < numLeft; ++i) {
                gaps.push_back(made.gap(comp, i, j));
            }
            const auto at = shareClasses ? std::find(classes.begin(), classes.end(), gaps) : classes.end();
            owned.classOf.push_back(static_cast<int32_t>(at - classes.begin()));
            if (at == classes.end()) {
                classes.push_back(gaps);
            }
        }
        for (size_t i = 0; i < numLeft; ++i) {
            for (const Ints& gaps : classes) {
                owned.gaps.push_back(gaps[i]);
            }
        }
        owned.pair.numClasses = static_cast<int32_t>(classes.size());
        owned.pair.classOf = owned.classOf.data();
        owned.pair.gaps = owned.gaps.data();
        if (!owned.gaps.empty()) {
            owned.pair.least = *std::min_element(owned.gaps.begin(), owned.gaps.end());
            owned.pair.most = *std::max_element(owned.gaps.begin(), owned.gaps.end());
        }
        gapsToLeft.push_back(&owned.pair);
    }

    std::vector<std::unique_ptr<Owned>> m_owned;
};

/// Gives every component of a segment up to some ends of ranges on both sides, anywhere or around a site.
inline void addRandomEnds(HandMade& made, Random& random, int most, int32_t around = -1)
{
    const auto anySite = [&] {
        return around < 0 ? random.pick(0, made.numSites)
                          : std::clamp(around + random.pick(-6, 6), 0, made.numSites);
    };
    for (HandMadeComp& comp : made.comps) {
        for (int i = random.pick(0, most); i > 0; --i) {
            comp.lefts.push_back(anySite());
        }
        for (int i = random.pick(0, most); i > 0; --i) {
            comp.rights.push_back(anySite());
        }
    }
}

/// A random hand-made segment: few distinct costs, gaps and widths, from nearly empty to over-full, with
/// weights of one to seven digits. All numbers are such that every kernel takes it, but for some gaps.
inline HandMade randomHandMade(uint32_t seed)
{
    Random random(seed);
    HandMade made;
    made.weight = random.oneOf<float>({0.0F, 0.05F, 0.3F, 0.65F, 0.999999F, 1.0F, 1.05F, 1.3F, 1.4F, 1.4F,
                                       2.1F, 2.7F, 10.0F, 123.456F, 12345.67F, 99999.99F});
    const int32_t mostSolutions = random.oneOf<int>({1, 2, 4, 9});
    const Ints gaps = random.oneOf<Ints>({{0}, {0, 1}, {0, 0, 0, 1}, {0, 1, 2}, {2, 3}, {0, 5, 16}, {3, 19}});
    const Ints stitchNums = random.oneOf<Ints>({{0, 1}, {0, 0, 1, 2}, {0, 7, 40}, {100, 300}});
    int32_t width = 0;
    for (int i = random.pick(1, random.oneOf<int>({2, 4, 9})); i > 0; --i) {
        HandMadeComp comp;
        comp.width = random.oneOf<int>({0, 1, 1, 2, 3, 4});
        comp.site = width + random.pick(-1, 2);
        width += comp.width;
        comp.stitches.resize(static_cast<size_t>(random.pick(1, mostSolutions)));
        for (int32_t& stitch : comp.stitches) {
            stitch = random.oneOf(stitchNums);
        }
        if (!made.comps.empty()) {
            comp.gaps.assign(made.comps.back().stitches.size(), Ints(comp.stitches.size()));
            for (Ints& row : comp.gaps) {
                for (int32_t& gap : row) {
                    gap = random.oneOf(gaps);
                }
            }
        }
        made.comps.push_back(comp);
    }
    made.numSites = std::max(1, width + random.oneOf<int>({-6, -2, -1, 0, 1, 2, 3, 5, 8, 20, 40}));
    addRandomEnds(made, random, 3);
    return made;
}

/// The same with much more room, and sometimes a component that is too wide for it.
inline HandMade roomyHandMade(uint32_t seed)
{
    HandMade made = randomHandMade(seed);
    Random random(seed + 3000000);
    made.numSites += random.oneOf<int>({20, 60, 150});
    if (random.pick(0, 2) == 0) {
        made.comps[static_cast<size_t>(random.pick(0, static_cast<int>(made.comps.size()) - 1))].width =
            made.numSites - random.pick(-1, 5);
    }
    for (HandMadeComp& comp : made.comps) { // near each other, so that there is useless space on both sides
        comp.lefts.clear();
        comp.rights.clear();
    }
    addRandomEnds(made, random, random.oneOf<int>({1, 3}), random.pick(0, made.numSites));
    return made;
}

/// A random hand-made segment with numbers around the limits of what a kernel may take.
inline HandMade largeHandMade(uint32_t seed)
{
    HandMade made = randomHandMade(seed);
    Random random(seed + 1000000);
    made.weight = random.oneOf<float>(
        {1.4F, 100.25F, 1000.5F, 4096.0F, 65536.0F, 151830.0F, 1e6F, 1234567.0F, 1e9F, 3e38F});
    const Ints stitchNums = random.oneOf<Ints>({{0, 1},
                                                {0, 12345600, 12345678},
                                                {0, (1 << 22) - 5, (1 << 23) - 1},
                                                {1 << 23, (1 << 24) - 1, 1 << 24},
                                                {0, 1 << 24, 1 << 28, 1 << 30},
                                                {-1, 0, 1}});
    for (HandMadeComp& comp : made.comps) {
        for (int32_t& stitch : comp.stitches) {
            stitch = random.oneOf(stitchNums);
        }
        for (int i = random.oneOf<int>({0, 0, 5, 70, 200}); i > 0; --i) {
            (random.pick(0, 1) == 0 ? comp.lefts : comp.rights).push_back(random.pick(0, made.numSites));
        }
    }
    return made;
}

/// A random hand-made segment of numbers that occur in no library.
inline HandMade strangeHandMade(uint32_t seed)
{
    HandMade made = randomHandMade(seed);
    Random random(seed + 2000000);
    made.weight = random.oneOf<float>({1.4F, -1.4F, -0.05F, -1000.5F, 1e9F, -1e9F, std::nanf(""), INF, -INF});
    const Ints stitchNums = random.oneOf<Ints>({{0, 1},
                                                {-1, 0, 1},
                                                {-40, -7, 300},
                                                {LARGEST, SMALLEST, 0},
                                                {(1 << 30) - 1, 1 << 30, -(1 << 30)},
                                                {12345677, 12345678, 0}});
    const bool wideGaps = random.pick(0, 1) == 0;
    for (HandMadeComp& comp : made.comps) {
        for (int32_t& stitch : comp.stitches) {
            stitch = random.oneOf(stitchNums);
        }
        for (Ints& row : comp.gaps) {
            for (int32_t& gap : row) {
                gap = wideGaps && random.pick(0, 2) == 0 ? random.oneOf<int>({17, 30, 1000}) : gap;
            }
        }
    }
    if (random.pick(0, 5) == 0) { // a component without solutions
        const auto q = static_cast<size_t>(random.pick(0, static_cast<int>(made.comps.size()) - 1));
        made.comps[q].stitches.clear();
        made.comps[q].gaps.clear();
        if (q + 1 < made.comps.size()) {
            made.comps[q + 1].gaps.clear();
        }
    }
    if (random.pick(0, 9) == 0) {
        made.numSites = 0;
    }
    return made;
}

} // namespace test
