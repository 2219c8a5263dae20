// SPDX-License-Identifier: BSD-3-Clause
#include "kit/formats/lefdef/source.h"

#include <algorithm>
#include <cassert>
#include <utility>

#include "kit/base/files/unpack.h"
#include "kit/base/finding.h"

namespace kit::lefdef {

namespace {

/// Bytes between two marks: few enough to count lines from one in no time, many enough that the marks of a
/// large file are small.
constexpr size_t BLOCK = 4096;

} // namespace

Source::Source(std::string path) : m_path(std::move(path)), m_text(readUnpacked(m_path)) {}

Source::Source(std::string path, std::string text) : m_path(std::move(path)), m_text(std::move(text)) {}

void Source::countLines() const
{
    Mark mark;
    for (size_t i = 0; i < m_text.size(); ++i) {
        if (i % BLOCK == 0) {
            m_marks.push_back(mark);
        }
        if (m_text[i] == '\n') {
            ++mark.line;
            mark.lineStart = i + 1;
        }
    }
    if (m_text.size() % BLOCK == 0) { // the end of the text has a place, too
        m_marks.push_back(mark);
    }
}

Place Source::placeOf(size_t offset) const
{
    std::call_once(m_counted, [this] { countLines(); });
    const size_t at = std::min(offset, m_text.size());
    Mark mark = m_marks[at / BLOCK];
    for (size_t i = at / BLOCK * BLOCK; i < at; ++i) {
        if (m_text[i] == '\n') {
            ++mark.line;
            mark.lineStart = i + 1;
        }
    }
    return {mark.line, static_cast<int64_t>(at - mark.lineStart) + 1};
}

void SourceReporter::add(Severity severity, const char* code, size_t offset, std::string what,
                         std::string advice)
{
    if (m_mostOfAKind) {
        Kind& kind = m_kinds[{severity, code}];
        if (++kind.count <= *m_mostOfAKind) {
            kind.last = m_findings.size();
            m_reporter.add(severity, code, m_source.placeOf(offset), std::move(what), std::move(advice));
        }
        return;
    }
    int64_t& told = m_told[static_cast<size_t>(severity)];
    if (told > MOST_FINDINGS) {
        return;
    }
    ++told;
    if (told > MOST_FINDINGS) {
        m_reporter.add(severity, "too-many", m_source.placeOf(offset),
                       "from here on no " + std::string(wordOf(severity)) + " is told, there were " +
                           std::to_string(MOST_FINDINGS) + " before",
                       "correct those first");
        return;
    }
    m_reporter.add(severity, code, m_source.placeOf(offset), std::move(what), std::move(advice));
}

void SourceReporter::tellRest()
{
    for (const auto& [severityAndCode, kind] : m_kinds) {
        if (kind.count > *m_mostOfAKind) {
            assert(m_findings[kind.last].code == severityAndCode.second);
            addRest(m_findings[kind.last], kind.count - *m_mostOfAKind);
        }
    }
}

} // namespace kit::lefdef
