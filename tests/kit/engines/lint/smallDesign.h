// SPDX-License-Identifier: BSD-3-Clause
// A small sound design that tests damage.
#pragma once

#include <filesystem>
#include <map>
#include <string>

#include "kit/kitRun.h"

namespace test {

/// A change to a file: the first `from` becomes `to`. The file is left out if both are empty.
struct Damage {
    std::string file;
    std::string from;
    std::string to;
};

/// The files of a sound design of two rows, four components and a macro, by name.
inline std::map<std::string, std::string> soundFiles()
{
    return {{"d.cells", "2\nINV NAND\n"},
            {"lib/INV.color", R"(380 1900
1
0 0 380 1900
4
1
0 -85 380 85
1
0 1815 380 1985
1
20 400 85 1500
1
295 400 360 1500
2
0  0 0 1 1
0  0 0 1 2
)"},
            {"lib/NAND.color", R"(570 1900
2
0 0 570 1900
485 900 550 900
5
1
0 -85 570 85
2
0 1815 570 1985
250 1300 320 1815
1
20 400 85 1200
1
485 400 550 900
1
485 900 550 1500
2
0  0 0 1 1 1
1  0 0 2 1 2
)"},
            {"d.place", R"(VERSION 5.6 ;
PROPERTYDEFINITIONS
  COMPONENTPIN designRuleWidth REAL ;
  DESIGN CORE_BOX_LL_X REAL 0.0000 ;
  DESIGN CORE_BOX_UR_X REAL 1.1400 ;
  DESIGN CORE_BOX_LL_Y REAL 0.0000 ;
  DESIGN CORE_BOX_UR_Y REAL 1.9000 ;
END PROPERTYDEFINITIONS

ROW row_0 core 0 0 N DO 12 BY 1 STEP 190 0 ;
ROW row_1 core 0 1900 FS DO 12 BY 1 STEP 190 0 ;

COMPONENTS 4 ;
- u1 INV + PLACED ( 0 0 ) N
 ;
- u2 INV + PLACED ( 380 0 ) FN
 ;
- u3 NAND + PLACED ( 760 0 ) N
 ;
- u4 INV + PLACED ( 1520 1900 ) FS
 ;
END COMPONENTS

BIGNODES 1 ;
- tap_1 TAP + ( 0 1900 ) ( 190 1900 ) N
 ;
END BIGNODES
)"},
            {"d.pins", "2\nin  0    950\nout 2280 950\n"},
            {"d.netlist", "4\n2 in u1\n2 u1 u2\n3 u2 u3 out\n2 u3 u4\n"}};
}

/// The sound design with some damage, in a folder of its own.
class SmallDesign {
public:
    explicit SmallDesign(const std::vector<Damage>& damages = {})
    {
        std::map<std::string, std::string> files = soundFiles();
        for (const Damage& damage : damages) {
            if (damage.from.empty() && damage.to.empty()) {
                files.erase(damage.file);
                continue;
            }
            std::string& text = files.at(damage.file);
            const size_t at = text.find(damage.from);
            EXPECT_NE(at, std::string::npos) << damage.from;
            text.replace(at, damage.from.size(), damage.to);
        }
        std::filesystem::create_directory(m_dir.path("lib"));
        for (const auto& [name, text] : files) {
            std::ofstream(m_dir.path(name), std::ios::binary) << text;
        }
    }

    std::string base() const { return m_dir.path("d"); }
    std::string lib() const { return m_dir.path("lib"); }

    /// Runs lint on the design. Paths on standard output are those within the folder.
    KitOutcome lint(const Words& more = {}) const
    {
        Words words{"lint", base(), "--cell-path", lib()};
        words.insert(words.end(), more.begin(), more.end());
        KitOutcome outcome = runKit(words);
        const std::string prefix = m_dir.path("");
        for (size_t at = 0; (at = outcome.output.find(prefix, at)) != std::string::npos;) {
            outcome.output.erase(at, prefix.size());
        }
        return outcome;
    }

private:
    TempDir m_dir;
};

} // namespace test
