// SPDX-License-Identifier: BSD-3-Clause
#include "kit/design/coloredPlacement.h"

#include "kit/design/trueOrient.h"
#include "kit/formats/placer/reader.h"

namespace kit::design {

ColoredPlacement readColoredPlacement(const PlacementPaths& paths)
{
    ColoredPlacement result;
    Findings findings;
    placer::readPlacement(paths.placement, result.design, findings);
    restoreOrientations(paths.mapOf.empty() ? paths.placement : paths.mapOf, result.design, findings);
    if (paths.cells.empty()) {
        placer::readCells(placer::usedCells(result.design), paths.cellDir, result.design, findings);
    } else {
        placer::readLibrary(paths.cells, paths.cellDir, result.design, findings);
    }
    placer::findCells(result.design);
    result.colors = placer::readColors(paths.colors, findings);
    result.faults = errorsOf(findings);
    return result;
}

} // namespace kit::design
