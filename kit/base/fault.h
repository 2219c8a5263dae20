// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <stdexcept>
#include <string>
#include <system_error>

namespace kit {

/// Why a subcommand cannot do its work, in one line for the user.
class Fault : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// A fault with the system's reason: "WHAT: No space left on device".
///
/// @param error  as errno tells it
inline Fault systemFault(const std::string& what, int error)
{
    return Fault(what + ": " + std::generic_category().message(error));
}

} // namespace kit
