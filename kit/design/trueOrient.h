// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "kit/base/finding.h"
#include "kit/design/nameMap.h"
#include "kit/formats/lefdef/orient.h"
#include "kit/formats/placer/design.h"

namespace kit::design {

/// How the cells of an imported design lie in the layout. The placement says only which are mirrored (FN and
/// S); a cell is upside down as its row is (FS and S), the other way round if the map has it among the
/// flipped.
class TrueOrients {
public:
    /// Both must outlive it.
    TrueOrients(const std::vector<placer::Row>& rows, const NameMap& map);

    /// The orientation of a component by the row that its lower left corner is on; nothing if there is none.
    std::optional<lefdef::Orient> of(const placer::Component& comp) const;

private:
    std::unordered_map<int32_t, std::vector<const placer::Row*>> m_rows; ///< by their bottom edges
    std::unordered_set<std::string_view> m_flipped;
};

/// Whether a component is mirrored by what its placement says. The placer takes another word as N.
bool isMirrored(const placer::Component& comp);

/// Path of the map that a placement file has if it was imported; empty for no path.
std::string mapOf(const std::string& placement);

/// Gives the components of an imported design their true orientations. One that is on no row, and a placement
/// without a map, stay as they are.
///
/// @param placement  path of the placement file; its map has ".map" in place of ".place"
/// @param findings   out: problems of the map
void restoreOrientations(const std::string& placement, placer::Design& design, Findings& findings);

} // namespace kit::design
