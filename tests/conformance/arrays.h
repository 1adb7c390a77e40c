// Arrays such as the module can hand over, with storage that notices how it is read.
#pragma once

#include "arrays/vt_instance_array.h"
#include "guarded_memory.h"

#include <cstring>
#include <memory>
#include <vector>

/// An array of the given blocks and size; no block where a count is 0. The elements of each block are followed by a
/// page that nobody may touch, and nobody may write to them. Byte j of element i is (i + 1) % 251, so that elements
/// differ and no double is NaN.
template <class Element> class GuardedArray : public VtInstanceArray<Element> {
  public:
    GuardedArray(const std::vector<VtLong> &counts, VtLong claimed) {
        VtLong index = 0;
        VtArrayBlock<Element> **end = &this->first;
        for (const VtLong count : counts) {
            const auto bytes = static_cast<std::size_t>(count) * sizeof(Element);
            storage.push_back(std::make_unique<Storage>(bytes));
            Storage &added = *storage.back();
            added.block = {count, static_cast<Element *>(added.memory.data()), nullptr};
            for (VtLong i = 0; i < count; ++i)
                std::memset(static_cast<void *>(added.block.data + i), ++index % 251, sizeof(Element));
            added.memory.make_read_only();
            *end = &added.block;
            end = &added.block.next;
        }
        this->size = claimed;
    }
    ~GuardedArray() { this->first = nullptr; }

    /// From here on nobody may touch the elements.
    void seal() {
        for (const auto &each : storage)
            each->memory.seal();
    }

  private:
    struct Storage {
        explicit Storage(std::size_t bytes) : memory(bytes) {}

        GuardedMemory memory;
        VtArrayBlock<Element> block = {};
    };
    std::vector<std::unique_ptr<Storage>> storage;
};

/// An array of two blocks that knows which of them was read.
template <class Element> class WatchedArray : public VtInstanceArray<Element> {
  public:
    WatchedArray() {
        this->first = &first_block;
        this->size = first_block.count + second_block.count;
    }
    ~WatchedArray() { this->first = nullptr; }

    /// Whether somebody read the first block from its beginning to its end, and nothing of the second.
    bool was_read_by_its_first_block_only() const {
        return first_pages.was_touched(0) && first_pages.was_touched(last_page) && !second_pages.was_touched(0);
    }

  private:
    static constexpr std::size_t last_page = 2;

    static VtArrayBlock<Element> block(const WatchedMemory &pages, VtArrayBlock<Element> *next) {
        return {static_cast<VtLong>(pages.size() / sizeof(Element)), static_cast<Element *>(pages.data()), next};
    }

    WatchedMemory first_pages{last_page + 1};
    WatchedMemory second_pages{1};
    VtArrayBlock<Element> second_block = block(second_pages, nullptr);
    VtArrayBlock<Element> first_block = block(first_pages, &second_block);
};
