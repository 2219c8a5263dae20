// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <list>
#include <string>

#include "kit/base/files/outputFile.h"

namespace kit {

/// Files that come into being together: all, or none. They are written one after the other, and get their
/// names by commit(), once all are on the disk, in the order in which they were added. Without commit()
/// nothing is left.
class OutputSet {
public:
    /// Adds a file.
    ///
    /// Errors: throws Fault if it cannot be written, and whatever `write` throws.
    ///
    /// @param write  writes it: takes an OutputFile&
    template <typename Write>
    void add(const std::string& path, const Write& write)
    {
        OutputFile& file = m_files.emplace_back(path);
        write(file);
        complete(file);
    }

    /// Adds a copy of a file. Errors: throws Fault if that cannot be read or this not be written.
    void addCopy(const std::string& path, const std::string& from);

    /// Takes a file away that an earlier set may have left, before the others get their names.
    void remove(const std::string& path);

    /// Where a file that was added is until commit().
    const std::string& partPath(const std::string& path) const;

    /// Gives the files their names.
    ///
    /// Errors: throws Fault if it cannot; then all names are as they were.
    void commit();

private:
    void complete(OutputFile& file);

    std::list<OutputFile> m_files;
    std::list<NameChange> m_removed;
};

} // namespace kit
