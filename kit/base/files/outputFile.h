// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <sys/stat.h>

#include <concepts>
#include <list>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "kit/base/files/unpack.h"

namespace kit {

/// Gives a finished file the name that another may have, or takes a file away. After keepOld() that can be
/// undone until settle().
class NameChange {
public:
    /// @param target  the name
    /// @param part    where the file is until then; empty to take the target away
    explicit NameChange(std::string target, std::string part = {});
    /// Removes what was not given its name, and what was kept.
    ~NameChange();
    NameChange(const NameChange&) = delete;
    NameChange& operator=(const NameChange&) = delete;

    /// The name, as it was given.
    const std::string& target() const { return m_target; }

    /// Where the file is until it gets that name.
    const std::string& part() const { return m_part; }

    /// Keeps what is there under another name beside it, where the file system lets one file have two names.
    void keepOld();

    /// Changes the name. Errors: throws Fault if it cannot.
    void make();

    /// Brings back what keepOld() has kept.
    void undo() noexcept;

    /// Lets go of what keepOld() has kept.
    void settle() noexcept;

private:
    std::string m_target;
    std::string m_part;   ///< empty once it is gone
    std::string m_backup; ///< other name of the old file, empty if there is none
    bool m_removes;       ///< the target is taken away
    bool m_isNew = false; ///< there was no file of that name
};

/// A name for a temporary file beside another: NAME.part-XXXXXX, with random letters.
std::string partNameOf(const std::string& path);

/// The name that a temporary file's would become, empty if it is none of partNameOf().
std::string nameOfPart(const std::string& name);

/// A file that comes into being as a whole: it is written under a name of its own beside the one it is to
/// have, and renamed by commit(), once all of it is on the disk. Without commit() nothing is left.
///
/// A file that it replaces hands down its owner and permissions; of a link, what it leads to is replaced.
/// What is no regular file, as a pipe or a device, is written as it is. One whose name ends with ".gz" is
/// compressed.
class OutputFile {
public:
    /// Opens the file for writing. Errors: throws Fault if it cannot be opened.
    explicit OutputFile(std::string path);
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    /// The name that it is to have, as it was given.
    const std::string& path() const { return m_path; }

    /// Appends text.
    OutputFile& operator<<(std::string_view text);

    /// Appends a decimal integer.
    template <std::integral Integer>
    requires(!std::same_as<Integer, char>) OutputFile& operator<<(Integer value)
    {
        return append(static_cast<long long>(value));
    }

    /// Appends the content of a file. Errors: throws Fault if it cannot be read.
    void appendFile(const std::string& path);

    /// Where the file is until it gets its name, for those who write by a name.
    ///
    /// Errors: throws Fault if it is no regular file that is written, or one that is compressed.
    const std::string& partPath() const;

    /// Writes what is left and gives the file its name, in place of a file that had it.
    ///
    /// Errors: throws Fault if not everything could be written.
    void commit();

private:
    friend class OutputSet;

    void openPart(const std::string& target);
    OutputFile& append(long long value);
    void flush();
    void write(std::string_view bytes);
    void complete(bool sync);
    [[noreturn]] void fail(int error) const;

    std::string m_path;
    std::optional<struct stat> m_old; ///< of the regular file that is replaced
    int m_file = -1;                  ///< -1 once it is complete
    std::unique_ptr<char[]> m_buffer;
    size_t m_used = 0; ///< bytes in the buffer
    std::optional<GzipPacker> m_packer;
    std::optional<NameChange> m_name; ///< none if the file is written as it is
};

/// Writes a small file. Errors: as of OutputFile.
void writeFile(const std::string& path, std::string_view text);

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
