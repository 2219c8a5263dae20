// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/place/placeRun.h"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <iostream>

#include "app/driver.h"
#include "db/design.h"
#include "kit/base/files/outputFile.h"
#include "kit/base/text/escape.h"
#include "kit/engines/place/judgement.h"
#include "kit/engines/place/placementText.h"
#include "kit/engines/place/progressLine.h"
#include "kit/engines/place/resultJson.h"
#include "kit/engines/place/unturned.h"
#include "kit/formats/placer/colors.h"

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
    explicit KeptRun(const Options& options) : m_options(options), m_line(options.quiet) {}

    int run()
    {
        const auto begin = std::chrono::steady_clock::now();
        vireloce::PlaceOptions options = beginReport(m_options);
        if (m_options.trueOrientation) {
            m_unturned = UnturnedDesign::of(m_options);
        }
        if (m_unturned) {
            options.placePath = m_unturned->base();
            options.cellPath = m_unturned->cellPath();
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
        Json result = resultJson(m_options, options.parameters.minDist, m_run, std::move(m_placement),
                                 std::move(m_rescue), seconds.count());
        if (m_run.complete) { // what this takes is not the placer's time and memory
            const Judgement judgement = judge(m_options, options.parameters.minDist, m_files);
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
            m_line.show(progress);
        };
        hooks.afterEvaluation = [this](Design& design, const vireloce::PlaceResult& /*result*/) {
            finish(design);
            m_run.complete = true;
        };
        return hooks;
    }

    /// Takes the placement from the design, which ends with the run.
    void finish(Design& design)
    {
        State state = measure(design, m_start);
        m_placement = toJson(design, state);
        if (m_options.rescue) {
            const Rescue done = rescue(design, withoutPlace(state), m_start);
            m_rescue = toJson(design, done);
            state = measure(design, m_start);
            m_rescue["placement"] = toJson(design, state);
            nameHelpless(design, done);
        }
        m_clean = state.conflicts == 0 && withoutPlace(state).empty();
        addFiles(design);
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
    }

    std::vector<placer::ColorRecord> colorsOf(const Design& design) const
    {
        std::vector<placer::ColorRecord> records;
        records.reserve(design.components.size());
        for (const Component* comp : design.components) {
            const Cell& cell = design.cellOf(*comp);
            placer::ColorRecord& record = records.emplace_back();
            record.name = comp->name;
            record.cell = m_unturned ? m_unturned->cellOf(comp->cellName) : comp->cellName;
            if (comp->solution >= 0 && static_cast<size_t>(comp->solution) < cell.colors.size()) {
                record.solution = comp->solution;
                record.stitches = cell.stitchesOf(comp->solution);
                record.masks = cell.colors[static_cast<size_t>(comp->solution)];
            }
        }
        return records;
    }

    void writePlacement(const Design& design, OutputFile& out) const
    {
        const auto changesOf = [&design](size_t index, RecordChanges& changes) {
            const Component& comp = *design.components[index];
            changes = {.name = comp.name, .at = Point{comp.x, comp.y}};
        };
        rewritePlacement(m_options.base + ".place", design.components.size(), changesOf, out);
    }

    void addFiles(const Design& design)
    {
        m_files.add(m_options.out + ".place", [&](OutputFile& out) { writePlacement(design, out); });
        m_files.add(m_options.out + ".colors",
                    [&](OutputFile& out) { placer::writeColors(colorsOf(design), out); });
        for (const char* extension : COPIED) {
            m_files.addCopy(m_options.out + extension, m_options.base + extension);
        }
        // Those of an earlier result would be the wrong ones.
        for (const char* extension : COPIED_IF_THERE) {
            if (std::filesystem::exists(m_options.base + extension)) {
                m_files.addCopy(m_options.out + extension, m_options.base + extension);
            } else {
                m_files.remove(m_options.out + extension);
            }
        }
    }

    const Options& m_options;
    ProgressLine m_line;
    std::unique_ptr<UnturnedDesign> m_unturned; ///< what the placer gets, if not the design itself
    std::vector<Point> m_start;                 ///< [component] positions before the placement
    Json m_placement;
    Json m_rescue;
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
