// SPDX-License-Identifier: BSD-3-Clause
#include <algorithm>

#include "kit/design/standing.h"
#include "kit/design/stretches.h"
#include "kit/engines/refine/parts.h"

namespace kit::refine {

namespace {

/// The first site of a row from x on.
int64_t onSite(const placer::Row& row, int64_t x)
{
    return x + (row.step - (x - row.x) % row.step) % row.step;
}

} // namespace

Rows::Rows(const Inputs& inputs, const std::vector<bool>& stays, ::refine::Model& model)
    : m_inputs(inputs), m_design(inputs.placed.design), m_model(model)
{
    m_model.step = unitsOfDbu(m_design.rows.front().step);
    std::map<int32_t, bool> turned; // by bottom edges
    for (const placer::Row& row : m_design.rows) {
        turned[row.y] |= m_inputs.map && design::turnOf(row.orient).mirrorY;
    }
    for (size_t i = 0; i < stays.size(); ++i) {
        if (stays[i]) {
            turned.try_emplace(m_design.components[i].y, false);
        }
    }
    for (const auto& [y, isTurned] : turned) {
        m_rowAt.emplace(y, static_cast<int32_t>(m_model.rows.size()));
        m_model.rows.push_back({unitsOfDbu(y), isTurned});
    }
    for (const placer::Row& row : m_design.rows) {
        m_designRowAt.emplace(row.y, m_rowAt.at(row.y));
        if (!isLikeOthers(row)) {
            m_others.push_back(&row);
        }
    }
    addRuns();
}

/// Whether a row has the sites of the first one, and is turned as all beside it are.
bool Rows::isLikeOthers(const placer::Row& row) const
{
    const bool isTurned = m_inputs.map && design::turnOf(row.orient).mirrorY;
    return row.step == m_design.rows.front().step &&
           isTurned == m_model.rows[static_cast<size_t>(m_rowAt.at(row.y))].turned;
}

void Rows::addRuns()
{
    std::vector<std::vector<::refine::Run>> runs(m_model.rows.size());
    for (const design::Stretch& stretch : design::freeStretches(m_design)) {
        const placer::Row& row = m_design.rows[static_cast<size_t>(stretch.row)];
        const int32_t index = m_rowAt.at(row.y);
        if (!isLikeOthers(row)) {
            continue;
        }
        const int64_t x = onSite(row, stretch.x);
        const int64_t end = std::min(stretch.end, row.x + int64_t{row.numSites} * row.step);
        units(end * UNITS); // is within the bounds, too
        if (end - x >= row.step) {
            runs[static_cast<size_t>(index)].push_back(
                {.row = index, .x = unitsOfDbu(x), .sites = static_cast<int32_t>((end - x) / row.step)});
        }
    }
    for (std::vector<::refine::Run>& ofRow : runs) {
        addRow(ofRow);
    }
}

/// Adds the runs of a row: where some overlap, one begins behind the one before.
void Rows::addRow(std::vector<::refine::Run>& runs)
{
    const int32_t step = m_model.step;
    std::ranges::stable_sort(runs, {}, &::refine::Run::x);
    const size_t first = m_model.runs.size();
    for (::refine::Run& run : runs) {
        if (m_model.runs.size() > first) {
            const ::refine::Run& before = m_model.runs.back();
            const int32_t over = before.x + before.sites * step - run.x;
            const int32_t taken = over > 0 ? (over + step - 1) / step : 0;
            run.x += taken * step;
            run.sites -= taken;
        }
        if (run.sites > 0) {
            m_model.runs.push_back(run);
        }
    }
}

int32_t Rows::at(int64_t y) const
{
    const auto row = m_rowAt.find(y);
    return row == m_rowAt.end() ? -1 : row->second;
}

int32_t Rows::nearest(int64_t y) const
{
    const auto above = m_designRowAt.lower_bound(y);
    if (above == m_designRowAt.begin()) {
        return above->second;
    }
    const auto below = std::prev(above);
    return above == m_designRowAt.end() || y - below->first <= above->first - y ? below->second
                                                                                : above->second;
}

bool Rows::isOnOtherSites(const placer::Component& comp, int64_t width) const
{
    return std::ranges::any_of(m_others, [&](const placer::Row* row) {
        return row->y == comp.y && comp.x >= row->x && (comp.x - row->x) % row->step == 0 &&
               comp.x + width <= row->x + int64_t{row->numSites} * row->step;
    });
}

} // namespace kit::refine
