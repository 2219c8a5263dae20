// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstddef>

#include "kit/base/finding.h"

namespace kit::exporter {

/// Keeps the first findings of each code, and says behind the last of them how many more there are.
void limitFindings(Findings& findings, size_t mostOfACode);

} // namespace kit::exporter
