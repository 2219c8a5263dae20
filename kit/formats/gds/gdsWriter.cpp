// SPDX-License-Identifier: BSD-3-Clause
#include "kit/formats/gds/gdsWriter.h"

#include <array>
#include <cassert>
#include <cmath>
#include <limits>

#include "kit/base/fault.h"

namespace kit::gds {

namespace {

/// Record types with the types of their data, as they stand in a record's third and fourth byte.
constexpr uint16_t HEADER = 0x0002;
constexpr uint16_t BGNLIB = 0x0102;
constexpr uint16_t LIBNAME = 0x0206;
constexpr uint16_t UNITS = 0x0305;
constexpr uint16_t ENDLIB = 0x0400;
constexpr uint16_t BGNSTR = 0x0502;
constexpr uint16_t STRNAME = 0x0606;
constexpr uint16_t ENDSTR = 0x0700;
constexpr uint16_t BOUNDARY = 0x0800;
constexpr uint16_t SREF = 0x0A00;
constexpr uint16_t LAYER = 0x0D02;
constexpr uint16_t DATATYPE = 0x0E02;
constexpr uint16_t XY = 0x1003;
constexpr uint16_t ENDEL = 0x1100;
constexpr uint16_t SNAME = 0x1206;
constexpr uint16_t PROPATTR = 0x2B02;
constexpr uint16_t PROPVALUE = 0x2C06;

constexpr int16_t VERSION = 600;        // of the stream format
constexpr int16_t INSTANCE_NAME = 1;    // attribute of the property
constexpr size_t LONGEST_DATA = 65'530; // bytes: a record has at most 65,534, its head among them
constexpr double MICRONS_PER_METRE = 1e6;

/// Appends a number, its highest byte first.
template <typename Unsigned>
void appendNumber(std::string& data, Unsigned value)
{
    for (size_t shift = 8 * sizeof(Unsigned); shift > 0; shift -= 8) {
        data += static_cast<char>((value >> (shift - 8)) & 0xffU);
    }
}

uint32_t coordinate(int64_t value)
{
    if (value < std::numeric_limits<int32_t>::min() || value > std::numeric_limits<int32_t>::max()) {
        throw Fault("the layout has the coordinate " + std::to_string(value) +
                    ", and a GDSII file holds 32 bits");
    }
    return static_cast<uint32_t>(static_cast<int32_t>(value));
}

} // namespace

GdsWriter::GdsWriter(OutputFile& out, std::string_view name, int64_t unitsPerMicron) : m_out(out)
{
    numbers(HEADER, {VERSION});
    numbers(BGNLIB, {1970, 1, 1, 0, 0, 0, 1970, 1, 1, 0, 0, 0}); // changed, accessed
    record(LIBNAME, name);
    const auto units = static_cast<double>(unitsPerMicron);
    m_data.clear();
    appendNumber(m_data, real8Of(1 / units));
    appendNumber(m_data, real8Of(1 / (units * MICRONS_PER_METRE)));
    record(UNITS, m_data);
}

void GdsWriter::beginStructure(std::string_view name)
{
    numbers(BGNSTR, {1970, 1, 1, 0, 0, 0, 1970, 1, 1, 0, 0, 0});
    record(STRNAME, name);
}

void GdsWriter::boundary(int16_t layer, std::span<const GdsPoint> corners)
{
    if (corners.size() > MOST_CORNERS) {
        throw Fault("a polygon has " + std::to_string(corners.size()) +
                    " corners, and a GDSII file holds polygons of " + std::to_string(MOST_CORNERS));
    }
    record(BOUNDARY);
    numbers(LAYER, {layer});
    numbers(DATATYPE, {0});
    points(corners, /*closed=*/true);
    record(ENDEL);
}

void GdsWriter::rectangle(int16_t layer, const GdsBox& box)
{
    const std::array<GdsPoint, 4> corners{
        {{box.xl, box.yl}, {box.xl, box.yh}, {box.xh, box.yh}, {box.xh, box.yl}}};
    boundary(layer, corners);
}

void GdsWriter::reference(std::string_view structure, GdsPoint at, std::string_view name)
{
    record(SREF);
    record(SNAME, structure);
    points({&at, 1}, /*closed=*/false);
    numbers(PROPATTR, {INSTANCE_NAME});
    record(PROPVALUE, name);
    record(ENDEL);
}

void GdsWriter::endStructure()
{
    record(ENDSTR);
}

void GdsWriter::finish()
{
    record(ENDLIB);
}

void GdsWriter::record(uint16_t kind, std::string_view data)
{
    if (data.size() > LONGEST_DATA) {
        throw Fault("the layout has a name of " + std::to_string(data.size()) +
                    " bytes, and a GDSII file holds " + std::to_string(LONGEST_DATA));
    }
    const bool isOdd = data.size() % 2 != 0; // records have an even length
    std::string head;
    appendNumber(head, static_cast<uint16_t>(data.size() + (isOdd ? 1 : 0) + 4));
    appendNumber(head, kind);
    m_out << head << data << std::string_view("\0", isOdd ? 1 : 0);
}

void GdsWriter::numbers(uint16_t kind, std::initializer_list<int16_t> values)
{
    m_data.clear();
    for (const int16_t value : values) {
        appendNumber(m_data, static_cast<uint16_t>(value));
    }
    record(kind, m_data);
}

void GdsWriter::points(std::span<const GdsPoint> points, bool closed)
{
    m_data.clear();
    for (size_t i = 0; i < points.size() + (closed ? 1 : 0); ++i) {
        const GdsPoint& point = points[i % points.size()];
        appendNumber(m_data, coordinate(point.x));
        appendNumber(m_data, coordinate(point.y));
    }
    record(XY, m_data);
}

uint64_t real8Of(double value)
{
    if (value == 0) {
        return 0;
    }
    int exponentOfTwo = 0;
    const double fraction = std::frexp(std::abs(value), &exponentOfTwo); // from 1/2 to below 1
    const int exponent = exponentOfTwo > 0 ? (exponentOfTwo + 3) / 4 : -(-exponentOfTwo / 4);
    assert(exponent >= -64 && exponent <= 63);
    const auto mantissa = static_cast<uint64_t>(std::ldexp(fraction, 56 + exponentOfTwo - 4 * exponent));
    const auto excess = static_cast<uint64_t>(exponent) + 64;
    return (value < 0 ? uint64_t{1} << 63U : 0) | (excess << 56U) | mantissa;
}

} // namespace kit::gds
