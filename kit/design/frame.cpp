// SPDX-License-Identifier: BSD-3-Clause
#include "kit/design/frame.h"

#include <filesystem>

#include "kit/formats/gds/gdsName.h"

namespace kit::design {

Frame frameOf(const placer::Design& design, const std::string& placement)
{
    const std::string name =
        design.name.empty() ? std::filesystem::path(placement).stem().string() : design.name;
    return {gds::gdsName(name), design.dbuPerMicron > 0 ? design.dbuPerMicron : USUAL_DBU_PER_MICRON};
}

} // namespace kit::design
