// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <stdexcept>

namespace kit {

/// Why a subcommand cannot do its work, in one line for the user.
class Fault : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

} // namespace kit
