// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/refine/refineRun.h"

#include <sys/resource.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <csignal>
#include <filesystem>
#include <iostream>
#include <stdexcept>

#include "kit/base/fault.h"
#include "kit/base/files/folder.h"
#include "kit/base/files/outputPaths.h"
#include "kit/base/progressLine.h"
#include "kit/base/text/escape.h"
#include "kit/base/text/text.h"
#include "kit/design/designFiles.h"
#include "kit/design/placeResult.h"
#include "kit/engines/refine/inputs.h"
#include "kit/engines/refine/model.h"
#include "kit/engines/refine/result.h"
#include "kit/engines/refine/start.h"
#include "kit/engines/verify/judgement.h"
#include "kit/formats/placer/placementText.h"

namespace kit::refine {

namespace {

namespace fs = std::filesystem;

using Clock = std::chrono::steady_clock;

constexpr int CLEAN = 0;
constexpr int NOT_CLEAN = 1;
constexpr int UNREADABLE = 2;

constexpr std::string_view RESULT = ".json";
constexpr std::string_view PLACEMENT = ".place";

/// So many strays are named on standard error.
constexpr size_t MOST_NAMED = 5;

/// While it lives, an interrupt is noted and does nothing else; a second one ends the program.
class InterruptNote {
public:
    InterruptNote()
    {
        s_came = 0;
        struct sigaction action {};
        action.sa_handler = [](int) { s_came = 1; };
        action.sa_flags = static_cast<int>(SA_RESETHAND);
        sigaction(SIGINT, &action, &m_before);
    }
    ~InterruptNote() { sigaction(SIGINT, &m_before, nullptr); }
    InterruptNote(const InterruptNote&) = delete;
    InterruptNote& operator=(const InterruptNote&) = delete;

    static bool came() { return s_came != 0; }

private:
    static inline volatile std::sig_atomic_t s_came = 0;
    struct sigaction m_before {};
};

/// What the arguments mean: where the files are, and by which rules they were made.
struct Source {
    Paths paths;
    int32_t minDist = design::Distance::USUAL; ///< library units
    bool rowsMeet = false;
    Json result; ///< OUT.json; null if the placement was given
};

/// The path of a placement or a result without extension. Errors: throws Fault if it is neither.
std::string baseOf(const std::string& path)
{
    for (const std::string_view extension : {RESULT, PLACEMENT}) {
        if (path.ends_with(extension)) {
            return path.substr(0, path.size() - extension.size());
        }
    }
    throw Fault(path + " ends neither in .json nor in .place");
}

/// What a result says of itself.
Source sourceOfResult(const std::string& path, const std::string& cellPath)
{
    const design::ResultFiles files = design::findResult(path, cellPath);
    return {.paths = {.base = baseOf(path), .colors = files.colors, .cellDir = files.cellDir},
            .minDist = files.minDist,
            .rowsMeet = files.rowsMeet,
            .result = design::readPlaceResult(path)};
}

Source sourceOf(const Options& options)
{
    Source source;
    if (options.input.ends_with(RESULT)) {
        source = sourceOfResult(options.input, options.cellPath);
    } else {
        const std::string base = baseOf(options.input);
        if (options.base.ends_with(RESULT)) { // made by the same rules
            source = sourceOfResult(options.base, options.cellPath);
            source.result = nullptr;
        } else if (options.cellPath.empty()) {
            throw Fault("where the color files are is not known: give --cell-path");
        } else {
            source.paths.cellDir = options.cellPath;
        }
        source.paths.base = base;
        source.paths.colors.clear();
        source.paths.mayBeBare = !options.base.empty();
    }
    if (!options.colors.empty()) {
        source.paths.colors = options.colors;
    }
    source.rowsMeet |= options.rowsMeet;
    return source;
}

/// Where the cells were before they were placed. Errors: throws Fault if nothing tells.
std::string placementBefore(const Json& result)
{
    if (!result.isObject() || !result["options"]["base"].isString()) {
        throw Fault("--anew needs the OUT.json of place, which says what was placed");
    }
    return result["options"]["base"].asString() + std::string(PLACEMENT);
}

/// Checks that the results may be written.
void checkFiles(const Options& options, const Source& source)
{
    const Paths& paths = source.paths;
    std::vector<std::string> inputs = filesIn(paths.cellDir);
    const std::vector<std::string> files = design::inputsOf(paths.base);
    inputs.insert(inputs.end(), files.begin(), files.end());
    inputs.insert(inputs.end(), {options.input, paths.colors, options.fixedNames, options.netWeights});
    if (!options.base.empty()) {
        const std::vector<std::string> earlier = design::inputsOf(baseOf(options.base));
        inputs.insert(inputs.end(), earlier.begin(), earlier.end());
        inputs.insert(inputs.end(), {options.base, baseOf(options.base) + ".colors"});
    }
    if (options.anew) {
        inputs.push_back(placementBefore(source.result));
    }
    checkOutputs(design::outputsOf(options.out), inputs, options.force);
    requireFolderFor(options.out + ".json");
}

/// A run of the search on the files of a design.
class Run {
public:
    explicit Run(const Options& options)
        : m_options(options), m_source(sourceOf(options)), m_line(options.quiet)
    {
        if (options.anew && !options.base.empty()) {
            throw Fault("--anew and --base are two places to start from: give one of them");
        }
        checkFiles(options, m_source);
    }

