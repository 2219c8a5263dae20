// SPDX-License-Identifier: BSD-3-Clause
// Reader of the placement file: a line-oriented subset of a DEF file, read by token position.
#pragma once

#include <cstdint>
#include <fstream>
#include <memory>
#include <string>

class Design;
struct Component;

/// Reads rows, components, macros and the core box into the design.
///
/// One space separates tokens; a tab is part of a token. Lines hold at most 255 characters: a longer one is
/// cut there and is the last line that is read.
class PlaceParser {
public:
    /// Kind of a statement, by its first word.
    enum Statement_e : int32_t {
        ROW_STMT = 0,        ///< "ROW": one row on the line
        COMPONENTS_STMT = 1, ///< "COMPONENTS": a section of placed cells
        BIGNODES_STMT = 2,   ///< "BIGNODES": a section of macros
        PROPERTY_STMT = 3,   ///< "PROPERTYDEFINITIONS": a section with the core box
        OTHER_STMT = 4,      ///< anything else, skipped
    };

    /// A reader into a design, which outlives it.
    explicit PlaceParser(Design* owner) : design(owner) {}

    /// Reads base + ".place". The cell library must have been read before.
    ///
    /// Errors: ends the run if the file cannot be opened, if a record lacks tokens, or if the file ends
    /// inside a section.
    void run(std::string base);

    /// Cuts a line's first token and classifies the line by it; a line that begins with a space is
    /// OTHER_STMT.
    ///
    /// @param line  terminated by a null character; its tokens are cut in place
    void setStatement(char* line);

    /// Handles the statement set last: the rest of its line and, for a section, the lines that follow in
    /// `in`.
    void processStmt();

    Design* design;            ///< not owned
    std::ifstream in;          ///< the placement file, open during run()
    char* statement = nullptr; ///< the line being processed
    Statement_e statementType = OTHER_STMT;
    int32_t compNum = 0;  ///< record count of the last COMPONENTS line
    int32_t macroNum = 0; ///< record count of the last BIGNODES line

private:
    /// Reads the next line of the file, at most 255 characters of it.
    ///
    /// @return false if there is nothing left to read
    bool readLine(char* line);

    /// Reads a line of a section; ends the run if there is none.
    void readSectionLine(char* line, const char* section);

    /// Reads the second line of a record, which holds nothing of interest.
    void skipSecondLine(const char* section);

    /// Reads the row on the line in work. Errors: as run().
    void processRow();
    /// Sets compNum and reads as many components, or those before the first filler. Errors: as run().
    void processComponents();

    /// Reads the two lines of a component record.
    ///
    /// @return the component without its orientation and cell index; nullptr if it is the first filler, whose
    ///         second line is then still to be read
    std::unique_ptr<Component> readComponent();

    /// Sets macroNum and reads as many macros. Errors: as run().
    void processMacros();
    /// Skips a line and reads the design bound from the next four, in micrometres. Errors: as run().
    void processCoreBox();

    static constexpr int LINE_SIZE = 256; ///< 255 characters and the null character

    char m_buffer[LINE_SIZE] = {}; ///< the line that run() is at
    char* m_rest = m_buffer;       ///< of the statement, behind its first token
    std::string m_path;            ///< of the file, as opened
    int64_t m_line = 0;            ///< number of the line read last, from 1
    bool m_overlong = false;       ///< a line of over 255 characters has ended the reading
};
