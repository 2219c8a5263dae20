// SPDX-License-Identifier: BSD-3-Clause
// The files of a design but the placement: cell list, colour files, pins and netlist.
#include <filesystem>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "kit/base/fault.h"
#include "kit/base/files/readFile.h"
#include "kit/base/finding.h"
#include "kit/base/text/text.h"
#include "kit/formats/placer/design.h"
#include "kit/formats/placer/metal.h"
#include "kit/formats/placer/reader.h"
#include "kit/formats/placer/words.h"

namespace kit::placer {

namespace {

/// Takes the number that a file begins with; a finding if it is none.
///
/// @param things, file  what is counted, and in what, for the texts: "pins", "file"
/// @return the number, and where it stands
std::pair<Integer, Place> takeCount(Words& words, Reporter& reporter, const std::string& things,
                                    const std::string& file)
{
    const Word word = words.next();
    const Integer count = parseInteger(word.text);
    if (!count.sound) {
        reporter.error("not-a-number", word.at,
                       "the number of " + things + ", " + inQuotes(word.text) + ", is no 32-bit integer",
                       "begin the " + file + " with the number of " + things);
    }
    return {count, word.at};
}

/// Reads the text of a colour file into a cell.
class ColourReader {
public:
    ColourReader(std::string_view text, Cell& cell, Reporter reporter)
        : m_words(text), m_cell(cell), m_reporter(std::move(reporter))
    {
    }

    void run()
    {
        m_cell.width = number("cell width");
        m_cell.height = number("cell height");
        m_cell.complete =
            readBoxes("number of header boxes", m_cell.headerBoxes) && readShapes() && readSolutions();
        if (m_cell.complete && !m_words.atEnd()) {
            m_reporter.warning("surplus-tokens", m_words.peek().at,
                               "the file goes on with " + inQuotes(m_words.peek().text) +
                                   " after the last mask, which the placer ignores",
                               "check the counts of shapes and solutions");
        }
    }

private:
    /// The next number; 0 with a finding if there is none. A fault in one number is told once.
    int32_t number(const char* what)
    {
        const Word word = m_words.next();
        const Integer integer = parseInteger(word.text);
        if (word.text.empty()) {
            reportEnd(what, word.at);
        } else if (!integer.sound) {
            m_reporter.error("not-a-number", word.at,
                             "the " + std::string(what) + ", " + inQuotes(word.text) +
                                 ", is no 32-bit integer",
                             "write a whole number");
            m_unsound = true;
        }
        return integer.value;
    }

    void reportEnd(const char* what, Place at)
    {
        if (!m_ended) {
            m_reporter.error("short-file", at, "the file ends before the " + std::string(what),
                             "complete it, or correct the counts");
        }
        m_ended = true;
    }

    /// The next number as a count of records, nothing after a finding if it cannot be one.
    std::optional<size_t> count(const char* what, size_t numbers)
    {
        const Place at = m_words.peek().at;
        m_unsound = false;
        const int32_t value = number(what);
        if (m_ended || m_unsound) {
            return {};
        }
        if (value < 0 || static_cast<size_t>(value) > (m_words.bytesLeft() + 1) / 2 / numbers) {
            m_reporter.error("wrong-count", at,
                             "the " + std::string(what) + " is " + std::to_string(value) +
                                 ", which the file cannot hold",
                             "correct it");
            return {};
        }
        return static_cast<size_t>(value);
    }

    bool readBoxes(const char* what, std::vector<Rect>& boxes)
    {
        const std::optional<size_t> got = count(what, 4);
        for (size_t i = 0; i < got.value_or(0) && !m_ended; ++i) {
            boxes.push_back(box());
        }
        return got && !m_ended;
    }

    Rect box()
    {
        const int32_t x1 = number("rectangle");
        const int32_t y1 = number("rectangle");
        const int32_t x2 = number("rectangle");
        const int32_t y2 = number("rectangle");
        return geometry::rectBetween(x1, y1, x2, y2);
    }

    bool readShapes()
    {
        const std::optional<size_t> got = count("number of shapes", 1);
        bool sound = got.has_value();
        for (size_t i = 0; i < got.value_or(0) && sound; ++i) {
            m_cell.shapes.emplace_back().line = m_words.peek().at.line;
            sound = readBoxes("number of rectangles", m_cell.shapes.back().rects);
        }
        return sound;
    }

    bool readSolutions()
    {
        const std::optional<size_t> got = count("number of solutions", 1 + m_cell.shapes.size());
        for (size_t i = 0; i < got.value_or(0) && !m_ended; ++i) {
            Solution solution;
            solution.line = m_words.peek().at.line;
            solution.stitches = number("stitch count");
            for (size_t k = 0; k < m_cell.shapes.size(); ++k) {
                solution.masks.push_back(number("mask"));
            }
            m_cell.solutions.push_back(std::move(solution));
        }
        return got && !m_ended;
    }

