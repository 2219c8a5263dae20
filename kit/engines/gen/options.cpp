// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/gen/options.h"

#include "kit/base/fault.h"
#include "kit/engines/gen/geometry.h"

namespace kit::gen {

namespace {

/// The placer takes lengths in single precision, which is exact up to here, DBU.
constexpr int64_t LONGEST_ROW = 1 << 24;

/// Cells with their solutions that a spacing table holds: the placer stops at twice as many squared.
constexpr int64_t LARGEST_LIBRARY = 11'000;

} // namespace

void checkTogether(const Options& options)
{
    if (int64_t{options.sitesPerRow} * options.siteStep > LONGEST_ROW) {
        throw Fault("--sites-per-row times --site-step is over " + std::to_string(LONGEST_ROW) +
                    ", the longest row that the placer measures exactly");
    }
    if (int64_t{options.cellTypes} * (options.solutions + 1) > LARGEST_LIBRARY) {
        throw Fault("--cell-types times one more than --solutions is over " +
                    std::to_string(LARGEST_LIBRARY) + ", the most that the placer's spacing table holds");
    }
}

int32_t rowHeight(const Options& options)
{
    return options.siteStep * LIBRARY_HEIGHT / placer::LIBRARY_SITE;
}

std::string cellFolder(const Options& options)
{
    return options.cellDir.empty() ? options.out + ".colors" : options.cellDir;
}

} // namespace kit::gen
