// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/gen/generate.h"

#include <iostream>

#include "kit/engines/gen/designWriter.h"
#include "kit/engines/gen/lefDefWriter.h"

namespace kit::gen {

namespace {

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

    OutputSet set;
    writeLibrary(library, options, set);
    set.add(options.out + ".place",
            [&](OutputFile& out) { writePlacement(placement, library, options, out); });
    set.add(options.out + ".pins", [&](OutputFile& out) { writePins(netlist, options, out); });
    set.add(options.out + ".netlist", [&](OutputFile& out) { writeNets(netlist, out); });
    if (options.lefDef) {
        set.add(options.out + ".lef",
                [&](OutputFile& out) { writeLef(library, placement.plan, options, out); });
        set.add(options.out + ".def",
                [&](OutputFile& out) { writeDef(placement, library, netlist, options, out); });
    }
    set.commit();
    describe(options, placement, netlist);
}

} // namespace kit::gen
