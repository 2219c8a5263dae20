// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/place/placeRun.h"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <iostream>
#include <map>

#include "app/driver.h"
#include "app/parameters.h"
#include "db/design.h"
#include "kit/base/files/outputFile.h"
#include "kit/base/progressLine.h"
#include "kit/base/text/escape.h"
#include "kit/base/text/text.h"
#include "kit/design/designFiles.h"
#include "kit/design/fixedCells.h"
#include "kit/design/nameMap.h"
#include "kit/engines/place/firstKinds.h"
#include "kit/engines/place/fixedSolutions.h"
#include "kit/engines/place/placerCopy.h"
#include "kit/engines/place/resultJson.h"
#include "kit/engines/place/trueDesign.h"
#include "kit/engines/verify/judgement.h"
#include "kit/formats/placer/colors.h"
#include "kit/formats/placer/placementText.h"

namespace kit::place {

namespace {

constexpr int CLEAN = 0;
constexpr int NOT_CLEAN = 1;
constexpr int UNREADABLE = 2;

/// Prints what the report begins with; gives the options of the placer.
vireloce::PlaceOptions beginReport(const Options& options)
{
    const std::vector<std::string> words = placerArguments(options);
    std::vector<const char*> argv(words.size());
    std::transform(words.begin(), words.end(), argv.begin(),
                   [](const std::string& word) { return word.c_str(); });
    vireloce::PlaceOptions placer;
    vireloce::beginReport(static_cast<int>(argv.size()), argv.data(), placer);
    return placer;
}

/// Looks on while the placer runs, and writes what comes out.
class KeptRun {
public:
    explicit KeptRun(const Options& options) : m_options(options), m_seen(options), m_line(options.quiet) {}

    int run()
    {
        const auto begin = std::chrono::steady_clock::now();
        vireloce::PlaceOptions options = beginReport(m_options);
        m_minDist = options.parameters.minDist;
        if (m_options.rowsMeet) {
            m_firstKinds = FirstKinds::of(m_options);
        }
        if (m_firstKinds) {
            m_seen.cellPath = m_firstKinds->path();
            options.cellPath = m_seen.cellPath;
        }
        if (m_options.trueOrientation || std::filesystem::exists(m_options.base + design::FIXED)) {
            m_copy = PlacerCopy::of(m_seen, m_minDist);
        }
        if (m_copy) {
            options.placePath = m_copy->base();
            options.cellPath = m_copy->cellPath();
        }
        try {
            m_run.result = vireloce::place(options, hooks());
        } catch (const vireloce::RunError& error) {
            const std::string place =
                error.file.empty() ? "" : error.file + ":" + std::to_string(error.line) + ": ";
            std::cerr << "vireloce-kit: " << printable(place + error.text) << '\n';
        }
        if (!m_run.readable) {
            return UNREADABLE;
        }
        const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - begin;
        Json result = resultJson(m_options, m_minDist, m_run, std::move(m_placement), std::move(m_rescue),
                                 seconds.count());
        if (m_run.complete) { // what this takes is not the placer's time and memory
            if (m_fixed.isObject()) {
                result["fixed"] = std::move(m_fixed);
            }
            const verify::Judgement judgement = verify::judge({.base = m_options.base,
                                                               .out = m_options.out,
                                                               .cellPath = m_options.cellPath,
                                                               .minDist = m_minDist,
                                                               .rowsMeet = m_options.rowsMeet},
                                                              m_files);
            m_clean = m_clean && judgement.errors == 0;
            result["judge"] = toJson(judgement);
            result["hpwl_pins"] = judgement.hpwlPins;
        }
        m_files.add(m_options.out + ".json", [&result](OutputFile& json) { json << result.dump(1) << "\n"; });
        m_files.commit();
        return m_run.complete && m_clean ? CLEAN : NOT_CLEAN;
    }

private:
    vireloce::PlaceHooks hooks()
    {
        vireloce::PlaceHooks hooks;
        hooks.report = &vireloce::report();
        hooks.afterSetUp = [this](Design& design, const vireloce::PlaceResult& result) {
            m_run = {.result = result, .readable = true};
            m_start = positionsOf(design);
        };
        hooks.onProgress = [this](const vireloce::Progress& progress, const vireloce::PlaceResult& result) {
            m_run.result.passes = result.passes;
            showProgress(progress);
        };
        hooks.afterEvaluation = [this](Design& design, const vireloce::PlaceResult& /*result*/) {
            finish(design);
            m_run.complete = true;
        };
        return hooks;
    }

