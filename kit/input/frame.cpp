// SPDX-License-Identifier: BSD-3-Clause
#include "kit/input/frame.h"

#include <filesystem>

#include "kit/base/gdsName.h"

namespace kit::input {

Frame frameOf(const Design& design, const std::string& placement)
{
    const std::string name =
        design.name.empty() ? std::filesystem::path(placement).stem().string() : design.name;
    return {gdsName(name), design.dbuPerMicron > 0 ? design.dbuPerMicron : USUAL_DBU_PER_MICRON};
}

} // namespace kit::input
