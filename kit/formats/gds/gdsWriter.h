// SPDX-License-Identifier: BSD-3-Clause
// A GDSII stream file.
//
// It is a sequence of records, each with its length in bytes, its type and the type of its data; numbers have
// their highest byte first. Time stamps are fixed, so that the same layout gives the same bytes.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "kit/base/files/outputFile.h"
#include "kit/geometry/rect.h"

namespace kit::gds {

using GdsPoint = geometry::Point; ///< database units
using GdsBox = geometry::Rect;    ///< database units

/// Writes a library structure by structure.
///
/// Errors: all operations throw Fault for what a record cannot hold: coordinates beyond 32 bits, polygons of
/// over 8190 corners, texts of over 65,530 bytes.
class GdsWriter {
public:
    static constexpr size_t MOST_CORNERS = 8190;

    /// Begins the library.
    ///
    /// @param out             where to; must outlive the writer, not committed by it
    /// @param name            of the library
    /// @param unitsPerMicron  database units; the user's unit is the micrometre
    GdsWriter(OutputFile& out, std::string_view name, int64_t unitsPerMicron);

    /// Begins a structure. @param name  as GdsNames gives it
    void beginStructure(std::string_view name);

    /// A polygon. @param corners  each once
    void boundary(int16_t layer, std::span<const GdsPoint> corners);

    /// A rectangle as a polygon.
    void rectangle(int16_t layer, const GdsBox& box);

    /// An instance of a structure, not turned. @param name  of the instance, kept as its property 1
    void reference(std::string_view structure, GdsPoint at, std::string_view name);

    /// Ends the structure.
    void endStructure();

    /// Ends the library.
    void finish();

private:
    void record(uint16_t kind, std::string_view data = {});
    void numbers(uint16_t kind, std::initializer_list<int16_t> values);
    void points(std::span<const GdsPoint> points, bool closed);

    OutputFile& m_out;
    std::string m_data; ///< of the record being made
};

/// A number as a GDSII file has it: a sign bit, 7 bits of the exponent of 16 in excess 64, and 56 bits of a
/// fraction from 1/16 to below 1. It is exact: the fraction has more bits than a double.
///
/// @param value  finite; of a magnitude from 16^-65 to below 16^63, or 0 (assert)
uint64_t real8Of(double value);

} // namespace kit::gds
