// SPDX-License-Identifier: BSD-3-Clause
#include "refine/orderedProgram.h"

#include <optional>

#include "refine/programStep.h"
#include "support/property.h"

namespace {

using refine::OrderedProgram;
using refine::ProgramItem;
using refine::ProgramOption;
using refine::ProgramSpot;

/// A random problem, and what is true of it.
class OrderedProblem {
public:
    explicit OrderedProblem(int32_t mostSites)
    {
        const auto count = test::draw<size_t>(1, mostSites > 20 ? 3 : mostSites > 7 ? 4 : 6);
        sites = test::draw(1, mostSites + 1);
        program.clear(count);
        m_gaps.resize(count);
        int32_t left = test::draw(1, 4);
        int32_t packed = 0;
        for (size_t i = 0; i < count; ++i) {
            ProgramItem& item = program.items[i];
            item.width = test::draw(1, 4);
            item.low = packed + test::draw(0, 4);
            packed += item.width;
            item.leftClasses = left;
            item.rightClasses = test::draw(1, 4);
            left = test::draw(1, 4);
            addCosts(i);
            addOptions(item);
            if (i > 0) {
                const ProgramItem& before = program.items[i - 1];
                for (int32_t k = before.rightClasses * item.leftClasses; k > 0; --k) {
                    m_gaps[i].push_back(test::drawOne({0, 0, 1, 2, 3, 1 << 20}));
                }
                item.gaps = m_gaps[i].data();
            }
        }
        for (int32_t c = program.items.front().leftClasses; c > 0; --c) {
            program.earliest.push_back(program.items.front().low + test::draw(-2, 4));
        }
        for (int32_t c = program.items.back().rightClasses; c > 0; --c) {
            program.latest.push_back(program.items.back().low + test::draw(-2, sites + 2));
        }
    }

    /// The least cost of all arrangements: of each cell in each option on each site.
    std::optional<int64_t> least()
    {
        m_least.reset();
        search(0, 0, -1, 0);
        return m_least;
    }

    /// The cost of an arrangement, none if it breaks a rule.
    std::optional<int64_t> costOf(const std::vector<ProgramSpot>& spots)
    {
        m_least.reset();
        m_given = &spots;
        search(0, 0, -1, 0);
        m_given = nullptr;
        return m_least;
    }

    OrderedProgram program;
    int32_t sites = 0;

private:
    void addCosts(size_t i)
    {
        for (const bool mirrored : {false, true}) {
            int32_t* const costs = program.costRoom(i, mirrored);
            // What is beyond the window must not matter.
            std::fill_n(costs, OrderedProgram::MOST_SITES, -1000);
            for (int32_t p = 0; p < sites; ++p) {
                costs[p] = test::draw(0, 6);
            }
            program.items[i].costs[mirrored ? 1 : 0] = costs;
        }
    }

    void addOptions(ProgramItem& item)
    {
        item.optionBegin = static_cast<int32_t>(program.options.size());
        for (int32_t state = test::draw(1, 5); state > 0; --state) {
            program.options.push_back({test::draw(0, item.leftClasses), test::draw(0, item.rightClasses),
                                       state, test::draw(0, 4), test::draw(0, 2) == 1});
        }
        item.optionEnd = static_cast<int32_t>(program.options.size());
    }

