// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <string>
#include <system_error>

#include "kit/base/fault.h"

namespace kit {

/// A fault with the system's reason: "WHAT: No space left on device".
///
/// @param error  as errno tells it
inline Fault systemFault(const std::string& what, int error)
{
    return Fault(what + ": " + std::generic_category().message(error));
}

} // namespace kit
