// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <filesystem>
#include <string>

#include "db/design.h"
#include "db/orientMapGuard.h"
#include "support/guards.h"

namespace test {

/// The files of a small design that is well formed, each of which a test may replace; and the process around
/// a run: parameters and orientations are put back.
///
/// Two rows of ten sites of 190. Cell A has 2 sites and two solutions of 1 and 0 stitches, cell B has 3 sites
/// and one solution of 2. A net u0 u1 of length 1045, a net u1 u2 p0 of length 4085, DBU.
class DesignFiles {
public:
    DesignFiles()
    {
        write("d.cells", "2\nA\nB\n");
        write("lib/A.color", "380 1900\n0\n0\n2\n1\n0\n");
        write("lib/B.color", "570 1900\n0\n0\n1\n2\n");
        write("d.place", rows() + components());
        write("d.pins", "1\np0 0 3800\n");
        write("d.netlist", "2\n2 u0 u1\n3 u1 u2 p0\n");
    }

    static std::string rows()
    {
        return "ROW row_0 core 0 0 N DO 10 BY 1 STEP 190 0 ;\n"
               "ROW row_1 core 0 1900 FS DO 10 BY 1 STEP 190 0 ;\n";
    }

    static std::string components()
    {
        return "COMPONENTS 3 ;\n"
               "- u0 A + PLACED ( 0 0 ) N ;\n  + SOURCE DIST ;\n"
               "- u1 B + PLACED ( 950 0 ) FN ;\n  + SOURCE DIST ;\n"
               "- u2 A + PLACED ( 380 1900 ) N ;\n  + SOURCE DIST ;\n"
               "END COMPONENTS\n";
    }

    void write(const std::string& name, const std::string& text) const { m_dir.write(name, text); }

    void remove(const std::string& name) const { std::filesystem::remove(path(name)); }

    std::string path(const std::string& name) const { return m_dir.path(name); }

    std::string base() const { return path("d"); }  ///< of the design files, without extension
    std::string lib() const { return path("lib"); } ///< folder of the colour files

    /// Makes a design read these files.
    void bind(Design& design) const
    {
        design.placePath = base();
        design.cellPath = lib();
    }

private:
    ParameterGuard m_parameters;
    OrientMapGuard m_orientations;
    TempDir m_dir;
};

} // namespace test
