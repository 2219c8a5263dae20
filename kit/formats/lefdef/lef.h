// SPDX-License-Identifier: BSD-3-Clause
// What the kit takes from LEF files: sites, and the masters with their metal of one layer.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "kit/base/finding.h"
#include "kit/formats/lefdef/source.h"
#include "kit/geometry/rect.h"

namespace kit::lefdef {

/// A length in picometres, so that every decimal of micrometres with six digits is exact.
using Length = int64_t;

/// A micrometre.
inline constexpr Length MICRON = 1'000'000;

using LefPoint = geometry::Point; ///< picometres

/// A rectangle or a polygon of metal.
struct LefShape {
    bool polygon = false;
    std::vector<LefPoint>
        points;        ///< of a rectangle its lower left and upper right corner; a polygon's in file order
    int32_t mask = 0;  ///< 1 to 3, 0 if none is given
    size_t offset = 0; ///< of its first word in the file
};

enum class PinUse : uint8_t { SIGNAL, ANALOG, CLOCK, POWER, GROUND, SCAN, TIEOFF, RESET };

struct LefPin {
    std::string name;
    PinUse use = PinUse::SIGNAL;
    std::vector<LefShape> shapes; ///< all ports together, of the wanted layer; origin taken into account
    std::optional<geometry::Rect> bounds{}; ///< around its shapes of all layers; origin taken into account
    size_t offset = 0;                      ///< of its statement in the file
};

/// A cell master.
struct LefMacro {
    std::string name;
    std::string macroClass; ///< words after CLASS, parted by single blanks: "CORE", "CORE SPACER", "BLOCK";
                            ///< may be empty
    std::string site;       ///< last SITE named; empty if none is
    Length width = 0;
    Length height = 0;
    LefPoint origin; ///< what the shapes were moved by
    bool symmetryX = false;
    bool symmetryY = false;
    std::vector<LefPin> pins;
    std::vector<LefShape> obstructions; ///< of the wanted layer; origin taken into account
    std::vector<std::string> pinLayers; ///< layers with shapes of its pins, the wanted one too, as they come
    std::vector<std::string> otherLayers; ///< those with other shapes
    int32_t source = 0;                   ///< index of the file among those read
    size_t offset = 0;                    ///< of its statement in the file
    size_t endOffset = 0;                 ///< behind its END and name
};

/// The rectangles of a shape, cut between its corners' heights if it is a polygon with axis-parallel edges.
/// Empty for another polygon.
std::vector<geometry::Rect> boxesOf(const LefShape& shape);

/// Whether a macro is a filler: a cell without a function, of class CORE SPACER or PAD SPACER.
bool isFiller(const LefMacro& macro);

/// Whether a macro has metal of the wanted layer.
bool hasMetal(const LefMacro& macro);

/// The size of a site.
struct SiteSize {
    Length width = 0;
    Length height = 0;
};

/// A placement site.
struct LefSite {
    std::string name;
    std::string siteClass; ///< CORE or PAD
    Length width = 0;
    Length height = 0;
    int32_t source = 0;
    size_t offset = 0;
};

/// Vias by name: whether they have metal of the wanted layer.
using Vias = std::map<std::string, bool, std::less<>>;

/// A library of one file or several.
struct Lef {
    int32_t databaseMicrons = 0; ///< of UNITS, 0 if not given
    std::vector<LefSite> sites;
    std::vector<LefMacro> macros;
    std::vector<std::string> routingLayers; ///< of TYPE ROUTING, from the lowest
    std::string layer;                      ///< the wanted one
    std::vector<std::string> paths;         ///< [LefMacro::source] of the files
    Vias vias; ///< for readLef(): vias in macros are not read, and it tells of those that would matter
};

/// Reads a LEF file to its end, whatever is wrong with it, and adds what it holds to a library.
///
/// Lengths are rounded to picometres. Of a name that comes twice, the first stays. Sections and statements
/// that the kit has no use for are skipped by their grammar.
///
/// @param layer     the metal layer whose shapes are kept; names are compared exactly
/// @param number    index of the file among those read, for LefMacro::source
/// @param findings  out: problems, each with line and column
void readLef(const Source& source, const std::string& layer, int32_t number, Lef& lef, Findings& findings);

} // namespace kit::lefdef
