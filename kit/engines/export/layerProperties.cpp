// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/export/layerProperties.h"

#include "kit/base/svg.h"

namespace kit::exporter {

namespace {

constexpr const char* FULL = "I0";
constexpr const char* EMPTY = "I1";

/// How a layer is shown.
struct Look {
    std::string name;
    int16_t layer;
    std::string_view colour;
    const char* pattern; ///< KLayout's number of a fill
    bool visible;
};

std::string propertiesOf(const Look& look)
{
    const std::string colour(look.colour);
    return " <properties>\n"
           "  <frame-color>" +
           colour + "</frame-color>\n  <fill-color>" + colour +
           "</fill-color>\n"
           "  <frame-brightness>0</frame-brightness>\n"
           "  <fill-brightness>0</fill-brightness>\n"
           "  <dither-pattern>" +
           look.pattern +
           "</dither-pattern>\n"
           "  <valid>true</valid>\n"
           "  <visible>" +
           (look.visible ? "true" : "false") +
           "</visible>\n"
           "  <transparent>false</transparent>\n"
           "  <width>1</width>\n"
           "  <marked>false</marked>\n"
           "  <animation>0</animation>\n"
           "  <name>" +
           look.name + "</name>\n  <source>" + std::to_string(look.layer) + "/0@1</source>\n </properties>\n";
}

} // namespace

std::string layerPropertiesText()
{
    std::string text = "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<layer-properties>\n";
    for (size_t mask = 0; mask < NUM_MASKS; ++mask) {
        text += propertiesOf({"mask " + std::to_string(mask),
                              static_cast<int16_t>(FIRST_MASK_LAYER + static_cast<int>(mask)),
                              MASK_COLOURS[mask], FULL, true});
    }
    // The metal lies under its masks: it shows what has none.
    text += propertiesOf({"metal 1", METAL_LAYER, NO_MASK_COLOUR, EMPTY, true});
    text += propertiesOf({"cells", OUTLINE_LAYER, CONFLICT_COLOUR, EMPTY, true});
    return text + "</layer-properties>\n";
}

} // namespace kit::exporter
