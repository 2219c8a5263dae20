// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/gen/generate.h"

#include <iostream>

#include "kit/base/fault.h"
#include "kit/engines/gen/cellLibrary.h"
#include "kit/engines/gen/designWriter.h"

namespace kit::gen {

namespace {

/// The placer takes lengths in single precision, which is exact up to here, DBU.
constexpr int64_t LONGEST_ROW = 1 << 24;

/// Cells with their solutions that a spacing table holds: the placer stops at twice as many squared.
constexpr int64_t LARGEST_LIBRARY = 11'000;

/// Checks what the ranges of the single options leave open.
///
/// Errors: throws Fault if a row would be longer than the placer's single-precision lengths can hold, or the
/// library too large for its spacing table.
void checkTogether(const Options& options)
{
    if (int64_t{options.sitesPerRow} * options.siteStep > LONGEST_ROW) {
        throw Fault("--sites-per-row times --site-step is over " + std::to_string(LONGEST_ROW) +
                    ", the longest row that the placer measures exactly");
    }
    if (int64_t{options.cellTypes} * (options.solutions + 1) > LARGEST_LIBRARY) {
        throw Fault("--cell-types times one more than --solutions is over " +
                    std::to_string(LARGEST_LIBRARY) + ", the most that the placer's spacing table holds");
    }
}

void describe(const Options& options, const Placement& placement, const Netlist& netlist)
{
    const Floorplan& plan = placement.plan;
    std::cout << options.out << ": " << placement.cells.size() << " components on " << plan.rows
              << " rows of " << plan.sitesPerRow << " sites, " << plan.stretches.size() << " segments, "
              << (placement.cellSites * 200 / plan.capacity + 1) / 2 << " % utilized; "
              << netlist.netBegin.size() - 1 << " nets with " << netlist.members.size() << " members, "
              << netlist.pins.size() << " pins\n";
}

} // namespace

void generate(const Options& options)
{
    checkTogether(options);
    checkOutputsOf(options);
    const std::vector<LibraryCell> library = makeLibrary(options);
    const Placement placement = placeAll(chooseTypes(options), library, options);
    const Netlist netlist = connect(placement, options);
    writeDesign(library, placement, netlist, options);
    describe(options, placement, netlist);
}

} // namespace kit::gen
