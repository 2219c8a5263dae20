// SPDX-License-Identifier: BSD-3-Clause
// Files with every statement of the grammar, and other real ones with rare statements.
#include "kit/formats/lefdef/described.h"
#include "kit/sharedDesigns.h"

namespace {

using test::Lines;
using test::sharedFile;

class Grammar : public test::WithSharedDesigns {};

Lines findingsOf(const kit::Findings& findings)
{
    Lines lines;
    test::append(lines, findings);
    return lines;
}

/// The findings about a LEF file that are not about metal which is left out.
Lines findingsOfLef(const std::string& name)
{
    const kit::lefdef::Source source(sharedFile("syntax/" + name));
    kit::Findings findings;
    kit::lefdef::Lef lef;
    readLef(source, "M1", 0, lef, findings);
    std::erase_if(findings, [](const kit::Finding& finding) { return finding.code == "not-read"; });
    return findingsOf(findings);
}

TEST_F(Grammar, EveryStatementOfLefIsKnown)
{
    EXPECT_EQ(findingsOfLef("complete.5.8.lef"), Lines());
}

TEST_F(Grammar, EveryStatementOfDefIsKnown)
{
    const kit::lefdef::Source source(sharedFile("syntax/complete.5.8.def"));
    kit::Findings findings;
    const kit::lefdef::Def def = readDef(source, findings);
    std::erase_if(findings, [](const kit::Finding& finding) { return finding.code == "wrong-count"; });
    EXPECT_EQ(findingsOf(findings),
              (Lines{"warning name-twice 855:3: net \"SCAN\" stands in line 777 already, and that "
                     "one stays; give each its own name"}));
    EXPECT_EQ(def.components.size(), 43U);
    EXPECT_EQ(def.blockages.size(), 5U);
}

TEST_F(Grammar, RareStatementsAreRead)
{
    for (const char* const name : {"gscl45nm.lef", "mask.lef", "sky130hd_multi_patterned.tlef"}) {
        EXPECT_EQ(findingsOfLef(name), Lines()) << name;
    }
    const kit::lefdef::Source source(sharedFile("syntax/sky130hd_multi_patterned.def"));
    kit::Findings findings;
    EXPECT_EQ(readDef(source, findings).nets.size(), 1U);
    EXPECT_EQ(findingsOf(findings), Lines());
}

} // namespace
