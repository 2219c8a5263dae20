// SPDX-License-Identifier: BSD-3-Clause
#include "kit/formats/lefdef/orient.h"

#include <algorithm>
#include <array>

namespace kit::lefdef {

namespace {

/// In the order of Orient.
constexpr std::array<std::string_view, 8> NAMES = {"N", "W", "S", "E", "FN", "FW", "FS", "FE"};

} // namespace

std::string_view nameOf(Orient orient)
{
    return NAMES[static_cast<size_t>(orient)];
}

std::optional<Orient> orientOf(std::string_view name)
{
    const auto* const at = std::ranges::find(NAMES, name);
    return at == NAMES.end() ? std::nullopt : std::optional(static_cast<Orient>(at - NAMES.begin()));
}

geometry::Point transformed(const geometry::Point& point, int64_t width, int64_t height, Orient orient)
{
    const auto& [x, y] = point;
    switch (orient) {
    case Orient::N:
        break;
    case Orient::W:
        return {height - y, x};
    case Orient::S:
        return {width - x, height - y};
    case Orient::E:
        return {y, width - x};
    case Orient::FN:
        return {width - x, y};
    case Orient::FW:
        return {y, x};
    case Orient::FS:
        return {x, height - y};
    case Orient::FE:
        return {height - y, width - x};
    }
    return point;
}

} // namespace kit::lefdef
