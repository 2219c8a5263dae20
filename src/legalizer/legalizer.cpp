// SPDX-License-Identifier: BSD-3-Clause
#include "legalizer/legalizer.h"

#include <algorithm>

#include "db/design.h"
#include "legalizer/fastRoad.h"
#include "legalizer/segLegalizer.h"
#include "qlib/report.h"

Legalizer::Legalizer(Design* placed) : design(placed) {}

Legalizer::~Legalizer() = default;

bool byDec(const std::pair<float, int>& a, const std::pair<float, int>& b)
{
    return a.first > b.first;
}

/// Holds the fast road while a placement runs, also if its end is thrown.
class Legalizer::FastRoadScope {
public:
    explicit FastRoadScope(Legalizer& owner) : m_owner(owner)
    {
        m_owner.fastRoad = std::make_unique<vireloce::FastRoad>(*m_owner.design);
    }
    ~FastRoadScope() { m_owner.fastRoad.reset(); }
    FastRoadScope(const FastRoadScope&) = delete;
    FastRoadScope& operator=(const FastRoadScope&) = delete;

private:
    Legalizer& m_owner;
};

void Legalizer::solveDPlace()
{
    const FastRoadScope scope(*this);
    passCount = 0;
    while (solvePass() > 0) {
    }
}

int32_t Legalizer::solvePass()
{
    vireloce::Progress progress{};
    for (const int32_t id : beginPass()) {
        segDone[static_cast<size_t>(id)] = true;
        progress.overfull += solveSegment(design->segments[static_cast<size_t>(id)]) ? 1 : 0;
        ++progress.segmentsDone;
        if (onProgress) {
            progress.pass = passCount;
            progress.numSegments = static_cast<int32_t>(design->segments.size());
            progress.movedOut = movedOut;
            onProgress(progress);
        }
    }
    return progress.overfull;
}

std::vector<int32_t> Legalizer::beginPass()
{
    ++passCount;
    movedOut = 0;
    segDensity.clear();
    std::vector<std::pair<float, int>> byDensity;
    for (Segment* segment : design->segments) {
        segDensity.push_back(getDensity(segment));
        byDensity.emplace_back(segDensity.back(), static_cast<int>(byDensity.size()));
    }
    // Required: not a stable sort, and nothing added to the comparison; segments of equal density come in the
    // order that the library's introspective sort leaves them in.
    std::sort(byDensity.begin(), byDensity.end(), byDec);
    segDone.assign(design->segments.size(), false);

    std::vector<int32_t> order;
    order.reserve(byDensity.size());
    for (const auto& entry : byDensity) {
        order.push_back(entry.second);
    }
    return order;
}

bool Legalizer::solveSegment(Segment* seg)
{
    SegLegalizer solver(this, seg);
    const int overflow = solver.solveStep1();
    if (overflow < 1) {
        if (design->algo == SegLegalizer::ALGO_SPD) {
            solver.solveStep2();
        }
        return false;
    }
    if (design->algo == SegLegalizer::ALGO_GREEDY) {
        vireloce::endRun("ERROR| cannot solve the placement through greedy algorithm");
    }
    if (!globalMove(seg, overflow)) {
        vireloce::endRun("ERROR| can NOT solve the placement through global moving");
    }
    solver.solveStep2();
    return true;
}

float Legalizer::getDensity(Segment* seg)
{
    int32_t sites = 0;
    for (const Component* comp : seg->components) {
        sites += design->cellOf(*comp).siteWidth;
    }
    return sites == 0 ? 0.0F : static_cast<float>(sites) / static_cast<float>(seg->numSites);
}

int32_t Legalizer::sitesWithGap(const Component& left, const Component& comp) const
{
    return design->safeSites(left, left.solution, comp, comp.solution) + design->cellOf(comp).siteWidth;
}

int Legalizer::getColoredSiteNum(Segment* seg)
{
    const Component* left = seg->components.front();
    int32_t sites = design->cellOf(*left).siteWidth;
    for (auto it = std::next(seg->components.begin()); it != seg->components.end(); ++it) {
        sites += sitesWithGap(*left, **it);
        left = *it;
    }
    return sites;
}

float Legalizer::getColoredDensity(Segment* seg)
{
    const int32_t sites = getColoredSiteNum(seg);
    return sites == 0 ? 0.0F : static_cast<float>(sites) / static_cast<float>(seg->numSites);
}

void Legalizer::refinement()
{
    std::fill(segDone.begin(), segDone.end(), false);
}

void Legalizer::debugGlobalMove(int) {}
