// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <memory>
#include <string>
#include <unordered_map>

#include "kit/base/files/folder.h"
#include "kit/engines/place/options.h"
#include "kit/formats/placer/design.h"

namespace kit::place {

/// A copy of a design in which every cell lies as it is drawn, which is how the placer takes it: a cell that
/// lies otherwise is a master of its own, with its shapes turned, and all components lie N. The files of the
/// copy go with the object.
///
/// The solutions of such a master are the cell's, in the same order and for the same shapes.
class UnturnedDesign {
public:
    /// Makes the copy, unless no cell is turned, or the files have errors, which are for the placer to tell.
    ///
    /// @return nullptr without a copy
    ///
    /// Errors: throws Fault if a file cannot be opened, or the copy not be written.
    static std::unique_ptr<UnturnedDesign> of(const Options& options);

    /// Path of the design files without extension.
    std::string base() const { return m_folder.path() + "/design"; }

    /// Folder of the colour files.
    const std::string& cellPath() const { return m_folder.path(); }

    /// The name of a master's cell.
    const std::string& cellOf(const std::string& master) const;

private:
    UnturnedDesign() : m_folder(makeTemporaryFolder()) {}

    void write(const placer::Design& design, const Options& options);

    FolderRemoval m_folder;
    std::unordered_map<std::string, std::string> m_cells; ///< names of cells by those of turned masters
};

} // namespace kit::place
