// SPDX-License-Identifier: BSD-3-Clause
// Findings as text and as JSON.
#pragma once

#include <cstdint>
#include <iosfwd>

#include "kit/base/finding.h"
#include "kit/formats/placer/reader.h"

namespace kit::lint {

/// Sorts findings by file, in the order in which the placer reads them, then by line and column. Findings of
/// one place keep their order.
void sortFindings(Findings& findings, const placer::Paths& paths);

} // namespace kit::lint
