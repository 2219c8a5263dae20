// SPDX-License-Identifier: BSD-3-Clause
// Where the pins of an imported design are, and what its wirelength is from pin to pin.
#include <cmath>

#include "kit/base/process/childProcess.h"
#include "kit/base/text/json.h"
#include "kit/design/pinOffsets.h"
#include "kit/engines/import/importCase.h"
#include "kit/formats/placer/reader.h"
#include "kit/sharedDesigns.h"

namespace {

using namespace test;

/// The pins that a master has, the origin moved and the last metal of Z on another layer, and one without
/// shapes.
const std::string PINS_LEF = R"(UNITS DATABASE MICRONS 1000 ; END UNITS
SITE core CLASS CORE ; SIZE 0.2 BY 2.0 ; END core
MACRO A CLASS CORE ; ORIGIN 0.0504 0 ; SIZE 0.4 BY 2 ; SITE core ;
  PIN Z PORT LAYER metal1 ; RECT 0.0 0.5 0.1004 1.5 ; LAYER metal2 ; RECT 0.0 0.5 0.2005 0.7 ; END END Z
  PIN Q END Q
END A
MACRO RAM CLASS BLOCK ; SIZE 1.2 BY 2 ;
  PIN D PORT LAYER metal1 ; RECT 0.2 0.4 0.4 0.6 ; END PORT LAYER metal2 ; RECT 0.2 0.4 0.7 0.6 ; END END D
END RAM
END LIBRARY
)";

TEST_F(KitImport, OffsetsHaveTheMiddleOfAllMetalOfTheUsedPins)
{
    importWell(components({"u A + PLACED ( 1000 0 ) N", "v A + PLACED ( 1400 2000 ) S",
                           "r RAM + FIXED ( 2000 0 ) FN"}) +
                   "PINS 2 ;\n- p + NET n + LAYER metal2 ( -10 0 ) ( 11 20 ) + PLACED ( 500 600 ) N ;\n"
                   "- q + NET m + PORT + PLACED ( 1 2 ) N + PORT + PLACED ( 3 4 ) N ;\nEND PINS\n"
                   "NETS 3 ;\n- n ( PIN p ) ( u Z ) ( r D ) ( v Z ) ;\n- m ( v Q ) ( u Z ) ( PIN q ) ;\n"
                   "- s ( u X ) ;\nEND NETS\n",
               {}, TWO_ROWS, PINS_LEF);
    // Corners and origin are rounded to DBU apart, halves to the even one: 0 to 200, and 50 on.
    const std::string want = "MASTERS 1\nMASTER A 800 4000 3\n300 2000 Z\n400 2000 Q\n400 2000 X\n"
                             "TERMINALS 3\n1001 1220\n2 4 6 8\n5500 1000\n"
                             "NETS 3\n0 0:0 2 1:0\n1:1 0:0 1\n0:2\nEND\n";
    const std::string text = fileOf(".offsets");
    EXPECT_EQ(text.substr(std::min(text.find("MASTERS"), text.size())), want);
    EXPECT_EQ(text.substr(0, 29), "VIRELOCE OFFSETS 1\nPLACEMENT ");
}

/// Wirelength by pins of a placement, half DBU.
int64_t lengthOf(const std::string& base)
{
    kit::placer::Design design;
    kit::Findings findings;
    kit::placer::readPlacement(base + ".place", design, findings);
    kit::design::restoreOrientations(base + ".place", design, findings);
    const auto length = kit::design::pinLengthBeside(base + ".place", design, findings);
    EXPECT_TRUE(length) << (findings.empty() ? "" : findings[0].what);
    return length.value_or(0);
}

TEST_F(KitImport, WirelengthByPinsHonoursOrientations)
{
    importWell(components({"u A + PLACED ( 1000 0 ) N", "v A + PLACED ( 2000 2000 ) S"}) +
                   "NETS 1 ;\n- n ( u Z ) ( v Z ) ;\nEND NETS\n",
               {}, TWO_ROWS, PINS_LEF);
    // Z is 150 from the left and 1000 from the bottom of 400 by 2000: at 1150, 1000 and 2250, 3000.
    EXPECT_EQ(lengthOf(base()), 2 * (1100 + 2000));
}

class KitImportShared : public testing::TestWithParam<const char*> {
protected:
    TempDir m_dir;
};

TEST_P(KitImportShared, WirelengthByPinsIsThatOfTheIndependentMeasure)
{
    const std::optional<ListedDesign> design = listedDesign(GetParam());
    if (!design) {
        GTEST_SKIP() << "there are no shared designs beside the checkout: set VIRELOCE_SHARED";
    }
    Words words{"import", "--def", design->def, "--layer", design->layer, "-o", m_dir.path("d")};
    for (const std::string& lef : design->lefs) {
        words.insert(words.end(), {"--lef", lef});
    }
    const KitOutcome outcome = runKit(words);
    ASSERT_EQ(outcome.status, 0) << outcome.error;
    EXPECT_EQ(static_cast<double>(lengthOf(m_dir.path("d"))) / 2,
              measured(*design, design->def, m_dir).at("hpwl"));
}

INSTANTIATE_TEST_SUITE_P(Designs, KitImportShared,
                         testing::Values("gcd_nangate45", "gcd-opt", "aes-opt", "asap7-aes",
                                         "sky130-riscv32i", "ispd18_test1"),
                         [](const auto& row) {
                             std::string name = row.param;
                             std::ranges::replace(name, '-', '_');
                             return name;
                         });

} // namespace
