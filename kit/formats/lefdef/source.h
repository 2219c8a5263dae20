// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "kit/base/finding.h"

namespace kit::lefdef {

/// A file as text, with places in it as byte offsets: the line and column of one are counted only when a
/// problem is told. Several threads may read it.
class Source {
public:
    /// Reads a whole file, also one that gzip or xz has compressed. Errors: as of readUnpacked().
    explicit Source(std::string path);
    /// Takes a text that is there already.
    Source(std::string path, std::string text);
    ~Source() = default;
    Source(const Source&) = delete; ///< views into the text must stay good
    Source& operator=(const Source&) = delete;

    /// Path as the user gave it.
    const std::string& path() const { return m_path; }
    /// The whole text, good as long as the source.
    std::string_view text() const { return m_text; }

    /// Line and column of a byte, both from 1; of the end of the text for an offset beyond it.
    Place placeOf(size_t offset) const;

    /// Where a part of the text stands, for views into it.
    size_t offsetOf(std::string_view part) const { return static_cast<size_t>(part.data() - m_text.data()); }

private:
    /// What is known at the first byte of a block.
    struct Mark {
        int64_t line = 1;
        size_t lineStart = 0; ///< of that line
    };

    void countLines() const;

    std::string m_path;
    std::string m_text;
    mutable std::once_flag m_counted;  ///< readers of parts of the text may ask at the same time
    mutable std::vector<Mark> m_marks; ///< [block] filled when first needed
};

/// Appends findings about a source, by byte offsets.
///
/// Of each severity it tells so many; a last one of that severity says that there are more. So a file that is
/// something else altogether takes no more memory than another.
class SourceReporter {
public:
    static constexpr int64_t MOST_FINDINGS = 1000; ///< of a severity

    /// @param findings, source  must outlive the reporter
    /// @param mostOfAKind       so many findings of a severity and code are told, whatever their number
    SourceReporter(Findings& findings, const Source& source, std::optional<size_t> mostOfAKind = std::nullopt)
        : m_findings(findings), m_reporter(findings, source.path()), m_source(source),
          m_mostOfAKind(mostOfAKind)
    {
    }

    /// Says behind the last finding told of each kind how many more there are. Once, when all are there.
    ///
    /// @pre  no finding was removed since (assert)
    void tellRest();

    /// Tells of an error at a byte.
    void error(const char* code, size_t offset, std::string what, std::string advice)
    {
        add(Severity::ERROR, code, offset, std::move(what), std::move(advice));
    }

    /// Tells of a warning at a byte.
    void warning(const char* code, size_t offset, std::string what, std::string advice)
    {
        add(Severity::WARNING, code, offset, std::move(what), std::move(advice));
    }

    /// Tells of a problem at a byte. @param code, what, advice  as in Finding
    void add(Severity severity, const char* code, size_t offset, std::string what, std::string advice);

private:
    /// Findings of a severity and code.
    struct Kind {
        size_t count = 0;
        size_t last = 0; ///< index of the last that was told
    };

    Findings& m_findings;
    Reporter m_reporter;
    const Source& m_source;
    std::optional<size_t> m_mostOfAKind;
    std::map<std::pair<Severity, std::string>, Kind> m_kinds; ///< if they are limited
    std::array<int64_t, 3> m_told{};                          ///< [severity]
};

} // namespace kit::lefdef
