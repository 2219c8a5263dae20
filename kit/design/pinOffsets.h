// SPDX-License-Identifier: BSD-3-Clause
// Where the pins of an imported design are, as a file beside it: BASE.offsets. With it, wirelength is
// measured as it is in the DEF: from pin to pin, each cell lying as it truly does.
//
//     VIRELOCE OFFSETS 1
//     PLACEMENT <16 hexadecimal digits>
//     MASTERS <count>
//     MASTER <name> <width> <height> <pins>
//     <x> <y> <name of the pin, to the end of the line>
//     TERMINALS <count>
//     <x> <y> <x> <y> ...
//     NETS <count>
//     <component>:<pin> <terminal> ...
//     END
//
// Lengths are half DBU, so that every middle is whole. Masters, their pins, the components and terminals of
// the placer's files, and nets are counted from 0. Words are parted by single blanks, and every line ends
// with a line feed.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "kit/base/files/outputFile.h"
#include "kit/base/finding.h"
#include "kit/base/hash.h"
#include "kit/base/text/json.h"
#include "kit/formats/placer/design.h"
#include "kit/geometry/rect.h"

namespace kit::design {

/// The pins of a design. Lengths are half DBU.
struct PinOffsets {
    /// A pin of a master.
    struct Pin {
        std::string name;
        geometry::Point at; ///< from the lower left corner of the master as it is drawn
    };

    /// A master of components that the placer places.
    struct Master {
        std::string name;
        int64_t width = 0;
        int64_t height = 0;
        std::vector<Pin> pins{}; ///< those that nets use
    };

    /// A pin on a net.
    struct Member {
        int32_t component = -1; ///< index in BASE.place, -1 for a terminal
        int32_t pin = 0;        ///< of the component's master, or index of the terminal
    };

    std::string placement; ///< hash of the components' names and cells, as ComponentHash makes it
    std::vector<Master> masters;
    std::vector<geometry::Point> points; ///< of all terminals: a terminal may be at several
    std::vector<size_t> pointBegin{0};   ///< [terminal of BASE.pins] its first point; one more at the end
    std::vector<Member> members;         ///< of all nets
    std::vector<size_t> netBegin{0};     ///< [net of BASE.netlist] its first member; one more at the end
};

/// What tells that offsets belong to a placement: the same components in the same order.
class ComponentHash {
public:
    /// Takes the next component.
    void add(std::string_view name, std::string_view cell);

    /// The hash of all, 16 hexadecimal digits.
    std::string text() const { return m_hash.text(); }

private:
    Hash m_hash;
};

/// Reads offsets up to the first line that is not as it should be; that is an error, code "offsets-line".
///
/// @param findings  out: problems, each with its line
///
/// Errors: throws Fault if the file cannot be opened or read.
PinOffsets readPinOffsets(const std::string& path, Findings& findings);

/// Writes offsets. A line end in a pin's name becomes "?".
///
/// Errors: throws Fault if the file cannot be written.
void writePinOffsets(const PinOffsets& offsets, OutputFile& out);

/// The offsets that belong to a placement: its path with ".offsets" in place of ".place".
std::string offsetsOf(const std::string& placement);

/// Half-perimeter wirelength from pin to pin, half DBU.
///
/// @param placed  with true orientations
/// @return none if the offsets are those of other components
std::optional<int64_t> pinLength(const PinOffsets& offsets, const placer::Design& placed);

/// As pinLength(), by the offsets beside a placement; none without that file.
///
/// @param placement  path of the placement
/// @param findings   out: problems of the file; "other-placement", an error if it is that of other components
std::optional<int64_t> pinLengthBeside(const std::string& placement, const placer::Design& placed,
                                       Findings& findings);

/// A wirelength for a result: its DBU, and micrometres if they are known; null for none.
///
/// @param length        half DBU
/// @param dbuPerMicron  0 if it is not known
Json pinLengthJson(std::optional<int64_t> length, int32_t dbuPerMicron);

/// The micrometres of pinLengthJson() for people: "7709.4 um"; "? um" if they are not known.
std::string micrometresText(const Json& length);

} // namespace kit::design
