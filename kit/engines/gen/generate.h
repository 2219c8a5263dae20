// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "kit/engines/gen/options.h"

namespace kit::gen {

/// Writes a synthetic design and prints one line about it.
///
/// Errors: throws Fault if options contradict each other, a file exists and must not be replaced, or
/// something cannot be written.
void generate(const Options& options);

} // namespace kit::gen
