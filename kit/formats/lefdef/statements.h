// SPDX-License-Identifier: BSD-3-Clause
// Statements that LEF and DEF files have in common, behind their first word and up to the `;`.
#pragma once

#include "kit/formats/lefdef/lef.h"
#include "kit/formats/lefdef/parser.h"

namespace kit::lefdef {

/// Reads VERSION, and finishes it. A warning, "version", if it is not one of 5.3 to 5.8.
void readVersion(Parser& in);

/// Reads NAMESCASESENSITIVE, and finishes it. A warning, "names-case", if it is OFF.
void readNamesCase(Parser& in);

/// Reads the word behind USE. Errors: "use" if it is none of the grammar.
PinUse readUse(Parser& in);

} // namespace kit::lefdef
