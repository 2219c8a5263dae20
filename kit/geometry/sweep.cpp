// SPDX-License-Identifier: BSD-3-Clause
#include "kit/geometry/sweep.h"

#include <algorithm>
#include <vector>

namespace kit::geometry {

namespace {

/// The spans that something further right may still come near to.
class View {
public:
    View(std::span<const Span> spans, int64_t reach) : m_spans(spans), m_reach(reach) {}

    void add(size_t span) { m_seen.push_back(span); }

    /// Drops what is out of reach of everything from `from` on; the rest is in order of addition.
    const std::vector<size_t>& from(int64_t from)
    {
        std::erase_if(m_seen, [&](size_t span) { return from - m_spans[span].to >= m_reach; });
        return m_seen;
    }

private:
    std::span<const Span> m_spans;
    int64_t m_reach;
    std::vector<size_t> m_seen;
};

} // namespace

bool sweepRow(std::span<const Span> spans, int64_t reach, const VisitPair& visit)
{
    View view(spans, reach);
    for (size_t i = 0; i < spans.size(); ++i) {
        for (const size_t left : view.from(spans[i].from)) {
            if (!visit(left, i)) {
                return false;
            }
        }
        view.add(i);
    }
    return true;
}

bool sweepRows(std::span<const Span> first, std::span<const Span> second, int64_t reach,
               const VisitPair& visit)
{
    View firstView(first, reach);
    View secondView(second, reach);
    const auto visitAll = [](const std::vector<size_t>& seen, const auto& visitOne) {
        return std::ranges::all_of(seen, visitOne);
    };
    for (size_t i = 0, j = 0; i < first.size() || j < second.size();) {
        const bool takeFirst = j == second.size() || (i < first.size() && first[i].from <= second[j].from);
        if (takeFirst) {
            if (!visitAll(secondView.from(first[i].from), [&](size_t other) { return visit(i, other); })) {
                return false;
            }
            firstView.add(i++);
        } else {
            if (!visitAll(firstView.from(second[j].from), [&](size_t other) { return visit(other, j); })) {
                return false;
            }
            secondView.add(j++);
        }
    }
    return true;
}

} // namespace kit::geometry
