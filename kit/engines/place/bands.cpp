// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/place/bands.h"

#include <algorithm>
#include <map>

#include "app/parameters.h"
#include "db/design.h"
#include "kit/design/standing.h"
#include "kit/design/stretches.h"

namespace kit::place {

namespace {

int64_t endOf(const Segment& segment)
{
    return segment.x + int64_t{segment.numSites} * SITE_WIDTH;
}

/// Sites of a row in a stretch that are in a segment of the band as well.
void addRuns(const placer::Row& row, const design::Stretch& stretch, Band& band)
{
    for (Segment* segment : band.allSegments) {
        int64_t x = std::max<int64_t>(stretch.x, segment->x);
        x += (row.step - (x - row.x) % row.step) % row.step;
        // A segment has whole sites, counted from an end that need not be on a site of the row.
        const int64_t end = std::min(stretch.end, endOf(*segment) + SITE_WIDTH - 1);
        if (x + row.step <= end) {
            band.runs.push_back({.x = x, .end = end, .step = row.step});
            band.segments.push_back(segment);
        }
    }
}

/// From the left, and none over another: where rows overlap, a run begins behind the one before.
void sortRuns(Band& band)
{
    std::vector<std::pair<SiteRun, Segment*>> all;
    for (size_t i = 0; i < band.runs.size(); ++i) {
        all.emplace_back(band.runs[i], band.segments[i]);
    }
    std::ranges::stable_sort(all, {}, [](const auto& run) { return run.first.x; });
    band.runs.clear();
    band.segments.clear();
    for (auto& [run, segment] : all) {
        if (!band.runs.empty() && run.x < band.runs.back().end) {
            const int64_t behind = band.runs.back().end - run.x;
            run.x += (behind + run.step - 1) / run.step * run.step;
        }
        if (run.x + run.step <= run.end) {
            band.runs.push_back(run);
            band.segments.push_back(segment);
        }
    }
}

/// What stays where it is and has masks.
void addObstacles(const TrueDesign& truth, Gaps& gaps, std::map<int64_t, Band>& byY)
{
    if (truth.design.fixed.empty()) {
        return;
    }
    std::vector<const placer::ColorRecord*> records(truth.design.components.size(), nullptr);
    for (const placer::ColorRecord& record : truth.fixedColors) {
        records.push_back(&record);
    }
    const design::Layout layout(truth.design, records, {truth.design.rows.front().step});
    for (const design::Band& standing : layout.bands()) {
        const int64_t y = standing.y / design::Scale::ofDbu(1);
        const auto band = byY.find(y);
        for (const design::Standing& cell : standing.cells) {
            if (band != byY.end() && truth.design.isFixed(cell.component) && !cell.masks.empty()) {
                const auto [x, lie] =
                    gaps.addObstacle(cell, truth.turnedRows.contains(static_cast<int32_t>(y)));
                band->second.obstacles.push_back({cell.component, x, lie});
            }
        }
    }
}

} // namespace

std::optional<size_t> Band::runOf(int64_t x, int64_t width) const
{
    const auto next = std::ranges::upper_bound(runs, x, {}, &SiteRun::x);
    if (next == runs.begin()) {
        return {};
    }
    const SiteRun& run = *std::prev(next);
    const bool fits = x + width <= run.end && (x - run.x) % run.step == 0;
    return fits ? std::optional<size_t>(std::prev(next) - runs.begin()) : std::nullopt;
}

size_t Band::rankOf(int64_t x) const
{
    return static_cast<size_t>(std::ranges::upper_bound(tenants, x, {}, &Tenant::x) - tenants.begin());
}

std::vector<Band> bandsOf(const Design& design, const TrueDesign& truth, Gaps& gaps)
{
    std::map<int64_t, Band> byY;
    for (Segment* segment : design.segments) {
        Band& band = byY[segment->y];
        band.y = segment->y;
        band.allSegments.push_back(segment);
    }
    for (const design::Stretch& stretch : design::freeStretches(truth.design)) {
        const placer::Row& row = truth.design.rows[static_cast<size_t>(stretch.row)];
        if (const auto band = byY.find(row.y); band != byY.end() && row.step > 0) {
            addRuns(row, stretch, band->second);
        }
    }
    addObstacles(truth, gaps, byY);
    std::vector<Band> bands;
    for (auto& [y, band] : byY) {
        sortRuns(band);
        bands.push_back(std::move(band));
    }
    return bands;
}

void enterTenants(const Band& band, const Gaps& gaps, Design& design)
{
    for (Segment* segment : band.allSegments) {
        segment->components.clear();
    }
    for (const Tenant& tenant : band.tenants) {
        if (const std::optional<size_t> run = band.runOf(tenant.x, gaps.widthOf(tenant.lie.cell))) {
            Component& comp = *design.components[static_cast<size_t>(tenant.component)];
            Segment& segment = *band.segments[*run];
            comp.siteX = static_cast<int32_t>((tenant.x - segment.x) / SITE_WIDTH);
            segment.components.push_back(&comp);
        }
    }
}

std::vector<ClosePair> closePairs(const Band& band, Gaps& gaps)
{
    const std::vector<Tenant>& tenants = band.tenants;
    std::vector<ClosePair> pairs;
    for (size_t i = 0; i < tenants.size(); ++i) {
        for (size_t j = i + 1; j < tenants.size(); ++j) {
            const int64_t apart = tenants[j].x - tenants[i].x;
            if (apart >= gaps.farthestOf(tenants[i].lie.cell)) {
                break;
            }
            if (apart < gaps.between(tenants[i].lie, tenants[j].lie)) {
                pairs.push_back({i, j, tenants[i].component, tenants[j].component});
            }
        }
    }
    for (const Tenant& obstacle : band.obstacles) {
        const int64_t end = obstacle.x + gaps.farthestOf(obstacle.lie.cell);
        for (size_t i = band.rankOf(obstacle.x - gaps.farthest()); i < tenants.size() && tenants[i].x < end;
             ++i) {
            const int64_t apart = obstacle.x - tenants[i].x;
            if (apart < gaps.between(tenants[i].lie, obstacle.lie) &&
                -apart < gaps.between(obstacle.lie, tenants[i].lie)) {
                pairs.push_back({i, i, tenants[i].component, obstacle.component});
            }
        }
    }
    return pairs;
}

} // namespace kit::place
