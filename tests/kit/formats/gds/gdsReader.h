// SPDX-License-Identifier: BSD-3-Clause
// A literal reader of GDSII files, record by record.
#pragma once

#include <cmath>
#include <cstdint>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

namespace test {

/// A record: its type with the type of its data, and the data.
struct GdsRecord {
    int type = 0;
    std::string data;
};

inline int64_t gdsInteger(const std::string& data, size_t at, size_t size)
{
    uint64_t value = 0;
    for (size_t i = 0; i < size; ++i) {
        value = value * 256 + static_cast<unsigned char>(data.at(at + i));
    }
    const uint64_t sign = uint64_t{1} << (8 * size - 1);
    return static_cast<int64_t>(value ^ sign) - static_cast<int64_t>(sign);
}

/// The value of eight bytes, as the format defines it.
inline double gdsReal(uint64_t bits)
{
    const double fraction = std::ldexp(static_cast<double>(bits & 0xffffffffffffffU), -56);
    const int exponent = static_cast<int>((bits >> 56U) & 0x7fU) - 64;
    return (bits >> 63U ? -1 : 1) * fraction * std::pow(16.0, exponent);
}

inline std::vector<GdsRecord> gdsRecords(const std::string& bytes)
{
    std::vector<GdsRecord> records;
    for (size_t at = 0; at < bytes.size();) {
        const auto size = static_cast<size_t>(gdsInteger(bytes, at, 2) & 0xffff);
        if (size < 4 || size % 2 != 0 || at + size > bytes.size()) {
            throw std::runtime_error("bad record at " + std::to_string(at));
        }
        records.push_back(
            {static_cast<int>(gdsInteger(bytes, at + 2, 2) & 0xffff), bytes.substr(at + 4, size - 4)});
        at += size;
    }
    return records;
}

inline std::string gdsText(const GdsRecord& record)
{
    std::string text = record.data;
    if (!text.empty() && text.back() == '\0') {
        text.pop_back();
    }
    return text;
}

using GdsPoints = std::vector<std::pair<int64_t, int64_t>>;

struct GdsShape {
    int64_t layer = 0;
    GdsPoints points;

    bool operator==(const GdsShape&) const = default;
};

struct GdsInstance {
    std::string structure;
    std::pair<int64_t, int64_t> at;
    std::string name;

    bool operator==(const GdsInstance&) const = default;
};

struct GdsStructure {
    std::vector<GdsShape> shapes;
    std::vector<GdsInstance> instances;
};

struct GdsLibrary {
    double userUnit = 0; ///< a database unit in user's units
    double metreUnit = 0;
    std::vector<std::string> order; ///< names of the structures
    std::map<std::string, GdsStructure> structures;
};

/// Reads a whole library; a record that does not belong where it stands is thrown.
inline GdsLibrary readGds(const std::string& bytes)
{
    GdsLibrary library;
    GdsStructure* structure = nullptr;
    GdsShape shape;
    GdsInstance instance;
    bool isInstance = false;
    const auto pointsOf = [](const std::string& data) {
        GdsPoints points;
        for (size_t i = 0; i < data.size(); i += 8) {
            points.emplace_back(gdsInteger(data, i, 4), gdsInteger(data, i + 4, 4));
        }
        return points;
    };
    for (const GdsRecord& record : gdsRecords(bytes)) {
        switch (record.type) {
        case 0x0002: // HEADER
        case 0x0102: // BGNLIB
        case 0x0206: // LIBNAME
        case 0x0400: // ENDLIB
        case 0x0502: // BGNSTR
        case 0x0700: // ENDSTR
            break;
        case 0x0305: // UNITS
            library.userUnit = gdsReal(static_cast<uint64_t>(gdsInteger(record.data, 0, 8)));
            library.metreUnit = gdsReal(static_cast<uint64_t>(gdsInteger(record.data, 8, 8)));
            break;
        case 0x0606: // STRNAME
            library.order.push_back(gdsText(record));
            structure = &library.structures[gdsText(record)];
            break;
        case 0x0800: // BOUNDARY
            isInstance = false;
            break;
        case 0x0A00: // SREF
            isInstance = true;
            break;
        case 0x0D02: // LAYER
            shape.layer = gdsInteger(record.data, 0, 2);
            break;
        case 0x0E02: // DATATYPE
        case 0x2B02: // PROPATTR
            break;
        case 0x1003: // XY
            shape.points = pointsOf(record.data);
            instance.at = shape.points.at(0);
            break;
        case 0x1206: // SNAME
            instance.structure = gdsText(record);
            break;
        case 0x2C06: // PROPVALUE
            instance.name = gdsText(record);
            break;
        case 0x1100: // ENDEL
            if (isInstance) {
                structure->instances.push_back(instance);
            } else {
                structure->shapes.push_back(shape);
            }
            break;
        default:
            throw std::runtime_error("unknown record " + std::to_string(record.type));
        }
    }
    return library;
}

} // namespace test
