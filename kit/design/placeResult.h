// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <string>

#include "kit/base/text/json.h"

namespace kit::design {

/// Reads OUT.json of `place`, as engines/place/result.schema.json describes it.
///
/// Errors: throws Fault if the file cannot be read, or is no such result.
Json readPlaceResult(const std::string& path);

} // namespace kit::design
