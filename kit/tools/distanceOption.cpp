// SPDX-License-Identifier: BSD-3-Clause
#include "kit/tools/distanceOption.h"

namespace kit {

namespace {

template <typename Target>
void add(const Command& command, Target& target)
{
    command.read(
        "--mindp",
        [&target](const std::string& text) {
            const std::optional<design::Distance> distance = design::Distance::parse(text);
            if (distance) {
                target = *distance;
            }
            return distance
                       ? ""
                       : "\"" + text +
                             "\" is no distance from 0 to 10000, and no length such as 0.0925um or 92.5nm";
        },
        "distance of metal on one mask: library units, 190 to the site, or a length such as 0.0925um or "
        "92.5nm "
        "(default: 185)");
}

} // namespace

void addDistanceOption(const Command& command, design::Distance& distance)
{
    add(command, distance);
}

void addDistanceOption(const Command& command, std::optional<design::Distance>& distance)
{
    add(command, distance);
}

} // namespace kit
