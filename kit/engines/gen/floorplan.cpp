// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/gen/floorplan.h"

#include <algorithm>
#include <string>
#include <utility>

#include "kit/base/fault.h"
#include "kit/engines/gen/cellLibrary.h"
#include "kit/engines/gen/random.h"

namespace kit::gen {

namespace {

/// The placer takes step and row height from the rows only if there are two of them.
constexpr int32_t LEAST_ROWS = 2;

/// Half of what 32 bits hold, DBU: a wirelength adds a width, and macros and spacings may add rows.
constexpr int64_t HIGHEST_DESIGN = int64_t{1} << 30U;

/// A macro's width and height, in per cent of its field's.
constexpr int32_t LEAST_SHARE = 20;
constexpr int32_t SHARES = 31;

/// Start and length of a macro in one direction, inside its field.
std::pair<int32_t, int32_t> placeInField(int32_t fieldStart, int32_t fieldLength, Random& random)
{
    const int32_t share = LEAST_SHARE + random.below(SHARES);
    const auto length = std::max(1, static_cast<int32_t>(int64_t{fieldLength} * share / 100));
    return {fieldStart + random.below(fieldLength - length + 1), length};
}

/// Columns of fields such that there are about as many lines of them.
int32_t fieldColumns(int32_t macros)
{
    int32_t columns = 1;
    while (columns * columns < macros) {
        ++columns;
    }
    return columns;
}

void placeMacros(Floorplan& plan, const Options& options)
{
    if (options.macros == 0) {
        return;
    }
    const int32_t columns = fieldColumns(options.macros);
    const int32_t lines = (options.macros + columns - 1) / columns;
    const int32_t width = plan.sitesPerRow / columns;
    const int32_t height = plan.rows / lines;
    if (width < 1 || height < 1) {
        throw Fault("--macros: " + std::to_string(options.macros) + " do not fit on " +
                    std::to_string(plan.rows) + " rows of " + std::to_string(plan.sitesPerRow) + " sites");
    }
    Random random(options.seed, MACRO_STREAM);
    for (int32_t i = 0; i < options.macros; ++i) {
        const auto [site, sites] = placeInField(i % columns * width, width, random);
        const auto [row, rows] = placeInField(i / columns * height, height, random);
        plan.macros.push_back({site, row, sites, rows});
    }
}

void addStretch(Floorplan& plan, int32_t row, int32_t from, int32_t to)
{
    if (from < to) {
        plan.stretches.push_back({row, from, to - from});
        plan.capacity += to - from;
    }
}

/// Cuts the rows at the macros.
void cutRows(Floorplan& plan)
{
    std::vector<std::vector<std::pair<int32_t, int32_t>>> cuts(
        static_cast<size_t>(plan.rows)); // [row] from, to
    for (const MacroBox& macro : plan.macros) {
        for (int32_t row = macro.row; row < macro.row + macro.rows; ++row) {
            cuts[static_cast<size_t>(row)].emplace_back(macro.site, macro.site + macro.sites);
        }
    }
    for (int32_t row = 0; row < plan.rows; ++row) {
        auto& rowCuts = cuts[static_cast<size_t>(row)];
        std::sort(rowCuts.begin(), rowCuts.end());
        int32_t free = 0;
        for (const auto& [from, to] : rowCuts) {
            addStretch(plan, row, free, from);
            free = to;
        }
        addStretch(plan, row, free, plan.sitesPerRow);
    }
}

/// Ends with a Fault if rows would reach beyond what the placer's 32-bit coordinates hold.
void requireHeight(int64_t rows, const Options& options)
{
    if (rows * rowHeight(options) > HIGHEST_DESIGN) {
        throw Fault(std::to_string(rows) +
                    " rows are too high for 32-bit coordinates: raise --sites-per-row or "
                    "--utilization, or lower --site-step");
    }
}

} // namespace

int32_t rowHeight(const Options& options)
{
    return options.siteStep * LIBRARY_HEIGHT / placer::LIBRARY_SITE;
}

Floorplan makeFloorplan(int32_t rows, int32_t sitesPerRow, const Options& options)
{
    Floorplan plan;
    plan.rows = rows;
    plan.sitesPerRow = sitesPerRow;
    placeMacros(plan, options);
    cutRows(plan);
    return plan;
}

Floorplan fitFloorplan(int64_t cellSites, const Options& options)
{
    const int64_t needed = (cellSites * 100 + options.utilisation - 1) / options.utilisation;
    const int32_t most = options.sitesPerRow;
    const auto rowsFor = [most](int64_t sites) { return static_cast<int32_t>((sites + most - 1) / most); };

    requireHeight(rowsFor(needed), options);
    Floorplan plan = makeFloorplan(std::max(rowsFor(needed), LEAST_ROWS), most, options);
    while (plan.capacity < needed) {
        plan = makeFloorplan(plan.rows + rowsFor(needed - plan.capacity), most, options);
    }
    // Rows a little shorter than allowed hit the utilisation exactly, which whole rows would miss.
    const auto spare = static_cast<int32_t>((plan.capacity - needed) / plan.rows);
    plan = makeFloorplan(plan.rows, plan.sitesPerRow - spare, options);
    while (plan.capacity < needed) {
        plan = makeFloorplan(plan.rows, plan.sitesPerRow + 1, options);
    }
    return plan;
}

} // namespace kit::gen
