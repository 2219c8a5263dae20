// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <string>

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

    const std::string& target() const { return m_target; }
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

} // namespace kit
