// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/export/lefMasks.h"

#include <algorithm>
#include <map>

#include "kit/engines/export/grid.h"
#include "kit/formats/lefdef/edits.h"
#include "kit/formats/lefdef/scanner.h"
#include "kit/formats/lefdef/units.h"
#include "kit/geometry/pieces.h"

namespace kit::exporter {

namespace {

using Box = geometry::Rect;
using lefdef::LefMacro;
using lefdef::LefPoint;
using lefdef::LefShape;
using lefdef::Length;
using lefdef::Scanner;
using lefdef::Token;

/// The shapes that a statement stands for, by its place in the file.
using Statements = std::map<size_t, std::vector<const LefShape*>>;

Statements statementsOf(const LefMacro& macro)
{
    Statements statements;
    for (const lefdef::LefPin& pin : macro.pins) {
        for (const LefShape& shape : pin.shapes) {
            statements[shape.offset].push_back(&shape);
        }
    }
    for (const LefShape& shape : macro.obstructions) {
        statements[shape.offset].push_back(&shape);
    }
    return statements;
}

/// Takes coordinates of the colour file to those of the macro.
class Snap {
public:
    Snap(const Statements& statements, Length siteWidth)
        : m_siteWidth(siteWidth), m_tolerance(siteWidth / placer::LIBRARY_SITE)
    {
        for (const auto& [offset, shapes] : statements) {
            for (const LefShape* shape : shapes) {
                for (const LefPoint& point : shape->points) {
                    m_xs.push_back(point.x);
                    m_ys.push_back(point.y);
                }
            }
        }
        std::sort(m_xs.begin(), m_xs.end());
        std::sort(m_ys.begin(), m_ys.end());
    }

    Box box(const placer::Rect& rect) const
    {
        return {of(rect.xl, m_xs), of(rect.yl, m_ys), of(rect.xh, m_xs), of(rect.yh, m_ys)};
    }

private:
    Length of(int32_t library, const std::vector<Length>& corners) const
    {
        const Length exact = library * m_siteWidth / placer::LIBRARY_SITE;
        const auto above = std::lower_bound(corners.begin(), corners.end(), exact);
        Length nearest = exact + m_tolerance + 1;
        if (above != corners.end()) {
            nearest = *above;
        }
        if (above != corners.begin() && exact - *std::prev(above) < nearest - exact) {
            nearest = *std::prev(above);
        }
        return std::abs(nearest - exact) <= m_tolerance ? nearest : exact;
    }

    Length m_siteWidth;
    Length m_tolerance; ///< a library unit: colour files are rounded outward
    std::vector<Length> m_xs;
    std::vector<Length> m_ys;
};

class Masker {
public:
    Masker(const lefdef::Source& source, const LefMacro& macro, const Colouring& colouring)
        : m_text(source.text()), m_macro(macro), m_statements(statementsOf(macro)), m_origin(macro.origin)
    {
        const Snap snap(m_statements, colouring.siteWidth);
        for (size_t i = 0; i < colouring.cell.shapes.size(); ++i) {
            for (const placer::Rect& rect : colouring.cell.shapes[i].rects) {
                m_metal.push_back({snap.box(rect), colouring.solution.masks[i]});
            }
        }
    }

    MaskedMacro run(std::string_view name)
    {
        rename(name);
        for (const auto& [offset, shapes] : m_statements) {
            mask(offset, shapes);
        }
        m_result.text = m_edits.apply(m_text, m_macro.offset, m_macro.endOffset);
        return std::move(m_result);
    }

private:
    void rename(std::string_view name)
    {
        Scanner scanner(m_text);
        scanner.rewind(m_macro.offset);
        scanner.advance(); // behind MACRO
        m_edits.replace(scanner.offset(), scanner.offset() + scanner.token().text.size(),
                        std::string(name) + "\n  FIXEDMASK ;"); // its masks are those of its neighbours too
        m_edits.replace(m_macro.endOffset - m_macro.name.size(), m_macro.endOffset, std::string(name));
    }

