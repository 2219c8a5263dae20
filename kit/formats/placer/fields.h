// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <string>
#include <vector>

#include "kit/base/finding.h"
#include "kit/formats/placer/lines.h"

namespace kit::placer {

/// The tokens of a statement or record by position, from 1 as in the format's description, with a finding for
/// each that is not as it should be.
class Fields {
public:
    /// @param lines     at the line; must outlive this
    /// @param reporter  of the file; must outlive this
    /// @param record    what the line holds, for the texts: "ROW"
    Fields(const LineReader& lines, Reporter& reporter, const char* record)
        : m_lines(lines), m_reporter(reporter), m_record(record)
    {
    }

    /// Whether the line has as many tokens; a finding if not. The other operations need that.
    bool require(size_t count);

    /// A token.
    std::string text(size_t position) const { return std::string(token(position).text); }

    /// A token as a number, as the placer takes it; a finding if it is not one.
    int32_t integer(size_t position);

    /// A finding if a token is not the given one.
    void literal(size_t position, std::string_view expected);

    /// A finding if there are tokens from a position on, other than a closing ";".
    void endAt(size_t position);

    /// Where a token stands.
    Place at(size_t position) const { return {m_lines.number(), token(position).column}; }

private:
    const Token& token(size_t position) const { return m_lines.tokens()[position - 1]; }

    const LineReader& m_lines;
    Reporter& m_reporter;
    const char* m_record;
};

} // namespace kit::placer
