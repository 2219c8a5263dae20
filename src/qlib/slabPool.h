// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstddef>
#include <new>
#include <utility>

#include "qlib/largeBlock.h"

namespace vireloce {

/// Memory for records of one type, of which a large design has millions.
///
/// Taken one by one, each of them would cost a header and the rounding up of its size; here they lie side by
/// side. All of it goes back once no record is left. Not for use by several threads at a time.
///
/// The address sanitizer watches over single blocks, so for it every record is one.
template <class T>
class SlabPool {
public:
    /// Whether the address sanitizer watches.
#if defined(__clang__)
    static constexpr bool IS_WATCHED = __has_feature(address_sanitizer);
#elif defined(__SANITIZE_ADDRESS__)
    static constexpr bool IS_WATCHED = true;
#else
    static constexpr bool IS_WATCHED = false;
#endif

    /// Memory for a T.
    ///
    /// Errors: std::bad_alloc.
    static void* take()
    {
        if constexpr (IS_WATCHED) {
            return ::operator new(sizeof(T));
        }
        if (s_free == nullptr && s_fresh == s_freshEnd) {
            addSlab();
        }
        ++s_live;
        if (s_free != nullptr) {
            return std::exchange(s_free, s_free->next);
        }
        return std::exchange(s_fresh, s_fresh + sizeof(T));
    }

    /// Gives the memory of a T back.
    ///
    /// @param place  from take(), or nullptr
    static void giveBack(void* place)
    {
        if constexpr (IS_WATCHED) {
            ::operator delete(place);
            return;
        }
        if (place == nullptr) {
            return;
        }
        s_free = ::new (place) Place{s_free};
        if (--s_live == 0) {
            freeSlabs();
        }
    }

private:
    static constexpr size_t FIRST_SIZE = 65536;    ///< bytes of the first slab
    static constexpr size_t SIZE = 2 * LARGE_PAGE; ///< bytes of the others

    /// A place without a record.
    struct Place {
        Place* next;
    };

    /// The head of a slab. The places behind it straddle no more cache lines than they must.
    struct alignas(64) Slab {
        Slab* next;
        size_t bytes; ///< of the slab

        /// The first place; the others follow without gaps.
        unsigned char* places() { return reinterpret_cast<unsigned char*>(this + 1); }
    };

    /// Takes one more slab, whose places become the fresh ones. Errors: std::bad_alloc.
    static void addSlab()
    {
        const size_t bytes = s_slabs == nullptr ? FIRST_SIZE : SIZE;
        s_slabs = ::new (takeBlock(bytes)) Slab{s_slabs, bytes};
        s_fresh = s_slabs->places();
        s_freshEnd = s_fresh + (bytes - sizeof(Slab)) / sizeof(T) * sizeof(T);
    }

    /// Gives all slabs back. No record may be left.
    static void freeSlabs()
    {
        while (s_slabs != nullptr) {
            Slab* const slab = std::exchange(s_slabs, s_slabs->next);
            giveBlockBack(slab, slab->bytes);
        }
        s_free = nullptr;
        s_fresh = s_freshEnd = nullptr;
    }

    // Of trivial types: records may end after the static objects of the process.
    static inline Slab* s_slabs = nullptr;             ///< the newest first
    static inline unsigned char* s_fresh = nullptr;    ///< first place of the newest slab never handed out
    static inline unsigned char* s_freshEnd = nullptr; ///< end of its places
    static inline Place* s_free = nullptr;             ///< places that were given back
    static inline size_t s_live = 0;                   ///< records in existence
};

} // namespace vireloce
