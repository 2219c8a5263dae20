// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/import/core.h"

#include <algorithm>
#include <cstdlib>
#include <map>
#include <numeric>
#include <set>
#include <string>
#include <tuple>

#include "kit/formats/lefdef/units.h"

namespace kit::importing {

namespace {

using lefdef::Def;
using lefdef::DefRow;
using lefdef::Lef;
using lefdef::LefSite;
using lefdef::SiteSize;
using lefdef::SourceReporter;

std::string textOf(std::string_view name)
{
    return std::string(name);
}

/// A length in DBU, none if it is no whole number of them.
std::optional<int64_t> inDbu(lefdef::Length length, int32_t databaseMicrons)
{
    const int64_t dbu = lefdef::dbuDown(length, databaseMicrons);
    const bool whole = dbu == lefdef::dbuUp(length, databaseMicrons);
    return whole && dbu > 0 && dbu <= INT32_MAX ? std::optional(dbu) : std::nullopt;
}

/// A site of rows, and how much it is used.
struct RowSite {
    std::string_view name;
    std::optional<int64_t> width{};  ///< DBU; none if it is not known, or no whole number
    std::optional<int64_t> height{}; ///< as the width
    bool isKnown = false;            ///< the library has it, or its macros name it
    bool isCore = true;              ///< it is not one of pads
    int64_t cells = 0;               ///< movable ones as high as it
    int64_t named = 0;               ///< movable ones whose masters name it

    /// Whether it is the better one for rows of cells.
    bool isBetterThan(const RowSite& other) const
    {
        return std::tuple(cells, isCore, -height.value_or(INT64_MAX), named) >
               std::tuple(other.cells, other.isCore, -other.height.value_or(INT64_MAX), other.named);
    }
};

/// The height that most movable cells have, of equal ones the lower; 0 without cells.
///
/// @param movable  [macro] movable cells of it
/// @param site     only masters that name it count, movable cells or not; empty: all that have such
lefdef::Length commonHeight(const Lef& lef, const std::vector<int64_t>& movable, std::string_view site)
{
    std::map<lefdef::Length, int64_t> counts;
    for (size_t i = 0; i < movable.size(); ++i) {
        if (site.empty() ? movable[i] > 0 : lef.macros[i].site == site) {
            counts[lef.macros[i].height] += movable[i];
        }
    }
    const auto most =
        std::ranges::max_element(counts, [](const auto& a, const auto& b) { return a.second < b.second; });
    return most != counts.end() ? most->first : 0;
}

/// The sites of rows, in their order. One that the library does not have is as wide as the step of its rows,
/// and as high as the cells that name it.
///
/// @param movable  as for commonHeight()
std::vector<RowSite> sitesOf(const Def& def, const Lef& lef, const std::vector<int64_t>& movable)
{
    std::vector<RowSite> sites;
    std::set<std::string_view> seen;
    for (const DefRow& row : def.rows) {
        if (!seen.insert(row.site).second) {
            continue;
        }
        RowSite site{.name = row.site};
        const auto inLef =
            std::ranges::find_if(lef.sites, [&](const LefSite& each) { return each.name == row.site; });
        const lefdef::Length height =
            inLef != lef.sites.end() ? inLef->height : commonHeight(lef, movable, row.site);
        if (inLef != lef.sites.end()) {
            site.width = inDbu(inLef->width, def.databaseMicrons);
            site.isCore = inLef->siteClass != "PAD";
        } else if (row.columns > 1 && row.stepX > 0) {
            site.width = row.stepX;
        }
        site.height = inDbu(height, def.databaseMicrons);
        site.isKnown = inLef != lef.sites.end() || (site.width && site.height);
        for (size_t i = 0; i < movable.size(); ++i) {
            site.cells += lef.macros[i].height == height ? movable[i] : 0;
            site.named += lef.macros[i].site == site.name ? movable[i] : 0;
        }
        sites.push_back(site);
    }
    return sites;
}

/// The least distance of two heights, 0 if all are equal.
int64_t leastPitch(const std::vector<DefRow>& rows)
{
    std::vector<int64_t> heights;
    heights.reserve(rows.size());
    for (const DefRow& row : rows) {
        heights.push_back(row.y);
    }
    std::ranges::sort(heights);
    int64_t least = 0;
    for (size_t i = 1; i < heights.size(); ++i) {
        const int64_t pitch = heights[i] - heights[i - 1];
        least = pitch > 0 && (least == 0 || pitch < least) ? pitch : least;
    }
    return least;
}

class CoreReader {
public:
    /// @param movable  as for commonHeight()
    CoreReader(const Def& def, const Lef& lef, const std::vector<int64_t>& movable, SourceReporter& reporter)
        : m_def(def), m_lef(lef), m_movable(movable), m_reporter(reporter),
          m_sites(sitesOf(def, lef, movable))
    {
    }

