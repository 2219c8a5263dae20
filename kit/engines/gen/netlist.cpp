// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/gen/netlist.h"

#include <algorithm>
#include <array>

#include "kit/engines/gen/random.h"

namespace kit::gen {

namespace {

constexpr std::array<int32_t, 10> DEGREES{2, 2, 2, 2, 2, 3, 3, 4, 4, 5}; // of local nets
constexpr int32_t SECOND_NETS = 100; // per mille of the components that drive two nets
constexpr int32_t LEAST_WIDE = 10;
constexpr int32_t MOST_WIDE = 1000;
constexpr int32_t WIDE_DOUBLINGS = 6;
constexpr int32_t SITES_PER_ROW_HEIGHT = LIBRARY_HEIGHT / placer::LIBRARY_SITE;
constexpr int32_t TRIES_PER_MEMBER = 4;

/// Largest integer whose square is no larger.
int32_t rootOf(int32_t value)
{
    int32_t root = 0;
    while (int64_t{root + 1} * (root + 1) <= value) {
        ++root;
    }
    return root;
}

/// Finds components by where they stand.
class Neighbourhood {
public:
    explicit Neighbourhood(const Placement& placement)
        : m_cells(placement.cells), m_rowBegin(static_cast<size_t>(placement.plan.rows) + 1)
    {
        size_t i = 0;
        for (size_t row = 0; row < m_rowBegin.size(); ++row) {
            while (i < m_cells.size() && m_cells[i].row < static_cast<int32_t>(row)) {
                ++i;
            }
            m_rowBegin[row] = i;
        }
    }

    const Placed& cell(int32_t component) const { return m_cells[static_cast<size_t>(component)]; }

    /// The first component from a site on, or the last one of the row; -1 if there is none.
    int32_t at(int32_t row, int32_t site) const
    {
        if (row < 0 || row + 1 >= static_cast<int32_t>(m_rowBegin.size())) {
            return -1;
        }
        const auto begin = m_cells.begin() + static_cast<int64_t>(m_rowBegin[static_cast<size_t>(row)]);
        const auto end = m_cells.begin() + static_cast<int64_t>(m_rowBegin[static_cast<size_t>(row) + 1]);
        if (begin == end) {
            return -1;
        }
        const auto found =
            std::lower_bound(begin, end, site, [](const Placed& cell, int32_t x) { return cell.site < x; });
        return static_cast<int32_t>((found == end ? found - 1 : found) - m_cells.begin());
    }

private:
    const std::vector<Placed>& m_cells;
    std::vector<size_t> m_rowBegin; ///< [rows + 1] first component of a row
};

/// Makes the nets one by one.
class Connector {
public:
    Connector(const Placement& placement, const Options& options)
        : m_options(options), m_plan(placement.plan), m_near(placement), m_random(options.seed, NET_STREAM),
          m_count(static_cast<int32_t>(placement.cells.size()))
    {
        m_netlist.members.reserve(placement.cells.size() * 4);
        m_netlist.netBegin.reserve(placement.cells.size() * 5 / 4);
    }

    Netlist run()
    {
        for (int32_t driver = 0; driver < m_count; ++driver) {
            addNet(driver);
            if (m_random.perMille(SECOND_NETS)) {
                addNet(driver);
            }
        }
        addPins();
        m_netlist.netBegin.push_back(m_netlist.members.size());
        return std::move(m_netlist);
    }

private:
    void beginNet(int32_t firstMember)
    {
        m_netlist.netBegin.push_back(m_netlist.members.size());
        m_netlist.members.push_back(firstMember);
    }

    void addNet(int32_t driver)
    {
        beginNet(driver);
        if (m_random.perMille(m_options.wideNets)) {
            addWideMembers(driver);
        } else {
            addLocalMembers(driver);
        }
        if (m_netlist.members.size() == m_netlist.netBegin.back() + 1) { // nothing near by
            m_netlist.members.push_back(driver > 0 ? driver - 1 : driver + 1);
        }
    }

    void addLocalMembers(int32_t driver)
    {
        const Placed& from = m_near.cell(driver);
        const int32_t degree = m_random.pick(DEGREES);
        for (int32_t tries = degree * TRIES_PER_MEMBER; tries > 0 && size() < degree; --tries) {
            const bool sameRow = m_random.below(2) == 0;
            const int32_t rowOffset = sameRow ? 0 : withSign(1 + m_random.lowBelow(m_options.windowRows));
            const int32_t siteOffset = withSign(m_random.lowBelow(m_options.windowSites + 1));
            addNear(from, rowOffset, siteOffset);
        }
    }

    void addWideMembers(int32_t driver)
    {
        const Placed& from = m_near.cell(driver);
        int32_t degree = LEAST_WIDE;
        for (int32_t i = 0; i < WIDE_DOUBLINGS && m_random.below(2) == 0; ++i) {
            degree *= 2;
        }
        degree = std::min(degree + m_random.below(degree), MOST_WIDE);
        const int32_t rows = rootOf(degree) + 1; // such a square holds some four times as many cells
        const int32_t sites = rows * SITES_PER_ROW_HEIGHT;
        for (int32_t tries = degree * TRIES_PER_MEMBER; tries > 0 && size() < degree; --tries) {
            const int32_t rowOffset = m_random.below(2 * rows + 1) - rows;
            const int32_t siteOffset = m_random.below(2 * sites + 1) - sites;
            addNear(from, rowOffset, siteOffset);
        }
    }

    int32_t size() const
    {
        return static_cast<int32_t>(m_netlist.members.size() - m_netlist.netBegin.back());
    }

    int32_t withSign(int32_t value) { return m_random.below(2) == 0 ? value : -value; }

    /// Adds a component to the last net unless it is in it.
    void addNear(const Placed& from, int32_t rowOffset, int32_t siteOffset)
    {
        const int32_t other = m_near.at(from.row + rowOffset, from.site + siteOffset);
        const auto begin = m_netlist.members.begin() + static_cast<int64_t>(m_netlist.netBegin.back());
        if (other >= 0 && std::find(begin, m_netlist.members.end(), other) == m_netlist.members.end()) {
            m_netlist.members.push_back(other);
        }
    }

    /// Adds the pins, in turn on the four borders, each with its net.
    void addPins()
    {
        Random random(m_options.seed, PIN_STREAM);
        const int32_t count = 2 * rootOf(m_count);
        for (int32_t i = 0; i < count; ++i) {
            const int32_t row = random.below(m_plan.rows);
            const int32_t site = random.below(m_plan.sitesPerRow);
            const std::array<BorderPin, 4> borders{
                {{row, -1}, {row, m_plan.sitesPerRow}, {-1, site}, {m_plan.rows, site}}};
            addPin(borders[static_cast<size_t>(i) % borders.size()]);
        }
    }

    void addPin(const BorderPin& pin)
    {
        const int32_t row = std::clamp(pin.row, 0, m_plan.rows - 1);
        const int32_t near = m_near.at(row, pin.site);
        beginNet(-1 - static_cast<int32_t>(m_netlist.pins.size()));
        m_netlist.members.push_back(std::max(near, 0));
        m_netlist.pins.push_back(pin);
    }

    const Options& m_options;
    const Floorplan& m_plan;
    Neighbourhood m_near;
    Random m_random;
    int32_t m_count; ///< components
    Netlist m_netlist;
};

} // namespace

Netlist connect(const Placement& placement, const Options& options)
{
    return Connector(placement, options).run();
}

} // namespace kit::gen
