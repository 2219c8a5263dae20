// SPDX-License-Identifier: BSD-3-Clause
#include "app/driver.h"

#include <memory>
#include <new>

#include "db/design.h"
#include "legalizer/legalizer.h"
#include "qlib/report.h"
#include "qlib/timer.h"

void printWelcome()
{
    vireloce::report() << "\n"
                          "==================================================================\n"
                          "                      Vireloce - Version 3.1                      \n"
                          "==================================================================\n";
}

void printUsage()
{
    vireloce::report()
        << "\n"
           "===================================================================\n"
           "                        Vireloce Usage                             \n"
           "\"-inlib\"   : followed by input def layout (default: \"sparc_exu_alu\"). \n"
           "\"-cellPath\": followed by the path to cell color files (default: \"../benchNangate_shifted\"). "
           "\n"
           "\"-mindp\"   : coloring distance (default: 185)\n"
           "\"-siteW\"   : site width on the row [min cell shift distance] (default: 190)\n"
           "\"-algo\"    : detailed placement methods (0: Vireloce; 1: Vireloce-SPD; -1: Greedy)\n"
           "\"-M\"       : M value in detailed placement (default: 8)\n"
           "\"-W\"       : importance of wirelength vs. stitch# (default: 10)\n"
           "===================================================================\n"
           "\n";
}

namespace vireloce {

namespace {

/// Does the work of runPlacer().
void run(int argc, char** argv, const RunHooks& hooks)
{
    printWelcome();
    const auto design = std::make_unique<Design>();
    if (!design->parseParameters(argc, argv)) {
        printUsage();
        return;
    }

    const double setUpBegin = qLib::timer();
    design->initAll();
    // Required: the label says LUT, but the time is that of the whole set-up.
    reportf("\nSTAT | LUT CPU time             = %.3f s\n\n", qLib::timer() - setUpBegin);
    design->requireSolutions();
    design->dropNames();
    if (hooks.afterSetUp) {
        hooks.afterSetUp(*design);
    }
    const auto legalizer = std::make_unique<Legalizer>(design.get());
    legalizer->onProgress = hooks.onProgress;
    const double placeBegin = qLib::timer();
    legalizer->solveDPlace();
    const double placeEnd = qLib::timer();
    design->evaluation();
    reportf("\nSTAT | Virelocer CPU time       = %.3f s\n\n", placeEnd - placeBegin);
    if (hooks.afterEvaluation) {
        hooks.afterEvaluation(*design);
    }
}

} // namespace

int runPlacer(int argc, char** argv, const RunHooks& hooks)
{
    try {
        run(argc, argv, hooks);
    } catch (const std::bad_alloc&) {
        endRun("ERROR| out of memory");
    }
    report().flush();
    return 0;
}

} // namespace vireloce
