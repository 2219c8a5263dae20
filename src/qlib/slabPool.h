// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstddef>
#include <new>
#include <utility>

#if defined(__has_feature)
#define VIRELOCE_HAS_FEATURE(feature) __has_feature(feature)
#else
#define VIRELOCE_HAS_FEATURE(feature) 0
#endif

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
    /// Memory for a T.
    ///
    /// Errors: std::bad_alloc.
    static void* take()
    {
        if constexpr (IS_WATCHED) {
            return ::operator new(sizeof(T));
        }
        ++s_live;
        if (s_free != nullptr) {
            return std::exchange(s_free, s_free->next);
        }
        if (s_fresh == 0) {
            addSlab();
        }
        return s_slabs->places + --s_fresh * sizeof(T);
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
#if defined(__SANITIZE_ADDRESS__) || VIRELOCE_HAS_FEATURE(address_sanitizer)
    static constexpr bool IS_WATCHED = true;
#else
    static constexpr bool IS_WATCHED = false;
#endif

    static constexpr size_t SLAB_SIZE = 1024; ///< records
    static constexpr size_t CACHE_LINE = 64;  ///< bytes

    /// A place without a record.
    struct Place {
        Place* next;
    };

    /// The places of many records, which straddle no more cache lines than they must.
    struct alignas(CACHE_LINE) Slab {
        Slab* next;
        alignas(CACHE_LINE) unsigned char places[SLAB_SIZE * sizeof(T)];
    };

    static void addSlab()
    {
        auto* const slab = new Slab; // not initialised: its pages are touched when they are used
        slab->next = s_slabs;
        s_slabs = slab;
        s_fresh = SLAB_SIZE;
    }

    static void freeSlabs()
    {
        while (s_slabs != nullptr) {
            delete std::exchange(s_slabs, s_slabs->next);
        }
        s_free = nullptr;
        s_fresh = 0;
    }

    // Of trivial types: records may end after the static objects of the process.
    static inline Slab* s_slabs = nullptr; ///< the newest first
    static inline size_t s_fresh = 0;      ///< places of the newest slab, from its front, never handed out
    static inline Place* s_free = nullptr; ///< places that were given back
    static inline size_t s_live = 0;       ///< records in existence
};

} // namespace vireloce