    Words m_words;
    Cell& m_cell;
    Reporter m_reporter;
    bool m_ended = false;   ///< the end of the file has been told
    bool m_unsound = false; ///< number() has met text
};

/// Reads the colour file of a cell. @return why it cannot be read, empty if it can
std::string readCell(Cell& cell, Findings& findings)
{
    try {
        const std::string text = readFile(cell.path);
        ColourReader(text, cell, Reporter(findings, cell.path)).run();
        const std::filesystem::path metal = std::filesystem::path(cell.path).replace_extension(".metal");
        if (std::filesystem::exists(metal)) {
            cell.trueMetal = readMetal(metal.string(), findings);
        }
    } catch (const Fault& fault) {
        return fault.what();
    }
    return "";
}

std::vector<Cell> readList(std::string_view text, Reporter& reporter)
{
    Words words(text);
    const auto [count, at] = takeCount(words, reporter, "cells", "list");
    std::vector<Cell> cells;
    while (!words.atEnd()) {
        const Word name = words.next();
        Cell& cell = cells.emplace_back();
        cell.name = name.text;
        cell.line = name.at.line;
    }
    if (count.sound && static_cast<int64_t>(cells.size()) != count.value) {
        reporter.error("wrong-count", at,
                       "the list says " + counted(count.value, "cell") + ", and " +
                           counted(static_cast<int64_t>(cells.size()), "name") + " follow",
                       "write " + std::to_string(cells.size()));
    }
    return cells;
}

std::string withoutSlashes(std::string path)
{
    path.resize(path.find_last_not_of('/') + 1);
    return path;
}

void readColourFiles(std::vector<Cell>& cells, const std::string& cellDir, Reporter& reporter,
                     Findings& findings)
{
    std::unordered_map<std::string_view, const Cell*> known;
    for (Cell& cell : cells) {
        const auto [first, isNew] = known.try_emplace(cell.name, &cell);
        if (!isNew) {
            const int64_t line = cell.line;
            cell = *first->second; // its findings are told
            cell.line = line;
            continue;
        }
        cell.path = withoutSlashes(cellDir) + "/" + cell.name + ".color";
        const std::string fault = readCell(cell, findings);
        if (!fault.empty()) {
            reporter.error("no-file", {cell.line, 0}, fault,
                           "write the colour file, or correct the cell's name");
        }
    }
}

/// Whether a pin could be read; a finding if not, and the words stand at the start of a line.
bool readPin(Words& words, Reporter& reporter, Pin& pin)
{
    const Word name = words.next();
    const Word x = words.next();
    const Word y = words.next();
    const Integer xValue = parseInteger(x.text);
    const Integer yValue = parseInteger(y.text);
    pin = {std::string(name.text), xValue.value, yValue.value, name.at.line};
    if (xValue.sound && yValue.sound) {
        return true;
    }
    const Word& bad = xValue.sound ? y : x;
    reporter.error("not-a-number", bad.at,
                   "pin " + pin.name + " is not a name and two 32-bit integers: " +
                       (bad.text.empty() ? "the file ends" : inQuotes(bad.text)),
                   "write NAME X Y");
    while (!words.atEnd() && !words.peek().startsLine) {
        words.next();
    }
    return false;
}

/// Reads the text of a netlist into a design.
class NetReader {
public:
    NetReader(std::string_view text, Design& design, Reporter reporter)
        : m_words(text), m_design(design), m_reporter(std::move(reporter)),
          m_components(indexNames(design.components)), m_pins(indexNames(design.pins)),
          m_fillers(indexNames(design.fillers))
    {
    }

    void run()
    {
        const auto [count, at] = takeCount(m_words, m_reporter, "nets", "file");
        int64_t seen = 0;
        for (; !m_words.atEnd(); ++seen) {
            readNet();
        }
        if (count.sound && seen != count.value) {
            reportCount(at, count.value, seen);
        }
    }

private:
    void reportCount(Place at, int64_t count, int64_t seen)
    {
        m_reporter.add(seen < count ? Severity::WARNING : Severity::ERROR, "wrong-count", at,
                       "the file says " + counted(count, "net") + ", and " + std::to_string(seen) +
                           " follow" + (seen < count ? "" : "; the placer leaves the rest out"),
                       "write " + std::to_string(seen));
    }

    void readNet()
    {
        const Word word = m_words.next();
        const Integer degree = parseInteger(word.text);
        if (!degree.sound) {
            m_reporter.error("not-a-number", word.at,
                             "the degree of a net is no 32-bit integer but " + inQuotes(word.text) +
                                 ", and the placer reads no more nets",
                             "write the number of its members, or correct that of the net before");
            resume();
            return;
        }
        if (degree.value < 2) {
            reportDegree(word.at, degree.value);
        }
        m_net = Net();
        m_net.line = word.at.line;
        for (int32_t i = 0; i < degree.value && readMember(degree.value, i); ++i) {
        }
        m_design.nets.push_back(m_net);
    }

