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
    std::optional<double> algo;      ///< placement method, whole
    std::optional<double> weight;    ///< cost of a site of wirelength against a stitch
    std::optional<double> moveRange; ///< farthest local shift, sites, whole
    std::optional<double> mindp;     ///< colouring distance, library units, whole
    std::optional<double> siteWidth; ///< until the rows give theirs, DBU, whole
    bool rescue = false;             ///< find places for the cells that the placer leaves without one
    bool trueOrientation = false;    ///< take turned cells as they lie

    bool operator==(const RunOptions&) const = default;
};

/// A number among the options of a run.
struct NumberOption {
    std::optional<double> RunOptions::*member;
    const char* name;  ///< in studies, in tasks, and in the table of all runs
    const char* word;  ///< option of `place`
    const char* label; ///< in pictures
    bool whole;        ///< it is a whole number
    int32_t least;     ///< in a study
    int32_t most;      ///< in a study
};

/// All of them, in the order in which they are written.
inline constexpr NumberOption NUMBER_OPTIONS[] = {
    {&RunOptions::algo, "algo", "--algo", "a ", true, 0, 4},
    {&RunOptions::weight, "weight", "--weight", "w ", false, -1'000'000'000, 1'000'000'000},
    {&RunOptions::moveRange, "move_range", "--move-range", "M ", true, 0, 1'000'000},
    {&RunOptions::mindp, "mindp", "--mindp", "d ", true, 0, 10'000},
    {&RunOptions::siteWidth, "site_width", "--site-width", "s ", true, 1, 1'000'000},
};

/// Something that a run does or does not.
struct FlagOption {
    bool RunOptions::*member;
    const char* name;  ///< as that of a number
    const char* word;  ///< option of `place`
    const char* label; ///< in pictures
};

/// All of them, written behind the numbers in this order.
inline constexpr FlagOption FLAG_OPTIONS[] = {
    {&RunOptions::rescue, "rescue", "--rescue", "rescue "},
    {&RunOptions::trueOrientation, "true_orientation", "--true-orientation", "true orientation "},
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
