// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <array>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "kit/formats/lefdef/lef.h"
#include "kit/formats/lefdef/parser.h"
#include "kit/formats/lefdef/shapeReader.h"

namespace kit::lefdef {

/// Reads cell masters.
class MacroReader {
public:
    /// @param in, shapes  of the file; must outlive the reader
    MacroReader(Parser& in, ShapeReader& shapes) : m_in(in), m_shapes(shapes) {}

    /// Reads a master behind its word MACRO, to the end of it. What is wrong in it is left out.
    ///
    /// @param begin  byte of that word
    LefMacro read(size_t begin);

private:
    /// The word that a statement starts with, and what reads the rest.
    struct Rule {
        std::string_view keyword;
        void (MacroReader::*read)();
    };
    static const std::array<Rule, 10> RULES;

    bool readStatement();
    void readClass();
    void readOrigin();
    void readSize();
    void readSymmetry();
    void readSite();
    void readPin();
    bool readPinStatement(LefPin& pin);
    void readObstructions() { m_shapes.read(m_macro.obstructions, "obstruction"); }
    void skipDensity();
    void skipTiming() { m_in.skipToEnd("section", "TIMING", m_macro.name); }
    void skipExtension() { m_in.skipExtension(); }
    void moveShapes(std::vector<LefShape>& shapes) const;

    Parser& m_in;
    ShapeReader& m_shapes;
    LefMacro m_macro;
    LefPoint m_origin;
    std::unordered_map<std::string, size_t> m_pins; ///< byte of each by name
    size_t m_begin = 0;                             ///< byte of the present statement
};

} // namespace kit::lefdef
