// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/verify/pairs.h"

#include <algorithm>
#include <string>

#include "kit/design/metal.h"
#include "kit/geometry/sweep.h"

namespace kit::verify {

namespace {

class PairCheck {
public:
    PairCheck(const placer::Design& design, const design::Layout& layout, const design::Scale& scale,
              const PairRules& rules, design::Issues& issues)
        : m_design(design), m_layout(layout), m_scale(scale), m_reach(scale.ofLibrary(rules.minDist)),
          m_gauge(m_reach), m_issues(issues), m_mostIssues(issues.size() + rules.mostPairs)
    {
    }

    void run()
    {
        const std::vector<design::Band>& bands = m_layout.bands();
        bool whole = true;
        for (size_t i = 0; i < bands.size() && whole; ++i) {
            whole = checkBand(bands[i]);
            for (size_t j = i + 1; j < bands.size() && whole && near(bands[i], bands[j]); ++j) {
                whole = checkBands(bands[i], bands[j]);
            }
        }
        if (!whole) {
            m_issues.push_back({.kind = design::Kind::TOO_MANY,
                                .what = "the search for close pairs ended after " +
                                        std::to_string(m_issues.size()) +
                                        " issues: are the cells spread over the rows at all?"});
        }
    }

private:
    bool near(const design::Band& lower, const design::Band& upper) const
    {
        return upper.y - lower.y < 2 * m_layout.tallest() + m_reach;
    }

    bool checkBand(const design::Band& band)
    {
        return geometry::sweepRow(band.spans, m_reach, [&](size_t left, size_t right) {
            return checkPair(band.cells[left], band.cells[right], design::Kind::CONFLICT);
        });
    }

    bool checkBands(const design::Band& lower, const design::Band& upper)
    {
        return geometry::sweepRows(lower.spans, upper.spans, m_reach, [&](size_t first, size_t second) {
            return checkPair(lower.cells[first], upper.cells[second], design::Kind::ROW_CONFLICT);
        });
    }

    bool checkPair(const design::Standing& a, const design::Standing& b, design::Kind kindOfConflict)
    {
        checkOutlines(a, b);
        const design::Closeness close = m_gauge.measure(a, b);
        if (close.shapePairs > 0) {
            design::Issue issue = issueOf(kindOfConflict, a, b);
            issue.distance = m_scale.toLibrary(close.distance);
            issue.shapePairs = close.shapePairs;
            issue.mask = close.mask;
            issue.box = design::Scale::toDbu(close.first);
            issue.otherBox = design::Scale::toDbu(close.second);
            m_issues.push_back(issue);
        }
        return m_issues.size() < m_mostIssues;
    }

    void checkOutlines(const design::Standing& a, const design::Standing& b)
    {
        const design::FineBox boxA = a.outline();
        const design::FineBox boxB = b.outline();
        const design::FineBox common{std::max(boxA.xl, boxB.xl), std::max(boxA.yl, boxB.yl),
                                     std::min(boxA.xh, boxB.xh), std::min(boxA.yh, boxB.yh)};
        if (common.xl < common.xh && common.yl < common.yh) {
            design::Issue issue = issueOf(design::Kind::CELL_OVERLAP, a, b);
            issue.box = design::Scale::toDbu(common);
            m_issues.push_back(issue);
        }
    }

    design::Issue issueOf(design::Kind kind, const design::Standing& a, const design::Standing& b) const
    {
        return {.kind = kind,
                .line = m_design.components[static_cast<size_t>(a.component)].line,
                .component = a.component,
                .other = b.component};
    }

    const placer::Design& m_design;
    const design::Layout& m_layout;
    const design::Scale& m_scale;
    int64_t m_reach; ///< distance that metal needs, fine units
    design::MetalGauge m_gauge;
    design::Issues& m_issues;
    size_t m_mostIssues;
};

} // namespace

void checkPairs(const placer::Design& design, const design::Layout& layout, const design::Scale& scale,
                const PairRules& rules, design::Issues& issues)
{
    PairCheck(design, layout, scale, rules, issues).run();
}

} // namespace kit::verify
