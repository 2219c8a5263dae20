// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>
#include <vector>

#include "qlib/rtree.h"

namespace qLib {

/// The search callback of an RTree of T*, and the place where it collects its hits.
///
/// There is one result vector per T in the process, so a search must not start another one of the same T.
/// Empty it before a search, read it after; its order is that of the search.
template <class T>
class qLibRTree {
public:
    /// The items found, not owned.
    static inline std::vector<T*> s_searchResult;

    /// Appends the item to s_searchResult.
    ///
    /// @return true: the search goes on
    static bool rtreeSearchCB(T* item, void* /*context*/)
    {
        s_searchResult.push_back(item);
        return true;
    }
};

/// The tree that the design keeps of its macros and of its segments: not owned items in the plane, DBU.
template <class T>
using PlaneTree = RTree<T*, int, 2, float, 8, 4>;

/// Inserts an item with the rectangle from (xl, yl) to (xh, yh), DBU.
template <class T>
void insertItem(PlaneTree<T>& tree, T* item, int32_t xl, int32_t yl, int32_t xh, int32_t yh)
{
    typename PlaneTree<T>::Rect rect{{xl, yl}, {xh, yh}};
    tree.InsertRect(&rect, item, &tree.root, 0);
}

/// All items that overlap the rectangle from (xl, yl) to (xh, yh), DBU, sides included.
///
/// @return qLibRTree<T>::s_searchResult in search order, valid until the next search of the same T
template <class T>
const std::vector<T*>& searchItems(PlaneTree<T>& tree, int32_t xl, int32_t yl, int32_t xh, int32_t yh)
{
    qLibRTree<T>::s_searchResult.clear();
    typename PlaneTree<T>::Rect rect{{xl, yl}, {xh, yh}};
    int foundCount = 0;
    tree.Search(tree.root, &rect, foundCount, qLibRTree<T>::rtreeSearchCB, nullptr);
    return qLibRTree<T>::s_searchResult;
}

} // namespace qLib
