// SPDX-License-Identifier: BSD-3-Clause
// A design as its files say it, with the line of everything.
//
// It is the kit's own picture of the inputs: it keeps what the placer skips, and shares no code with it, so
// that what checks the placer does not repeat its mistakes. Coordinates of the placement are in DBU, those of
// cells in library coordinates, as in the files.
#pragma once

#include <cassert>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "kit/geometry/rect.h"

namespace kit::placer {

/// Site width that cells are drawn at, library coordinates.
inline constexpr int32_t LIBRARY_SITE = 190;

/// A placement row.
struct Row {
    std::string name;
    std::string siteName;
    int32_t x = 0; ///< left edge of the first site, DBU
    int32_t y = 0; ///< bottom edge, DBU
    std::string orient;
    int32_t numSites = 0;
    int32_t step = 0; ///< distance of two sites, DBU
    int64_t line = 0; ///< in the placement file
};

/// A fixed block.
struct Macro {
    std::string name;
    int32_t x = 0;      ///< left edge, DBU
    int32_t y = 0;      ///< bottom edge, DBU
    int32_t width = 0;  ///< DBU
    int32_t height = 0; ///< DBU
    int64_t line = 0;   ///< in the placement file
};

/// A placed cell.
struct Component {
    std::string name;
    std::string cellName;
    int32_t cell = -1; ///< index in Design::cells, -1 if there is none of that name
    int32_t x = 0;     ///< left edge, DBU
    int32_t y = 0;     ///< bottom edge, DBU
    std::string orient;
    int64_t line = 0; ///< in the placement file
};

/// A fixed terminal.
struct Pin {
    std::string name;
    int32_t x = 0;    ///< DBU
    int32_t y = 0;    ///< DBU
    int64_t line = 0; ///< in the pin file
};

/// A member of a net: a component, or else a pin.
struct Member {
    int32_t component = -1; ///< index in Design::components, -1 if it is not one
    int32_t pin = -1;       ///< index in Design::pins, -1 if it is not one
};

/// A net.
struct Net {
    std::vector<Member> members; ///< those whose names are known, file order
    int64_t line = 0;            ///< in the netlist
};

using Rect = geometry::RectOf<int32_t>; ///< library coordinates

/// A metal-1 shape of a cell.
struct Shape {
    std::vector<Rect> rects;
    int64_t line = 0; ///< in the colour file
};

/// A colouring of a cell.
struct Solution {
    int32_t stitches = 0;
    std::vector<int32_t> masks; ///< [shape] 0, 1, 2
    int64_t line = 0;           ///< in the colour file
};

/// Metal of a cell as its LEF file has it, picometres.
struct TrueMetal {
    int64_t siteWidth = 0; ///< what is LIBRARY_SITE in the colour file
    int64_t width = 0;     ///< of the cell
    int64_t height = 0;    ///< of the cell
    std::vector<geometry::Rect> rects{};
};

/// A library cell.
struct Cell {
    std::string name;
    std::string path; ///< of its colour file
    int32_t width = 0;
    int32_t height = 0;
    std::vector<Rect> headerBoxes;
    std::vector<Shape> shapes;
    std::vector<Solution> solutions;
    std::optional<TrueMetal> trueMetal; ///< where the shapes are rounded, and it is known
    bool complete = false;              ///< the colour file could be read to its end
    int64_t line = 0;                   ///< in the cell list
};

/// Metal of a component that stays where it is, on masks that nobody knows.
struct BlockMetal {
    int32_t fixed = 0;  ///< index of the component in Design::fixed
    geometry::Rect box; ///< DBU
};

/// A design with its library.
struct Design {
    std::string name;         ///< of the placement's DESIGN statement, empty if it has none
    int32_t dbuPerMicron = 0; ///< of its UNITS statement, 0 if it has none
    std::vector<Row> rows;
    std::vector<Macro> macros;
    std::vector<Component> components;  ///< those that the placer places
    std::vector<Component> fillers;     ///< from FILLER_1 to the end of its section: the placer skips them
    std::vector<Component> fixed;       ///< those that stay where they are; to the placer they are macros
    std::vector<BlockMetal> blockMetal; ///< of those among them that are no cells
    std::vector<Pin> pins;
    std::vector<Net> nets;
    std::vector<Cell> cells;

    /// A component by its index in components; those that stay where they are come behind.
    const Component& component(int32_t index) const
    {
        assert(index >= 0 && static_cast<size_t>(index) < components.size() + fixed.size());
        const auto i = static_cast<size_t>(index);
        return i < components.size() ? components[i] : fixed[i - components.size()];
    }

    /// Whether a component, by its index as in component(), stays where it is.
    bool isFixed(int32_t index) const { return static_cast<size_t>(index) >= components.size(); }

    /// The cell of a component, nullptr if there is none of that name.
    const Cell* cellOf(const Component& comp) const
    {
        return comp.cell < 0 ? nullptr : &cells[static_cast<size_t>(comp.cell)];
    }
};

/// Index of the last record of each name; the records must outlive it, and keep their place.
using NameIndex = std::unordered_map<std::string_view, int32_t>;

/// The index of some named records.
template <typename Records>
NameIndex indexNames(const Records& records)
{
    NameIndex index;
    index.reserve(records.size());
    int32_t next = 0;
    for (const auto& record : records) {
        index[record.name] = next++;
    }
    return index;
}

/// Index of a record by its name, -1 if there is none.
inline int32_t findName(const NameIndex& index, std::string_view name)
{
    const auto at = index.find(name);
    return at != index.end() ? at->second : -1;
}

} // namespace kit::placer
