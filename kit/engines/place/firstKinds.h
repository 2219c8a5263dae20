// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <memory>
#include <string>
#include <unordered_map>

#include "kit/base/files/folder.h"
#include "kit/design/rowKinds.h"
#include "kit/engines/place/options.h"
#include "kit/formats/placer/colors.h"

namespace kit::place {

/// The library as a run sees it where rows meet: its cells have the solutions of the first kind alone, by
/// their numbers. In every second row the solutions of the second kind take their places when all is done,
/// which changes nothing inside of rows. The colour files go with the object.
class FirstKinds {
public:
    /// Makes the library of a design and of what stays where it is there, unless the files have errors, which
    /// are for the placer to tell.
    ///
    /// @return nullptr without it
    ///
    /// Errors: throws Fault for a cell of the design without solutions of the second kind, and if files
    /// cannot be read or written.
    static std::unique_ptr<FirstKinds> of(const Options& options);

    /// Folder of the colour files.
    const std::string& path() const { return m_folder.path(); }

    /// The number of the solution that a cell at a height gets for one of the first kind.
    int32_t solutionAt(const std::string& cell, int32_t solution, int32_t y) const;

    /// Gives a component at a height the solution of its row for one of the first kind.
    void settle(placer::ColorRecord& record, int32_t y) const;

private:
    explicit FirstKinds(design::RowKinds rows) : m_folder(makeTemporaryFolder()), m_rows(std::move(rows)) {}

    FolderRemoval m_folder;
    design::RowKinds m_rows;
    std::unordered_map<std::string, int32_t> m_counts; ///< solutions of the first kind, by cells
};

} // namespace kit::place
