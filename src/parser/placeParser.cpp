// SPDX-License-Identifier: BSD-3-Clause
#include "parser/placeParser.h"

#include <cstdlib>
#include <cstring>

#include "db/design.h"
#include "parser/componentNames.h"
#include "qlib/exact.h"
#include "qlib/nameTable.h"
#include "qlib/report.h"

namespace {

constexpr double DBU_PER_MICROMETRE = 2000.0;

/// Ends a token with a null character, in place of the space behind it.
///
/// @return where the rest of the line begins
char* cutToken(char* token)
{
    char* const end = token + std::strcspn(token, " ");
    if (*end == '\0') {
        return end;
    }
    *end = '\0';
    return end + 1;
}

/// The tokens of a line, taken from the left, with spaces between them.
class Tokens {
public:
    /// @param path    the file, for messages
    /// @param line    the line's number, for messages
    /// @param record  what the line holds, for messages
    /// @param text    the line from the first token on that is not taken; its tokens are cut in place
    /// @param taken   tokens taken before, for messages
    Tokens(const std::string& path, int64_t line, const char* record, char* text, int taken = 0)
        : m_path(path), m_line(line), m_record(record), m_rest(text), m_taken(taken)
    {
    }

    /// The next token. Ends the run if there is none.
    const char* next()
    {
        m_rest += std::strspn(m_rest, " ");
        if (*m_rest == '\0') {
            vireloce::endRunAt(m_path, m_line,
                               std::string(m_record) + " ends after " + std::to_string(m_taken) + " tokens");
        }
        ++m_taken;
        const char* const token = m_rest;
        m_rest = cutToken(m_rest);
        return token;
    }

    /// As next(), after passing over some tokens.
    const char* nextAfter(int skipped)
    {
        for (int i = 0; i < skipped; ++i) {
            next();
        }
        return next();
    }

    /// The next token as a decimal integer cut to 32 bits; 0 for text.
    int32_t nextInt() { return nextIntAfter(0); }

    /// As nextInt(), after passing over some tokens.
    int32_t nextIntAfter(int skipped)
    {
        return static_cast<int32_t>(std::strtol(nextAfter(skipped), nullptr, 10));
    }

private:
    const std::string& m_path;
    int64_t m_line;
    const char* m_record;
    char* m_rest; ///< behind the tokens taken
    int m_taken;  ///< tokens taken
};

} // namespace

void PlaceParser::run(std::string base)
{
    m_path = base + ".place";
    m_line = 0;
    m_overlong = false;
    in.open(m_path);
    if (!in.is_open()) {
        vireloce::endRun("ERROR| cannot open file: " + m_path);
    }
    while (readLine(m_buffer)) {
        if (m_buffer[0] == '\0') {
            continue;
        }
        setStatement(m_buffer);
        processStmt();
    }
    in.close();
    in.clear();
}

bool PlaceParser::readLine(char* line)
{
    line[0] = '\0';
    if (!in.good()) {
        return false;
    }
    ++m_line;
    in.getline(line, LINE_SIZE);
    m_overlong = in.fail() && in.gcount() == LINE_SIZE - 1;
    return in.gcount() > 0;
}

void PlaceParser::readSectionLine(char* line, const char* section)
{
    if (readLine(line)) {
        return;
    }
    if (m_overlong) {
        vireloce::endRunAt(m_path, m_line,
                           std::string("a line of over 255 characters inside the ") + section + " section");
    }
    vireloce::endRunAt(m_path, m_line, std::string("the file ends inside the ") + section + " section");
}

void PlaceParser::skipSecondLine(const char* section)
{
    // After an overlong line nothing more is read, but the record that it belongs to is complete.
    char line[LINE_SIZE];
    if (!m_overlong) {
        readSectionLine(line, section);
    }
}

