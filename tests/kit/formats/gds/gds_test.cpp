// SPDX-License-Identifier: BSD-3-Clause
// The GDSII writer, its numbers and its names.
#include "kit/formats/gds/gdsNames.h"
#include "kit/formats/gds/gdsReader.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "kit/base/fault.h"
#include "kit/base/files/outputFile.h"
#include "kit/formats/gds/gdsWriter.h"
#include "kit/kitRun.h"
#include "support/property.h"

namespace {

using namespace kit::gds;
using test::TempDir;

/// The bytes of a file that something writes.
template <typename Write>
std::string written(Write write)
{
    const TempDir dir;
    kit::OutputFile out(dir.path("f.gds"));
    write(out);
    out.commit();
    return test::contentOf(dir.path("f.gds"));
}

struct Real {
    const char* name;
    double value;
    uint64_t bits;
};

class KitReal8 : public testing::TestWithParam<Real> {};

TEST_P(KitReal8, HasTheBitsOfTheFormat)
{
    EXPECT_EQ(real8Of(GetParam().value), GetParam().bits);
}

INSTANTIATE_TEST_SUITE_P(Known, KitReal8,
                         testing::Values(Real{"Zero", 0, 0}, Real{"One", 1, 0x4110000000000000},
                                         Real{"MinusOne", -1, 0xC110000000000000},
                                         Real{"Two", 2, 0x4120000000000000},
                                         Real{"Sixteen", 16, 0x4210000000000000},
                                         Real{"Half", 0.5, 0x4080000000000000},
                                         Real{"Sixteenth", 0.0625, 0x4010000000000000},
                                         Real{"JustBelowASixteenth", 0.0625 - 0x1p-57, 0x3FFFFFFFFFFFFFF8},
                                         Real{"Thousandth", 1e-3, 0x3E4189374BC6A7F0},
                                         Real{"Nanometre", 1e-9, 0x3944B82FA09B5A54}),
                         [](const auto& param) { return param.param.name; });

PROPERTY(KitReal8, IsExact)
{
    const double value = std::ldexp(test::drawInt(), test::draw(-240, 200));
    RC_ASSERT(test::gdsReal(real8Of(value)) == value);
}

PROPERTY(KitReal8, HasAFractionOfASixteenthAtLeast)
{
    const double value = std::ldexp(test::draw(1, 1 << 30), test::draw(-240, 200));
    RC_ASSERT(((real8Of(value) >> 52U) & 0xfU) != 0U);
}

TEST(KitGdsNames, KeepWhatTheFormatAllows)
{
    GdsNames names;
    EXPECT_EQ(names.take("Az09_?$", "_S3_FN"), "Az09_?$_S3_FN");
}

TEST(KitGdsNames, PutUnderscoresForOtherCharacters)
{
    GdsNames names;
    EXPECT_EQ(names.take("a/b[3]\xc3\xa9", ""), "a_b_3___");
    EXPECT_EQ(names.take("", ""), "_");
}

TEST(KitGdsNames, CutTheStemAndKeepTheSuffix)
{
    GdsNames names;
    EXPECT_EQ(names.take("abcdefghijklmnopqrstuvwxyz0123456789", "_S11_FN"),
              "abcdefghijklmnopqrstuvwxy_S11_FN");
}

TEST(KitGdsNames, AreNeverTheSame)
{
    GdsNames names;
    EXPECT_EQ(names.take("a/b", "_N"), "a_b_N");
    EXPECT_EQ(names.take("a.b", "_N"), "a_b$2_N");
    EXPECT_EQ(names.take("a:b", "_N"), "a_b$3_N");
    std::set<std::string> taken;
    for (int i = 0; i < 2000; ++i) {
        const std::string name = names.take("abcdefghijklmnopqrstuvwxyz0123456789", "_S1_FS");
        EXPECT_LE(name.size(), kit::gds::LONGEST_GDS_NAME);
        EXPECT_TRUE(taken.insert(name).second);
    }
}

TEST(KitGdsWriter, WritesTheRecordsOfTheFormat)
{
    const std::string bytes = written([](kit::OutputFile& out) {
        GdsWriter gds(out, "LIB", 2000);
        gds.beginStructure("ab");
        gds.rectangle(100, {-1, 2, 3, 70'000});
        gds.reference("c", {5, -6}, "u1");
        gds.endStructure();
        gds.finish();
    });
    const std::vector<test::GdsRecord> records = test::gdsRecords(bytes);
    std::vector<int> types;
    for (const test::GdsRecord& record : records) {
        types.push_back(record.type);
    }
    EXPECT_EQ(types, (std::vector<int>{0x0002, 0x0102, 0x0206, 0x0305, 0x0502, 0x0606, 0x0800, 0x0D02, 0x0E02,
                                       0x1003, 0x1100, 0x0A00, 0x1206, 0x1003, 0x2B02, 0x2C06, 0x1100, 0x0700,
                                       0x0400}));
    EXPECT_EQ(records[0].data, std::string("\x02\x58", 2)); // version 600
    EXPECT_EQ(records[1].data.size(), 24U);
    EXPECT_EQ(records[2].data, std::string("LIB\0", 4));
    EXPECT_EQ(records[7].data, std::string("\0\x64", 2));
    EXPECT_EQ(records[8].data, std::string("\0\0", 2));
    EXPECT_EQ(records[14].data, std::string("\0\x01", 2));
    const test::GdsLibrary library = test::readGds(bytes);
    EXPECT_EQ(library.userUnit, 1 / 2000.0);
    EXPECT_EQ(library.metreUnit, 1 / 2e9);
    const test::GdsStructure& structure = library.structures.at("ab");
    EXPECT_EQ(structure.shapes,
              (std::vector<test::GdsShape>{{100, {{-1, 2}, {-1, 70'000}, {3, 70'000}, {3, 2}, {-1, 2}}}}));
    EXPECT_EQ(structure.instances, (std::vector<test::GdsInstance>{{"c", {5, -6}, "u1"}}));
}

TEST(KitGdsWriter, WritesTheSameBytesEveryTime)
{
    const auto write = [](kit::OutputFile& out) {
        GdsWriter gds(out, "LIB", 1000);
        gds.beginStructure("a");
        gds.endStructure();
        gds.finish();
    };
    EXPECT_EQ(written(write), written(write));
}

/// What it says of something that a record cannot hold.
template <typename Write>
std::string faultOf(Write write)
{
    const TempDir dir;
    kit::OutputFile out(dir.path("f.gds"));
    GdsWriter gds(out, "LIB", 1000);
    try {
        write(gds);
    } catch (const kit::Fault& fault) {
        return fault.what();
    }
    return "";
}

TEST(KitGdsWriter, HoldsCoordinatesOf32Bits)
{
    EXPECT_EQ(faultOf([](GdsWriter& gds) { gds.reference("a", {2'147'483'647, -2'147'483'648}, "u"); }), "");
    EXPECT_EQ(faultOf([](GdsWriter& gds) {
                  gds.reference("a", {2'147'483'648, 0}, "u");
              }),
              "the layout has the coordinate 2147483648, and a GDSII file holds 32 bits");
    EXPECT_EQ(faultOf([](GdsWriter& gds) {
                  gds.rectangle(1, {0, -2'147'483'649, 1, 1});
              }),
              "the layout has the coordinate -2147483649, and a GDSII file holds 32 bits");
}

TEST(KitGdsWriter, HoldsPolygonsOf8190Corners)
{
    EXPECT_EQ(faultOf([](GdsWriter& gds) { gds.boundary(1, std::vector<GdsPoint>(8190)); }), "");
    EXPECT_EQ(faultOf([](GdsWriter& gds) { gds.boundary(1, std::vector<GdsPoint>(8191)); }),
              "a polygon has 8191 corners, and a GDSII file holds polygons of 8190");
}

TEST(KitGdsWriter, HoldsNamesUpToTheLengthOfARecord)
{
    EXPECT_EQ(faultOf([](GdsWriter& gds) { gds.reference("a", {0, 0}, std::string(65'530, 'x')); }), "");
    EXPECT_EQ(faultOf([](GdsWriter& gds) {
                  gds.reference("a", {0, 0}, std::string(65'531, 'x'));
              }),
              "the layout has a name of 65531 bytes, and a GDSII file holds 65530");
}

} // namespace