    int run()
    {
        m_inputs = readInputs(m_source.paths);
        for (const Finding& fault : m_inputs.faults) {
            std::cerr << lineOf(fault);
        }
        if (!m_inputs.faults.empty()) {
            return UNREADABLE;
        }
        if (m_options.minDist) {
            m_source.minDist = m_options.minDist->unitsOn(design::siteLength(design()));
        }
        Demands demands{.minDist = m_source.minDist, .rowsMeet = m_source.rowsMeet};
        if (startsElsewhere()) {
            start();
            demands.changed = m_outcome.base ? m_outcome.base->changed : demands.changed;
        }
        if (!m_options.fixedNames.empty()) {
            demands.fixed = readFixedNames(m_options.fixedNames, m_inputs);
        }
        if (!m_options.netWeights.empty()) {
            demands.weights = readNetWeights(m_options.netWeights, netCountOf(m_inputs));
        }
        m_built = buildModel(m_inputs, demands);
        nameStrays();
        improve();
        nameHomeless();
        measure();
        return write();
    }

private:
    const placer::Design& design() const { return m_inputs.placed.design; }

    /// Whether it starts from another placement than that of the input.
    bool startsElsewhere() const { return m_options.anew || !m_options.base.empty(); }

    void start()
    {
        if (m_options.anew) {
            startBefore(placementBefore(m_source.result), m_inputs);
        } else {
            m_outcome.base = startFrom(baseOf(m_options.base), m_inputs);
        }
        settleColors(m_source.rowsMeet, m_inputs);
    }

    void nameStrays()
    {
        for (const int32_t stray : m_built.strays) {
            m_outcome.strays.push_back(design().components[static_cast<size_t>(stray)].name);
        }
        if (m_outcome.strays.empty()) {
            return;
        }
        std::string names;
        for (size_t i = 0; i < std::min(m_outcome.strays.size(), MOST_NAMED); ++i) {
            names += (i > 0 ? ", " : " ") + printable(m_outcome.strays[i]);
        }
        std::cerr << "vireloce-kit: " << counted(static_cast<int64_t>(m_outcome.strays.size()), "cell")
                  << " without colors, as left by the placer without --rescue, or in rows with other sites, "
                     "will not be moved:"
                  << names << (m_outcome.strays.size() > MOST_NAMED ? ", ..." : "") << '\n';
    }

    void nameHomeless()
    {
        for (const ::refine::Homeless& cell : m_outcome.search.homeless) {
            const std::string& name = design().components[static_cast<size_t>(cell.cell)].name;
            m_outcome.homeless.push_back({name, cell.isProved});
            std::cerr << "vireloce-kit: no legal place for component " << printable(name)
                      << (cell.isProved ? ": no row has as many free sites as it takes\n" : "\n");
        }
    }

    /// A length in the model's units.
    ///
    /// Errors: throws Fault if the design does not say what a micrometre is.
    double unitsOf(double micrometres, const char* option) const
    {
        if (design().dbuPerMicron <= 0) {
            throw Fault(std::string(option) + " needs a placement that says its UNITS");
        }
        return 2.0 * micrometres * design().dbuPerMicron;
    }

    ::refine::Options searchOptions()
    {
        ::refine::Options search;
        search.effort = m_options.effort;
        search.jobs = m_options.jobs;
        m_outcome.stitchPrice = m_options.stitchPrice ? unitsOf(*m_options.stitchPrice, "--stitch-price")
                                                      : STITCH_PRICE_SITES * m_built.model.step;
        search.stitchPrice = std::llround(m_outcome.stitchPrice);
        if (m_options.maxDisplacement) {
            const double most = unitsOf(*m_options.maxDisplacement, "--max-displacement");
            search.maxDisplacement =
                static_cast<int32_t>(std::min<double>(std::floor(most), ::refine::FARTHEST));
        }
        return search;
    }

