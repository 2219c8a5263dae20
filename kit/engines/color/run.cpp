// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/color/run.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <exception>
#include <filesystem>
#include <iostream>
#include <iterator>
#include <map>
#include <mutex>
#include <numeric>
#include <sstream>
#include <thread>

#include "kit/base/fault.h"
#include "kit/base/files/folder.h"
#include "kit/base/files/outputFile.h"
#include "kit/base/files/outputPaths.h"
#include "kit/base/files/readFile.h"
#include "kit/base/finding.h"
#include "kit/engines/color/report.h"
#include "kit/formats/lefdef/units.h"
#include "kit/formats/placer/metal.h"
#include "kit/formats/placer/writer.h"

namespace kit::color {

namespace {

using lefdef::Lef;
using lefdef::LefMacro;
using lefdef::LefSite;
using lefdef::Length;

std::vector<const LefMacro*> macrosOf(const Lef& lef, const lefdef::MacroTest& isWanted)
{
    std::vector<const LefMacro*> cells;
    for (const LefMacro& macro : lef.macros) {
        if (isWanted(macro)) {
            cells.push_back(&macro);
        }
    }
    return cells;
}

/// Whether a macro is listed, or, without a list, whether it stands in rows.
lefdef::MacroTest isWanted(const std::optional<CellNames>& listed)
{
    if (!listed) {
        return lefdef::standsInRows;
    }
    return [&listed](const LefMacro& macro) { return listed->count(macro.name) > 0; };
}

void requireAll(const CellNames& listed, const std::vector<const LefMacro*>& cells)
{
    CellNames missing = listed;
    for (const LefMacro* cell : cells) {
        missing.erase(cell->name);
    }
    if (!missing.empty()) {
        throw Fault("the cell " + *missing.begin() + " of the list is in none of the LEF files" +
                    (missing.size() > 1 ? ", as are " + std::to_string(missing.size() - 1) + " more" : ""));
    }
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

constexpr int UNCLEAN = 1;
constexpr int BAD_INPUT = 2;

bool isFileName(const std::string& name)
{
    return !name.empty() && name != "." && name != ".." && name.find('/') == std::string::npos &&
           name.find('\0') == std::string::npos;
}

std::string pathOf(const Options& options, const std::string& cell, const char* extension)
{
    return (std::filesystem::path(options.outDir) / (cell + extension)).string();
}

/// Reads the metal of the cells, and says what is wrong with it.
class MetalReader {
public:
    MetalReader(const Library& library, Result& result) : m_library(library), m_result(result) {}

    void run()
    {
        for (const LefMacro* macro : m_result.selection.cells) {
            read(*macro);
        }
    }

private:
    void read(const LefMacro& macro)
    {
        lefdef::SourceReporter reporter(m_result.findings, sourceOf(m_library, macro));
        try {
            if (!isFileName(macro.name)) {
                throw CellFault("its name cannot be that of a file");
            }
            CellMetal metal = metalOf(macro, Scale(m_result.selection.site.width));
            tellOddities(macro, metal, reporter);
            m_result.metal.push_back(std::move(metal));
        } catch (const CellFault& fault) {
            reporter.error("bad-cell", macro.offset, macro.name + " gets no colour file: " + fault.what(),
                           "");
        }
    }

    void tellOddities(const LefMacro& macro, const CellMetal& metal, lefdef::SourceReporter& reporter)
    {
        for (const std::string& remark : metal.remarks) {
            reporter.warning("touching-pins", macro.offset, macro.name + ": " + remark, "");
        }
        if (!metal.exact && !m_inexactTold) {
            m_inexactTold = true;
            reporter.warning("rounded", macro.offset,
                             "lengths of " + macro.name + " are rounded, as a site of " +
                                 lefdef::micronText(m_result.selection.site.width) +
                                 " um is 190 wide in colour files",
                             "others may be as well");
        }
        if (macro.width % m_result.selection.site.width != 0) {
            reporter.warning("cell-width", macro.offset,
                             macro.name + " is " + lefdef::micronText(macro.width) +
                                 " um wide, no whole number of sites of " +
                                 lefdef::micronText(m_result.selection.site.width) + " um",
                             "");
        }
        if (!m_masksTold && hasMasks(macro)) {
            m_masksTold = true;
            reporter.add(Severity::NOTE, "masks", macro.offset,
                         macro.name + " has shapes with masks, which are ignored", "");
        }
    }

    static bool hasMasks(const LefMacro& macro)
    {
        const auto anyMask = [](const std::vector<lefdef::LefShape>& shapes) {
            return std::ranges::any_of(shapes, [](const auto& shape) { return shape.mask != 0; });
        };
        return anyMask(macro.obstructions) || std::ranges::any_of(macro.pins, [&](const lefdef::LefPin& pin) {
                   return anyMask(pin.shapes);
               });
    }

    const Library& m_library;
    Result& m_result;
    bool m_inexactTold = false;
    bool m_masksTold = false;
};

void checkOutputsOf(const Options& options, const std::vector<CellMetal>& cells)
{
    std::vector<std::string> outputs;
    for (const CellMetal& cell : cells) {
        outputs.push_back(pathOf(options, cell.name, ".color"));
        outputs.push_back(pathOf(options, cell.name, ".metal"));
        if (options.svg) {
            outputs.push_back(pathOf(options, cell.name, ".svg"));
        }
    }
    std::vector<std::string> inputs = options.lefs;
    if (!options.cells.empty()) {
        inputs.push_back(options.cells);
    }
    checkOutputs(outputs, inputs, options.force);
}

void writeFiles(const Options& options, const Result& result)
{
    OutputSet set;
    for (size_t i = 0; i < result.colours.size(); ++i) {
        const std::string& name = result.metal[i].name;
        if (result.colours[i].file) {
            set.add(pathOf(options, name, ".color"),
                    [&](OutputFile& file) { placer::writeColorFile(file, *result.colours[i].file); });
        }
        if (result.colours[i].file && !result.metal[i].exact && placer::fitsFile(result.metal[i].metal)) {
            set.add(pathOf(options, name, ".metal"),
                    [&](OutputFile& file) { placer::writeMetal(file, result.metal[i].metal); });
        } else {
            set.remove(pathOf(options, name, ".metal")); // that of an earlier run
        }
        if (options.svg) {
            set.add(pathOf(options, name, ".svg"), [&](OutputFile& file) {
                writePicture(file, result.metal[i], result.colours[i], options.settings.rules);
            });
        }
    }
    set.commit();
}

/// Tells of the cells that have no colouring, or none as wished.
void tellTroubles(const Options& options, const Library& library, Result& result)
{
    for (size_t i = 0; i < result.colours.size(); ++i) {
        const ColouredCell& cell = result.colours[i];
        const bool isBad = cell.trouble || cell.tooLarge;
        const bool isNearRail = !isBad && options.settings.rules.railsConflict && !cell.isClearOfRails;
        const bool isNearRow = cell.file && options.settings.rules.rowsMeet && !cell.meetsRows;
        if (!isBad && !isNearRail && !isNearRow) {
            continue;
        }
        const auto macro = std::ranges::find_if(result.selection.cells, [&](const LefMacro* other) {
            return other->name == result.metal[i].name;
        });
        lefdef::SourceReporter reporter(result.findings, sourceOf(library, **macro));
        if (isBad) {
            reporter.add(
                cell.file ? Severity::WARNING : Severity::ERROR,
                cell.tooLarge ? "too-intricate" : "no-coloring", (*macro)->offset,
                troubleText(result.metal[i], cell, options.settings.rules, result.selection.site.width), "");
        }
        if (isNearRail) {
            reporter.add(Severity::NOTE, "near-rail", (*macro)->offset,
                         (*macro)->name + " has no colouring that keeps all metal near its rails off mask 0",
                         "");
        }
        if (isNearRow) {
            reporter.add(
                Severity::NOTE, "near-row", (*macro)->offset,
                (*macro)->name + " has no colouring that keeps all metal near the next rows on mask 1", "");
        }
    }
}

int exitStatusOf(const Result& result, bool errors)
{
    const bool clean = std::ranges::all_of(
        result.colours, [](const ColouredCell& cell) { return cell.file && !cell.trouble; });
    return errors ? BAD_INPUT : (clean ? 0 : UNCLEAN);
}

/// Colours cells side by side. The result does not depend on the number of threads.
///
/// @param bottom  lowest metal in all cells of the library, at most 0
/// @param jobs    threads, at least 1
std::vector<ColouredCell> colourAll(const std::vector<CellMetal>& cells, const Settings& settings,
                                    int32_t bottom, size_t jobs)
{
    std::vector<ColouredCell> results(cells.size());
    std::atomic<size_t> next = 0;
    std::exception_ptr failure;
    std::mutex failing;
    const auto work = [&] {
        try {
            for (size_t i = next++; i < cells.size(); i = next++) {
                results[i] = colour(cells[i], settings, bottom);
            }
        } catch (...) { // it would end the program in the thread
            const std::lock_guard lock(failing);
            failure = std::current_exception();
        }
    };
    std::vector<std::thread> threads;
    for (size_t i = 1; i < std::min(jobs, cells.size()); ++i) {
        threads.emplace_back(work);
    }
    work();
    for (std::thread& thread : threads) {
        thread.join();
    }
    if (failure) {
        std::rethrow_exception(failure);
    }
    return results;
}

} // namespace

CellNames readCellNames(const std::string& path)
{
    std::istringstream text(readFile(path));
    size_t count = 0;
    const bool counts = static_cast<bool>(text >> count);
    CellNames names{std::istream_iterator<std::string>(text), std::istream_iterator<std::string>()};
    if (!counts || names.size() != count) {
        throw Fault(path + " is no list of cells: the number of names comes first, and then they");
    }
    if (names.empty()) {
        throw Fault(path + " lists no cell");
    }
    return names;
}

Selection selectCells(const Library& library, const std::optional<CellNames>& listed,
                      const std::optional<SiteSize>& site, Findings& findings)
{
    const std::vector<const LefMacro*> cells = macrosOf(library.lef, isWanted(listed));
    if (listed) {
        requireAll(*listed, cells);
    } else if (cells.empty()) {
        throw Fault("the files have no cells of class CORE");
    }
    requireMetal(library.lef, cells);
    if (!listed && std::ranges::none_of(cells, [](const LefMacro* cell) { return hasMetal(*cell); })) {
        throw Fault("the cells have no metal");
    }
    Selection selection;
    selection.site = site ? *site : siteOf(library, cells, findings);
    for (const LefMacro* cell : cells) {
        if (cell->height == selection.site.height) {
            selection.cells.push_back(cell);
            continue;
        }
        ++selection.otherHeights;
        lefdef::SourceReporter(findings, sourceOf(library, *cell))
            .warning("cell-height", cell->offset,
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

int run(Options options)
{
    const auto begin = std::chrono::steady_clock::now();
    Result result;
    const std::optional<CellNames> listed =
        options.cells.empty() ? std::nullopt : std::optional(readCellNames(options.cells));
    const Library library =
        lefdef::readLibrary(options.lefs, options.layer, result.findings, isWanted(listed));
    if (hasErrors(result.findings)) {
        writeMessages(result.findings, std::cerr);
        return BAD_INPUT;
    }
    result.selection = selectCells(library, listed, options.site, result.findings);
    options.layer = library.lef.layer;
    options.settings.rules.distance = options.minDist.unitsOn(result.selection.site.width);
    MetalReader(library, result).run();
    checkOutputsOf(options, result.metal);
    makeFolder(options.outDir);
    const bool errors = hasErrors(result.findings);
    options.settings.rules.leastDepth = leastDepthOf(result.metal);
    result.colours = colourAll(result.metal, options.settings, bottomOf(result.metal), options.jobs);
    writeFiles(options, result);
    tellTroubles(options, library, result);
    const std::chrono::duration<double> time = std::chrono::steady_clock::now() - begin;
    result.seconds = time.count();
    writeMessages(result.findings, std::cerr);
    writeSummary(result, options, std::cout);
    return exitStatusOf(result, errors);
}

} // namespace kit::color
