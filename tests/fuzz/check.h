// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "kit/base/finding.h"
#include "kit/formats/lefdef/source.h"

namespace fuzz {

/// Ends the program, so that the input is kept, if a rule does not hold.
inline void check(bool holds, const char* rule)
{
    if (!holds) {
        std::fprintf(stderr, "does not hold: %s\n", rule);
        std::abort();
    }
}

/// Every finding has a place and texts, and there are not too many.
inline void checkFindings(const kit::Findings& findings)
{
    check(findings.size() <= 3 * (kit::lefdef::SourceReporter::MOST_FINDINGS + 1), "findings are bounded");
    for (const auto& finding : findings) {
        check(finding.line >= 1 && finding.column >= 1, "a finding has a place");
        check(!finding.code.empty() && !finding.what.empty() && !finding.advice.empty(),
              "a finding has texts");
    }
}

} // namespace fuzz

/// Reads an input, and checks what is made of it.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size); // NOLINT: a fixed name
