// SPDX-License-Identifier: BSD-3-Clause
#include "app/place.h"

#include <chrono>
#include <memory>
#include <new>

#include "app/parameterScope.h"
#include "db/design.h"
#include "qlib/timer.h"

namespace vireloce {

namespace {

/// Measures from its making on.
class Stopwatch {
public:
    Times read() const
    {
        const std::chrono::duration<double> wall = Clock::now() - m_wallBegin;
        return {qLib::timer() - m_cpuBegin, wall.count()};
    }

private:
    using Clock = std::chrono::steady_clock;

    double m_cpuBegin = qLib::timer();
    Clock::time_point m_wallBegin = Clock::now();
};

void setUp(Design& design, PlaceResult& result)
{
    const Stopwatch watch;
    design.initAll();
    result.setUpTime = watch.read();
    result.setUp = design.setUpFigures;
    // Required: the label says LUT, but the time is that of the whole set-up.
    reportf("\nSTAT | LUT CPU time             = %.3f s\n\n", result.setUpTime.cpu);
    design.requireSolutions();
}

void runPasses(Design& design, const PlaceHooks& hooks, PlaceResult& result)
{
    Legalizer legalizer(&design);
    legalizer.onProgress = [&](const Progress& progress) {
        result.passes.resize(static_cast<size_t>(progress.pass));
        result.passes.back() = {.overfull = progress.overfull, .movedOut = progress.movedOut};
        if (hooks.onProgress) {
            hooks.onProgress(progress, result);
        }
    };
    const Stopwatch watch;
    legalizer.solveDPlace();
    result.placeTime = watch.read();
}

/// Takes the end of the run from the design, but for the names of the components.
void takeEnd(Design& design, PlaceResult& result)
{
    const int64_t increase = design.finalHPWL - design.initHPWL;
    result.end = {.hpwl = design.finalHPWL,
                  .hpwlIncrease = increase,
                  .increasePercent =
                      static_cast<double>(increase) * 100.0 / static_cast<double>(design.initHPWL),
                  .stitches = design.evaluateStitchNum(),
                  .conflicts = design.evaluateConflictNum()};
    result.components.reserve(design.components.size());
    for (const Component* comp : design.components) {
        result.components.push_back({{}, comp->x, comp->y, comp->siteX, comp->solution});
    }
}

/// Does the work of place().
PlaceResult run(const PlaceOptions& options, const PlaceHooks& hooks)
{
    PlaceResult result;
    const auto design = std::make_unique<Design>();
    design->setOptions(options);
    setUp(*design, result);
    if (hooks.afterSetUp) {
        hooks.afterSetUp(*design, result);
    }
    if (!hooks.afterEvaluation) {
        design->dropNames();
    }
    runPasses(*design, hooks, result);
    design->evaluation();
    reportf("\nSTAT | Virelocer CPU time       = %.3f s\n\n", result.placeTime.cpu);
    if (!hooks.reportOnly) {
        takeEnd(*design, result);
    }
    if (hooks.afterEvaluation) {
        hooks.afterEvaluation(*design, result);
    }
    for (size_t i = 0; i < result.components.size(); ++i) {
        result.components[i].name = std::move(design->components[i]->name);
    }
    return result;
}

} // namespace

PlaceResult place(const PlaceOptions& options, const PlaceHooks& hooks)
{
    std::ostream nowhere(nullptr);
    const ReportScope report(hooks.report != nullptr ? hooks.report : &nowhere);
    const ParameterScope parameters;
    try {
        return run(options, hooks);
    } catch (const std::bad_alloc&) {
        endRun("ERROR| out of memory");
    }
}

} // namespace vireloce
