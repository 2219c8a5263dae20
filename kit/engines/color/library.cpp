// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/color/library.h"

#include <algorithm>
#include <cstdio>
#include <map>
#include <numeric>

#include "kit/base/fault.h"
#include "kit/base/reporter.h"
#include "kit/formats/lefdef/units.h"

namespace kit::color {

namespace {

using lefdef::Lef;
using lefdef::LefMacro;
using lefdef::LefSite;
using lefdef::Length;

/// Whether masters of a class stand in rows: CORE with all that follows it, also where the class is missing,
/// and ENDCAP PRE and POST.
bool standsInRows(const std::string& macroClass)
{
    return macroClass.empty() || macroClass == "CORE" || macroClass.starts_with("CORE ") ||
           macroClass == "ENDCAP PRE" || macroClass == "ENDCAP POST";
}

std::vector<const LefMacro*> rowCellsOf(const Lef& lef)
{
    std::vector<const LefMacro*> cells;
    for (const LefMacro& macro : lef.macros) {
        if (standsInRows(macro.macroClass)) {
            cells.push_back(&macro);
        }
    }
    return cells;
}

/// The site of class CORE that most cells name.
const LefSite* mostNamedSite(const Lef& lef, const std::vector<const LefMacro*>& cells)
{
    const LefSite* best = nullptr;
    std::ptrdiff_t most = -1;
    for (const LefSite& site : lef.sites) {
        const std::ptrdiff_t users =
            std::ranges::count_if(cells, [&site](const LefMacro* cell) { return cell->site == site.name; });
        if (site.siteClass == "CORE" && site.width > 0 && users > most) {
            best = &site;
            most = users;
        }
    }
    return best;
}

Length commonWidth(const std::vector<const LefMacro*>& cells)
{
    Length width = 0;
    for (const LefMacro* cell : cells) {
        width = std::gcd(width, cell->width);
    }
    return width;
}

Length commonHeight(const std::vector<const LefMacro*>& cells)
{
    std::map<Length, size_t> counts;
    for (const LefMacro* cell : cells) {
        ++counts[cell->height];
    }
    return std::ranges::max_element(counts, [](const auto& a, const auto& b) { return a.second < b.second; })
        ->first;
}

SiteSize siteOf(const Library& library, const std::vector<const LefMacro*>& cells, Findings& findings)
{
    if (const LefSite* const site = mostNamedSite(library.lef, cells)) {
        return {site->width, site->height > 0 ? site->height : commonHeight(cells)};
    }
    const SiteSize site{commonWidth(cells), commonHeight(cells)};
    if (site.width <= 0) {
        throw Fault("the files have neither a site of class CORE nor a cell with a width: give --site W,H");
    }
    Reporter(findings, library.sources.front().path())
        .note("no-site", {},
              "there is no site of class CORE, and the cells' widths are multiples of " +
                  lefdef::micronText(site.width) + " um, which is taken for its width",
              "give --site W,H if it is another");
    return site;
}

} // namespace

Library readLibrary(const std::vector<std::string>& paths, const std::string& layer, Findings& findings)
{
    Library library;
    for (const std::string& path : paths) {
        library.sources.emplace_back(path);
        lefdef::readLef(library.sources.back(), layer, static_cast<int32_t>(library.sources.size() - 1),
                        library.lef, findings);
    }
    return library;
}

Selection selectCells(const Library& library, const std::optional<SiteSize>& site, const std::string& layer,
                      Findings& findings)
{
    const std::vector<const LefMacro*> cells = rowCellsOf(library.lef);
    if (cells.empty()) {
        throw Fault("the files have no cells of class CORE");
    }
    if (std::ranges::none_of(cells, [](const LefMacro* cell) { return hasMetal(*cell); })) {
        throw Fault("no cell has metal on the layer " + layer + ": give its name with --layer");
    }
    Selection selection;
    selection.site = site ? *site : siteOf(library, cells, findings);
    for (const LefMacro* cell : cells) {
        if (cell->height == selection.site.height) {
            selection.cells.push_back(cell);
            continue;
        }
        ++selection.otherHeights;
        const MacroPlace place = placeOf(library, *cell);
        Reporter(findings, place.file)
            .warning("cell-height", place.at,
                     cell->name + " is " + lefdef::micronText(cell->height) + " um high and the rows " +
                         lefdef::micronText(selection.site.height) +
                         " um: the placer takes every cell to be one row "
                         "high, and it gets no colour file",
                     "make it a macro in the design");
    }
    if (selection.cells.empty()) {
        throw Fault("no cell is as high as the site, " + lefdef::micronText(selection.site.height) + " um");
    }
    return selection;
}

MacroPlace placeOf(const Library& library, const LefMacro& macro)
{
    const auto source = std::next(library.sources.begin(), macro.source);
    return {source->path(), source->placeOf(macro.offset)};
}

} // namespace kit::color
