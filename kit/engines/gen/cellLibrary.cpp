// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/gen/cellLibrary.h"

#include <algorithm>
#include <array>

namespace kit::gen {

namespace {

constexpr int32_t LEAST_SITES = 2;

/// Of 1000 placed cells, how many have LEAST_SITES sites, one site more, and so on: 5.3 sites on average.
constexpr std::array<int32_t, 19> WIDTHS{140, 180, 190, 140, 100, 65, 50, 38, 25, 17,
                                         13,  10,  8,   7,   5,   4,  3,  3,  2};

constexpr int32_t FEW_SOLUTIONS = 100; // per mille of the cells that have fewer solutions than they might
constexpr int32_t FAMILY = 4;          // cells of similar width, of which the first are the most used

/// Width of a cell such that all cells together have the distribution WIDTHS, sites.
int32_t sitesOfType(int32_t type, int32_t types)
{
    int64_t left = 1000 * (2 * int64_t{type} + 1);
    size_t i = 0;
    while (i + 1 < WIDTHS.size() && left >= 2 * int64_t{types} * WIDTHS[i]) {
        left -= 2 * int64_t{types} * WIDTHS[i];
        ++i;
    }
    return LEAST_SITES + static_cast<int32_t>(i);
}

LibraryCell makeCell(int32_t type, const Options& options, Random& random)
{
    LibraryCell cell;
    cell.name = nameOfType(type);
    cell.sites = sitesOfType(type, options.cellTypes);
    const int32_t most =
        random.perMille(FEW_SOLUTIONS) ? 1 + random.below(options.solutions) : options.solutions;
    while (cell.solutions.empty()) { // metal that cannot be coloured is drawn anew
        cell.shapes = drawShapes(cell.sites, random);
        cell.solutions = findSolutions(cell.shapes, most, random);
    }
    for (const Solution& solution : cell.solutions) {
        if (solution.stitches == 0) {
            cell.plainSides.push_back(findSides(cell.shapes, solution, cell.sites));
        }
    }
    return cell;
}

} // namespace

std::string nameOfType(int32_t type)
{
    return std::string("C").append(std::to_string(type));
}

std::vector<LibraryCell> makeLibrary(const Options& options)
{
    Random random(options.seed, CELL_STREAM);
    std::vector<LibraryCell> library;
    library.reserve(static_cast<size_t>(options.cellTypes));
    for (int32_t type = 0; type < options.cellTypes; ++type) {
        library.push_back(makeCell(type, options, random));
    }
    return library;
}

std::vector<uint16_t> chooseTypes(const Options& options)
{
    Random random(options.seed, TYPE_STREAM);
    std::vector<uint16_t> types(static_cast<size_t>(options.components));
    std::generate(types.begin(), types.end(), [&] {
        const int32_t any = random.below(options.cellTypes);
        const int32_t first = any - any % FAMILY;
        const int32_t size = std::min(FAMILY, options.cellTypes - first);
        return static_cast<uint16_t>(first + random.lowBelow(size));
    });
    return types;
}

} // namespace kit::gen
