// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <string>
#include <string_view>
#include <unordered_map>

#include "kit/base/finding.h"
#include "kit/formats/placer/design.h"
#include "kit/formats/placer/fields.h"
#include "kit/formats/placer/lines.h"

namespace kit::placer {

/// Reads the text of a placement file into a design.
class PlacementReader {
public:
    /// @param text      the file; must outlive the reader
    /// @param design    in: its cells; out: rows, macros, components, fillers
    /// @param reporter  of the file
    PlacementReader(std::string_view text, Design& design, Reporter reporter);

    /// Reads to the end of the text.
    void run();

private:
    /// A section of records of two lines each.
    struct Section {
        const char* keyword;
        const char* record; ///< what a record is called in texts
        void (PlacementReader::*read)(Fields& fields);
        int64_t line = 0;    ///< of the keyword
        int64_t count = 0;   ///< records by the header, -1 if it does not say
        int64_t seen = 0;    ///< records met
        bool hidden = false; ///< the placer ignores the keyword, and so the section
    };

    /// A section's line, or the end of it.
    enum class Kind { RECORD, BLANK, END };

    bool nextLine();
    void checkTabs();
    void reportReturns();
    void statement();
    void readStatement(std::string_view keyword, bool hidden);
    bool isHidden(std::string_view keyword) const;
    void readHeader();
    void readUnits();
    void readRow();
    void readSection(Section section);
    void readCount(Section& section);
    Kind kindOfLine(const Section& section) const;
    void readRecord(Section& section);
    void skipSecondLine(const Section& section);
    void checkCount(const Section& section);
    void readComponent(Fields& fields);
    Component componentOf(Fields& fields);
    void checkCell(Fields& fields, const Component& comp);
    void readMacro(Fields& fields);
    void readCoreBox();
    bool readBoxEdges();
    bool readBoxEdge();

    LineReader m_lines;
    Design& m_design;
    Reporter m_reporter;
    std::unordered_map<std::string_view, int32_t> m_cells; ///< index by name, the last of a name
    bool m_fillers = false;    ///< the rest of the section is fillers, which the placer passes over
    int64_t m_returns = 0;     ///< lines with a carriage return
    int64_t m_firstReturn = 0; ///< the first of them
};

} // namespace kit::placer
