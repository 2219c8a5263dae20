// SPDX-License-Identifier: BSD-3-Clause
// A program on top of the installed library: it takes the report into a string, and goes on where the placer
// itself would end the process.
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

#include "vireloce/app/driver.h"
#include "vireloce/db/design.h"
#include "vireloce/qlib/report.h"

namespace {

/// Thrown in place of the end of the process.
struct RunEnded {};

/// A run and what came of it.
struct Run {
    std::string report;
    bool ended = false; ///< whether an error ended the run
};

Run place(std::vector<std::string> words)
{
    words.insert(words.begin(), "consumer");
    std::vector<char*> argv;
    for (std::string& word : words) {
        argv.push_back(word.data());
    }
    Run run;
    std::ostringstream report;
    vireloce::setReport(&report);
    try {
        vireloce::runPlacer(static_cast<int>(argv.size()), argv.data());
    } catch (const RunEnded&) {
        run.ended = true;
    }
    vireloce::setReport(nullptr);
    run.report = report.str();
    return run;
}

bool has(const Run& run, const std::string& text)
{
    return run.report.find(text) != std::string::npos;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::cout << "usage: consumer EXAMPLES\n";
        return 1;
    }
    const std::string examples = argv[1];
    vireloce::setEndHandler([] { throw RunEnded{}; });

    const Run missing = place({"-inlib", "no/such"});
    const Run gcd =
        place({"-inlib", examples + "/gcd/gcd", "-cellPath", examples + "/nangate45_color", "-algo", "0"});

    int faults = 0;
    const auto require = [&faults](bool rule, const char* text, const Run& run) {
        if (!rule) {
            std::cout << "NOT TRUE: " << text << '\n' << run.report;
            ++faults;
        }
    };
    require(missing.ended, "a missing design ends the run", missing);
    require(has(missing, "ERROR| cannot open file: no/such.place\n"), "the string has the error", missing);
    require(!gcd.ended, "a good design runs to its regular end", gcd);
    require(has(gcd, "STAT | final HPWL               = 4267250\n"), "the string has the report", gcd);
    return faults == 0 ? 0 : 1;
}
