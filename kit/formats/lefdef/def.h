// SPDX-License-Identifier: BSD-3-Clause
// What the kit takes from a DEF file. Texts are views into the source, which must live as long.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "kit/base/finding.h"
#include "kit/formats/lefdef/orient.h"
#include "kit/formats/lefdef/source.h"
#include "kit/geometry/rect.h"

namespace kit::lefdef {

using DefRect = geometry::Rect; ///< DBU

struct DefRow {
    std::string_view name;
    std::string_view site;
    int32_t x = 0; ///< DBU
    int32_t y = 0; ///< DBU
    Orient orient = Orient::N;
    int32_t columns = 1; ///< of DO columns BY rows
    int32_t rows = 1;
    int32_t stepX = 0; ///< DBU; 0 if no STEP is given
    int32_t stepY = 0;
    size_t offset = 0;
};

enum class Status : uint8_t { NONE, UNPLACED, PLACED, FIXED, COVER };

struct DefComponent {
    std::string_view name;
    std::string_view macro;
    Status status = Status::NONE; ///< NONE counts as unplaced
    Orient orient = Orient::N;
    int32_t x = 0; ///< lower left corner of the cell as it lies, DBU
    int32_t y = 0;
    size_t offset = 0;         ///< of its name
    size_t placeBegin = 0;     ///< of the status word, UNPLACED too; 0 as well as placeEnd if there is none
    size_t placeEnd = 0;       ///< behind the status and, if there is one, the orientation
    size_t endOffset = 0;      ///< of the `;`
    std::string_view region{}; ///< named by REGION
};

struct DefPin {
    std::string_view name;
    std::string_view net;
    bool supply = false; ///< of use POWER or GROUND
    bool placed = false; ///< the pin, or its first placed port, has a place
    int32_t x = 0;
    int32_t y = 0;
    size_t firstPort = 0; ///< in Def::ports
    size_t numPorts = 0;  ///< those that have a place
    size_t offset = 0;
};

/// A pin of a component on a net; a terminal of the design has the component "PIN".
struct DefMember {
    std::string_view component;
    std::string_view pin;
};

struct DefNet {
    std::string_view name;
    bool supply = false;    ///< of use POWER or GROUND
    size_t firstMember = 0; ///< in Def::members
    size_t numMembers = 0;
    size_t firstRoute = 0; ///< in Def::routes
    size_t numRoutes = 0;
    size_t offset = 0;
};

/// A placement blockage; those of routing layers are not kept.
struct DefBlockage {
    bool soft = false;          ///< SOFT or PARTIAL: a detailed placer may put cells there
    std::vector<DefRect> rects; ///< of a rectilinear polygon, the rectangles that it is cut into
    size_t offset = 0;
};

enum class RegionType : uint8_t { NONE, FENCE, GUIDE };

/// A part of the area that is for some components.
struct DefRegion {
    std::string_view name;
    std::vector<DefRect> rects;
    RegionType type = RegionType::NONE; ///< NONE: members are inside, and others may be
    size_t offset = 0;
};

struct DefGroup {
    std::string_view name;
    std::vector<std::string_view> patterns; ///< names of components, in which `*` stands for any text
    std::string_view region;                ///< empty if it has none
    size_t offset = 0;
};

/// What a component keeps free around it.
struct DefHalo {
    std::string_view component;
    DefRect widths;    ///< at the left, bottom, right and top of the master, in xl, yl, xh and yh, DBU
    bool soft = false; ///< only while the design is placed anew
    size_t offset = 0;
};

/// A design.
struct Def {
    std::string_view design;
    int32_t databaseMicrons = 0; ///< DBU per micrometre, 0 if not given
    DefRect dieArea;             ///< bounding box
    bool hasDieArea = false;
    std::vector<DefRow> rows;
    std::vector<DefComponent> components;
    std::vector<DefPin> pins;
    std::vector<geometry::Point> ports; ///< of all pins, placed: middle of the LAYER rectangles that stand
                                        ///< before the place, or else that place; half DBU
    std::vector<DefNet> nets;           ///< regular ones; special nets are not read
    std::vector<DefMember> members;     ///< of all nets
    std::vector<geometry::RangeOf<size_t>>
        routes; ///< of all nets, regular routing in the text: from its "+" to the next option, or the `;`
    std::vector<DefBlockage> blockages;
    std::vector<DefRegion> regions;
    std::vector<DefGroup> groups;
    std::vector<DefHalo> halos;
};

/// Reads a DEF file to its end, whatever is wrong with it.
///
/// The counts of section headers may be wrong: the records rule, and a warning says so. Names keep their
/// escapes, quotation marks around one are not part of it. Sections that the kit has no use for are skipped
/// by their grammar.
///
/// @param findings  out: problems, each with line and column
Def readDef(const Source& source, Findings& findings);

} // namespace kit::lefdef
