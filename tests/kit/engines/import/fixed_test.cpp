// SPDX-License-Identifier: BSD-3-Clause
// What stays where it is and has metal.
#include <filesystem>

#include "kit/base/text/json.h"
#include "kit/design/fixedCells.h"
#include "kit/engines/import/importCase.h"

namespace {

using namespace test;

/// A has metal, a tap and an end cap as well, a cell of two rows with a rail between them, and a block.
const std::string FIXED_LEF = R"(UNITS DATABASE MICRONS 1000 ; END UNITS
SITE core CLASS CORE ; SIZE 0.2 BY 2.0 ; END core
MACRO A CLASS CORE ; SIZE 0.4 BY 2 ; SITE core ;
  PIN Z PORT LAYER metal1 ; RECT 0.1 0.5 0.2 1.5 ; END END Z
END A
MACRO BARE CLASS CORE ; SIZE 0.4 BY 2 ; SITE core ; END BARE
MACRO TAP CLASS CORE WELLTAP ; SIZE 0.2 BY 2 ; OBS LAYER metal1 ; RECT 0.05 0.5 0.1 1.5 ; END END TAP
MACRO CAP CLASS ENDCAP PRE ; SIZE 0.2 BY 2 ; OBS LAYER metal1 ; RECT 0.05 0.5 0.1 1.5 ; END END CAP
MACRO TALL CLASS CORE ; SIZE 0.4 BY 4 ;
  PIN VDD USE POWER ; PORT LAYER metal1 ; RECT 0 1.9 0.4 2.1 ; END END VDD
  PIN Z PORT LAYER metal1 ; RECT 0.1 0.5 0.2 3.5 ; END END Z
END TALL
MACRO RAM CLASS BLOCK ; SIZE 9 BY 8 ;
  PIN D PORT LAYER metal1 ; RECT 0.1 0.4 0.3005 0.6 ; RECT 4 4 4.1 4.1 ; END END D
  PIN V USE POWER ; PORT LAYER metal1 ; POLYGON 8 0 9 0 9 1 8.5 1 8.5 0.5 8 0.5 ; END END V
END RAM
END LIBRARY
)";

TEST_F(KitImport, FixedCellsTapsAndEndCapsWithMetalAreKeptAsCells)
{
    importWell(components({"u A + PLACED ( 1000 0 ) N", "f A + FIXED ( 1400 2000 ) S",
                           "c\\ A + COVER ( 1800 2000 ) FS", "t TAP + PLACED ( 2200 0 ) FN",
                           "e CAP + FIXED ( 1000 2000 ) FS", "b BARE + FIXED ( 3000 0 ) N"}),
               {}, TWO_ROWS, FIXED_LEF);
    EXPECT_EQ(fileOf(".fixed"), "VIRELOCE FIXED 1\nCELLS 4\nA 1400 2000 S -1 f\nA 1800 2000 FS -1 c\\\n"
                                "TAP 2200 0 FN -1 t\nCAP 1000 2000 FS -1 e\nBLOCKS 0\nEND\n");
}

TEST_F(KitImport, OtherFixedComponentsAreKeptWithTheirMetalWithoutTheRailsOfCells)
{
    importWell(components({"u A + PLACED ( 1000 0 ) N", "t TALL + FIXED ( 1400 0 ) FN",
                           "o A + FIXED ( 2000 100 ) N", "w A + FIXED ( 3000 0 ) W"}),
               {}, TWO_ROWS, FIXED_LEF);
    // FN: 100 to 200 of 400 is 200 to 300. W turns 100, 500 to 200, 1500 of 400 by 2000.
    EXPECT_EQ(fileOf(".fixed"), "VIRELOCE FIXED 1\nCELLS 0\nBLOCKS 3\nBLOCK TALL 1400 0 1 t\n"
                                "1600 500 1700 3500\nBLOCK A 2000 100 1 o\n2100 600 2200 1600\n"
                                "BLOCK A 3000 0 1 w\n3500 100 4500 200\nEND\n");
}

TEST_F(KitImport, BlocksKeepTheMetalNearTheirEdgesRoundedOutward)
{
    const std::string rows = "ROW r0 core 1000 0 N DO 90 BY 1 STEP 200 0 ;\n"
                             "ROW r1 core 1000 2000 FS DO 90 BY 1 STEP 200 0 ;\n";
    importWell(components({"u A + PLACED ( 1000 0 ) N", "r RAM + FIXED ( 3000 0 ) N"}), {}, rows, FIXED_LEF);
    // The rectangle in the middle is more than a row's height from all edges.
    EXPECT_EQ(fileOf(".fixed"), "VIRELOCE FIXED 1\nCELLS 0\nBLOCKS 1\nBLOCK RAM 3000 0 3 r\n"
                                "3100 400 3301 600\n11000 0 12000 500\n11500 500 12000 1000\nEND\n");
}

TEST_F(KitImport, WithoutMetalThatStaysThereIsNoFileOfIt)
{
    importWell(components({"u A + PLACED ( 1000 0 ) N", "t TAP + FIXED ( 2200 0 ) N"}), {}, TWO_ROWS,
               FIXED_LEF);
    EXPECT_TRUE(std::filesystem::exists(base() + ".fixed"));
    importWell(components({"u A + PLACED ( 1000 0 ) N", "b BARE + FIXED ( 2200 0 ) N"}), {}, TWO_ROWS,
               FIXED_LEF);
    EXPECT_FALSE(std::filesystem::exists(base() + ".fixed")) << "that of the earlier design";
}

TEST_F(KitImport, MastersOfFixedCellsAreTold)
{
    const KitOutcome outcome =
        import(components({"u A + PLACED ( 1000 0 ) N", "t TAP + FIXED ( 2200 0 ) N",
                           "s TAP + FIXED ( 2400 0 ) N", "r TALL + FIXED ( 1400 0 ) N"}),
               {"--json"}, TWO_ROWS, FIXED_LEF);
    EXPECT_EQ(kit::Json::parse(outcome.output)["fixed_masters"], kit::Json::parse(R"(["TAP"])"));
}

} // namespace