    void showProgress(const vireloce::Progress& progress)
    {
        m_line.show(progress.segmentsDone == progress.numSegments, [&progress] {
            return "pass " + std::to_string(progress.pass) + ": " + std::to_string(progress.segmentsDone) +
                   " of " + std::to_string(progress.numSegments) + " segments, " +
                   std::to_string(progress.movedOut) + " cells moved out";
        });
    }

    /// Takes the placement from the design, which ends with the run.
    void finish(Design& design)
    {
        State state = measure(design, m_start);
        m_placement = toJson(design, state);
        if (m_options.rescue || std::filesystem::exists(m_options.base + design::FIXED)) {
            improve(design, state);
        }
        // A rescue goes by the shapes as they lie, as the judge does; the placer's spacings take mirrored
        // cells as unmirrored.
        m_clean = (m_options.rescue || state.conflicts == 0) && withoutPlace(state).empty();
        addFiles(design);
    }

    /// Chooses solutions of what stays where it is, and rescues.
    ///
    /// @param state  in: as the placer left it; out: what became of it
    void improve(Design& design, State& state)
    {
        Findings told; // by the judge
        design::FixedParts parts = design::readFixed(m_options.base + design::FIXED, told);
        TrueDesign truth = readTrueDesign(m_options.base, m_seen.cellPath, parts,
                                          m_copy ? m_copy->wider() : std::vector<WiderMacro>(), told);
        const std::vector<int32_t> stray = withoutPlace(state);
        const bool areKnown = !hasErrors(told) && truth.design.components.size() == design.components.size();
        if (std::filesystem::exists(m_options.base + design::FIXED)) {
            if (areKnown) {
                settleFixed(design, stray, parts, truth, state);
            } else {
                m_files.addCopy(m_options.out + design::FIXED, m_options.base + design::FIXED);
            }
        }
        if (m_options.rescue) {
            const Rescue done = rescue(design, truth, stray, m_start);
            for (const int32_t id : done.mirrored) {
                m_mirrored.emplace(static_cast<size_t>(id),
                                   mirrored(truth.design.components[static_cast<size_t>(id)].orient));
            }
            m_rescue = toJson(design, done);
            if (done.pairs > 0 || !done.cells.empty()) {
                state = measure(design, m_start);
            }
            m_rescue["placement"] = toJson(design, state);
            nameHelpless(design, done);
        }
    }

    /// An orientation mirrored left to right, as a placement file names it.
    static const char* mirrored(const std::string& orient)
    {
        return orient == "FN" ? "N" : orient == "S" ? "FS" : orient == "FS" ? "S" : "FN";
    }

    /// Chooses the solutions of what stays where it is, and adds it to the files. Where that is not enough,
    /// components get other solutions and places.
    ///
    /// @param stray  components that are not where they will be
    /// @param truth  out: with the solutions
    /// @param state  out: measured anew if any component was changed
    void settleFixed(Design& design, const std::vector<int32_t>& stray, design::FixedParts& parts,
                     TrueDesign& truth, State& state)
    {
        Findings told; // by the judge
        placer::Design placed = truth.design;
        for (size_t i = 0; i < placed.components.size(); ++i) {
            placed.components[i].x = design.components[i]->x;
            placed.components[i].y = design.components[i]->y;
        }
        for (const int32_t id : stray) {
            placed.components[static_cast<size_t>(id)].cell = -1;
        }
        design::restoreOrientations(m_options.base + ".place", placed, told);
        const ChosenSolutions chosen = SolutionChooser(placed, m_minDist).choose(colorsOf(design));
        int64_t moved = 0;
        for (const ChangedCell& change : chosen.changed) {
            Component& comp = *design.components[static_cast<size_t>(change.component)];
            comp.solution = change.solution;
            comp.siteX += change.steps;
            comp.x += change.steps * SITE_WIDTH;
            moved += change.steps != 0 ? 1 : 0;
        }
        for (size_t i = 0; i < parts.cells.size() && i < chosen.fixed.size(); ++i) {
            parts.cells[i].solution = chosen.fixed[i];
        }
        truth.fixedColors = design::fixedColorsOf(parts, truth.design);
        for (design::FixedCell& cell : parts.cells) {
            cell.solution =
                m_firstKinds ? m_firstKinds->solutionAt(cell.master, cell.solution, cell.y) : cell.solution;
        }
        m_files.add(m_options.out + design::FIXED, [&parts](OutputFile& out) { writeFixed(parts, out); });
        m_fixed = {{"cells", parts.cells.size()},
                   {"blocks", parts.blocks.size()},
                   {"wider_macros", m_copy ? m_copy->wider().size() : 0},
                   {"changed", chosen.changed.size()},
                   {"moved", moved},
                   {"placement", nullptr}};
        if (!chosen.changed.empty()) {
            state = measure(design, m_start);
            m_fixed["placement"] = toJson(design, state);
        }
    }

