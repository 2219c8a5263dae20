// SPDX-License-Identifier: BSD-3-Clause
// From the files to the working structure of the placer.
#include <algorithm>
#include <cassert>
#include <cstdlib>
#include <limits>

#include "app/parameters.h"
#include "db/design.h"
#include "qlib/exact.h"
#include "qlib/report.h"

using vireloce::ceilSites;

namespace {

constexpr int32_t SMALLEST = std::numeric_limits<int32_t>::min();
constexpr int32_t LARGEST = std::numeric_limits<int32_t>::max();

void warnUnassigned(const Component& comp)
{
    vireloce::report() << "WARNING| cannot assign component: " << comp.name << '(' << comp.cellName << ")| ("
                       << comp.x << ", " << comp.y << ") \n";
}

} // namespace

void Design::initAll()
{
    // The order matters: cell widths in sites and spacings come from the options, not from the rows, and
    // the netlist looks its members up among the components and pins.
    lut.setCellPath(cellPath);
    lut.readCells(placePath + ".cells");
    lut.genLUTable();
    placeParser.run(placePath);
    pinParser.run(placePath);
    netParser.run(placePath);
    requireCells();

    resizeCell();
    if (SITE_WIDTH <= 0) {
        vireloce::endRun("ERROR| the site width is " + std::to_string(SITE_WIDTH) +
                         ": the first row's step, or -siteW with fewer than two rows, must be positive");
    }
    initSegments();
    initCompInSegments();
    initNetInComp();
    initDesignBound();
    LDP_K = -1;
    for (const Cell* cell : lut.cells) {
        LDP_K = std::max(LDP_K, static_cast<int32_t>(cell->colors.size()));
    }
    initHPWL = evaluateHPWL();
    reportSetUp();
}

void Design::reportSetUp()
{
    setUpFigures = {.cellTypes = lut.cells.size(),
                    .tableEntries = lut.countEntries(),
                    .nets = nets.size(),
                    .rows = rows.size(),
                    .segments = segments.size(),
                    .components = components.size(),
                    .macros = macros.size(),
                    .maxSolutions = LDP_K,
                    .maxSites = getMaxSiteNum(),
                    .maxComponents = getMaxCompNum(),
                    .hpwl = initHPWL,
                    .stitchLowerBound = evaluateStitchLowerBound()};
    const vireloce::SetUpFigures& f = setUpFigures;
    vireloce::report() << "STAT | net #                    = " << f.nets << '\n'
                       << "STAT | row #                    = " << f.rows << '\n'
                       << "STAT | segment #                = " << f.segments << '\n'
                       << "STAT | component #              = " << f.components << '\n'
                       << "STAT | macro #                  = " << f.macros << '\n'
                       << "STAT | max solution # for cells = " << f.maxSolutions << '\n'
                       << "STAT | max site # on rows       = " << f.maxSites << '\n'
                       << "STAT | max componnet # on rows  = " << f.maxComponents << '\n'
                       << "STAT | init HPWL                = " << f.hpwl << '\n'
                       << "STAT | stitch # lowerB          = " << f.stitchLowerBound << '\n';
}

void Design::resizeCell()
{
    if (rows.size() < 2) {
        return;
    }
    // Required: every distance is taken to the first row, not to the neighbouring one.
    SITE_HEIGHT = LARGEST;
    for (size_t i = 1; i < rows.size(); ++i) {
        SITE_HEIGHT = std::min(SITE_HEIGHT, std::abs(rows[i]->y - rows[0]->y));
    }
    SITE_WIDTH = rows[0]->step;
    for (Cell* cell : lut.cells) {
        cell->height = SITE_HEIGHT;
        cell->width = cell->width * SITE_WIDTH / LIBRARY_SITE_WIDTH;
    }
}

