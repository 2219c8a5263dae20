// SPDX-License-Identifier: BSD-3-Clause
// What the judge has against a placement.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "kit/base/finding.h"
#include "kit/geometry/rect.h"

namespace kit::design {

inline constexpr int32_t MASKS = 3; ///< colours of metal 1

/// Kinds of issues, in the order of the reports.
enum class Kind {
    DOUBLE_COMPONENT,
    NOT_PLACED,
    UNKNOWN_CELL,
    NO_COLOURS,
    STRAY_COLOURS,
    CELL_DIFFERS,
    BAD_SOLUTION,
    MASK_COUNT,
    BAD_MASK,
    MASKS_DIFFER,
    STITCHES_DIFFER,
    ORIENTATION,
    OFF_ROW,
    OUTSIDE_ROW,
    OFF_GRID,
    MACRO_OVERLAP,
    CELL_OVERLAP,
    CONFLICT,
    TOO_MANY,
    ROW_CONFLICT,
    FILLERS,
};

/// What all issues of a kind have in common.
struct KindInfo {
    const char* name; ///< for scripts
    Severity severity;
    const char* title; ///< for people
};

/// All kinds in order; the index is the Kind.
const std::vector<KindInfo>& kinds();

/// The kind's entry in kinds().
const KindInfo& infoOf(Kind kind);

/// In DBU of the placement: shapes need not lie on whole ones.
using DbuBox = geometry::RectOf<double>;

/// An issue. Those of a pair of cells have no text of their own: there may be a million of them.
struct Issue {
    Kind kind = Kind::TOO_MANY;
    bool inColors = false;  ///< the line is one of the colours file, not of the placement
    int64_t line = 0;       ///< from 1, 0 for the file as a whole
    int32_t component = -1; ///< index in Design::components, -1 if it is about none
    int32_t other = -1;     ///< the other cell of a pair, -1 if there is none
    std::string what{};     ///< what is wrong; empty for CELL_OVERLAP, CONFLICT and ROW_CONFLICT
    double distance = 0;    ///< CONFLICT, ROW_CONFLICT: least distance of two shapes, library coordinates
    int32_t shapePairs = 0; ///< CONFLICT, ROW_CONFLICT: pairs of shapes that are too close
    int32_t mask = -1;      ///< CONFLICT, ROW_CONFLICT: of the two closest shapes
    DbuBox box{};           ///< where it is: the cell, or one of the two closest rectangles
    DbuBox otherBox{};      ///< the other of the two closest rectangles
};

/// Issues in the order in which they were met.
using Issues = std::vector<Issue>;

/// Whether an issue is about two rectangles that are too close.
inline bool isConflict(const Issue& issue)
{
    return issue.kind == Kind::CONFLICT || issue.kind == Kind::ROW_CONFLICT;
}

} // namespace kit::design
