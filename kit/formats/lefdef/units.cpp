// SPDX-License-Identifier: BSD-3-Clause
#include "kit/formats/lefdef/units.h"

#include <cstdlib>

namespace kit::lefdef {

std::string micronText(Length length)
{
    const Length size = std::abs(length);
    std::string text = (length < 0 ? "-" : "") + std::to_string(size / MICRON);
    if (size % MICRON != 0) {
        std::string digits = std::to_string(MICRON + size % MICRON).substr(1);
        digits.resize(digits.find_last_not_of('0') + 1);
        text += "." + digits;
    }
    return text;
}

} // namespace kit::lefdef