void Design::initSegments()
{
    for (Row* row : rows) {
        const int32_t rowEnd = row->x + row->numSites * SITE_WIDTH;
        std::vector<int32_t> cuts{row->x, rowEnd};
        // One unit off at the top and bottom, so that a macro that only touches the row does not cut it.
        for (const Macro* macro :
             qLib::searchItems(macroTree, row->x, row->y + 1, rowEnd, row->y + SITE_HEIGHT - 1)) {
            cuts.push_back(macro->x);
            cuts.push_back(macro->x + macro->width);
        }
        std::sort(cuts.begin(), cuts.end());
        for (size_t i = 0; i + 1 < cuts.size(); i += 2) {
            if (cuts[i] >= cuts[i + 1]) {
                continue;
            }
            const int32_t numSites = (cuts[i + 1] - cuts[i]) / SITE_WIDTH;
            if (numSites < 0) {
                vireloce::endRun("ERROR| row " + row->name + ": the stretch from " + std::to_string(cuts[i]) +
                                 " to " + std::to_string(cuts[i + 1]) +
                                 " is too long for 32-bit coordinates");
            }
            auto* segment = new Segment;
            segment->id = static_cast<int32_t>(segments.size());
            segment->x = cuts[i];
            segment->y = row->y;
            segment->numSites = numSites;
            segments.push_back(segment);
            row->segments.push_back(segment);
            qLib::insertItem(segmentTree, segment, segment->x, segment->y, segment->rightEnd(SITE_WIDTH),
                             segment->y + SITE_HEIGHT);
        }
    }
}

const std::vector<Segment*>& Design::findSegments(int32_t xl, int32_t yl, int32_t xh, int32_t yh)
{
    const std::vector<Segment*>& found = qLib::searchItems(segmentTree, xl, yl, xh, yh);
    if (!found.empty()) {
        m_lastHit = found.front();
    }
    return found;
}

void Design::initCompInSegments()
{
    for (Segment* segment : segments) {
        segment->components.clear();
    }
    // Gathered in vectors, because lists that grow all together lie scattered in memory.
    std::vector<std::vector<Component*>> members(segments.size());
    for (Component* comp : components) {
        const int32_t width = SITE_WIDTH * cellOf(*comp).siteWidth;
        findSegments(comp->x, comp->y + 1, comp->x + width, comp->y + SITE_HEIGHT - 1);
        // The last hit is the first segment just found or, where none was, that of an earlier search.
        if (m_lastHit == nullptr) {
            warnUnassigned(*comp);
            continue;
        }
        assert(segments[static_cast<size_t>(m_lastHit->id)] == m_lastHit);
        members[static_cast<size_t>(m_lastHit->id)].push_back(comp);
        comp->siteX = ceilSites(comp->x - m_lastHit->x, SITE_WIDTH);
    }
    for (Segment* segment : segments) {
        std::vector<Component*> own = std::move(members[static_cast<size_t>(segment->id)]);
        std::stable_sort(own.begin(), own.end(), Component::bySiteX);
        segment->components.assign(own.begin(), own.end());
    }
}

void Design::initCompOnRows()
{
    for (Row* row : rows) {
        row->components.clear();
    }
    for (Component* comp : components) {
        const auto at = rowIndexByY.find(comp->y);
        if (at == rowIndexByY.end()) {
            warnUnassigned(*comp);
            continue;
        }
        Row* row = rows[static_cast<size_t>(at->second)];
        row->components.push_back(comp);
        comp->siteX = ceilSites(comp->x - row->x, SITE_WIDTH);
    }
    for (Row* row : rows) {
        std::sort(row->components.begin(), row->components.end(), Component::bySiteX);
    }
}

std::vector<Segment*> Design::searchSegments(int x, int y, int range)
{
    return findSegments(x - range, y - range, x + range, y + range);
}

void Design::initDesignBound()
{
    boundXl = boundYl = LARGEST;
    boundXh = boundYh = SMALLEST;
    for (const Segment* segment : segments) {
        boundXl = std::min(boundXl, segment->x);
        boundXh = std::max(boundXh, segment->rightEnd(SITE_WIDTH));
        boundYl = std::min(boundYl, segment->y);
        boundYh = std::max(boundYh, segment->y + SITE_HEIGHT);
    }
}

void Design::initNetInComp()
{
    for (Net* net : nets) {
        for (Component* comp : net->components) {
            comp->nets.push_back(net);
        }
    }
}

int Design::getMaxSiteNum()
{
    int32_t most = SMALLEST;
    for (const Segment* segment : segments) {
        most = std::max(most, segment->numSites);
    }
    return most;
}

int Design::getMaxCompNum()
{
    int32_t most = SMALLEST;
    for (const Segment* segment : segments) {
        most = std::max(most, static_cast<int32_t>(segment->components.size()));
    }
    return most;
}
