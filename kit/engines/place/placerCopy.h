// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <map>
#include <memory>
#include <string>
#include <tuple>
#include <unordered_map>
#include <vector>

#include "kit/base/files/folder.h"
#include "kit/engines/place/clearance.h"
#include "kit/engines/place/options.h"
#include "kit/formats/placer/design.h"
#include "kit/formats/placer/reader.h"

namespace kit::place {

/// Names of masters by cell, and whether left and right, bottom and top of it are exchanged.
using MasterNames = std::map<std::tuple<int32_t, bool, bool>, std::string>;

/// A copy of a design as the placer is to see it. The files of the copy go with the object.
///
/// With true orientations every cell lies as it is drawn there, which is how the placer takes it: a cell that
/// lies otherwise is a master of its own, with its shapes turned, and all components lie N. The solutions of
/// such a master are the cell's, in the same order and for the same shapes.
///
/// Macros are wider there where cells beside them would be too close to the metal of what stays where it is.
class PlacerCopy {
public:
    /// Makes the copy, unless it would be the same, or the files have errors, which are for the placer to
    /// tell.
    ///
    /// @param minDist  distance that shapes of one mask need, library coordinates
    /// @return nullptr without a copy
    ///
    /// Errors: throws Fault if a file cannot be opened, or the copy not be written.
    static std::unique_ptr<PlacerCopy> of(const Options& options, int32_t minDist);

    /// Path of the design files without extension.
    std::string base() const { return m_folder.path() + "/design"; }

    /// Folder of the colour files.
    const std::string& cellPath() const { return m_cellPath; }

    /// The name of a master's cell.
    const std::string& cellOf(const std::string& master) const;

    /// The macros that are wider.
    const std::vector<WiderMacro>& wider() const { return m_wider; }

private:
    PlacerCopy() : m_folder(makeTemporaryFolder()), m_cellPath(m_folder.path()) {}

    void write(const placer::Design& design, const Options& options, bool turn);
    void writeMasters(const placer::Design& design, const MasterNames& masters, const placer::Paths& to);
    static void link(const std::string& from, const std::string& to);

    FolderRemoval m_folder;
    std::string m_cellPath;
    std::vector<WiderMacro> m_wider;
    std::unordered_map<std::string, std::string> m_cells; ///< names of cells by those of turned masters
};

} // namespace kit::place