    void improve()
    {
        m_outcome.lengthBefore = lengthAtStart();
        m_improved = m_built.model;
        const auto begin = Clock::now();
        const auto seconds = [begin] { return std::chrono::duration<double>(Clock::now() - begin).count(); };
        const ::refine::Options search = searchOptions();
        const InterruptNote interrupt;
        ::refine::Hooks hooks;
        hooks.onProgress = [&](int32_t pass, double share, int64_t wirelength) {
            m_line.show(/*last=*/false, [&] { return progressText(pass, share, wirelength); });
            if (InterruptNote::came()) {
                m_outcome.stopped = "interrupt";
            } else if (m_options.seconds && seconds() >= *m_options.seconds) {
                m_outcome.stopped = "time";
            }
            return m_outcome.stopped.empty();
        };
        try {
            m_outcome.search = ::refine::improve(m_improved, search, hooks);
        } catch (const std::invalid_argument& error) {
            throw Fault("the placement has no model: " + std::string(error.what()));
        }
        if (!m_outcome.search.stopped) {
            m_outcome.stopped.clear(); // it had come to its end
        }
        m_outcome.seconds = seconds();
        m_outcome.lengthAfter = lengthOf(m_improved);
    }

    std::string progressText(int32_t pass, double share, int64_t wirelength) const
    {
        const Json length = design::pinLengthJson(wirelength, design().dbuPerMicron);
        return "pass " + std::to_string(pass + 1) + ": " + std::to_string(std::lround(100 * share)) +
               " %, wirelength " +
               (length["um"].isNull() ? length["dbu"].dump() + " DBU" : design::micrometresText(length));
    }

    /// Wirelength with each net once, half DBU.
    static int64_t lengthOf(const ::refine::Model& model)
    {
        ::refine::Model once = model;
        for (::refine::Net& net : once.nets) {
            net.weight = 1;
        }
        return ::refine::wirelength(once);
    }

    /// The same of the placement as it was given.
    int64_t lengthAtStart() const
    {
        if (m_inputs.placed.pinLength) {
            return *m_inputs.placed.pinLength;
        }
        if (m_built.model.startX.empty()) {
            return lengthOf(m_built.model);
        }
        ::refine::Model start = m_built.model;
        for (size_t i = 0; i < start.cells.size(); ++i) {
            const bool turned = start.rows[static_cast<size_t>(start.cells[i].row)].turned;
            start.cells[i].row = static_cast<int32_t>(start.rows.size());
            start.rows.push_back({start.startY[i], turned});
        }
        return lengthOf(start);
    }

    /// Finds out what has become of the components.
    void measure()
    {
        // Without effort not even a stitch goes.
        m_placed = m_options.effort > 0 ? placedOf(m_built, m_improved) : m_built.placed;
        for (size_t i = 0; i < m_placed.size(); ++i) {
            const Placed& before = m_built.placed[i];
            const Placed& after = m_placed[i];
            m_outcome.movedCells += before.x != after.x || before.y != after.y ? 1 : 0;
            m_outcome.mirroredCells += before.mirrored != after.mirrored ? 1 : 0;
            m_outcome.recoloredCells += before.solution != after.solution ? 1 : 0;
            m_outcome.stitchesBefore += stitchesOf(i, before);
            m_outcome.stitchesAfter += stitchesOf(i, after);
        }
    }

    const placer::Solution* solutionOf(size_t component, const Placed& placed) const
    {
        const placer::Cell& cell = *design().cellOf(design().components[component]);
        return placed.solution < 0 ? nullptr : &cell.solutions[static_cast<size_t>(placed.solution)];
    }

    int64_t stitchesOf(size_t component, const Placed& placed) const
    {
        const placer::Solution* const solution = solutionOf(component, placed);
        return solution == nullptr ? 0 : solution->stitches;
    }

    int write()
    {
        const std::string& base = m_source.paths.base;
        OutputSet files;
        files.add(m_options.out + ".place", [&](OutputFile& out) { writePlacement(out); });
        files.add(m_options.out + ".colors", [&](OutputFile& out) { placer::writeColors(colors(), out); });
        design::addCopies(base, m_options.out, files);
        if (fs::exists(base + design::FIXED)) {
            files.add(m_options.out + design::FIXED,
                      [&](OutputFile& out) { design::writeFixed(m_inputs.fixed, out); });
        }
        const verify::Judgement judgement = verify::judge({.base = base,
                                                           .out = m_options.out,
                                                           .cellPath = m_source.paths.cellDir,
                                                           .minDist = m_source.minDist,
                                                           .rowsMeet = m_source.rowsMeet},
                                                          files);
        const Json result = resultJson(judgement);
        files.add(m_options.out + ".json", [&](OutputFile& json) { json << result.dump(1) << "\n"; });
        files.commit();
        std::cout << summaryOf(result["refine"]);
        if (judgement.errors > 0) {
            std::cout << "; verify finds " << counted(judgement.errors, "error");
        }
        std::cout << '\n';
        return judgement.possible && judgement.errors == 0 ? CLEAN : NOT_CLEAN;
    }

