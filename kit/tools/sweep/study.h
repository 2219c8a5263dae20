// SPDX-License-Identifier: BSD-3-Clause
// What a study asks for: designs, and the runs to make of each.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace kit::sweep {

/// A design of a study.
struct StudyDesign {
    std::string name;
    std::string base;     ///< path of the design files without extension
    std::string cellPath; ///< folder of the colour files
};

/// The options of one run of `place`. What is not given is left to the placer's own default.
struct RunOptions {
    std::optional<int32_t> algo;      ///< placement method
    std::optional<double> weight;     ///< cost of a site of wirelength against a stitch
    std::optional<int32_t> moveRange; ///< farthest local shift, sites
    std::optional<int32_t> mindp;     ///< colouring distance, library units
    std::optional<int32_t> siteWidth; ///< until the rows give theirs, DBU
    bool rescue = false;              ///< find places for the cells that the placer leaves without one

    bool operator==(const RunOptions&) const = default;
};

/// One run of a study.
struct StudyRun {
    size_t design = 0; ///< index in Study::designs
    RunOptions options;
};

/// A study, its grid expanded.
struct Study {
    std::vector<StudyDesign> designs;
    std::vector<StudyRun> runs; ///< by design; of each the grid, then the list
};

/// The most runs of a study, so that a slip in a grid does not fill memory.
inline constexpr int64_t MOST_RUNS = 1'000'000;

/// Reads a study, as study.schema.json describes it. Paths in it count from its folder.
///
/// The grid is gone through with its last member fastest, members in the order of RunOptions.
///
/// Errors: throws Fault with the path, and the place as line or JSON pointer, for whatever is wrong.
Study readStudy(const std::string& path);

} // namespace kit::sweep
