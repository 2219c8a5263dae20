// SPDX-License-Identifier: BSD-3-Clause
#include "kit/formats/placer/metal.h"

#include <algorithm>
#include <charconv>
#include <set>
#include <string_view>

#include "kit/base/files/readFile.h"
#include "kit/formats/placer/words.h"

namespace kit::placer {

namespace {

constexpr std::string_view FIRST_WORDS[] = {"VIRELOCE", "METAL", "1"};
// Products of lengths, sites and library units stay within 64 bits.
constexpr int64_t FARTHEST = 10'000'000'000;   // picometres
constexpr int64_t WIDEST_SITE = 1'000'000'000; // picometres
constexpr int64_t MOST_RECTS = 1000;

bool isNear(int64_t length)
{
    return -FARTHEST <= length && length <= FARTHEST;
}

/// Reads the words of the file.
class MetalReader {
public:
    explicit MetalReader(std::string_view text) : m_words(text) {}

    std::optional<TrueMetal> run()
    {
        TrueMetal metal;
        int64_t count = 0;
        bool good = true;
        for (const std::string_view word : FIRST_WORDS) {
            good = good && take(word);
        }
        good = good && take("SITE") && take(metal.siteWidth) && take("SIZE") && take(metal.width) &&
               take(metal.height) && take("RECTS") && take(count) && count >= 0 && count <= MOST_RECTS;
        for (int64_t i = 0; i < count && good; ++i) {
            geometry::Rect& rect = metal.rects.emplace_back();
            good = take(rect.xl) && take(rect.yl) && take(rect.xh) && take(rect.yh);
        }
        good = good && take("END") && m_words.atEnd() && fitsFile(metal);
        return good ? std::optional(metal) : std::nullopt;
    }

    /// Where the last word was.
    Place place() const { return m_place; }

private:
    bool take(std::string_view word) { return next() == word; }

    bool take(int64_t& value)
    {
        const std::string_view word = next();
        const auto [stop, error] = std::from_chars(word.data(), word.data() + word.size(), value);
        return error == std::errc() && stop == word.data() + word.size();
    }

    std::string_view next()
    {
        const Word word = m_words.next();
        m_place = word.at;
        return word.text;
    }

    Words m_words;
    Place m_place;
};

/// A length in library units that was rounded down, in picometres.
int64_t lowOf(int64_t units, int64_t siteWidth)
{
    return geometry::floorDiv(units * siteWidth, LIBRARY_SITE);
}

} // namespace

bool fitsFile(const TrueMetal& metal)
{
    const auto isGood = [](const geometry::Rect& rect) {
        return rect.hasArea() && isNear(rect.xl) && isNear(rect.yl) && isNear(rect.xh) && isNear(rect.yh);
    };
    return metal.siteWidth > 0 && metal.siteWidth <= WIDEST_SITE && isNear(metal.width) &&
           isNear(metal.height) && static_cast<int64_t>(metal.rects.size()) <= MOST_RECTS &&
           std::ranges::all_of(metal.rects, isGood);
}

void writeMetal(OutputFile& out, const TrueMetal& metal)
{
    for (const std::string_view word : FIRST_WORDS) {
        out << word << (word == "1" ? "\n" : " ");
    }
    out << "SITE " << metal.siteWidth << "\nSIZE " << metal.width << " " << metal.height << "\nRECTS "
        << metal.rects.size() << "\n";
    for (const geometry::Rect& rect : metal.rects) {
        out << rect.xl << " " << rect.yl << " " << rect.xh << " " << rect.yh << "\n";
    }
    out << "END\n";
}

std::optional<TrueMetal> readMetal(const std::string& path, Findings& findings)
{
    const std::string text = readFile(path);
    MetalReader reader(text);
    std::optional<TrueMetal> metal = reader.run();
    if (!metal) {
        Reporter(findings, path)
            .error("metal-file", reader.place(), "the file is no metal as color writes it",
                   "color the library anew, or take the file away");
    }
    return metal;
}

std::vector<geometry::Labelled> truePiecesOf(const Cell& cell)
{
    if (!cell.trueMetal || !fitsFile(*cell.trueMetal)) {
        return {};
    }
    const int64_t site = cell.trueMetal->siteWidth;
    std::vector<geometry::Labelled> shapes;
    std::set<int32_t> missing;
    for (size_t i = 0; i < cell.shapes.size(); ++i) {
        for (const Rect& rect : cell.shapes[i].rects) {
            if (rect.hasArea()) {
                shapes.push_back({{lowOf(rect.xl, site), lowOf(rect.yl, site),
                                   -lowOf(-int64_t{rect.xh}, site), -lowOf(-int64_t{rect.yh}, site)},
                                  static_cast<int32_t>(i)});
                missing.insert(static_cast<int32_t>(i));
            }
        }
    }
    std::vector<geometry::Labelled> pieces;
    const geometry::Rect inside{0, -FARTHEST, lowOf(cell.width, site), FARTHEST}; // rails are cut there
    for (const geometry::Labelled& piece : geometry::cutByLabel(cell.trueMetal->rects, shapes)) {
        if (piece.label != geometry::NO_LABEL) {
            pieces.push_back(piece);
            missing.erase(piece.label);
        } else if (geometry::common(piece.box, inside).hasArea()) {
            return {};
        }
    }
    return missing.empty() ? pieces : std::vector<geometry::Labelled>();
}

} // namespace kit::placer
