// SPDX-License-Identifier: BSD-3-Clause
// What LEF and DEF files have in common.
#pragma once

#include <algorithm>
#include <span>
#include <string_view>

#include "kit/base/text/text.h"
#include "kit/formats/lefdef/lef.h"
#include "kit/formats/lefdef/parser.h"

namespace kit::lefdef {

/// Reads VERSION behind that word, and finishes it. A warning, "version", if it is below 5.3 or no number; a
/// note if it is above 5.8, and what is not known is then allowed.
void readVersion(Parser& in);

/// Reads NAMESCASESENSITIVE behind that word, and finishes it. A warning, "names-case", if it is OFF.
void readNamesCase(Parser& in);

/// Reads the word behind USE. A warning, "use", if it is none of the grammar; it is then SIGNAL.
PinUse readUse(Parser& in);

/// The word that a statement or a section starts with, and what reads the rest.
template <typename Reader>
struct Rule {
    std::string_view keyword;
    void (Reader::*read)();
};

/// The rule of a word, nullptr if there is none.
///
/// @param isWord  tells whether a keyword is that word
template <typename Reader, typename IsWord>
const Rule<Reader>* findRule(std::span<const Rule<Reader>> rules, IsWord isWord)
{
    const auto rule = std::ranges::find_if(rules, [&](const auto& each) { return isWord(each.keyword); });
    return rule != rules.end() ? &*rule : nullptr;
}

/// What a reader passes over, and where it ends.
struct Outline {
    const char* end;                              ///< the word behind the END of the file
    std::span<const std::string_view> statements; ///< words that start what is skipped up to its `;`
    std::span<const std::string_view> sections;   ///< words that start what is skipped up to its END
};

/// Reads a file statement by statement.
///
/// `Reader` is derived from this, and has two functions: the static rules() gives the statements and sections
/// that it reads itself, and skipUnknown() passes over what follows a word that is not known.
template <typename Reader>
class FileReader {
public:
    FileReader(const Source& source, Findings& findings, const Outline& outline)
        : m_in(source, findings), m_outline(outline)
    {
    }

protected:
    /// Reads the statements up to END, or to the end of the text. @return whether END and the word were there
    bool readStatements()
    {
        bool ended = false;
        while (!ended && !m_in.atFileEnd()) {
            if (m_in.is("END") && m_in.allowsUnknown() && !m_in.endsWith(m_outline.end)) {
                m_in.skipWord(); // of a section that is not known, as is the name behind
                m_in.skipWord();
            } else if (m_in.is("END")) {
                ended = m_in.takeEnd("file", m_outline.end, "");
            } else {
                readStatement();
            }
        }
        return ended;
    }

    /// Whether a word that the reader knows is next.
    bool startsStatement() const
    {
        const auto isNext = [this](std::string_view word) { return m_in.is(word); };
        return findRule(Reader::rules(), isNext) != nullptr || isAny(m_outline.statements, isNext) ||
               isAny(m_outline.sections, isNext);
    }

    void skipExtension() { m_in.skipPast("extension", "ENDEXT"); }
    void skipAlias() { m_in.skipPast("alias", "&ENDALIAS"); }
    void skipSection() { m_in.skipToEnd("section", m_keyword.inCapitals(), m_outline.end); }
    void readVersion() { lefdef::readVersion(m_in); }
    void readNamesCase() { lefdef::readNamesCase(m_in); }

    /// Reads the statement or section that is next.
    void readStatement()
    {
        m_begin = m_in.offset();
        m_keyword = m_in.start();
        const auto isKeyword = [this](std::string_view word) { return m_keyword == word; };
        Reader& reader = static_cast<Reader&>(*this);
        if (const Rule<Reader>* const rule = findRule(Reader::rules(), isKeyword)) {
            (reader.*rule->read)();
        } else if (isAny(m_outline.statements, isKeyword)) {
            m_in.skipStatement();
        } else if (isAny(m_outline.sections, isKeyword)) {
            skipSection();
        } else if (m_keyword != ";") {
            if (!m_in.allowsUnknown()) {
                m_in.reporter().warning("unknown-statement", m_begin,
                                        inQuotes(m_keyword.text) +
                                            " starts no known statement, and is ignored",
                                        "see whether it is misspelt, or what stands before it is incomplete");
            }
            reader.skipUnknown();
        }
    }

    Parser m_in;
    Word m_keyword;     ///< of the present statement or section
    size_t m_begin = 0; ///< byte of that

private:
    template <typename IsWord>
    static bool isAny(std::span<const std::string_view> words, IsWord isWord)
    {
        return std::ranges::any_of(words, isWord);
    }

    Outline m_outline;
};

} // namespace kit::lefdef
