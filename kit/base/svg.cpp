// SPDX-License-Identifier: BSD-3-Clause
#include "kit/base/svg.h"

#include <cmath>

#include "kit/base/text/escape.h"
#include "kit/base/text/text.h"

namespace kit {

void beginSvg(OutputFile& file, SvgSize pixels, SvgSize units, std::string_view title,
              std::string_view attributes)
{
    file << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<svg xmlns=\"http://www.w3.org/2000/svg\" width=\""
         << pixels.width << "\" height=\"" << pixels.height << "\" viewBox=\"0 0 " << units.width << " "
         << units.height << "\"" << attributes << ">\n<title>" << escapeXml(title)
         << "</title>\n<rect width=\"100%\" height=\"100%\" fill=\"#fff\"/>\n";
}

void writeSvgText(OutputFile& file, double x, double y, std::string_view words, std::string_view attributes)
{
    const auto tenths = [](double value) { return shortText(std::round(value * 10) / 10); };
    file << "<text x=\"" << tenths(x) << "\" y=\"" << tenths(y) << "\"" << attributes << ">"
         << escapeXml(words) << "</text>\n";
}

} // namespace kit
