// SPDX-License-Identifier: BSD-3-Clause
// Whether a run of the placer on damaged inputs ended as a run may end.
#pragma once

#include <string>

#include "mutation/childRun.h"

namespace mutation {

/// Ways in which a run may end, and the one in which it may not.
enum class Outcome {
    FINAL_REPORT, ///< the report is whole
    USAGE,        ///< the options were bad, and the usage was printed
    ERROR_END,    ///< the last line says what is wrong
    TIME_OUT,     ///< stopped during the passes, whose number has no limit
    FAILURE,      ///< anything else
};

/// A judgement and what it rests on.
struct Verdict {
    Outcome outcome = Outcome::FAILURE;
    std::string what; ///< ERROR_END: kind of the error; FAILURE: what is wrong
};

/// Judges a run.
///
/// @param end     how the process ended
/// @param report  its standard output
/// @param errors  its standard error, which only a sanitizer or the run-time library writes to
Verdict judge(const ChildEnd& end, const std::string& report, const std::string& errors);

} // namespace mutation
