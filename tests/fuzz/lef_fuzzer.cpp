// SPDX-License-Identifier: BSD-3-Clause
// Whatever the bytes, the LEF reader comes to an end, and what it gives is sound in itself.
#include <cstdint>
#include <cstdlib>
#include <set>
#include <string>

#include "check.h"
#include "kit/formats/lefdef/lef.h"

namespace {

using fuzz::check;
using namespace kit::lefdef;

/// Coordinates, copies and the origin are each at most 10^9 micrometres.
constexpr Length LARGEST = 3 * Length{1'000'000'000} * MICRON;

/// Corners that ITERATE makes, in a file.
constexpr size_t MOST_COPIED = 1'000'000;

/// Returns the number of corners.
size_t checkShapes(const std::vector<LefShape>& shapes)
{
    size_t corners = 0;
    for (const LefShape& shape : shapes) {
        corners += shape.points.size();
        check(shape.mask >= 0 && shape.mask <= 3, "a mask is 0 to 3");
        check(shape.polygon ? shape.points.size() >= 3 : shape.points.size() == 2, "a shape has its corners");
        check(shape.polygon ||
                  (shape.points[0].x <= shape.points[1].x && shape.points[0].y <= shape.points[1].y),
              "a rectangle starts at its lower left corner");
        for (const LefPoint& point : shape.points) {
            check(std::abs(point.x) <= LARGEST && std::abs(point.y) <= LARGEST, "a corner is in range");
        }
    }
    return corners;
}

void checkMacro(const LefMacro& macro, size_t size)
{
    check(macro.width >= 0 && macro.height >= 0, "a size is not negative");
    check(macro.offset < macro.endOffset && macro.endOffset <= size, "a macro ends behind its beginning");
    std::set<std::string> names;
    for (const LefPin& pin : macro.pins) {
        check(names.insert(pin.name).second, "a pin's name is new");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string text(data, data + size);
    const Source source("fuzz.lef", text);
    kit::Findings findings;
    Lef lef;
    readLef(source, "M1", 0, lef, findings);
    fuzz::checkFindings(findings);
    std::set<std::string> names;
    size_t corners = 0;
    for (const LefMacro& macro : lef.macros) {
        check(!macro.name.empty() && names.insert(macro.name).second, "a macro's name is new");
        checkMacro(macro, size);
        corners += checkShapes(macro.obstructions);
        for (const LefPin& pin : macro.pins) {
            corners += checkShapes(pin.shapes);
        }
    }
    check(corners <= size + MOST_COPIED, "copies are bounded");
    return 0;
}