    std::optional<Core> read(const std::optional<SiteSize>& given)
    {
        if (m_def.rows.empty()) {
            error("no-rows", 0, "the DEF has no rows", "write ROW statements");
        } else {
            findSiteSize(given);
        }
        if (m_sound) {
            takeRows();
        }
        if (m_sound) {
            orderHeights();
        }
        return m_sound ? std::optional(std::move(m_core)) : std::nullopt;
    }

private:
    void error(const char* code, size_t offset, std::string what, std::string advice)
    {
        m_reporter.error(code, offset, std::move(what), std::move(advice));
        m_sound = false;
    }

    void findSiteSize(const std::optional<SiteSize>& given)
    {
        if (given) {
            setSiteSize(inDbu(given->width, m_def.databaseMicrons),
                        inDbu(given->height, m_def.databaseMicrons));
            return;
        }
        const RowSite* best = nullptr;
        for (const RowSite& site : m_sites) {
            best = site.isKnown && (best == nullptr || site.isBetterThan(*best)) ? &site : best;
        }
        if (best != nullptr) {
            m_site = best->name;
            setSiteSize(best->width, best->height);
            return;
        }
        const auto stepped = std::ranges::find_if(
            m_def.rows, [](const DefRow& row) { return row.columns > 1 && row.stepX > 0; });
        m_core.siteWidth = stepped != m_def.rows.end() ? stepped->stepX : 0;
        m_core.siteHeight = leastPitch(m_def.rows);
        if (m_core.siteHeight <= 0) {
            m_core.siteHeight = inDbu(commonHeight(m_lef, m_movable, ""), m_def.databaseMicrons).value_or(0);
        }
        if (m_core.siteWidth <= 0 || m_core.siteHeight <= 0) {
            error("no-site", m_def.rows.front().offset,
                  "neither the LEF files nor the rows tell the size of site " +
                      textOf(m_def.rows.front().site),
                  "give --site W,H in micrometres");
        }
    }

    void setSiteSize(std::optional<int64_t> width, std::optional<int64_t> height)
    {
        if (!width || !height) {
            error("site-size", m_def.rows.front().offset,
                  "the site is no whole number of DBU wide and high at " +
                      std::to_string(m_def.databaseMicrons) + " DBU per micrometre",
                  "correct UNITS, the LEF's SITE or --site");
            return;
        }
        m_core.siteWidth = *width;
        m_core.siteHeight = *height;
    }

    /// Takes the rows on the core's sites. Where two of them cannot be together, one of the core's site
    /// itself stays, and else the first.
    void takeRows()
    {
        std::vector<const DefRow*> inTurn;
        for (const DefRow& row : m_def.rows) {
            if (fits(row)) {
                inTurn.push_back(&row);
            }
        }
        std::stable_partition(inTurn.begin(), inTurn.end(),
                              [this](const DefRow* row) { return row->site == m_site; });
        for (const DefRow* row : inTurn) {
            addPiece(*row);
        }
        std::ranges::sort(m_core.rows, {}, &Row::offset);
        for (Row& row : m_core.rows) {
            joinPieces(row);
        }
        if (m_sound && m_core.rows.empty()) {
            error("no-rows", m_def.rows.front().offset, "no row is left", "see the warnings above");
        }
    }

