// SPDX-License-Identifier: BSD-3-Clause
// A result of `place` by hand, and the DEF file that it belongs to.
#pragma once

#include <string>

#include "kit/kitRun.h"

namespace test {

/// Two rows of ten sites, the upper one upside down; 1000 DBU to the micrometre, a site of 190 DBU, so that a
/// DBU is a library unit and a nanometre.
inline const std::string SMALL_ROWS = "ROW r0 core 0 0 N DO 10 BY 1 STEP 190 0 ;\n"
                                      "ROW r1 core 0 1400 FS DO 10 BY 1 STEP 190 0 ;\n";

/// A cell of two sites: rails, a bar on either side, and three solutions.
inline const std::string SMALL_COLOR = "380 1400\n1 0 0 380 1400\n4\n"
                                       "1 0 -85 380 85\n1 0 1315 380 1485\n"
                                       "1 20 300 90 900\n2 300 300 360 700 300 700 360 900\n"
                                       "3\n0 0 0 1 1\n0 0 0 1 2\n0 0 0 2 1\n";

/// The same cell as a LEF macro, with its right bar in two parts.
inline const std::string SMALL_LEF = "VERSION 5.6 ;\nBUSBITCHARS \"<>\" ;\nDIVIDERCHAR \"/\" ;\n"
                                     "MACRO INV\n  CLASS CORE ;\n  ORIGIN 0 0 ;\n  SIZE 0.38 BY 1.4 ;\n"
                                     "  PIN A\n    PORT\n      LAYER M1 ;\n"
                                     "        RECT 0.02 0.3 0.09 0.9 ;\n    END\n  END A\n"
                                     "  PIN Z\n    PORT\n      LAYER M1 ;\n"
                                     "        RECT 0.3 0.3 0.36 0.9 ;\n"
                                     "      LAYER M2 ;\n        RECT 0 0 0.1 0.1 ;\n    END\n  END Z\n"
                                     "  PIN VSS\n    USE GROUND ;\n    PORT\n      LAYER M1 ;\n"
                                     "        RECT 0 -0.085 0.38 0.085 ;\n    END\n  END VSS\n"
                                     "  OBS\n    LAYER M1 ;\n      RECT 0 1.315 0.38 1.485 ;\n  END\n"
                                     "END INV\n"
                                     "MACRO FILL1\n  CLASS CORE SPACER ;\n  SIZE 0.19 BY 1.4 ;\nEND FILL1\n"
                                     "END LIBRARY\n";

/// The result, with the components that a test asks for.
class SmallExport {
public:
    /// @param components  records of the placement, each of two lines
    /// @param records     components of the DEF file, with their line ends
    SmallExport(const std::string& components, const std::string& records)
    {
        const auto lines = std::count(components.begin(), components.end(), '\n');
        place =
            SMALL_ROWS + "COMPONENTS " + std::to_string(lines / 2) + " ;\n" + components + "END COMPONENTS\n";
        def = "VERSION 5.8 ;\nDESIGN small ;\nUNITS DISTANCE MICRONS 1000 ;\n"
              "DIEAREA ( 0 0 ) ( 1900 2800 ) ;\n" +
              SMALL_ROWS + "COMPONENTS 9 ;\n" + records + "END COMPONENTS\nEND DESIGN\n";
        write("lib/INV.color", SMALL_COLOR);
        write("lef", SMALL_LEF);
        json = R"({"schema":"vireloce-place","version":1,"placement":{},"options":{"cell_path":")" +
               path("lib") + R"("}})";
    }

    std::string path(const std::string& name) const { return m_dir.path(name); }
    std::string write(const std::string& name, const std::string& text) const
    {
        return m_dir.write(name, text);
    }
    std::string output(const std::string& name) const { return contentOf(path(name)); }

    /// Runs the export of out.json to new.def.
    KitOutcome run(const Words& more = {}) const
    {
        write("in.def", def);
        write("out.json", json);
        write("out.place", place);
        write("out.colors", "VIRELOCE COLORS 1\nCOMPONENTS " +
                                std::to_string(std::count(colors.begin(), colors.end(), '\n')) + "\n" +
                                colors + "END\n");
        Words words{"export", path("out.json"), "--def", path("in.def"), "-o", path("new.def")};
        words.insert(words.end(), more.begin(), more.end());
        KitOutcome outcome = runKit(words);
        // Paths differ from run to run.
        for (std::string* text : {&outcome.output, &outcome.error}) {
            for (size_t at = 0; (at = text->find(path(""))) != std::string::npos;) {
                text->erase(at, path("").size());
            }
        }
        return outcome;
    }

    std::string place;
    std::string def;
    std::string json;
    std::string colors; ///< records of the colours file

private:
    TempDir m_dir;
};

} // namespace test
