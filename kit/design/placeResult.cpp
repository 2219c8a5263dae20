// SPDX-License-Identifier: BSD-3-Clause
#include "kit/design/placeResult.h"

#include <optional>

#include "kit/base/fault.h"
#include "kit/base/files/readFile.h"

namespace kit::design {

Json readPlaceResult(const std::string& path)
{
    const std::optional<Json> result = Json::tryParse(readFile(path));
    if (!result || (*result)["schema"] != "vireloce-place" || (*result)["version"] != 1) {
        throw Fault(path + " is no result of vireloce-kit place, version 1");
    }
    return *result;
}

} // namespace kit::design
