// SPDX-License-Identifier: BSD-3-Clause
#include "kit/formats/placer/fields.h"

#include "kit/base/text/text.h"

namespace kit::placer {

bool Fields::require(size_t count)
{
    const size_t got = m_lines.tokens().size();
    if (got >= count) {
        return true;
    }
    m_reporter.error("missing-tokens", {m_lines.number(), 0},
                     std::string(m_record) + " has " + counted(static_cast<int64_t>(got), "token") + " of " +
                         std::to_string(count) + ", and the placer ends here",
                     "complete the line");
    return false;
}

int32_t Fields::integer(size_t position)
{
    const Integer number = parseInteger(withoutTabs(token(position).text));
    if (!number.sound) {
        m_reporter.error("not-a-number", at(position),
                         "token " + std::to_string(position) + " of the " + m_record + ", " +
                             inQuotes(token(position).text) +
                             ", is no 32-bit integer, and the placer takes " + std::to_string(number.value),
                         "write a whole number");
    }
    return number.value;
}

void Fields::literal(size_t position, std::string_view expected)
{
    if (withoutTabs(token(position).text) == expected) {
        return;
    }
    m_reporter.warning("punctuation", at(position),
                       "token " + std::to_string(position) + " of the " + m_record + " is " +
                           inQuotes(token(position).text) + " where " + inQuotes(expected) + " belongs",
                       "check that no token is missing before it: the placer counts them");
}

void Fields::endAt(size_t position)
{
    const size_t got = m_lines.tokens().size();
    if (got < position || (got == position && token(position).text == ";")) {
        return;
    }
    m_reporter.warning("surplus-tokens", at(position),
                       std::string(m_record) + " goes on with " + inQuotes(token(position).text) +
                           ", which the placer ignores",
                       "remove what follows, or check the tokens before it");
}

} // namespace kit::placer
