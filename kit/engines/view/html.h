// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "kit/base/files/outputFile.h"
#include "kit/engines/view/scene.h"

namespace kit::view {

/// Writes a page that shows a placement, with everything it needs in it.
///
/// What is small is JSON; positions, names and nets are arrays of 32-bit integers (and smaller ones) in
/// base64, in the order of the rows, so that the page has its index at once.
void writeHtml(OutputFile& file, const Scene& scene);

} // namespace kit::view
