// SPDX-License-Identifier: BSD-3-Clause
#include "app/placeOptions.h"

#include <cstdlib>

#include "qlib/report.h"

namespace vireloce {

namespace {

/// The longest decimal prefix, 0 without one, cut to 32 bits.
int32_t toInteger(const std::string& text)
{
    return static_cast<int32_t>(std::strtol(text.c_str(), nullptr, 10));
}

/// Applies one option.
///
/// @return false if there is no such option
bool applyOption(PlaceOptions& options, const std::string& option, const std::string& value)
{
    if (option == "-inlib") {
        options.placePath = withoutDot(value);
    } else if (option == "-cellPath") {
        options.cellPath = value;
    } else if (option == "-mindp") {
        options.parameters.minDist = toInteger(value);
    } else if (option == "-algo") {
        options.algo = toInteger(value);
    } else if (option == "-siteW") {
        options.parameters.siteWidth = toInteger(value);
    } else if (option == "-M") {
        options.parameters.moveRange = toInteger(value);
    } else if (option == "-W") {
        options.parameters.weight = static_cast<float>(std::strtod(value.c_str(), nullptr));
    } else {
        return false;
    }
    return true;
}

} // namespace

bool readOptions(int argc, const char* const* argv, PlaceOptions& options)
{
    std::ostream& out = report();
    out << "STAT | Parameters: ";
    for (int i = 1; i < argc; ++i) {
        out << argv[i] << ' ';
    }
    out << '\n';
    for (int i = 1; i < argc; i += 2) {
        if (i + 1 == argc || !applyOption(options, argv[i], argv[i + 1])) {
            out << "ERROR| can NOT parse: " << argv[i] << '\n';
            return false;
        }
    }
    return true;
}

std::string withoutDot(std::string path)
{
    if (!path.empty() && path.back() == '.') {
        path.pop_back();
    }
    return path;
}

} // namespace vireloce
