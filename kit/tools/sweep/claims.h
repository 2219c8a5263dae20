// SPDX-License-Identifier: BSD-3-Clause
// Who works in a study's folder.
// Who makes which run, so that none is made twice by processes on any nodes.
//
// A claim is a file DIR/claims/ID.GENERATION, of the claims of an id the highest generation counts. It is a
// hard link to the file of its owner, so that it is whole from the start, comes into being for one process
// alone, on network file systems too, and one touch of the owner's file shows that all claims are alive.
//
// A claim is stale if its owner has ended, or, where that cannot be told, has not touched its file for
// STALE_SECONDS. A stale claim is not removed but taken over by the next generation: of several processes one
// gets it. A claim for a run whose result is there means nothing.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "kit/tools/sweep/task.h"

namespace kit::sweep {

/// A process, such that no other is ever taken for it.
struct Owner {
    std::string host;
    std::string place; ///< host, its boot and its space of process ids: where `process` means something
    int64_t process = 0;
    int64_t start = 0; ///< time of its start, ticks since the boot

    bool operator==(const Owner&) const = default;

    /// This process.
    static Owner self();

    /// As a part of a file name.
    std::string name() const;

    /// Whether the process of a name is known to be no more: for files that it could not finish.
    static bool isGone(const std::string& name);

    /// As the text of a claim.
    std::string text() const;

    /// The owner in the text of a claim, none if it is damaged.
    static std::optional<Owner> parse(const std::string& text);

    /// Whether the process is there; nothing if that cannot be told from here.
    std::optional<bool> isAlive() const;
};

/// After so long without a sign an owner elsewhere is taken for dead.
inline constexpr double STALE_SECONDS = 600;

/// How often an owner gives a sign.
inline constexpr double SIGN_SECONDS = 30;

/// A claim file.
struct Claim {
    std::string id;
    int32_t generation = 0;
};

/// The claims in a folder, as one process sees and makes them. May be used by several threads.
class Claims {
public:
    /// Makes this process known in the folder. Errors: throws Fault if it cannot be written there.
    explicit Claims(const Folder& folder);
    ~Claims();
    Claims(const Claims&) = delete;
    Claims& operator=(const Claims&) = delete;

    /// Claims a run. @return nothing if somebody else has it
    ///
    /// Errors: throws Fault if the folder cannot be written.
    std::optional<Claim> take(const std::string& id);

    /// Whether a claim that was taken still holds: a process that was stopped for long may have lost it.
    bool holds(const Claim& claim);

    /// Gives a claim back.
    void release(const Claim& claim) noexcept;

    /// Shows that this process is alive.
    void giveSign() noexcept;

    /// An id that a process which is no more has left a claim of, without a result; empty if there is none.
    std::string abandoned();

    /// Removes what processes that are no more have left: folders of work, claims with a result, owners.
    void cleanUp();

    const Owner& self() const { return m_self; }

private:
    /// What a claim's file says of its owner.
    enum class State { GONE, ALIVE, STALE };

    std::string pathOf(const Claim& claim) const;
    std::string ownerPath() const;
    State stateOf(const std::string& path);
    bool isOld(const std::string& path);
    std::optional<Claim> highest(const std::string& id) const;
    bool link(const Claim& claim);
    bool othersHave(const Claim& claim);

    const Folder& m_folder;
    Owner m_self;
};

} // namespace kit::sweep
