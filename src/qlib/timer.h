// SPDX-License-Identifier: BSD-3-Clause
#pragma once

namespace qLib {

/// User CPU time used so far by the process and by its terminated, waited-for children, seconds.
double timer();

} // namespace qLib