    void search(size_t i, int32_t end, int32_t rightClass, int64_t cost)
    {
        if (m_least && cost >= *m_least) {
            return; // no cost is negative
        }
        if (i == program.items.size()) {
            m_least = cost;
            return;
        }
        const ProgramItem& item = program.items[i];
        for (int32_t o = item.optionBegin; o < item.optionEnd; ++o) {
            const ProgramOption& option = program.options[static_cast<size_t>(o)];
            const int32_t first =
                i == 0
                    ? program.earliest[static_cast<size_t>(option.leftClass)]
                    : end + m_gaps[i][static_cast<size_t>(rightClass * item.leftClasses + option.leftClass)];
            const int32_t last = i + 1 == program.items.size()
                                     ? program.latest[static_cast<size_t>(option.rightClass)]
                                     : item.low + sites - 1;
            for (int32_t site = std::max(first, item.low); site <= std::min(last, item.low + sites - 1);
                 ++site) {
                if (m_given == nullptr ||
                    ((*m_given)[i].site == site && (*m_given)[i].state == option.state)) {
                    search(i + 1, site + item.width, option.rightClass,
                           cost + item.costs[option.mirrored ? 1 : 0][site - item.low] + option.price);
                }
            }
        }
    }

    std::vector<std::vector<int32_t>> m_gaps;
    std::optional<int64_t> m_least;
    const std::vector<ProgramSpot>* m_given = nullptr;
};

/// Whether the program says of a problem what a search says.
void compareOrdered(int32_t mostSites)
{
    OrderedProblem problem(mostSites);
    const int32_t cost = problem.program.solve(problem.sites);
    const std::optional<int64_t> least = problem.least();
    RC_ASSERT((cost < OrderedProgram::NEVER) == least.has_value());
    if (least) {
        RC_ASSERT(int64_t{cost} == *least);
        std::vector<ProgramSpot> spots;
        problem.program.trace(spots);
        RC_ASSERT(problem.costOf(spots) == least);
    }
}

} // namespace

PROPERTY_TIMES(OrderedProgram, FindsTheLeastCostOfAllArrangements, 15)
{
    compareOrdered(7);
}

PROPERTY_TIMES(OrderedProgram, FindsTheLeastCostInWindowsOfAnyWidth, 4)
{
    compareOrdered(test::drawOne({8, 9, 12, 16, 17}));
}

// Their arrangements are too many for a search of all; two cells of few options are not.
PROPERTY_TIMES(OrderedProgram, FindsTheLeastCostInTheWidestWindows, 2)
{
    compareOrdered(test::drawOne({32, 33, 64}));
}

PROPERTY_TIMES(OrderedProgram, InstructionSetsFindTheSame, 3)
{
    OrderedProblem problem(test::drawOne({7, 8, 16, 32, 64}));
    std::vector<ProgramSpot> first;
    const int32_t cost = problem.program.solve(problem.sites);
    if (cost < OrderedProgram::NEVER) {
        problem.program.trace(first);
    }
    for (const refine::ProgramStepFunction step : refine::programStepsHere()) {
        problem.program.setStep(step);
        RC_ASSERT(problem.program.solve(problem.sites) == cost);
        std::vector<ProgramSpot> spots;
        if (cost < OrderedProgram::NEVER) {
            problem.program.trace(spots);
        }
        RC_ASSERT(std::ranges::equal(spots, first, [](const ProgramSpot& a, const ProgramSpot& b) {
            return a.site == b.site && a.state == b.state;
        }));
    }
}

// A program that has solved something else before finds the same.
PROPERTY_TIMES(OrderedProgram, RemembersNothing, 3)
{
    OrderedProblem first(12);
    OrderedProblem second(7);
    const int32_t cost = second.program.solve(second.sites);
    std::vector<ProgramSpot> spots;
    if (cost < OrderedProgram::NEVER) {
        second.program.trace(spots);
    }
    OrderedProgram& program = first.program;
    program.solve(first.sites);
    program.clear(second.program.items.size());
    program.items = second.program.items;
    program.options = second.program.options;
    program.earliest = second.program.earliest;
    program.latest = second.program.latest;
    RC_ASSERT(program.solve(second.sites) == cost);
    if (cost < OrderedProgram::NEVER) {
        std::vector<ProgramSpot> again;
        program.trace(again);
        RC_ASSERT(std::ranges::equal(again, spots, [](const ProgramSpot& a, const ProgramSpot& b) {
            return a.site == b.site && a.state == b.state;
        }));
    }
}
