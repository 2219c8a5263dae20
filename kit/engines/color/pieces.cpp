// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/color/pieces.h"

#include <algorithm>
#include <map>

#include "kit/engines/color/grid.h"
#include "kit/engines/color/sets.h"

namespace kit::color {

namespace {

/// Cuts one polygon.
class Cutter {
public:
    Cutter(const std::vector<Rect>& polygon, const std::vector<Cut>& cuts)
        : m_cuts(cuts), m_grid(polygon, linesOf(cuts, true), linesOf(cuts, false)),
          m_fields(m_grid.columns() * m_grid.lines())
    {
        for (const Cut& cut : cuts) {
            m_cutsAt.insert({{cut.upright, cut.at}, &cut});
        }
    }

    Pieces run()
    {
        joinFields();
        nameFields();
        Pieces pieces;
        pieces.rects.resize(m_count);
        for (size_t i = 0; i < m_grid.columns(); ++i) {
            for (size_t k = 0; k < m_grid.lines(); ++k) {
                if (m_grid.at(i, k)) {
                    pieces.rects[m_names[fieldOf(i, k)]].push_back(m_grid.field(i, k));
                }
            }
        }
        for (const Cut& cut : m_cuts) {
            const auto [a, b] = sidesOf(cut);
            pieces.joined.emplace_back(a, b);
            if (cut.box.xl < cut.box.xh && cut.box.yl < cut.box.yh) {
                pieces.rects[a].push_back(cut.box);
                pieces.rects[b].push_back(cut.box);
            }
        }
        for (std::vector<Rect>& rects : pieces.rects) {
            rects = tidied(rects);
        }
        return pieces;
    }

private:
    static std::vector<int32_t> linesOf(const std::vector<Cut>& cuts, bool upright)
    {
        std::vector<int32_t> lines;
        for (const Cut& cut : cuts) {
            if (cut.upright == upright) {
                lines.push_back(cut.at);
            }
        }
        return lines;
    }

    size_t fieldOf(size_t column, size_t line) const { return column * m_grid.lines() + line; }

    /// Whether a cut lies between a field and the one on its right, or above it.
    bool isCut(size_t column, size_t line, bool upright) const
    {
        const Rect field = m_grid.field(column, line);
        const auto [begin, end] = m_cutsAt.equal_range({upright, upright ? field.xh : field.yh});
        return std::any_of(begin, end, [&](const auto& entry) {
            const Rect& box = entry.second->box;
            return upright ? box.yl <= field.yl && field.yh <= box.yh
                           : box.xl <= field.xl && field.xh <= box.xh;
        });
    }

    void joinFields()
    {
        for (size_t i = 0; i < m_grid.columns(); ++i) {
            for (size_t k = 0; k < m_grid.lines(); ++k) {
                const bool isRight = i + 1 < m_grid.columns();
                const bool isUp = k + 1 < m_grid.lines();
                if (m_grid.at(i, k) && isRight && m_grid.at(i + 1, k) && !isCut(i, k, true)) {
                    m_fields.join(fieldOf(i, k), fieldOf(i + 1, k));
                }
                if (m_grid.at(i, k) && isUp && m_grid.at(i, k + 1) && !isCut(i, k, false)) {
                    m_fields.join(fieldOf(i, k), fieldOf(i, k + 1));
                }
                if (isRight && isUp) {
                    joinCorner(i, k);
                }
            }
        }
    }

    /// Joins fields that touch at a corner alone.
    void joinCorner(size_t i, size_t k)
    {
        const bool rising = m_grid.at(i, k) && m_grid.at(i + 1, k + 1);
        const bool falling = m_grid.at(i + 1, k) && m_grid.at(i, k + 1);
        if (rising && !m_grid.at(i + 1, k) && !m_grid.at(i, k + 1)) {
            m_fields.join(fieldOf(i, k), fieldOf(i + 1, k + 1));
        }
        if (falling && !m_grid.at(i, k) && !m_grid.at(i + 1, k + 1)) {
            m_fields.join(fieldOf(i + 1, k), fieldOf(i, k + 1));
        }
    }

    void nameFields()
    {
        m_names.resize(m_grid.columns() * m_grid.lines());
        for (size_t i = 0; i < m_grid.columns(); ++i) {
            for (size_t k = 0; k < m_grid.lines(); ++k) {
                const size_t field = fieldOf(i, k);
                const size_t least = m_fields.leastOf(field);
                if (m_grid.at(i, k)) {
                    m_names[field] = least == field ? m_count++ : m_names[least];
                }
            }
        }
    }

    /// The pieces on the two sides of a cut.
    std::pair<size_t, size_t> sidesOf(const Cut& cut) const
    {
        const size_t column = m_grid.columnAt(cut.upright ? cut.at : cut.box.xl);
        const size_t line = m_grid.lineAt(cut.upright ? cut.box.yl : cut.at);
        const size_t before = cut.upright ? fieldOf(column - 1, line) : fieldOf(column, line - 1);
        return {m_names[before], m_names[fieldOf(column, line)]};
    }

    const std::vector<Cut>& m_cuts;
    std::multimap<std::pair<bool, int32_t>, const Cut*> m_cutsAt; ///< by direction and place
    Grid m_grid;
    Sets m_fields;
    std::vector<size_t> m_names; ///< [field] its piece
    size_t m_count = 0;          ///< pieces
};

} // namespace

Pieces cutUp(const std::vector<Rect>& polygon, const std::vector<Cut>& cuts)
{
    return Cutter(polygon, cuts).run();
}

} // namespace kit::color
