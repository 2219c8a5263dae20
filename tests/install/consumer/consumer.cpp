// SPDX-License-Identifier: BSD-3-Clause
// A program on top of the installed library: options and results are values, and an error is an exception.
#include <iostream>
#include <sstream>
#include <string>

#include "vireloce/app/place.h"

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::cout << "usage: consumer EXAMPLES\n";
        return 1;
    }
    const std::string examples = argv[1];
    int faults = 0;
    const auto require = [&faults](bool rule, const char* text) {
        if (!rule) {
            std::cout << "NOT TRUE: " << text << '\n';
            ++faults;
        }
    };

    vireloce::PlaceOptions options;
    options.placePath = "no/such";
    try {
        vireloce::place(options);
        require(false, "a missing design ends the run");
    } catch (const vireloce::RunError& error) {
        require(error.text == "cannot open file: no/such.place", "the error says what is wrong");
    }

    options.placePath = examples + "/gcd/gcd";
    options.cellPath = examples + "/nangate45_color";
    std::ostringstream report;
    vireloce::PlaceHooks hooks;
    hooks.report = &report;
    const vireloce::PlaceResult result = vireloce::place(options, hooks);
    require(result.end.hpwl == 4267250, "the result has the numbers of the report");
    require(result.components.size() == result.setUp.components, "the result has every component");
    require(report.str().find("STAT | final HPWL               = 4267250\n") != std::string::npos,
            "the stream has the report");
    return faults == 0 ? 0 : 1;
}
