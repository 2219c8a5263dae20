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
    RAIL_CONFLICT,
    FILLERS,
    NO_MASKS,
};

/// What all issues of a kind have in common.
struct KindInfo {
    const char* name; ///< for scripts
    Severity severity;
    const char* title; ///< for people
};

/// All kinds in order; the index is the Kind.
inline constexpr KindInfo KINDS[] = {
    {"double-component", Severity::ERROR, "names of components that come again"},
    {"not-placed", Severity::ERROR, "components behind FILLER_1, which the placer leaves out"},
    {"unknown-cell", Severity::ERROR, "components whose cell is not in the library"},
    {"no-colors", Severity::ERROR, "components without colours"},
    {"stray-colors", Severity::ERROR, "colours without a component"},
    {"cell-differs", Severity::ERROR, "colours of another cell than the component's"},
    {"bad-solution", Severity::ERROR, "solutions that the cell does not have"},
    {"mask-count", Severity::ERROR, "more or fewer masks than shapes"},
    {"bad-mask", Severity::ERROR, "masks other than 0, 1, 2"},
    {"masks-differ", Severity::ERROR, "masks other than those of the solution"},
    {"stitches-differ", Severity::ERROR, "stitches other than those of the solution"},
    {"orientation", Severity::ERROR, "orientations that do not fit a row"},
    {"off-row", Severity::ERROR, "cells on no row"},
    {"outside-row", Severity::ERROR, "cells that reach beyond their row"},
    {"off-grid", Severity::ERROR, "cells between the sites"},
    {"macro-overlap", Severity::ERROR, "cells that overlap a macro"},
    {"cell-overlap", Severity::ERROR, "pairs of cells that overlap"},
    {"conflict", Severity::ERROR, "pairs of cells in a row with metal of one mask too close"},
    {"too-many", Severity::ERROR, "searches given up: counts are too low"},
    {"row-conflict", Severity::NOTE, "pairs of cells in different rows with metal of one mask too close"},
    {"rail-conflict", Severity::NOTE, "pairs of cells with metal of mask 0 too close to a rail"},
    {"fillers", Severity::NOTE, "fillers, which are not judged"},
    {"no-masks", Severity::NOTE, "fixed cells without a solution, which are not judged"},
};

/// The kind's entry in KINDS.
constexpr const KindInfo& infoOf(Kind kind)
{
    return KINDS[static_cast<size_t>(kind)];
}

/// In DBU of the placement: shapes need not lie on whole ones.
using DbuBox = geometry::RectOf<double>;

/// An issue. Those of a pair of cells have no text of their own: there may be a million of them.
struct Issue {
    Kind kind = Kind::TOO_MANY;
    bool inColors = false;  ///< the line is one of the colours file, not of the placement
    int64_t line = 0;       ///< from 1, 0 for the file as a whole
    int32_t component = -1; ///< index as in Design::component(), -1 if it is about none
    int32_t other = -1;     ///< the other cell of a pair, -1 if there is none
    std::string what{};     ///< what is wrong; empty for pairs but those with a macro
    std::string reason{};   ///< of conflicts across rows: why it is left, where that is known
    double distance = 0;    ///< of conflicts: least distance of two shapes, library coordinates
    int32_t shapePairs = 0; ///< of conflicts: pairs of shapes that are too close
    int32_t mask = -1;      ///< of conflicts: mask of the two closest shapes
    DbuBox box{};           ///< where it is: the cell, or one of the two closest rectangles
    DbuBox otherBox{};      ///< the other of the two closest rectangles
    bool isError = false;   ///< more than its kind usually is
};

/// How much an issue weighs.
inline Severity severityOf(const Issue& issue)
{
    return issue.isError ? Severity::ERROR : infoOf(issue.kind).severity;
}

/// Issues in the order in which they were met.
using Issues = std::vector<Issue>;

/// Whether an issue is about two rectangles that are too close.
inline bool isConflict(const Issue& issue)
{
    return issue.kind == Kind::CONFLICT || issue.kind == Kind::ROW_CONFLICT ||
           issue.kind == Kind::RAIL_CONFLICT;
}

} // namespace kit::design
