// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/view/density.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace kit::view {

namespace {

constexpr double MOST_BINS = 20'000;
constexpr double MOST_BINS_IN_LINE = 2'000;
constexpr int32_t LEAST_ROWS = 2; // rows of cells in a bin

/// Lengths of cells or stretches, per bin.
class Lengths {
public:
    explicit Lengths(const Density& grid)
        : m_grid(grid), m_lengths(static_cast<size_t>(grid.columns) * static_cast<size_t>(grid.lines), 0)
    {
    }

    /// Adds the length of a box of one row to the bins that it crosses; its middle decides their line.
    void add(const Box& box)
    {
        const int32_t line = clampTo((box.yl + (box.yh - box.yl) / 2 - m_grid.y) / m_grid.side, m_grid.lines);
        int32_t column = clampTo((box.xl - m_grid.x) / m_grid.side, m_grid.columns);
        for (int32_t x = box.xl; x < box.xh; ++column) {
            const bool last = column + 1 >= m_grid.columns;
            const int32_t end = last ? box.xh : std::min(box.xh, m_grid.x + (column + 1) * m_grid.side);
            m_lengths[static_cast<size_t>(line) * static_cast<size_t>(m_grid.columns) +
                      static_cast<size_t>(column)] += end - x;
            x = end;
        }
    }

    const std::vector<int64_t>& perBin() const { return m_lengths; }

private:
    static int32_t clampTo(int32_t index, int32_t count) { return std::clamp(index, 0, count - 1); }

    const Density& m_grid;
    std::vector<int64_t> m_lengths;
};

Density makeGrid(const Scene& scene)
{
    const Box bounds = boundsOf(scene);
    const double width = static_cast<double>(bounds.xh) - bounds.xl;
    const double height = static_cast<double>(bounds.yh) - bounds.yl;
    const int32_t row = std::max(scene.rowHeight, 1);
    const double side =
        std::max(std::sqrt(width * height / MOST_BINS), std::max(width, height) / MOST_BINS_IN_LINE);
    Density grid;
    grid.x = bounds.xl;
    grid.y = bounds.yl;
    grid.side = row * std::max(LEAST_ROWS, static_cast<int32_t>(std::ceil(side / row)));
    grid.columns = static_cast<int32_t>(std::ceil(width / grid.side));
    grid.lines = static_cast<int32_t>(std::ceil(height / grid.side));
    return grid;
}

uint8_t shareOf(int64_t used, int64_t free)
{
    if (free == 0) {
        return used == 0 ? Density::NO_ROWS : Density::MOST;
    }
    return static_cast<uint8_t>(std::min<int64_t>((used * 100 + free / 2) / free, Density::MOST));
}

using Colour = std::array<int32_t, 3>; // red, green, blue

constexpr std::array<Colour, 4> STOPS{{{255, 255, 255}, {140, 205, 240}, {0, 114, 178}, {0, 44, 77}}};
constexpr int32_t FULL = 100;
constexpr int32_t INTERVALS = static_cast<int32_t>(STOPS.size()) - 1;

constexpr char HEX[] = "0123456789abcdef";

} // namespace

Density densityOf(const Scene& scene, bool before)
{
    Density grid = makeGrid(scene);
    Lengths free(grid);
    for (const Box& stretch : scene.stretches) {
        free.add(stretch);
    }
    Lengths used(grid);
    for (const Cell& cell : scene.cells) {
        if (cell.isFixed) {
            continue;
        }
        const Place& place = before ? cell.before : cell.place;
        used.add({place.x, place.y, place.x + widthOf(scene, cell), place.y + scene.rowHeight});
    }
    grid.shares.reserve(used.perBin().size());
    for (size_t i = 0; i < used.perBin().size(); ++i) {
        grid.shares.push_back(shareOf(used.perBin()[i], free.perBin()[i]));
    }
    return grid;
}

std::string rampColour(uint8_t share)
{
    const int32_t place = std::min<int32_t>(share, FULL) * INTERVALS;
    const int32_t below = std::min(place / FULL, INTERVALS - 1);
    const int32_t beyond = place - below * FULL;
    std::string text = "#";
    for (size_t i = 0; i < 3; ++i) {
        const int32_t low = STOPS[static_cast<size_t>(below)][i];
        const int32_t high = STOPS[static_cast<size_t>(below) + 1][i];
        const auto level = static_cast<uint32_t>(low + (high - low) * beyond / FULL);
        text += HEX[level >> 4U];
        text += HEX[level & 15U];
    }
    return text;
}

} // namespace kit::view