    void mask(size_t offset, const std::vector<const LefShape*>& shapes)
    {
        std::vector<Box> boxes;
        bool isCut = true;
        for (const LefShape* shape : shapes) {
            const std::vector<Box> parts = lefdef::boxesOf(*shape);
            boxes.insert(boxes.end(), parts.begin(), parts.end());
            isCut = isCut && !parts.empty();
        }
        const std::vector<geometry::Labelled> pieces =
            isCut ? geometry::cutByLabel(boxes, m_metal) : std::vector<geometry::Labelled>();
        if (pieces.empty() || pieces.front().label == geometry::NO_LABEL) {
            ++m_result.bareMetal;
        }
        if (pieces.empty()) {
            setMask(offset, geometry::NO_LABEL); // slanting edges
        } else if (pieces.front().label == pieces.back().label) {
            setMask(offset, pieces.front().label);
        } else {
            writeRects(offset, pieces);
        }
    }

    /// Gives a statement one mask, or none, in place of one that it has.
    void setMask(size_t offset, int32_t mask)
    {
        Scanner scanner(m_text);
        scanner.rewind(offset);
        const size_t behindWord = scanner.end();
        scanner.advance();
        size_t end = behindWord;
        if (lefdef::isKeyword(scanner.token().text, "MASK")) {
            scanner.advance();
            end = scanner.end();
        }
        m_edits.replace(behindWord, end,
                        mask == geometry::NO_LABEL ? "" : " MASK " + std::to_string(mask + 1));
    }

    void writeRects(size_t offset, const std::vector<geometry::Labelled>& pieces)
    {
        const size_t end = lefdef::endOfStatement(m_text, offset);
        const std::string indentation(lefdef::indentationOf(m_text, offset));
        std::string text;
        for (const geometry::Labelled& piece : pieces) {
            text += text.empty() ? "" : " ;\n" + indentation;
            text +=
                piece.label == geometry::NO_LABEL ? "RECT" : "RECT MASK " + std::to_string(piece.label + 1);
            for (const Length value : {piece.box.xl - m_origin.x, piece.box.yl - m_origin.y,
                                       piece.box.xh - m_origin.x, piece.box.yh - m_origin.y}) {
                text += " " + lefdef::micronText(value);
            }
        }
        m_edits.replace(offset, end, text + " ");
    }

    std::string_view m_text;
    const LefMacro& m_macro;
    Statements m_statements;
    LefPoint m_origin;
    std::vector<geometry::Labelled> m_metal;
    lefdef::Edits m_edits;
    MaskedMacro m_result;
};

} // namespace

MaskedMacro maskedMacro(const lefdef::Source& source, const LefMacro& macro, const Colouring& colouring,
                        std::string_view name)
{
    return Masker(source, macro, colouring).run(name);
}

bool lacksMasks(const lefdef::Source& source, std::string_view layer)
{
    Scanner scanner(source.text());
    const auto isAt = [&scanner](std::string_view word) {
        return lefdef::isKeyword(scanner.token().text, word);
    };
    bool inside = false; // of the layer, and not where a shape names it
    for (; scanner.token().kind != Token::Kind::END && !isAt("MACRO"); scanner.advance()) {
        if (!inside && isAt("LAYER")) {
            scanner.advance();
            inside = scanner.token().text == layer;
            scanner.advance();
            inside = inside && scanner.token().text != ";";
        }
        if (inside && isAt("MASK")) {
            scanner.advance();
            return scanner.token().text == "1" || scanner.token().text == "2";
        }
        if (inside && isAt("END")) {
            return true;
        }
    }
    return false;
}

std::string lefHead(const lefdef::Source& source)
{
    std::string head = "VERSION 5.8 ;\n";
    Scanner scanner(source.text());
    while (scanner.token().kind != Token::Kind::END && !lefdef::isKeyword(scanner.token().text, "MACRO")) {
        const std::string word(scanner.token().text);
        scanner.advance();
        if ((lefdef::isKeyword(word, "BUSBITCHARS") || lefdef::isKeyword(word, "DIVIDERCHAR")) &&
            scanner.token().kind == Token::Kind::STRING) {
            head += word + " \"" + std::string(scanner.token().text) + "\" ;\n";
        }
    }
    return head;
}

} // namespace kit::exporter