    /// Components that nobody could build where they are, by index.
    static std::vector<int32_t> withoutPlace(const State& state)
    {
        std::vector<int32_t> stray = state.dropped;
        stray.insert(stray.end(), state.beyond.begin(), state.beyond.end());
        stray.insert(stray.end(), state.overlapping.begin(), state.overlapping.end());
        std::sort(stray.begin(), stray.end());
        return stray;
    }

    static void nameHelpless(const Design& design, const Rescue& done)
    {
        for (const Rescued& cell : done.cells) {
            if (!cell.helped) {
                std::cerr << "vireloce-kit: no legal place for component "
                          << printable(design.components[static_cast<size_t>(cell.component)]->name) << '\n';
            }
        }
        if (done.mendedPairs < done.pairs) {
            std::cerr << "vireloce-kit: no legal places for "
                      << counted(done.pairs - done.mendedPairs, "pair") << " of cells too close\n";
        }
        if (done.searchesGivenUp > 0) {
            std::cerr << "vireloce-kit: orders of cells in long rows were left untried, "
                      << counted(done.searchesGivenUp, "time") << '\n';
        }
    }

    std::vector<placer::ColorRecord> colorsOf(const Design& design) const
    {
        std::vector<placer::ColorRecord> records;
        records.reserve(design.components.size());
        for (const Component* comp : design.components) {
            const Cell& cell = design.cellOf(*comp);
            placer::ColorRecord& record = records.emplace_back();
            record.name = comp->name;
            record.cell = m_copy ? m_copy->cellOf(comp->cellName) : comp->cellName;
            if (comp->solution >= 0 && static_cast<size_t>(comp->solution) < cell.colors.size()) {
                record.solution = comp->solution;
                record.stitches = cell.stitchesOf(comp->solution);
                record.masks = cell.colors[static_cast<size_t>(comp->solution)];
            }
        }
        return records;
    }

    /// The colours as the result has them.
    std::vector<placer::ColorRecord> finalColorsOf(const Design& design) const
    {
        std::vector<placer::ColorRecord> records = colorsOf(design);
        for (size_t i = 0; i < records.size() && m_firstKinds; ++i) {
            m_firstKinds->settle(records[i], design.components[i]->y);
        }
        return records;
    }

    void writePlacement(const Design& design, OutputFile& out) const
    {
        const auto changesOf = [&](size_t index, placer::RecordChanges& changes) {
            const Component& comp = *design.components[index];
            changes = {.name = comp.name, .at = geometry::Point{comp.x, comp.y}};
            if (const auto turned = m_mirrored.find(index); turned != m_mirrored.end()) {
                changes.orient = turned->second;
            }
        };
        placer::rewritePlacement(m_options.base + ".place", design.components.size(), changesOf, out);
    }

    void addFiles(const Design& design)
    {
        m_files.add(m_options.out + ".place", [&](OutputFile& out) { writePlacement(design, out); });
        m_files.add(m_options.out + ".colors",
                    [&](OutputFile& out) { placer::writeColors(finalColorsOf(design), out); });
        design::addCopies(m_options.base, m_options.out, m_files);
    }

    const Options& m_options;
    Options m_seen; ///< with the colour files that the run sees
    ProgressLine m_line;
    std::unique_ptr<FirstKinds> m_firstKinds; ///< those, if rows meet
    std::unique_ptr<PlacerCopy> m_copy;       ///< what the placer gets, if not the design itself
    std::vector<Point> m_start;               ///< [component] positions before the placement
    std::map<size_t, const char*> m_mirrored; ///< new orientations, by component
    Json m_placement;
    Json m_rescue;
    Json m_fixed;          ///< null if nothing stays where it is
    int32_t m_minDist = 0; ///< distance that shapes of one mask need, library coordinates
    PlacerRun m_run;
    OutputSet m_files;
    bool m_clean = false;
};

} // namespace

int place(const Options& options)
{
    checkOutputs(options);
    return KeptRun(options).run();
}

} // namespace kit::place
