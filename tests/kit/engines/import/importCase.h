// SPDX-License-Identifier: BSD-3-Clause
// A small library and DEF files made for a test, imported in a folder of their own.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "kit/design/nameMap.h"
#include "kit/kitRun.h"
#include "support/guards.h"

namespace test {

/// A site of 0.2 by 2 micrometres; A and B are 2 and 4 sites wide.
inline constexpr const char* SMALL_LEF = R"(VERSION 5.8 ;
UNITS DATABASE MICRONS 1000 ; END UNITS
SITE core CLASS CORE ; SIZE 0.2 BY 2.0 ; END core
SITE tall CLASS CORE ; SIZE 0.2 BY 4.0 ; END tall
SITE pad CLASS PAD ; SIZE 1 BY 9 ; END pad
MACRO A CLASS CORE ; SIZE 0.4 BY 2 ; SITE core ;
  PIN Z PORT LAYER metal1 ; RECT 0.1 0.5 0.2 1.5 ; END END Z
END A
MACRO B CLASS CORE ; SIZE 0.8 BY 2 ; END B
MACRO TALL CLASS CORE ; SIZE 0.4 BY 4 ; END TALL
MACRO RAM CLASS BLOCK ; SIZE 1.1 BY 3 ;
  PIN D PORT LAYER metal1 ; RECT 0.2 0.4 0.4 0.6 ; END END D
  PIN Q PORT LAYER metal2 ; RECT 0 0 0.1 0.1 ; END END Q
END RAM
MACRO FILL CLASS CORE SPACER ; SIZE 0.2 BY 2 ; END FILL
MACRO TAP CLASS CORE WELLTAP ; SIZE 0.2 BY 2 ; END TAP
END LIBRARY
)";

/// Rows 0 and 1 of 20 sites from x 1000, at y 0 (N) and 2000 (FS), DBU of a nanometre.
inline constexpr const char* TWO_ROWS =
    "ROW r0 core 1000 0 N DO 20 BY 1 STEP 200 0 ;\nROW r1 core 1000 2000 FS DO 20 BY 1 STEP 200 0 ;\n";

class KitImport : public testing::Test {
protected:
    /// Imports a DEF with these statements between its header and END DESIGN.
    KitOutcome import(const std::string& body, const Words& more = {}, const std::string& rows = TWO_ROWS,
                      const std::string& lef = SMALL_LEF)
    {
        m_dir.write("l.lef", lef);
        m_dir.write("d.def", "VERSION 5.8 ;\nDESIGN d ;\nUNITS DISTANCE MICRONS 1000 ;\n" + rows + body +
                                 "\nEND DESIGN\n");
        Words words{"import", "--lef",  m_dir.path("l.lef"), "--def", m_dir.path("d.def"), "-o",
                    base(),   "--force"};
        words.insert(words.end(), more.begin(), more.end());
        return runKit(words);
    }

    /// As import(), and expects it to be done.
    void importWell(const std::string& body, const Words& more = {}, const std::string& rows = TWO_ROWS,
                    const std::string& lef = SMALL_LEF)
    {
        const KitOutcome outcome = import(body, more, rows, lef);
        EXPECT_EQ(outcome.status, 0) << outcome.error;
    }

    std::string base() const { return m_dir.path("o"); }
    std::string fileOf(const char* extension) const { return contentOf(base() + extension); }

    /// The lines of a placement's section, those that begin with "- ", each up to its end.
    Words records(const std::string& section) const
    {
        std::istringstream text(fileOf(".place"));
        Words lines;
        bool inside = false;
        for (std::string line; std::getline(text, line);) {
            if (line.rfind("END " + section, 0) == 0) {
                inside = false;
            }
            if (inside && line.rfind("- ", 0) == 0) {
                lines.push_back(line.substr(2));
            }
            inside = inside || line.rfind(section + " ", 0) == 0;
        }
        return lines;
    }

    /// The lines of the rows.
    Words rows() const
    {
        std::istringstream text(fileOf(".place"));
        Words lines;
        for (std::string line; std::getline(text, line);) {
            if (line.rfind("ROW ", 0) == 0) {
                lines.push_back(line.substr(4));
            }
        }
        return lines;
    }

    kit::design::NameMap map() const
    {
        kit::Findings findings;
        kit::design::NameMap map = kit::design::readNameMap(base() + ".map", findings);
        EXPECT_TRUE(findings.empty());
        return map;
    }

    TempDir m_dir;
};

/// A COMPONENTS section of some records.
inline std::string components(const Words& records)
{
    std::string text = "COMPONENTS " + std::to_string(records.size()) + " ;\n";
    for (const std::string& record : records) {
        text += "- " + record + " ;\n";
    }
    return text + "END COMPONENTS\n";
}

} // namespace test
