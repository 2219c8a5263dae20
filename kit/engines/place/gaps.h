// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>
#include <map>
#include <tuple>

class Design;
struct Component;

namespace kit::place {

/// Sites that two neighbours need between them: by the placer's table, and by the shapes themselves,
/// whichever is more.
class Gaps {
public:
    /// @param design  not owned
    explicit Gaps(const Design& design) : m_design(design) {}

    /// Sites between two components in their solutions and orientations.
    int32_t between(const Component& left, const Component& right);

private:
    int32_t byShapes(const Component& left, const Component& right) const;

    /// What the shapes' part depends on: cells, orientations and solutions.
    using Key = std::tuple<int32_t, int32_t, int32_t, int32_t, int32_t, int32_t>;

    const Design& m_design;
    std::map<Key, int32_t> m_known;
};

} // namespace kit::place
