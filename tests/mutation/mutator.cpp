// SPDX-License-Identifier: BSD-3-Clause
#include "mutation/mutator.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdlib>
#include <iterator>
#include <string_view>

using namespace std::string_view_literals;

namespace mutation {

namespace {

/// Values that readers and arithmetic trip over: the edges of what they can hold, and what is no number.
constexpr std::string_view ODD_NUMBERS[] = {"0",
                                            "-0",
                                            "-1",
                                            "1",
                                            "+1",
                                            "2",
                                            "3",
                                            "10",
                                            "190",
                                            "255",
                                            "256",
                                            "1000",
                                            "32767",
                                            "65536",
                                            "46341",
                                            "1000000",
                                            "16777217",
                                            "536870911",
                                            "1073741823",
                                            "1073741824",
                                            "2147483520",
                                            "2147483646",
                                            "2147483647",
                                            "2147483648",
                                            "-2147483647",
                                            "-2147483648",
                                            "-2147483649",
                                            "4294967295",
                                            "4294967296",
                                            "4294967297",
                                            "9223372036854775807",
                                            "9223372036854775808",
                                            "-9223372036854775808",
                                            "-9223372036854775809",
                                            "18446744073709551616",
                                            "99999999999999999999999999999999999999",
                                            "-7",
                                            "-190",
                                            "1.5",
                                            "-0.25",
                                            "1e9",
                                            "1e30",
                                            "-1e30",
                                            "1e39",
                                            "1e400",
                                            "-1e400",
                                            "1e-45",
                                            "nan",
                                            "-nan",
                                            "inf",
                                            "-inf",
                                            "0x7fffffff",
                                            "1,000",
                                            "12abc",
                                            "--5",
                                            "-",
                                            "+",
                                            "x",
                                            "(",
                                            ")",
                                            ";",
                                            "FILLER_1",
                                            "ROW"};

constexpr std::string_view OPTION_NAMES[] = {"-inlib", "-cellPath", "-mindp", "-siteW", "-algo", "-M", "-W"};

/// Values that say something to one option or other.
constexpr std::string_view OPTION_VALUES[] = {
    "0",   "1",   "2",   "3",    "4",     "5",   "-1",      "-2",      "8",      "16", "40",
    "140", "185", "200", "400",  "600",   "0.1", "10",      "-3",      "",       ".",  "/",
    "d",   "d.",  "lib", "lib/", "lib//", "..",  "nowhere", "d.place", "-inlib", "\t"};

/// A stretch of a text.
struct Span {
    size_t begin = 0;
    size_t end = 0; ///< one past the last byte

