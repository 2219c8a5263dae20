// SPDX-License-Identifier: BSD-3-Clause
// What all programs of the segment solver share: fixed ranges, costs, positions.
#include <algorithm>
#include <cstdlib>
#include <limits>
#include <string>

#include "app/parameters.h"
#include "db/design.h"
#include "legalizer/fastRoad.h"
#include "legalizer/legalizer.h"
#include "legalizer/segLegalizer.h"
#include "legalizer/stretch.h"
#include "qlib/exact.h"
#include "qlib/report.h"

using vireloce::addTruncated;
using vireloce::ceilSites;
using vireloce::FastRoad;
using vireloce::INFINITE_COST;

int64_t SegLegalizer::s_maxGraphSize = 200'000'000; // about 12 GiB
bool SegLegalizer::s_useGraphs = false;

SegLegalizer::SegLegalizer(Legalizer* owner, Segment* solved) : legalizer(owner), segment(solved) {}

SegLegalizer::~SegLegalizer() = default;

Design& SegLegalizer::design() const
{
    return *legalizer->design;
}

const Cell& SegLegalizer::cellOf(const Component& comp) const
{
    return design().cellOf(comp);
}

int32_t SegLegalizer::numColours(const Component& comp) const
{
    return static_cast<int32_t>(cellOf(comp).colors.size());
}

FastRoad& SegLegalizer::fastRoad()
{
    if (legalizer->fastRoad != nullptr) {
        return *legalizer->fastRoad;
    }
    m_ownRoad = std::make_unique<FastRoad>(design()); // outside a placement anything may have changed
    return *m_ownRoad;
}

void SegLegalizer::endTooLarge(const std::string& what) const
{
    vireloce::endRun("ERROR| the segment at (" + std::to_string(segment->x) + ", " +
                     std::to_string(segment->y) + ") of " + std::to_string(segment->numSites) +
                     " sites and " + std::to_string(segment->components.size()) +
                     " components is too large to solve: " + what);
}

void SegLegalizer::requireSize(int64_t size) const
{
    if (size > s_maxGraphSize) {
        endTooLarge(std::to_string(size) + " states of at most " + std::to_string(s_maxGraphSize));
    }
}

void SegLegalizer::writePlaces(const FastRoad::GridPlaces& places, bool colours) const
{
    if (!places.has_value()) {
        endTooLarge("two neighbours do not fit into the solver's memory");
    }
    auto place = places->begin();
    for (Component* comp : segment->components) {
        const bool isLeftOut = place->solution < 0;
        if (isLeftOut || place->site < 0) {
            placeAt(*comp, segment->numSites);
        }
        if (!isLeftOut) {
            placeAt(*comp, place->site);
        }
        if (colours && !isLeftOut) {
            comp->solution = place->solution;
        }
        ++place;
    }
}

vireloce::Stretch SegLegalizer::stretch() const
{
    return {*segment, SITE_WIDTH};
}

std::pair<int32_t, int32_t> SegLegalizer::fixedRange(const Net& net) const
{
    const vireloce::Stretch inside = stretch();
    vireloce::Extent extent;
    for (const Pin* pin : net.pins) {
        extent.include(pin->x);
    }
    for (const Component* comp : net.components) {
        if (!inside.contains(comp->x, comp->y)) {
            extent.include(comp->x + cellOf(*comp).width / 2);
        }
    }
    return inside.sitesOf(extent);
}

void SegLegalizer::initFLRs()
{
    netFLRs.clear();
    netFLRs.reserve(design().nets.size());
    for (const Net* net : design().nets) {
        netFLRs.push_back(fixedRange(*net));
    }
}

void SegLegalizer::initLRIDs()
{
    for (Component* comp : segment->components) {
        comp->leftIDs.clear();
        comp->rightIDs.clear();
    }
    std::vector<bool> visited(design().nets.size(), false);
    const auto takeUnvisited = [&visited](const Component& comp, std::vector<int32_t>& ids) {
        for (const Net* net : comp.nets) {
            if (!visited[static_cast<size_t>(net->id)]) {
                visited[static_cast<size_t>(net->id)] = true;
                ids.push_back(net->id);
            }
        }
    };
    for (Component* comp : segment->components) {
        takeUnvisited(*comp, comp->leftIDs);
    }
    visited.assign(visited.size(), false);
    for (auto it = segment->components.rbegin(); it != segment->components.rend(); ++it) {
        takeUnvisited(**it, (*it)->rightIDs);
    }
}

