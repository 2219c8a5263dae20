// SPDX-License-Identifier: BSD-3-Clause
#include "kit/gen/generate.h"

#include <iostream>

#include "kit/gen/designWriter.h"

namespace kit::gen {

void generate(const Options& options)
{
    checkTogether(options);
    requireNoFiles(options);
    const std::vector<LibraryCell> library = makeLibrary(options);
    const Placement placement = placeAll(chooseTypes(options), library, options);
    const Netlist netlist = connect(placement, options);

    writeLibrary(library, options);
    writePlacement(placement, library, options);
    writePins(netlist, options);
    writeNets(netlist, options);
    std::cout << options.out << ": " << placement.cells.size() << " components on " << placement.plan.rows
              << " rows of " << placement.plan.sitesPerRow << " sites, " << placement.plan.stretches.size()
              << " segments; " << netlist.netBegin.size() - 1 << " nets with " << netlist.members.size()
              << " members, " << netlist.pins.size() << " pins\n";
}

} // namespace kit::gen
