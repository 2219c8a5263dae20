// SPDX-License-Identifier: BSD-3-Clause
// What the subcommand `import` is asked to do.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "kit/formats/lefdef/lef.h"

namespace kit::importing {

/// The arguments of `import`.
struct Options {
    std::vector<std::string> lefs;        ///< paths of the LEF files
    std::string def;                      ///< path of the DEF file
    std::string out;                      ///< path of the design files without extension
    std::string layer = "metal1";         ///< name of metal 1
    std::optional<lefdef::SiteSize> site; ///< in place of the LEF's or the rows'
    bool legalize = false;                ///< put cells without a legal place on free sites
    bool force = false;                   ///< replace earlier files
    bool json = false;                    ///< JSON instead of a line
};

} // namespace kit::importing