    void writePlacement(OutputFile& out) const
    {
        const auto changesOf = [&](size_t index, placer::RecordChanges& changes) {
            const Placed& placed = m_placed[index];
            changes = {.name = design().components[index].name, .at = geometry::Point{placed.x, placed.y}};
            // The map says which cells are upside down; without it none is mirrored.
            if (m_inputs.map && (startsElsewhere() || !m_improved.cells[index].fixed)) {
                changes.orient = placed.mirrored ? "FN" : "N";
            } else if (startsElsewhere()) {
                changes.orient = design().components[index].orient;
            }
        };
        placer::rewritePlacement(m_source.paths.base + ".place", m_placed.size(), changesOf, out);
    }

    std::vector<placer::ColorRecord> colors() const
    {
        std::vector<placer::ColorRecord> records;
        records.reserve(m_placed.size());
        for (size_t i = 0; i < m_placed.size(); ++i) {
            placer::ColorRecord& record = records.emplace_back();
            record.name = design().components[i].name;
            record.cell = design().components[i].cellName;
            if (const placer::Solution* const solution = solutionOf(i, m_placed[i])) {
                record.solution = m_placed[i].solution;
                record.stitches = solution->stitches;
                record.masks = solution->masks;
            }
        }
        return records;
    }

    /// The result that was given, with what has changed; of a placement one without the placer's part.
    Json resultJson(const verify::Judgement& judgement) const
    {
        const auto absolute = [](const std::string& path) {
            return fs::absolute(path).lexically_normal().string();
        };
        Json json = m_source.result.isNull() ? emptyResult() : m_source.result;
        json["options"]["out"] = absolute(m_options.out);
        json["options"]["cell_path"] = absolute(m_source.paths.cellDir);
        if (m_options.minDist || m_source.result.isNull()) {
            json["options"]["mindp"] = m_source.minDist;
        }
        if (m_source.rowsMeet) {
            json["options"]["rows_meet"] = true;
        }
        json["judge"] = verify::toJson(judgement);
        json["hpwl_pins"] = hpwlPinsOf(json["hpwl_pins"], judgement.hpwlPins);
        rusage usage{};
        getrusage(RUSAGE_SELF, &usage);
        json["peak_memory_kib"] = int64_t{usage.ru_maxrss};
        json["refine"] =
            refineJson(m_options, m_outcome, m_inputs.offsets.has_value(), design().dbuPerMicron);
        return json;
    }

    /// What the judge says, and what was known of the design before it was placed, and when it was.
    static Json hpwlPinsOf(const Json& known, const Json& judged)
    {
        if (!known.isObject() || !judged.isObject()) {
            return judged;
        }
        return {{"before", known["before"]},
                {"placed", known.contains("placed") ? known["placed"] : known["after"]},
                {"after", judged["after"]}};
    }

    Json emptyResult() const
    {
        return {{"schema", "vireloce-place"},
                {"version", 1},
                {"options",
                 {{"base", fs::absolute(m_source.paths.base).lexically_normal().string()},
                  {"cell_path", nullptr},
                  {"out", nullptr},
                  {"algo", nullptr},
                  {"mindp", nullptr},
                  {"site_width", nullptr},
                  {"move_range", nullptr},
                  {"weight", nullptr},
                  {"true_orientation", false},
                  {"rescue", false}}},
                {"complete", false},
                {"report", Json::object()},
                {"passes", Json::array()},
                {"placement", nullptr},
                {"rescue", nullptr},
                {"judge", nullptr},
                {"hpwl_pins", nullptr},
                {"seconds", 0},
                {"peak_memory_kib", 0}};
    }

    const Options& m_options;
    Source m_source;
    ProgressLine m_line;
    Inputs m_inputs;
    Built m_built;
    ::refine::Model m_improved;
    std::vector<Placed> m_placed; ///< [component] in the end
    Outcome m_outcome;
};

} // namespace

int refine(const Options& options)
{
    return Run(options).run();
}

} // namespace kit::refine