    /// Whether a row stands on sites as the core's; a warning says so if not.
    bool fits(const DefRow& row)
    {
        const auto site = std::ranges::find(m_sites, row.site, &RowSite::name);
        if (site->isKnown && site->height != m_core.siteHeight) { // of others, only the step is known
            leaveOut(row, "other-site", "", "only rows of the site that most cells have are placed");
        } else if (row.rows != 1 || isOnItsSide(row.orient)) {
            leaveOut(row, "vertical-row", "it is vertical", "the placer takes horizontal rows only");
        } else if (row.columns > 1 && row.stepX != 0 && row.stepX != m_core.siteWidth) {
            leaveOut(row, "row-step",
                     "it has step " + std::to_string(row.stepX) + ", not the site's width of " +
                         std::to_string(m_core.siteWidth),
                     "correct it, the LEF's SITE or --site");
        } else if (row.x + row.columns * m_core.siteWidth > INT32_MAX ||
                   row.y + m_core.siteHeight > INT32_MAX) {
            error("row-range", row.offset, "row " + textOf(row.name) + " leaves the range of 32 bits",
                  "correct it");
        } else {
            return true;
        }
        return false;
    }

    void leaveOut(const DefRow& row, const char* code, const std::string& why, std::string advice)
    {
        m_reporter.warning(code, row.offset,
                           "row " + textOf(row.name) + " of site " + textOf(row.site) + " is left out" +
                               (why.empty() ? "" : ": " + why),
                           std::move(advice));
    }

    /// Adds a row to those at its height, if it meets no other the wrong way; a warning says so if it does.
    void addPiece(const DefRow& from)
    {
        const Piece piece{.begin = from.x, .end = from.x + from.columns * m_core.siteWidth};
        if (const auto* const other = nearRow(from.y)) {
            leaveOut(from, "row-overlap",
                     "it is " + std::to_string(std::abs(from.y - other->y)) + " DBU from row " +
                         textOf(other->name) + ", less than the site's height of " +
                         std::to_string(m_core.siteHeight),
                     "remove one of them");
            return;
        }
        const auto [at, isNew] = m_rowAt.try_emplace(from.y, m_core.rows.size());
        if (isNew) {
            m_core.rows.push_back({.name = from.name,
                                   .site = from.site,
                                   .y = from.y,
                                   .orient = from.orient,
                                   .offset = from.offset});
        }
        Row& row = m_core.rows[at->second];
        if (row.orient != from.orient) {
            leaveOut(from, "row-orient",
                     "it lies " + textOf(nameOf(from.orient)) + ", and row " + textOf(row.name) +
                         " at the same height " + textOf(nameOf(row.orient)),
                     "rows at one height must lie the same way");
        } else if (const auto other = std::ranges::find_if(
                       row.pieces, [&](const Piece& each) { return isOffSites(each, piece); });
                   other != row.pieces.end()) {
            leaveOut(from, "row-overlap", "it overlaps another at its height, and their sites do not meet",
                     "cut one of them");
        } else {
            row.pieces.push_back(piece);
        }
    }

    /// Whether two pieces of a row overlap, and the sites of one lie between those of the other.
    bool isOffSites(const Piece& a, const Piece& b) const
    {
        return a.begin < b.end && b.begin < a.end && (a.begin - b.begin) % m_core.siteWidth != 0;
    }

    /// A row at another height that overlaps one at this height.
    const Row* nearRow(int64_t y) const
    {
        const auto after = m_rowAt.upper_bound(y);
        if (after != m_rowAt.end() && after->first < y + m_core.siteHeight) {
            return &m_core.rows[after->second];
        }
        const auto from = m_rowAt.lower_bound(y);
        if (from != m_rowAt.begin() && std::prev(from)->first > y - m_core.siteHeight) {
            return &m_core.rows[std::prev(from)->second];
        }
        return nullptr;
    }

    static void joinPieces(Row& row)
    {
        std::ranges::sort(row.pieces, {}, &Piece::begin);
        std::vector<Piece> joined;
        for (const Piece& piece : row.pieces) {
            if (joined.empty() || piece.begin > joined.back().end) {
                joined.push_back(piece);
            } else {
                joined.back().end = std::max(joined.back().end, piece.end);
            }
        }
        row.pieces = std::move(joined);
    }

    void orderHeights()
    {
        std::vector<size_t>& order = m_core.byHeight;
        order.resize(m_core.rows.size());
        std::iota(order.begin(), order.end(), size_t{0});
        std::ranges::sort(order, {}, [&](size_t i) { return m_core.rows[i].y; });
    }

