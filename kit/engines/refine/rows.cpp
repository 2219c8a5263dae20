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

Rows::Rows(const Inputs& inputs, ::refine::Model& model)
    : m_inputs(inputs), m_design(inputs.placed.design), m_model(model)
{
    m_model.step = unitsOfDbu(m_design.rows.front().step);
    std::map<int32_t, bool> turned; // by bottom edges
    for (const placer::Row& row : m_design.rows) {
        turned[row.y] |= m_inputs.map && design::turnOf(row.orient).mirrorY;
    }
    for (const placer::Component& comp : m_design.components) {
        turned.try_emplace(comp.y, false);
    }
    for (const auto& [y, isTurned] : turned) {
        m_rowAt.emplace(y, static_cast<int32_t>(m_model.rows.size()));
        m_model.rows.push_back({unitsOfDbu(y), isTurned});
    }
    addRuns();
}

void Rows::addRuns()
{
    const placer::Row& first = m_design.rows.front();
    std::vector<std::vector<::refine::Run>> runs(m_model.rows.size());
    for (const design::Stretch& stretch : design::freeStretches(m_design)) {
        const placer::Row& row = m_design.rows[static_cast<size_t>(stretch.row)];
        const int32_t index = m_rowAt.at(row.y);
        const bool isTurned = m_inputs.map && design::turnOf(row.orient).mirrorY;
        if (row.step != first.step || isTurned != m_model.rows[static_cast<size_t>(index)].turned) {
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
    m_firstRun.push_back(m_model.runs.size());
    for (::refine::Run& run : runs) {
        if (m_model.runs.size() > m_firstRun.back()) {
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

bool Rows::isOnSites(int32_t row, int32_t x, int32_t width) const
{
    const auto begin = m_model.runs.begin() + static_cast<ptrdiff_t>(m_firstRun[static_cast<size_t>(row)]);
    const auto end =
        static_cast<size_t>(row) + 1 < m_firstRun.size()
            ? m_model.runs.begin() + static_cast<ptrdiff_t>(m_firstRun[static_cast<size_t>(row) + 1])
            : m_model.runs.end();
    const auto next =
        std::upper_bound(begin, end, x, [](int32_t at, const ::refine::Run& run) { return at < run.x; });
    if (next == begin) {
        return false;
    }
    const ::refine::Run& run = *std::prev(next);
    return (x - run.x) % m_model.step == 0 && x + width <= run.x + run.sites * m_model.step;
}

} // namespace kit::refine
