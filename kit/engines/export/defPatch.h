// SPDX-License-Identifier: BSD-3-Clause
// Changes of a DEF file: every byte that is not said to change stays.
#pragma once

#include <string>
#include <vector>

#include "kit/engines/export/fill.h"
#include "kit/engines/export/matching.h"
#include "kit/formats/lefdef/edits.h"

namespace kit::exporter {

/// Gives components their new places: "PLACED ( x y ) orientation" instead of what says where they are, or
/// behind the macro's name if nothing does. One whose place is as before is left alone.
///
/// @return how many places have changed
int64_t placeComponents(const lefdef::Source& source, const lefdef::Def& def,
                        const std::vector<Placed>& placed, lefdef::Edits& edits);

/// Which components have another place than in the DEF file.
std::vector<bool> movedComponents(const lefdef::Def& def, const std::vector<Placed>& placed);

/// Removes the regular routing of all nets of a component that has moved: it ends where that was.
///
/// @param moved  [component of the DEF file]
/// @param edits  out; nullptr to count only
/// @return number of these nets that have routing
int64_t dropRouting(const lefdef::Def& def, const std::vector<bool>& moved, lefdef::Edits* edits);

/// Removes the records of fillers, with the lines that they have for themselves. A filler that is named
/// behind the components, as nets may, stays.
///
/// @param fillers   [component of the DEF file] whether it is one; out: the removed ones alone
/// @param findings  out: "filler-in-use", a warning for each that stays
/// @return how many were removed
int64_t dropFillers(const lefdef::Source& source, const lefdef::Def& def, std::vector<bool>& fillers,
                    lefdef::Edits& edits, Findings& findings);

/// Adds fillers behind the components.
///
/// @param macros  [filler] its macro's name
void addFillers(const lefdef::Source& source, const lefdef::Def& def, const std::vector<Filled>& fillers,
                const std::vector<std::string_view>& macros, lefdef::Edits& edits);

/// Puts another count into the head of the section that the components are in.
void countComponents(const lefdef::Source& source, const lefdef::Def& def, int64_t count,
                     lefdef::Edits& edits);

/// Puts another name in place of a component's macro.
void renameMacro(const lefdef::Source& source, const lefdef::DefComponent& component, std::string name,
                 lefdef::Edits& edits);

} // namespace kit::exporter
