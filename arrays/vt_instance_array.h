// VtInstanceArray: the growable array that array objects own and that the renderer reads.
#pragma once

#include "algebra/vt_base.h"

#include <cstdint>
#include <cstdlib>
#include <limits>
#include <new>
#include <type_traits>

/// One separately allocated stretch of elements.
template <class T> struct VtArrayBlock {
    VtLong count;          ///< The number of element slots.
    T *data;               ///< That many elements; zero until written.
    VtArrayBlock<T> *next; ///< The following block, or null.
};

/// A growable array of values: not one contiguous buffer but a chain of blocks.
///
/// - Elements never move. A reference to one stays valid until the array shrinks below it or is destroyed.
/// - Growth appends one block with as many slots as the whole new size. Adding one element at a time to an empty array
///   therefore makes blocks of 1, 2, 4, 8 ... slots (capacities 1, 3, 7, 15 ...), and a chain of about log2(size).
/// - At() walks the chain from its head. To read everything, use ForEachBlock(), which hands out whole stretches.
/// - Shrinking keeps the blocks that cover the new size, contents and all; growing again within them allocates nothing
///   and clears nothing, so that old elements reappear. SetSize(0) releases everything.
/// - A new block is zero in every byte, which is the default value of every element type. Its pages are not touched, so
///   that a large block costs memory only where it is used.
/// - A negative size is accepted. Such an array has no elements, and every index is refused.
/// - A failed allocation is a result (false), never an exception. The size is the new one all the same; a read beyond
///   the storage then gives element 0 of the first block, or a zero element where there is no block, and a write there
///   stores nothing.
/// - One thread at a time; reading may be shared.
///
/// The three fields are what module and renderer library agree on; the library receives arrays by const reference and
/// reads them during the call.
template <class T> class VtInstanceArray {
    static_assert(std::is_trivially_copyable_v<T>, "a zeroed block must be a block of default elements");

  public:
    VtInstanceArray() = default;
    VtInstanceArray(const VtInstanceArray &) = delete;
    VtInstanceArray &operator=(const VtInstanceArray &) = delete;
    ~VtInstanceArray() { Release(first); }

    /// The number of elements, negative after SetSize() with a negative number.
    VtLong Size() const { return size; }

    /// The first block of the chain; null when there is no storage.
    const VtArrayBlock<T> *FirstBlock() const { return first; }

    /// Makes n the number of elements. False if a block could not be allocated.
    bool SetSize(VtLong n) {
        if (n == 0) {
            size = 0;
            Release(first);
            first = nullptr;
            return true;
        }
        if (n < size)
            Shrink(n);
        // Finds storage missing where the size grows, and also where an earlier allocation failed.
        return Grow(n);
    }

    /// Appends a copy of the value. False if a block could not be allocated, or the size cannot grow any more; nothing
    /// is stored then. Nothing is stored either if the size was negative before: the size only comes nearer to 0.
    bool Add(const T &value) {
        if (size == std::numeric_limits<VtLong>::max() || !SetSize(size + 1))
            return false;
        Store(size - 1, value);
        return true;
    }

    /// The element at index i; beyond the storage element 0 of the first block, or a zero element without any block.
    const T &At(VtLong i) const {
        static const T zero{};

        if (const T *element = Find(i))
            return *element;
        return first ? first->data[0] : zero;
    }

    /// Makes a copy of the value element i; beyond the storage nothing happens.
    void Store(VtLong i, const T &value) {
        if (T *element = Find(i))
            *element = value;
    }

    /// Calls visit(const T *elements, VtLong count) for each stretch of elements in use, in order; count is positive.
    /// The counts add up to Size(), unless an allocation failed, which leaves fewer elements than the size says.
    template <class Visit> void ForEachBlock(Visit visit) const {
        VtLong left = size;
        for (const VtArrayBlock<T> *block = first; block && left > 0; block = block->next) {
            const VtLong count = block->count < left ? block->count : left;
            visit(static_cast<const T *>(block->data), count);
            left -= count;
        }
    }

  protected:
    /// The slots of one block, and the index of the first. 64 bits, because the slots of all blocks together may be
    /// more than the largest size.
    struct Stretch {
        T *slots = nullptr;
        std::int64_t begin = 0;
        std::int64_t count = 0;

        /// Whether slot i is among them; never true for a negative i. One unsigned comparison serves both ends.
        bool Holds(VtLong i) const { return static_cast<std::uint64_t>(i - begin) < static_cast<std::uint64_t>(count); }
        T &Slot(VtLong i) const { return slots[i - begin]; }
    };

    /// The block with slot i; an empty stretch if there is none.
    Stretch Locate(VtLong i) const {
        std::int64_t begin = 0;
        for (const VtArrayBlock<T> *block = first; block; block = block->next) {
            const Stretch stretch{block->data, begin, block->count};
            if (stretch.Holds(i))
                return stretch;
            begin += block->count;
        }
        return {};
    }

  private:
    T *Find(VtLong i) const {
        const Stretch stretch = Locate(i);
        return stretch.count > 0 ? &stretch.Slot(i) : nullptr;
    }

    void Shrink(VtLong n) {
        size = n;
        std::int64_t capacity = 0;
        for (VtArrayBlock<T> *block = first; block; block = block->next) {
            capacity += block->count;
            if (capacity >= n && capacity >= blockSize) {
                Release(block->next);
                block->next = nullptr;
                return;
            }
        }
    }

    bool Grow(VtLong n) {
        size = n;
        std::int64_t capacity = 0;
        VtArrayBlock<T> **end = &first;
        while (*end && capacity < n) {
            capacity += (*end)->count;
            end = &(*end)->next;
        }
        if (capacity >= n)
            return true;

        // As many slots as the whole new size, not as are missing: that makes the growth geometric.
        *end = Allocate(!first && n < blockSize ? blockSize : n);
        return *end != nullptr;
    }

    static VtArrayBlock<T> *Allocate(VtLong count) {
        auto *block = new (std::nothrow) VtArrayBlock<T>{count, nullptr, nullptr};
        if (!block)
            return nullptr;
        block->data = static_cast<T *>(std::calloc(static_cast<std::size_t>(count), sizeof(T)));
        if (!block->data) {
            delete block;
            return nullptr;
        }
        return block;
    }

    static void Release(VtArrayBlock<T> *block) {
        while (block) {
            VtArrayBlock<T> *next = block->next;
            std::free(block->data);
            delete block;
            block = next;
        }
    }

  protected:
    // What module and renderer library agree on, in this order.
    // blockSize is the number of slots of a first block, and the capacity that shrinking keeps; the module's arrays
    // have 0.
    VtLong size = 0;
    VtLong blockSize = 0;
    VtArrayBlock<T> *first = nullptr;
};

static_assert(sizeof(VtInstanceArray<double>) == 2 * sizeof(VtLong) + sizeof(void *));
static_assert(std::is_standard_layout_v<VtInstanceArray<double>> && std::is_standard_layout_v<VtArrayBlock<double>>);
static_assert(sizeof(VtArrayBlock<double>) == 3 * sizeof(void *));