    size_t size() const { return end - begin; }
};

std::string textOf(const std::string& text, Span span)
{
    return text.substr(span.begin, span.size());
}

void replace(std::string& text, Span span, std::string_view by)
{
    text.replace(span.begin, span.size(), by);
}

bool isSpace(char c)
{
    return std::isspace(static_cast<unsigned char>(c)) != 0;
}

std::vector<Span> findWords(const std::string& text)
{
    std::vector<Span> words;
    for (size_t i = 0; i < text.size();) {
        const size_t begin = i;
        while (i < text.size() && !isSpace(text[i])) {
            ++i;
        }
        if (i > begin) {
            words.push_back({begin, i});
        }
        ++i;
    }
    return words;
}

std::vector<Span> findNumbers(const std::string& text)
{
    std::vector<Span> numbers = findWords(text);
    std::erase_if(numbers, [&text](Span word) {
        const bool sign = text[word.begin] == '-' && word.size() > 1;
        return std::isdigit(static_cast<unsigned char>(text[word.begin + (sign ? 1 : 0)])) == 0;
    });
    return numbers;
}

/// The lines, each with its line end.
std::vector<Span> findLines(const std::string& text)
{
    std::vector<Span> lines;
    for (size_t begin = 0; begin < text.size();) {
        const size_t end = std::min(text.find('\n', begin), text.size() - 1) + 1;
        lines.push_back({begin, end});
        begin = end;
    }
    return lines;
}

void swapSpans(std::string& text, Span a, Span b)
{
    if (a.begin > b.begin) {
        std::swap(a, b);
    }
    if (a.end > b.begin) {
        return; // the same stretch
    }
    const std::string first = textOf(text, a);
    const std::string second = textOf(text, b);
    replace(text, b, first);
    replace(text, a, second);
}

void flipBit(Random& random, std::string& text)
{
    if (!text.empty()) {
        char& c = text[random.below(text.size())];
        c = static_cast<char>(static_cast<unsigned char>(c) ^ (1U << random.below(8)));
    }
}

void insertBytes(Random& random, std::string& text)
{
    constexpr std::string_view BYTES = "\0\t\r\n\v\f -+.0123456789();#\x7f\x80\xff"sv;
    const size_t at = random.below(text.size() + 1);
    text.insert(at, 1 + random.below(4), random.pick(BYTES));
}

void deleteBytes(Random& random, std::string& text)
{
    if (!text.empty()) {
        text.erase(random.below(text.size()), 1 + random.below(6));
    }
}

void tabsForSpaces(Random& random, std::string& text)
{
    if (random.oneIn(4)) {
        std::replace(text.begin(), text.end(), ' ', '\t');
        return;
    }
    const size_t at = text.find(' ', random.below(text.size() + 1));
    if (at != std::string::npos) {
        text[at] = '\t';
    }
}

void carriageReturns(Random& random, std::string& text)
{
    const bool all = random.oneIn(2);
    size_t at = all ? 0 : random.below(text.size() + 1);
    while ((at = text.find('\n', at)) != std::string::npos) {
        text.insert(at, 1, '\r');
        at += 2;
        if (!all) {
            return;
        }
    }
}

void truncate(Random& random, std::string& text)
{
    text.resize(random.below(text.size() + 1));
}

void overlongLine(Random& random, std::string& text)
{
    constexpr size_t LENGTHS[] = {200, 254, 255, 256, 257, 1000, 20000};
    text.insert(random.below(text.size() + 1), random.pick(LENGTHS), random.oneIn(2) ? ' ' : 'A');
}

void padLine(Random& random, std::string& text)
{
    const std::vector<Span> lines = findLines(text);
    if (!lines.empty()) { // to about the length at which lines are cut
        const Span line = random.pick(lines);
        const size_t wanted = 250 + random.below(12);
        if (line.size() < wanted) {
            text.insert(line.end - 1, wanted - line.size(), ' ');
        }
    }
}

void duplicateLine(Random& random, std::string& text)
{
    const std::vector<Span> lines = findLines(text);
    if (!lines.empty()) {
        const std::string copy = textOf(text, random.pick(lines));
        const size_t at = random.pick(lines).begin;
        for (size_t n = random.oneIn(8) ? 50 : 1; n > 0; --n) {
            text.insert(at, copy);
        }
    }
}

void deleteLine(Random& random, std::string& text)
{
    const std::vector<Span> lines = findLines(text);
    if (!lines.empty()) {
        replace(text, random.pick(lines), "");
    }
}

void swapLines(Random& random, std::string& text)
{
    const std::vector<Span> lines = findLines(text);
    if (!lines.empty()) {
        const Span first = random.pick(lines);
        swapSpans(text, first, random.pick(lines));
    }
}

void joinLines(Random& random, std::string& text)
{
    const size_t at = text.find('\n', random.below(text.size() + 1));
    if (at != std::string::npos) {
        text[at] = ' ';
    }
}

void splitLine(Random& random, std::string& text)
{
    const size_t at = text.find(' ', random.below(text.size() + 1));
    if (at != std::string::npos) {
        text[at] = '\n';
    }
}

void swapWords(Random& random, std::string& text)
{
    const std::vector<Span> words = findWords(text);
    if (!words.empty()) {
        const Span first = random.pick(words);
        swapSpans(text, first, random.pick(words));
    }
}

void swapNeighbours(Random& random, std::string& text)
{
    const std::vector<Span> words = findWords(text);
    if (words.size() > 1) {
        const size_t i = random.below(words.size() - 1);
        swapSpans(text, words[i], words[i + 1]);
    }
}

void wordForWord(Random& random, std::string& text)
{
    const std::vector<Span> words = findWords(text);
    if (!words.empty()) {
        const std::string by = textOf(text, random.pick(words));
        replace(text, random.pick(words), by);
    }
}

void deleteWord(Random& random, std::string& text)
{
    const std::vector<Span> words = findWords(text);
    if (!words.empty()) {
        replace(text, random.pick(words), "");
    }
}

void oddNumber(Random& random, std::string& text)
{
    const std::vector<Span> numbers = findNumbers(text);
    if (!numbers.empty()) {
        replace(text, random.pick(numbers), random.pick(ODD_NUMBERS));
    }
}

/// A number that is related to another one.
std::string nudged(Random& random, const std::string& number)
{
    const long long value = std::strtoll(number.c_str(), nullptr, 10);
    switch (random.below(7)) {
    case 0:
        return std::to_string(value + 1);
    case 1:
        return std::to_string(value - 1);
    case 2:
        return "-" + number;
    case 3:
        return number + "0";
    case 4:
        return std::to_string(value / 2);
    case 5:
        return std::to_string(value / 100);
    default:
        return std::to_string(random.below(400));
    }
}

void nearbyNumber(Random& random, std::string& text)
{
    const std::vector<Span> numbers = findNumbers(text);
    if (!numbers.empty()) {
        const Span number = random.pick(numbers);
        replace(text, number, nudged(random, textOf(text, number)));
    }
}

void numberForNumber(Random& random, std::string& text)
{
    const std::vector<Span> numbers = findNumbers(text);
    if (!numbers.empty()) {
        const std::string by = textOf(text, random.pick(numbers));
        replace(text, random.pick(numbers), by);
    }
}

/// Changes the count at the head of the file, or behind the head of a section.
void headerCount(Random& random, std::string& text)
{
    const std::vector<Span> words = findWords(text);
    std::vector<Span> counts;
    for (size_t i = 0; i < words.size(); ++i) {
        const std::string before = i > 0 ? textOf(text, words[i - 1]) : "COMPONENTS";
        if (before == "COMPONENTS" || before == "BIGNODES" || before == "PROPERTYDEFINITIONS") {
            counts.push_back(words[i]);
        }
    }
    if (!counts.empty()) {
        const Span count = random.pick(counts);
        const std::string by =
            random.oneIn(2) ? std::string(random.pick(ODD_NUMBERS)) : nudged(random, textOf(text, count));
        replace(text, count, by);
    }
}

/// A change to the bytes of a file.
struct TextChange {
    const char* name;
    void (*apply)(Random&, std::string&);
};

constexpr TextChange SMALL_CHANGES[] = {
    {"odd number", oddNumber},
    {"odd number", oddNumber},
    {"nearby number", nearbyNumber},
    {"nearby number", nearbyNumber},
    {"number for number", numberForNumber},
    {"header count", headerCount},
    {"duplicate line", duplicateLine},
    {"delete line", deleteLine},
    {"swap lines", swapLines},
    {"pad line", padLine},
};

constexpr TextChange CHANGES[] = {
    {"flip bit", flipBit},
    {"insert bytes", insertBytes},
    {"delete bytes", deleteBytes},
    {"tabs for spaces", tabsForSpaces},
    {"carriage returns", carriageReturns},
    {"truncate", truncate},
    {"over-long line", overlongLine},
    {"pad line", padLine},
    {"duplicate line", duplicateLine},
    {"delete line", deleteLine},
    {"swap lines", swapLines},
    {"join lines", joinLines},
    {"split line", splitLine},
    {"swap words", swapWords},
    {"swap neighbours", swapNeighbours},
    {"word for word", wordForWord},
    {"delete word", deleteWord},
    {"odd number", oddNumber},
    {"nearby number", nearbyNumber},
    {"number for number", numberForNumber},
    {"header count", headerCount},
};

/// Replaces the value of one option, or adds the option.
std::string changeOptionValue(Random& random, std::vector<std::string>& options)
{
    const std::string value(random.oneIn(2) ? random.pick(ODD_NUMBERS) : random.pick(OPTION_VALUES));
    // The files come first to hand: options that only say where they are get a wrong value less often.
    const size_t first = random.oneIn(6) ? 0 : 2;
    const std::string name(OPTION_NAMES[first + random.below(std::size(OPTION_NAMES) - first)]);
    const auto at = std::find(options.begin(), options.end(), name);
    if (at != options.end() && std::next(at) != options.end()) {
        *std::next(at) = value;
    } else {
        options.push_back(name);
        options.push_back(value);
    }
    return "option " + name + " " + value.substr(0, 40);
}

/// Damages the list of options itself.
std::string breakOptions(Random& random, std::vector<std::string>& options)
{
    if (options.empty()) {
        return "options: none left";
    }
    const size_t at = random.below(options.size());
    const auto word = options.begin() + static_cast<std::ptrdiff_t>(at);
    switch (random.below(5)) {
    case 0:
        options.erase(word);
        return "options: drop word " + std::to_string(at);
    case 1:
        options.insert(word, std::string(*word));
        return "options: double word " + std::to_string(at);
    case 2:
        std::swap(*word, options[random.below(options.size())]);
        return "options: swap word " + std::to_string(at);
    case 3:
        *word = std::string(random.pick(OPTION_NAMES)) + (random.oneIn(2) ? "8" : "");
        return "options: name for word " + std::to_string(at);
    default:
        word->append(random.oneIn(2) ? 5000 : 300, 'z');
        return "options: long word " + std::to_string(at);
    }
}

/// A file of one of the five kinds, each kind as likely as the other.
std::map<std::string, InputFile>::iterator pickFile(Random& random, std::map<std::string, InputFile>& files)
{
    constexpr std::string_view KINDS[] = {".place", ".netlist", ".pins", ".cells", ".color"};
    const std::string_view kind = random.pick(KINDS);
    std::vector<std::map<std::string, InputFile>::iterator> found;
    for (auto it = files.begin(); it != files.end(); ++it) {
        if (it->first.ends_with(kind)) {
            found.push_back(it);
        }
    }
    return found.empty() ? std::next(files.begin(), static_cast<std::ptrdiff_t>(random.below(files.size())))
                         : random.pick(found);
}

/// Takes a file away, or puts something else in its place.
std::string replaceFile(Random& random, std::map<std::string, InputFile>& files)
{
    const auto at = pickFile(random, files);
    const std::string name = at->first;
    switch (random.below(4)) {
    case 0:
        files.erase(at);
        return name + ": drop";
    case 1:
        at->second.isFolder = true;
        return name + ": a folder in its place";
    case 2:
        at->second.bytes.clear();
        return name + ": empty";
    default:
        at->second.bytes = pickFile(random, files)->second.bytes;
        return name + ": another file in its place";
    }
}

std::string changeText(Random& random, std::map<std::string, InputFile>& files, bool small)
{
    const auto at = pickFile(random, files);
    const TextChange& change = small ? random.pick(SMALL_CHANGES) : random.pick(CHANGES);
    change.apply(random, at->second.bytes);
    return at->first + ": " + change.name;
}

} // namespace

std::vector<std::string> mutate(Random& random, Inputs& inputs)
{
    std::vector<std::string> story;
    const bool small = random.oneIn(2);
    for (size_t n = 1 + std::min(random.below(6), random.below(6)); n > 0; --n) { // few more often than many
        const size_t what = random.below(24);
        if (what < 4) {
            story.push_back(changeOptionValue(random, inputs.options));
        } else if (what == 4 && !small) {
            story.push_back(breakOptions(random, inputs.options));
        } else if (what == 5 && !small && inputs.files.size() > 1) {
            story.push_back(replaceFile(random, inputs.files));
        } else {
            story.push_back(changeText(random, inputs.files, small));
        }
    }
    return story;
}

} // namespace mutation
