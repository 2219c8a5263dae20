// SPDX-License-Identifier: BSD-3-Clause
#include "kit/base/files/readFile.h"
#include "kit/base/finding.h"
#include "kit/base/text/text.h"
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

} // namespace kit::placer
