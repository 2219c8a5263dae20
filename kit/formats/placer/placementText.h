// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "kit/geometry/rect.h"

namespace kit {
class OutputFile;
}

namespace kit::placer {

/// What a component's record gets in place of what stood there. What is empty stays.
struct RecordChanges {
    std::string_view name;               ///< that the record must have
    std::string_view cell{};             ///< name of the cell
    std::optional<geometry::Point> at{}; ///< lower left corner, DBU
    std::string_view orient{};           ///< orientation
};

/// Gives the changes of a component's record, by its index.
using ChangesOf = std::function<void(size_t component, RecordChanges& changes)>;

/// What a macro's record gets in place of what stood there.
struct MacroChange {
    int32_t x = 0; ///< left edge, DBU
    int32_t width = 0;
};

/// By the macros' lines in the file.
using MacroChanges = std::map<int64_t, MacroChange>;

/// Writes a placement file anew with changes of its components and macros; every other byte is kept: order,
/// names, all sections.
///
/// @param path   the placement file
/// @param count  components that it has, without those that are not placed
/// @param out    where to; not committed
///
/// Errors: throws Fault if the file cannot be read, or its records are not those of the components.
void rewritePlacement(const std::string& path, size_t count, const ChangesOf& changesOf, OutputFile& out,
                      const MacroChanges& macros = {});

} // namespace kit::placer
