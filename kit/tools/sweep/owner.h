// SPDX-License-Identifier: BSD-3-Clause
// Who works in a study's folder.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

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

} // namespace kit::sweep
