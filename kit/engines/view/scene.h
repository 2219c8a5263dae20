// SPDX-License-Identifier: BSD-3-Clause
// What a picture of a placement shows, all in one unit: DBU of the design.
//
// Metal is drawn where the colour files have it, rescaled as the placer rescales cells: sites of the library
// become sites of the design, and the height of a cell becomes the row height.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "kit/formats/placer/colors.h"
#include "kit/formats/placer/design.h"

namespace kit::view {

/// A rectangle, DBU.
struct Box {
    int32_t xl = 0;
    int32_t yl = 0;
    int32_t xh = 0;
    int32_t yh = 0;

    friend bool operator==(const Box&, const Box&) = default;
};

/// A rectangle of metal 1.
struct Metal {
    Box box;           ///< from the cell's lower-left corner, DBU
    int32_t shape = 0; ///< index in Colouring::masks
};

/// Where two shapes of a cell touch: a stitch in each colouring that has them on different masks.
struct Joint {
    int32_t first = 0;  ///< shape
    int32_t second = 0; ///< shape, greater than the first
    Box box;            ///< that both share, without area where they abut; from the lower-left corner, DBU
};

/// A colour solution of a cell.
struct Colouring {
    int32_t stitches = 0;       ///< as the colour file counts them
    std::vector<int32_t> masks; ///< [shape] 0, 1, 2
};

/// A cell of the library.
struct Kind {
    std::string name;
    int32_t width = 0; ///< DBU
    std::vector<Metal> metal;
    std::vector<Joint> joints;
    std::vector<Colouring> colourings;
};

/// Where a cell stands.
struct Place {
    int32_t x = 0;         ///< left edge, DBU
    int32_t y = 0;         ///< bottom edge, DBU
    bool mirrored = false; ///< left and right change places
    bool flipped = false;  ///< bottom and top change places

    friend bool operator==(const Place&, const Place&) = default;
};

/// A placed cell.
struct Cell {
    std::string name;
    int32_t kind = -1; ///< index in Scene::kinds, -1 if the library has none of that name
    Place place;
    Place before;           ///< in the input placement; the same as place if it is not there
    int32_t colouring = -1; ///< index in Kind::colourings, -1 if unknown
    bool isFixed = false;   ///< it stays where it is, and takes no room of a stretch
};

/// A fixed block, or a row.
struct Block {
    std::string name;
    Box box;
};

/// A fixed terminal.
struct Terminal {
    std::string name;
    int32_t x = 0; ///< DBU
    int32_t y = 0; ///< DBU
};

/// Two pieces of metal of neighbours that are on one mask and too close.
struct Conflict {
    int32_t left = 0;  ///< index in Scene::cells
    int32_t right = 0; ///< index in Scene::cells
    Box box;           ///< of the gap between the two rectangles, DBU; without area where they are aligned
};

/// A placement as it is drawn.
struct Scene {
    std::string title;             ///< the placement file
    int32_t dbuPerMicron = 0;      ///< positive
    int32_t siteWidth = 0;         ///< DBU
    int32_t rowHeight = 0;         ///< DBU
    int32_t minDist = 0;           ///< of metal on one mask, library units
    std::string minDistText;       ///< the same for people
    std::string pinLength;         ///< wirelength from pin to pin for people; empty if it is not known
    std::string pinLengthBefore;   ///< that of the input placement
    bool coloured = false;         ///< the colour solutions are known
    bool moved = false;            ///< Cell::before is known
    std::vector<Block> rows;       ///< file order
    std::vector<Box> stretches;    ///< what no macro covers of them
    std::vector<Block> macros;     ///< file order
    std::vector<Kind> kinds;       ///< order of the cell list
    std::vector<Cell> cells;       ///< file order; those that stay where they are come last
    std::vector<Terminal> pins;    ///< file order
    std::vector<int32_t> netBegin; ///< [nets + 1] first member of each net
    std::vector<int32_t> members;  ///< index in cells, or -1 - index in pins
    std::vector<Conflict> conflicts;
};

/// Width of a cell, DBU; one site if its kind is unknown.
int32_t widthOf(const Scene& scene, const Cell& cell);

/// The smallest box around everything but the pins, at least one site wide and one row high.
Box boundsOf(const Scene& scene);

/// A box of a cell's kind where the cell stands, turned as the cell is.
Box placed(const Scene& scene, const Cell& cell, const Box& box);

/// Stitches of all cells as the colour files count them.
int64_t countStitches(const Scene& scene);

/// Where the shapes of a cell touch, one joint for each pair of shapes that do so in more than a point: the
/// largest of their common boxes.
std::vector<Joint> findJoints(const std::vector<Metal>& metal);

/// Whether a joint is a stitch in a colouring.
bool isStitch(const Joint& joint, const Colouring& colouring);

/// [one of the first list] the one of its name in the other, nullptr if there is none; of two of one name the
/// one in the same place, else the last.
///
/// @param records  in most cases in the same order; must outlive the result
template <typename Named, typename Record>
std::vector<const Record*> matchByName(const std::vector<Named>& named, const std::vector<Record>& records)
{
    std::unordered_map<std::string_view, const Record*> byName; // filled when orders differ
    std::vector<const Record*> matches;
    matches.reserve(named.size());
    for (const Named& one : named) {
        const size_t i = matches.size();
        if (i < records.size() && records[i].name == one.name) {
            matches.push_back(&records[i]);
            continue;
        }
        if (byName.empty()) {
            for (const Record& record : records) {
                byName[record.name] = &record;
            }
        }
        const auto found = byName.find(one.name);
        matches.push_back(found == byName.end() ? nullptr : found->second);
    }
    return matches;
}

/// What to draw besides the design.
struct Extras {
    std::vector<const placer::ColorRecord*> colours; ///< [as in Design::component()] nullptr if unknown; not
                                                     ///< owned; or empty
    const placer::Design* before = nullptr; ///< the input placement, found by names; not owned; or none
};

/// [as in Design::component()] the cell of the scene that a component is drawn as, -1 for one that stays
/// where it is, and is no cell.
std::vector<int32_t> drawnCells(const placer::Design& design);

/// A design as it is drawn. Coordinates beyond +-500 million DBU are drawn there.
Scene buildScene(const placer::Design& design, const Extras& extras);

} // namespace kit::view
