// SPDX-License-Identifier: BSD-3-Clause
#include "parser/componentNames.h"

#include <algorithm>
#include <span>
#include <vector>

#include "db/design.h"

namespace vireloce {

namespace {

constexpr size_t BLOCK = 8; ///< bytes of a name that are compared at once

/// A component on its way to its place in the order of the names.
struct Item {
    uint64_t block; ///< the bytes of its name that are compared now, the first one highest
    int32_t index;  ///< in Design::components

    bool operator<(const Item& other) const
    {
        return block != other.block ? block < other.block : index < other.index;
    }
};

/// The bytes of a name from some position on, as a number that orders as they do; 0 behind its end.
uint64_t blockAt(const std::string& name, size_t from)
{
    uint64_t block = 0;
    for (size_t i = from; i < from + BLOCK; ++i) {
        block = block << 8 | (i < name.size() ? static_cast<unsigned char>(name[i]) : 0);
    }
    return block;
}

/// Sorts components by name, those of one name by index. What lies before a position is the same in all.
///
/// A name holds no null character, so that a block that ends in one ends its name.
void sortByName(const std::vector<Component*>& components, std::span<Item> items, size_t from)
{
    for (Item& item : items) {
        item.block = blockAt(components[static_cast<size_t>(item.index)]->name, from);
    }
    // Often they are sorted: names in file order, or names that are all the same up to here.
    if (!std::is_sorted(items.begin(), items.end())) {
        std::sort(items.begin(), items.end());
    }
    for (size_t begin = 0, end = 0; begin < items.size(); begin = end) {
        const uint64_t block = items[begin].block;
        for (end = begin + 1; end < items.size() && items[end].block == block; ++end) {
        }
        if (end - begin > 1 && (block & 0xff) != 0) {
            sortByName(components, items.subspan(begin, end - begin), from + BLOCK);
        }
    }
}

} // namespace

void enterNames(Design& design, size_t first)
{
    const std::vector<Component*>& components = design.components;
    std::vector<Item> items;
    items.reserve(components.size() - first);
    for (size_t i = first; i < components.size(); ++i) {
        items.push_back({0, static_cast<int32_t>(i)});
    }
    sortByName(components, items, 0);
    auto behind = design.compIndex.begin();
    for (const Item& item : items) {
        const std::string& name = components[static_cast<size_t>(item.index)]->name;
        behind = std::next(design.compIndex.insert_or_assign(behind, name, item.index));
    }
}

} // namespace vireloce