void SegLegalizer::initDataHPWL()
{
    initFLRs();
    initLRIDs();
}

int32_t SegLegalizer::getEdgeCost(Component* comp, int site, int colour)
{
    const Cell& cell = cellOf(*comp);
    const int32_t half = cell.siteWidth / 2;
    int32_t cost = cell.stitchesOf(colour);
    for (const int32_t id : comp->rightIDs) {
        const int32_t right = netFLRs[static_cast<size_t>(id)].second;
        if (right >= 0) {
            cost = addTruncated(cost, std::max(site + half - right, 0), WEIGHT_WRLENG);
        }
    }
    for (const int32_t id : comp->leftIDs) {
        const int32_t left = netFLRs[static_cast<size_t>(id)].first;
        if (left >= 0) {
            cost = addTruncated(cost, std::max(left - half - site, 0), WEIGHT_WRLENG);
        }
    }
    return cost;
}

int32_t SegLegalizer::getEdgeCost_TPL(Component* a, int colA, Component* b, int colB)
{
    return addTruncated(cellOf(*a).stitchesOf(colA) + cellOf(*b).stitchesOf(colB),
                        design().safeSites(*a, colA, *b, colB), WEIGHT_WRLENG);
}

int32_t SegLegalizer::getLdpCost(Component* a, int colA, int offA, Component* b, int colB, int offB)
{
    const int32_t siteA = a->siteX + offA;
    const int32_t siteB = b->siteX + offB;
    if (siteA < 0 || siteB + cellOf(*b).siteWidth > segment->numSites ||
        siteB - siteA - cellOf(*a).siteWidth < design().safeSites(*a, colA, *b, colB)) {
        return INFINITE_COST;
    }
    return getEdgeCost(a, siteA, colA) + getEdgeCost(b, siteB, colB);
}

int32_t SegLegalizer::getEdgeCost_bak(Component* comp, int site, int colour)
{
    const Cell& cell = cellOf(*comp);
    int32_t cost = cell.stitchesOf(colour);
    switch (legalizer->metric) {
    case 0:
        for (const int32_t id : comp->leftIDs) {
            const auto [left, right] = netFLRs[static_cast<size_t>(id)];
            if (left >= 0 && right >= 0) {
                cost = addTruncated(cost, std::max(site - left, 0), WEIGHT_WRLENG);
                cost = addTruncated(cost, std::max(right - site - cell.siteWidth, 0), WEIGHT_WRLENG);
            }
        }
        return cost;
    case 1:
        return cost + std::abs(comp->siteX - site);
    default:
        vireloce::report() << "WARNING| SegLegalizer::getEdgeCost_bak(), unsupported cost metric\n";
        return cost;
    }
}

void SegLegalizer::placeAt(Component& comp, int32_t site) const
{
    if (site < 0) {
        comp.siteX = ceilSites(comp.x - segment->x, SITE_WIDTH);
        return;
    }
    comp.siteX = site;
    comp.x = site * SITE_WIDTH + segment->x;
    if (legalizer->fastRoad != nullptr) {
        legalizer->fastRoad->moved(comp);
    }
}

void SegLegalizer::shift2RightBnd()
{
    for (Component* comp : segment->components) {
        placeAt(*comp, segment->numSites);
    }
}

std::pair<int32_t, int32_t> SegLegalizer::closestSolution(const Component& left, const Component& comp) const
{
    int32_t best = 0;
    int32_t least = std::numeric_limits<int32_t>::max();
    for (int32_t j = 0; j < numColours(comp); ++j) {
        const int32_t dist = design().safeSites(left, left.solution, comp, j);
        if (dist < least) {
            best = j;
            least = dist;
        }
    }
    return {best, least};
}

void SegLegalizer::solveTPL_LEDA() {}
void SegLegalizer::solveOSR_LEDA() {}
void SegLegalizer::solveTPLOSR_LEDA() {}