    const Def& m_def;
    const Lef& m_lef;
    const std::vector<int64_t>& m_movable;
    SourceReporter& m_reporter;
    std::vector<RowSite> m_sites;
    Core m_core;
    std::string_view m_site;           ///< the core's, if it was chosen
    std::map<int64_t, size_t> m_rowAt; ///< by height
    bool m_sound = true;
};

int64_t floorTo(int64_t value, int64_t origin, int64_t step)
{
    const int64_t offset = value - origin;
    const int64_t down = offset >= 0 ? offset / step : -((-offset + step - 1) / step);
    return origin + down * step;
}

/// Adds what an interval covers of each piece, whole sites of it.
void block(Row& row, const Interval& covered, int64_t siteWidth)
{
    for (const Piece& piece : row.pieces) {
        const Interval part{.begin = std::max(floorTo(covered.begin, piece.begin, siteWidth), piece.begin),
                            .end = std::min(-floorTo(-covered.end, -piece.begin, siteWidth), piece.end)};
        if (part.begin < part.end) {
            row.blocks.push_back(part);
        }
    }
}

/// Blocks what lies between the pieces, and the rest of a last site that only the joined row has.
void blockGaps(Row& row, int64_t siteWidth)
{
    for (size_t i = 1; i < row.pieces.size(); ++i) {
        row.blocks.push_back({.begin = row.pieces[i - 1].end, .end = row.pieces[i].begin});
    }
    const int64_t end = row.begin() + row.numSites(siteWidth) * siteWidth;
    if (end > row.end()) {
        row.blocks.push_back({.begin = row.end(), .end = end});
    }
}

void mergeBlocks(Row& row)
{
    std::ranges::sort(row.blocks, {}, &Interval::begin);
    std::vector<Interval> merged;
    for (const Interval& block : row.blocks) {
        if (!merged.empty() && block.begin <= merged.back().end) {
            merged.back().end = std::max(merged.back().end, block.end);
        } else {
            merged.push_back(block);
        }
    }
    row.blocks = std::move(merged);
}

} // namespace

size_t Core::firstAbove(int64_t y) const
{
    const auto at = std::partition_point(byHeight.begin(), byHeight.end(),
                                         [&](size_t row) { return rows[row].y + siteHeight <= y; });
    return static_cast<size_t>(at - byHeight.begin());
}

size_t Core::rowAt(int64_t y) const
{
    const size_t at = firstAbove(y);
    return at < byHeight.size() && rows[byHeight[at]].y == y ? byHeight[at] : NONE;
}

std::optional<Core> readCore(const Def& def, const Lef& lef, const std::vector<int64_t>& movable,
                             const std::optional<SiteSize>& site, SourceReporter& reporter)
{
    return CoreReader(def, lef, movable, reporter).read(site);
}

void addBlocks(Core& core, const std::vector<lefdef::DefRect>& rects)
{
    constexpr size_t MOST_UNMERGED = 64;
    std::vector<size_t> limits(core.rows.size(), MOST_UNMERGED);
    for (const lefdef::DefRect& rect : rects) {
        if (rect.xl >= rect.xh) {
            continue;
        }
        for (size_t i = core.firstAbove(rect.yl); i < core.byHeight.size(); ++i) {
            Row& row = core.rows[core.byHeight[i]];
            if (row.y >= rect.yh) {
                break;
            }
            block(row, {.begin = rect.xl, .end = rect.xh}, core.siteWidth);
            if (row.blocks.size() > limits[core.byHeight[i]]) { // many may be on one place
                mergeBlocks(row);
                limits[core.byHeight[i]] = std::max(MOST_UNMERGED, 2 * row.blocks.size());
            }
        }
    }
    for (Row& row : core.rows) {
        blockGaps(row, core.siteWidth);
        mergeBlocks(row);
    }
}

std::vector<Interval> freeStretches(const Row& row)
{
    std::vector<Interval> stretches;
    int64_t begin = row.begin();
    for (const Interval& block : row.blocks) {
        if (begin < block.begin) {
            stretches.push_back({.begin = begin, .end = block.begin});
        }
        begin = block.end;
    }
    if (begin < row.end()) {
        stretches.push_back({.begin = begin, .end = row.end()});
    }
    return stretches;
}

} // namespace kit::importing
