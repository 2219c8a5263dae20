// SPDX-License-Identifier: BSD-3-Clause
#include "app/driver.h"

#include "app/place.h"

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

bool beginReport(int argc, const char* const* argv, PlaceOptions& options)
{
    printWelcome();
    const bool isGood = readOptions(argc, argv, options);
    if (!isGood) {
        printUsage();
    }
    return isGood;
}

int runPlacer(int argc, const char* const* argv)
{
    PlaceOptions options;
    PlaceHooks hooks;
    hooks.report = &report();
    hooks.reportOnly = true;
    try {
        if (beginReport(argc, argv, options)) {
            place(options, hooks);
        }
    } catch (const RunError&) { // the report says it
    }
    report().flush();
    return 0;
}

} // namespace vireloce
