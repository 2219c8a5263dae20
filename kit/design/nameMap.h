// SPDX-License-Identifier: BSD-3-Clause
// What a placement that was made from a DEF file cannot hold, as a file beside it: BASE.map.
//
//     VIRELOCE MAP 1
//     DEF <path>
//     HASH <16 hexadecimal digits>
//     SITE <width> <height>
//     NAMES <count>
//     <name in BASE.place> <name in the DEF file, to the end of the line>
//     FLIPPED <count>
//     <name in BASE.place>
//     MIRRORABLE <count>
//     <name of a cell>
//     END
//
// Words are parted by single blanks, and every line ends with a line feed. With the rows, it tells how each
// component lies. The part from MIRRORABLE on may be missing: then nothing is known to be mirrorable.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "kit/base/files/outputFile.h"
#include "kit/base/finding.h"
#include "kit/formats/lefdef/orient.h"
#include "kit/formats/placer/design.h"

namespace kit::design {

/// A name that had to be changed.
struct Renamed {
    std::string name;     ///< in BASE.place, without blanks
    std::string original; ///< in the DEF file
};

/// The way back from a placement to the DEF file that it was made from.
struct NameMap {
    std::string def;                       ///< path of the DEF file, for information
    std::string hash;                      ///< of its bytes, as hashOf() gives it
    int64_t siteWidth = 0;                 ///< picometres
    int64_t siteHeight = 0;                ///< picometres
    std::vector<Renamed> names{};          ///< those that had to be changed
    std::vector<std::string> flipped{};    ///< components whose up-down flip differs from their row's
    std::vector<std::string> mirrorable{}; ///< cells that may be mirrored left to right
};

/// The hash of a file's bytes, 16 hexadecimal digits.
std::string hashOf(std::string_view bytes);

/// Reads a map up to the first line that is not as it should be; that is an error, code "map-line", or
/// "map-name" for a name that comes twice.
///
/// @param findings  out: problems, each with its line
///
/// Errors: throws Fault if the file cannot be opened or read.
NameMap readNameMap(const std::string& path, Findings& findings);

/// Writes a map. A line end in the DEF file's path becomes "?".
///
/// Errors: throws Fault if the file cannot be written.
void writeNameMap(const NameMap& map, OutputFile& out);

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
