// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "kit/input/finding.h"
#include "kit/input/reporter.h"

namespace kit::lefdef {

/// A file as text, with places in it as byte offsets: the line and column of one are counted only when a
/// problem is told.
class Source {
public:
    /// Reads a whole file. Errors: throws Fault if it cannot be opened or read.
    explicit Source(std::string path);
    /// Takes a text that is there already.
    Source(std::string path, std::string text);
    Source(const Source&) = delete; ///< views into the text must stay good
    Source& operator=(const Source&) = delete;

    const std::string& path() const { return m_path; }
    std::string_view text() const { return m_text; }

    /// Line and column of a byte, both from 1; of the end of the text for an offset beyond it.
    input::Place placeOf(size_t offset) const;

private:
    std::string m_path;
    std::string m_text;
    mutable std::vector<size_t> m_lineStarts; ///< filled when first needed
};

/// Appends findings about a source, by byte offsets.
class SourceReporter {
public:
    /// @param findings, source  must outlive the reporter
    SourceReporter(input::Findings& findings, const Source& source)
        : m_reporter(findings, source.path()), m_source(source)
    {
    }

    void error(const char* code, size_t offset, std::string what, std::string advice)
    {
        m_reporter.error(code, m_source.placeOf(offset), std::move(what), std::move(advice));
    }

    void warning(const char* code, size_t offset, std::string what, std::string advice)
    {
        m_reporter.warning(code, m_source.placeOf(offset), std::move(what), std::move(advice));
    }

    void note(const char* code, size_t offset, std::string what, std::string advice)
    {
        m_reporter.note(code, m_source.placeOf(offset), std::move(what), std::move(advice));
    }

private:
    input::Reporter m_reporter;
    const Source& m_source;
};

} // namespace kit::lefdef