    void reportDegree(Place at, int32_t degree)
    {
        const bool sound = degree >= 0;
        m_reporter.add(sound ? Severity::NOTE : Severity::WARNING, "small-net", at,
                       "the net has the degree " + std::to_string(degree) +
                           ", and the placer drops it: it has no wirelength",
                       sound ? "that is no problem if it is meant" : "correct the degree");
    }

    /// Goes on to where a net may begin: a number at the start of a line.
    void resume()
    {
        while (!m_words.atEnd() && !(m_words.peek().startsLine && parseInteger(m_words.peek().text).sound)) {
            m_words.next();
        }
    }

    /// Whether the net goes on: a number at the start of a line that is no name begins the next one.
    bool readMember(int32_t degree, int32_t taken)
    {
        const Word& word = m_words.peek();
        const Member member = memberOf(word.text);
        const bool known = member.component >= 0 || member.pin >= 0;
        if (!known && (word.text.empty() || (word.startsLine && parseInteger(word.text).sound))) {
            reportShort(degree, taken, word.text.empty());
            return false;
        }
        if (known) {
            m_net.members.push_back(member);
        } else {
            reportUnknown(word, degree);
        }
        m_words.next();
        return true;
    }

    Member memberOf(std::string_view name) const
    {
        const int32_t comp = findName(m_components, name);
        return {comp, comp < 0 ? findName(m_pins, name) : -1};
    }

    void reportShort(int32_t degree, int32_t taken, bool atEnd)
    {
        m_reporter.error("short-net", {m_net.line, 0},
                         "the net has the degree " + std::to_string(degree) + ", and " +
                             std::to_string(taken) + " follow" + (atEnd ? " before the file ends" : "") +
                             ", and the placer ends here",
                         "correct the degree, or add the members");
    }

    void reportUnknown(const Word& word, int32_t degree)
    {
        const bool filler = findName(m_fillers, word.text) >= 0;
        // The placer looks up no member of a net that it drops.
        m_reporter.add(degree < 2 ? Severity::WARNING : Severity::ERROR, "unknown-member", word.at,
                       std::string(word.text) +
                           (filler
                                ? " stands after FILLER_1 in the placement, and the placer does not know it"
                                : " is neither a component nor a pin"),
                       filler ? "move its record before FILLER_1" : "add it, or correct the name");
    }

    Words m_words;
    Design& m_design;
    Reporter m_reporter;
    NameIndex m_components;
    NameIndex m_pins;
    NameIndex m_fillers;
    Net m_net; ///< the net that is being read
};

} // namespace

void readLibrary(const Paths& paths, Design& design, Findings& findings)
{
    readLibrary(paths.cells(), paths.cellDir, design, findings);
}

void readLibrary(const std::string& list, const std::string& cellDir, Design& design, Findings& findings)
{
    Reporter reporter(findings, list);
    design.cells = readList(readFile(list), reporter);
    readColourFiles(design.cells, cellDir, reporter, findings);
}

void readCells(const std::vector<std::string>& names, const std::string& cellDir, Design& design,
               Findings& findings)
{
    design.cells.clear();
    for (const std::string& name : names) {
        design.cells.emplace_back().name = name;
    }
    Reporter reporter(findings, cellDir);
    readColourFiles(design.cells, cellDir, reporter, findings);
}

std::vector<std::string> usedCells(const Design& design)
{
    std::vector<std::string> names;
    NameIndex seen;
    for (const Component& comp : design.components) {
        if (seen.try_emplace(comp.cellName, 0).second) {
            names.push_back(comp.cellName);
        }
    }
    return names;
}

void findCells(Design& design)
{
    const NameIndex index = indexNames(design.cells);
    for (Component& comp : design.components) {
        comp.cell = findName(index, comp.cellName);
    }
}

Design readDesign(const Paths& paths, Findings& findings)
{
    Design design;
    readLibrary(paths, design, findings);
    readPlacement(paths.place(), design, findings);
    readPins(paths.pins(), design, findings);
    readNets(paths.netlist(), design, findings);
    return design;
}

void readPins(const std::string& path, Design& design, Findings& findings)
{
    Reporter reporter(findings, path);
    const std::string text = readFile(path);
    Words words(text);
    const auto [count, at] = takeCount(words, reporter, "pins", "file");
    int64_t seen = 0;
    for (Pin pin; !words.atEnd(); ++seen) {
        if (readPin(words, reporter, pin)) {
            design.pins.push_back(pin);
        }
    }
    if (count.sound && seen != count.value) {
        reporter.error("wrong-count", at,
                       "the file says " + counted(count.value, "pin") + ", and " + std::to_string(seen) +
                           " follow",
                       "write " + std::to_string(seen));
    }
}

void readNets(const std::string& path, Design& design, Findings& findings)
{
    const std::string text = readFile(path);
    NetReader(text, design, Reporter(findings, path)).run();
}

} // namespace kit::placer
