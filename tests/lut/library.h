// SPDX-License-Identifier: BSD-3-Clause
// A cell library in a folder of its own.
#pragma once

#include <string>

#include "lut/lutable.h"
#include "support/guards.h"

namespace test {

/// A folder of colour files and an empty table that reads from it.
class Library {
public:
    Library() { lut.setCellPath(m_folder.path("lib")); }

    /// Writes the colour file of a cell.
    ///
    /// @return its path as the reader opens it
    std::string addFile(const std::string& cell, const std::string& text) const
    {
        return m_folder.write("lib/" + cell + ".color", text);
    }

    /// Writes the list of cells.
    ///
    /// @return its path
    std::string addList(const std::string& text) const { return m_folder.write("design.cells", text); }

    std::string path(const std::string& name) const { return m_folder.path(name); }

private:
    ParameterGuard m_parameters;
    TempDir m_folder;

public:
    LUTable lut;
};

} // namespace test