void PlaceParser::setStatement(char* line)
{
    statement = line;
    m_rest = cutToken(line + std::strspn(line, " "));
    // The comparison is with the start of the line, not with the token: an indented keyword is none.
    if (std::strcmp(line, "ROW") == 0) {
        statementType = ROW_STMT;
    } else if (std::strcmp(line, "COMPONENTS") == 0) {
        statementType = COMPONENTS_STMT;
    } else if (std::strcmp(line, "BIGNODES") == 0) {
        statementType = BIGNODES_STMT;
    } else if (std::strcmp(line, "PROPERTYDEFINITIONS") == 0) {
        statementType = PROPERTY_STMT;
    } else {
        statementType = OTHER_STMT;
    }
}

void PlaceParser::processStmt()
{
    switch (statementType) {
    case ROW_STMT:
        processRow();
        break;
    case COMPONENTS_STMT:
        processComponents();
        break;
    case BIGNODES_STMT:
        processMacros();
        break;
    case PROPERTY_STMT:
        processCoreBox();
        break;
    case OTHER_STMT:
        break;
    }
}

void PlaceParser::processRow()
{
    Tokens tokens(m_path, m_line, "ROW", m_rest, 1);
    Row row;
    row.name = tokens.next();
    row.siteName = tokens.next();
    row.x = tokens.nextInt();
    row.y = tokens.nextInt();
    row.orient = tokens.next();
    row.numSites = tokens.nextIntAfter(1);
    row.step = tokens.nextIntAfter(3);
    design->rowIndexByY[row.y] = static_cast<int32_t>(design->rows.size());
    design->rows.push_back(new Row(row));
}

void PlaceParser::processComponents()
{
    compNum = Tokens(m_path, m_line, "COMPONENTS", m_rest, 1).nextInt();
    const size_t first = design->components.size();
    vireloce::NameTable cellTable(design->lut.cellIndex.size());
    cellTable.insertAll(design->lut.cellIndex);
    for (int32_t i = 0; i < compNum; ++i) {
        std::unique_ptr<Component> comp = readComponent();
        if (comp == nullptr) {
            break;
        }
        comp->orient = Component::s_orientMap[comp->orientName];
        comp->cellIdx = cellTable.find(comp->cellName);
        design->components.push_back(comp.release());
    }
    vireloce::enterNames(*design, first);
}

std::unique_ptr<Component> PlaceParser::readComponent()
{
    char line[LINE_SIZE];
    readSectionLine(line, "COMPONENTS");
    Tokens tokens(m_path, m_line, "component record", line);
    tokens.next();
    auto comp = std::make_unique<Component>();
    comp->name = tokens.next();
    if (comp->name == "FILLER_1") { // fillers come last and are not placed: the rest is ignored
        return nullptr;
    }
    comp->cellName = tokens.next();
    comp->x = tokens.nextIntAfter(3);
    comp->y = tokens.nextInt();
    comp->orientName = tokens.nextAfter(1);
    skipSecondLine("COMPONENTS");
    return comp;
}

void PlaceParser::processMacros()
{
    macroNum = Tokens(m_path, m_line, "BIGNODES", m_rest, 1).nextInt();
    char line[LINE_SIZE];
    for (int32_t i = 0; i < macroNum; ++i) {
        readSectionLine(line, "BIGNODES");
        Tokens tokens(m_path, m_line, "macro record", line);
        tokens.next();
        Macro macro;
        macro.name = tokens.next();
        macro.x = tokens.nextIntAfter(3);
        macro.y = tokens.nextInt();
        macro.width = tokens.nextIntAfter(2);
        macro.height = tokens.nextInt();
        tokens.nextAfter(1); // must be there
        design->addMacro(std::move(macro));
        skipSecondLine("BIGNODES");
    }
}

void PlaceParser::processCoreBox()
{
    char line[LINE_SIZE];
    readSectionLine(line, "PROPERTYDEFINITIONS");
    int32_t edges[4];
    for (int32_t& edge : edges) {
        readSectionLine(line, "PROPERTYDEFINITIONS");
        Tokens tokens(m_path, m_line, "core box property", line);
        tokens.next();
        const double micrometres = std::strtod(tokens.nextAfter(2), nullptr);
        edge = vireloce::toInt(micrometres * DBU_PER_MICROMETRE);
    }
    design->boundXl = edges[0];
    design->boundXh = edges[1];
    design->boundYl = edges[2];
    design->boundYh = edges[3];
}
