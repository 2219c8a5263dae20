// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "refine/naive.h"
#include "refine/window.h"

namespace test {

/// How far each cell may be from its start: as far as it is, or as any other may.
inline std::vector<int64_t> mostDisplacements(const refine::Model& model, const Starts& starts, int32_t most)
{
    std::vector<int64_t> result;
    for (size_t cell = 0; cell < model.cells.size(); ++cell) {
        result.push_back(std::max(int64_t{most}, starts.displacementOf(model, cell)));
    }
    return result;
}

/// Whether no cell is farther.
inline bool isNear(const refine::Model& model, const Starts& starts, const std::vector<int64_t>& most)
{
    for (size_t cell = 0; cell < model.cells.size(); ++cell) {
        if (starts.displacementOf(model, cell) > most[cell]) {
            return false;
        }
    }
    return true;
}

/// The best arrangement of a few cells of a window, by trying all of them.
class WindowSearch {
public:
    /// @param model  with all other cells where they are to be
    /// @param most   [cell] largest displacement, units
    WindowSearch(refine::Model model, const Objective& objective, std::vector<int64_t> most,
                 const refine::WindowFrame& frame)
        : m_model(std::move(model)), m_objective(objective), m_most(std::move(most)), m_frame(frame)
    {
    }

    /// @param cells  from the left
    /// @return none if there is no arrangement
    std::optional<int64_t> leastCost(std::span<const int32_t> cells)
    {
        m_least.reset();
        m_cells.assign(cells.begin(), cells.end());
        search(0);
        return m_least;
    }

    /// Whether neighbours of the window and in it are apart by spacing().
    ///
    /// @param cells  from the left
    static bool isSpaced(const refine::Model& model, const refine::WindowFrame& frame,
                         std::span<const int32_t> cells)
    {
        std::vector<int32_t> all(cells.begin(), cells.end());
        all.insert(all.begin(), frame.left);
        all.push_back(frame.right);
        for (size_t i = 1; i < all.size(); ++i) {
            if (all[i - 1] >= 0 && all[i] >= 0 &&
                !isRightOf(model, model.cells[static_cast<size_t>(all[i - 1])],
                           model.cells[static_cast<size_t>(all[i])])) {
                return false;
            }
        }
        return true;
    }

private:
    static bool isRightOf(const refine::Model& model, const refine::Cell& left, const refine::Cell& right)
    {
        return left.x < right.x && right.x >= endOf(model, left) + spacing(model, left, right);
    }

    void search(size_t rank)
    {
        if (rank == m_cells.size()) {
            const int64_t cost = m_objective.of(m_model);
            m_least = std::min(m_least.value_or(cost), cost);
            return;
        }
        const auto index = static_cast<size_t>(m_cells[rank]);
        refine::Cell& cell = m_model.cells[index];
        const int32_t left = rank == 0 ? m_frame.left : m_cells[rank - 1];
        const bool isLast = rank + 1 == m_cells.size();
        const int32_t states = m_model.stateCount(cell.kind);
        const int32_t end = m_frame.run->x + m_frame.run->sites * m_model.step;
        cell.row = m_frame.row;
        for (cell.state = 0; cell.state < states; ++cell.state) {
            for (cell.x = m_frame.run->x; endOf(m_model, cell) <= end; cell.x += m_model.step) {
                if (m_objective.starts.displacementOf(m_model, index) <= m_most[index] &&
                    (left < 0 || isRightOf(m_model, m_model.cells[static_cast<size_t>(left)], cell)) &&
                    (!isLast || m_frame.right < 0 ||
                     isRightOf(m_model, cell, m_model.cells[static_cast<size_t>(m_frame.right)]))) {
                    search(rank + 1);
                }
            }
        }
    }

    refine::Model m_model;
    const Objective& m_objective;
    std::vector<int64_t> m_most;
    refine::WindowFrame m_frame;
    std::vector<int32_t> m_cells;
    std::optional<int64_t> m_least;
};

} // namespace test
