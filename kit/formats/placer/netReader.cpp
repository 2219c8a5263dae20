// SPDX-License-Identifier: BSD-3-Clause
// The pin file and the netlist.
#include <utility>

#include "kit/base/files/readFile.h"
#include "kit/base/reporter.h"
#include "kit/base/text/text.h"
#include "kit/formats/placer/design.h"
#include "kit/formats/placer/reader.h"
#include "kit/formats/placer/words.h"

namespace kit::placer {

namespace {

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
        const Word first = m_words.next();
        const Integer count = parseInteger(first.text);
        if (!count.sound) {
            m_reporter.error("not-a-number", first.at,
                             "the number of nets, " + inQuotes(first.text) + ", is no 32-bit integer",
                             "begin the file with the number of nets");
        }
        int64_t seen = 0;
        for (; !m_words.atEnd(); ++seen) {
            readNet();
        }
        if (count.sound && seen != count.value) {
            reportCount(first.at, count.value, seen);
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

void readPins(const std::string& path, Design& design, Findings& findings)
{
    Reporter reporter(findings, path);
    const std::string text = readFile(path);
    Words words(text);
    const Word first = words.next();
    const Integer count = parseInteger(first.text);
    if (!count.sound) {
        reporter.error("not-a-number", first.at,
                       "the number of pins, " + inQuotes(first.text) + ", is no 32-bit integer",
                       "begin the file with the number of pins");
    }
    int64_t seen = 0;
    for (Pin pin; !words.atEnd(); ++seen) {
        if (readPin(words, reporter, pin)) {
            design.pins.push_back(pin);
        }
    }
    if (count.sound && seen != count.value) {
        reporter.error("wrong-count", first.at,
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
