// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/view/joints.h"

#include <algorithm>
#include <map>
#include <utility>

namespace kit::view {

namespace {

Box common(const Box& a, const Box& b)
{
    return {std::max(a.xl, b.xl), std::max(a.yl, b.yl), std::min(a.xh, b.xh), std::min(a.yh, b.yh)};
}

/// Half the perimeter, 0 for a point, negative for boxes that do not touch.
int32_t extentOf(const Box& box)
{
    const int32_t width = box.xh - box.xl;
    const int32_t height = box.yh - box.yl;
    return width < 0 || height < 0 ? -1 : width + height;
}

} // namespace

std::vector<Joint> findJoints(const std::vector<Metal>& metal)
{
    std::map<std::pair<int32_t, int32_t>, Box> largest;
    for (size_t i = 0; i < metal.size(); ++i) {
        for (size_t j = 0; j < i; ++j) {
            const auto [first, second] = std::minmax(metal[i].shape, metal[j].shape);
            const Box box = common(metal[i].box, metal[j].box);
            if (first == second || extentOf(box) <= 0) {
                continue;
            }
            const auto [entry, isNew] = largest.try_emplace({first, second}, box);
            if (!isNew && extentOf(box) > extentOf(entry->second)) {
                entry->second = box;
            }
        }
    }
    std::vector<Joint> joints;
    joints.reserve(largest.size());
    for (const auto& [shapes, box] : largest) {
        joints.push_back({shapes.first, shapes.second, box});
    }
    return joints;
}

bool isStitch(const Joint& joint, const Colouring& colouring)
{
    const auto maskOf = [&](int32_t shape) {
        const auto index = static_cast<size_t>(shape);
        return index < colouring.masks.size() ? colouring.masks[index] : -1;
    };
    return maskOf(joint.first) != maskOf(joint.second);
}

} // namespace kit::view
