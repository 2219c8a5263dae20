// SPDX-License-Identifier: BSD-3-Clause
// The command-line options.
#include <cstdlib>
#include <string>

#include "app/parameters.h"
#include "db/design.h"
#include "qlib/report.h"

namespace {

/// The longest decimal prefix, 0 without one, cut to 32 bits.
int32_t toInteger(const std::string& text)
{
    return static_cast<int32_t>(std::strtol(text.c_str(), nullptr, 10));
}

/// Applies one option.
///
/// @return false if there is no such option
bool applyOption(Design& design, const std::string& option, const std::string& value)
{
    if (option == "-inlib") {
        design.placePath = value;
        design.cleanPlacePath();
        // No "/" gives npos, and npos + 1 is 0: the whole path.
        design.designName = design.placePath.substr(design.placePath.rfind('/') + 1);
    } else if (option == "-cellPath") {
        design.cellPath = value;
    } else if (option == "-mindp") {
        MINDPLDIST = toInteger(value);
    } else if (option == "-algo") {
        design.algo = toInteger(value);
    } else if (option == "-siteW") {
        SITE_WIDTH = toInteger(value);
    } else if (option == "-M") {
        LDP_M = toInteger(value);
    } else if (option == "-W") {
        WEIGHT_WRLENG = static_cast<float>(std::strtod(value.c_str(), nullptr));
    } else {
        return false;
    }
    return true;
}

} // namespace

bool Design::parseParameters(int argc, char** argv)
{
    std::ostream& out = vireloce::report();
    out << "STAT | Parameters: ";
    for (int i = 1; i < argc; ++i) {
        out << argv[i] << ' ';
    }
    out << '\n';
    for (int i = 1; i < argc; i += 2) {
        if (i + 1 == argc || !applyOption(*this, argv[i], argv[i + 1])) {
            out << "ERROR| can NOT parse: " << argv[i] << '\n';
            return false;
        }
    }
    return true;
}

void Design::cleanPlacePath()
{
    if (!placePath.empty() && placePath.back() == '.') {
        placePath.pop_back();
    }
}
