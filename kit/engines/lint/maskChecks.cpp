// SPDX-License-Identifier: BSD-3-Clause
#include <cmath>
#include <numeric>
#include <string>
#include <vector>

#include "kit/base/finding.h"
#include "kit/design/spacing.h"
#include "kit/engines/lint/checks.h"
#include "kit/formats/placer/names.h"

namespace kit::lint {

namespace {

using placer::Cell;
using placer::Solution;

/// The pairs of a cell's shapes that are closer than the colouring distance, and the metal they form.
class MaskCheck {
public:
    MaskCheck(const Cell& cell, int32_t distance, lefdef::Length site, Findings& findings)
        : m_cell(cell), m_reporter(findings, cell.path), m_distance(design::Distance::text(distance, site))
    {
        for (size_t a = 0; a < cell.shapes.size(); ++a) {
            for (size_t b = a + 1; b < cell.shapes.size(); ++b) {
                const int64_t square = design::squaredDistance(cell.shapes[a], cell.shapes[b]);
                if (square < int64_t{distance} * distance) {
                    m_pairs.push_back({a, b, square});
                }
            }
        }
    }

    void run()
    {
        for (const Solution& solution : m_cell.solutions) {
            check(solution);
        }
    }

private:
    struct Pair {
        size_t a;
        size_t b;
        int64_t square; ///< of their distance
    };

    void check(const Solution& solution)
    {
        joinTouching(solution);
        for (const Pair& pair : m_pairs) {
            if (conflicts(pair, solution)) {
                report(pair, solution);
            }
        }
    }

    /// Shapes of one mask that touch are one piece of metal, and so are those that they touch.
    void joinTouching(const Solution& solution)
    {
        m_piece.resize(m_cell.shapes.size());
        std::iota(m_piece.begin(), m_piece.end(), size_t{0});
        for (const Pair& pair : m_pairs) {
            if (pair.square == 0 && solution.masks[pair.a] == solution.masks[pair.b]) {
                m_piece[pieceOf(pair.b)] = pieceOf(pair.a);
            }
        }
    }

    size_t pieceOf(size_t shape) const
    {
        while (m_piece[shape] != shape) {
            shape = m_piece[shape];
        }
        return shape;
    }

    bool conflicts(const Pair& pair, const Solution& solution) const
    {
        const int32_t mask = solution.masks[pair.a];
        return mask == solution.masks[pair.b] && mask >= 0 && mask <= 2 &&
               pieceOf(pair.a) != pieceOf(pair.b) && !design::isRail(m_cell, pair.a, solution) &&
               !design::isRail(m_cell, pair.b, solution);
    }

    void report(const Pair& pair, const Solution& solution)
    {
        const auto distance = static_cast<int64_t>(std::sqrt(static_cast<double>(pair.square)));
        m_reporter.warning("same-mask", {solution.line, 0},
                           "shapes " + std::to_string(pair.a + 1) + " and " + std::to_string(pair.b + 1) +
                               " are on mask " + std::to_string(solution.masks[pair.a]) + " and only " +
                               std::to_string(distance) + " apart, less than " + m_distance,
                           "colour them differently: the placer does not look inside a cell");
    }

    const Cell& m_cell;
    Reporter m_reporter;
    std::string m_distance;      ///< for messages
    std::vector<Pair> m_pairs;   ///< closer than the colouring distance
    std::vector<size_t> m_piece; ///< [shape] another of its piece of metal, or itself
};

} // namespace

void checkMasks(const Subject& subject)
{
    const std::vector<Cell>& cells = subject.design.cells;
    const placer::NameIndex last = placer::indexNames(cells);
    const lefdef::Length site = design::siteLength(subject.design);
    const int32_t distance = subject.options.minDist.unitsOn(site);
    for (size_t i = 0; i < cells.size(); ++i) {
        if (cells[i].complete && placer::findName(last, cells[i].name) == static_cast<int32_t>(i)) {
            MaskCheck(cells[i], distance, site, subject.findings).run();
        }
    }
}

} // namespace kit::lint
