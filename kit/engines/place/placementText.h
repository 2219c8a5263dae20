// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <string>

class Design;

namespace kit {
class OutputFile;
}

namespace kit::place {

/// Writes a placement file anew with the positions that its components have now; every other byte is kept:
/// order, names, orientations, all sections.
///
/// @param path    the placement file that the design was read from
/// @param design  its components
/// @param out     where to; not committed
///
/// Errors: throws Fault if the file cannot be read, or its records are not those of the design.
void rewritePlacement(const std::string& path, const Design& design, OutputFile& out);

} // namespace kit::place
