// SPDX-License-Identifier: BSD-3-Clause
#pragma once

namespace kit {

/// Version of the program, such as "3.1.0".
const char* programVersion();

} // namespace kit
