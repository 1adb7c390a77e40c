// VtInstanceArray: its growth, its elements, its negative sizes.
#include "arrays/vt_instance_array.h"

#include "algebra/vt_transform.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <numeric>
#include <random>
#include <vector>

namespace {

constexpr VtLong largest = std::numeric_limits<VtLong>::max();
constexpr VtLong smallest = std::numeric_limits<VtLong>::min();

/// An array with a block size of its own, as a renderer may make one.
template <class T> struct WithBlockSize : VtInstanceArray<T> {
    explicit WithBlockSize(VtLong slots) { this->blockSize = slots; }
};

using Blocks = std::vector<VtLong>;

template <class T> Blocks blocks(const VtInstanceArray<T> &array) {
    Blocks counts;
    for (const VtArrayBlock<T> *block = array.FirstBlock(); block; block = block->next)
        counts.push_back(block->count);
    return counts;
}

template <class T> std::vector<T> elements(const VtInstanceArray<T> &array) {
    std::vector<T> found;
    array.ForEachBlock([&](const T *element, VtLong count) { found.insert(found.end(), element, element + count); });
    return found;
}

/// 0, 1, 2 ... added one by one.
void add_numbers(VtInstanceArray<VtLong> &array, VtLong count) {
    for (VtLong i = 0; i < count; ++i)
        ASSERT_TRUE(array.Add(i));
}

TEST(InstanceArray, starts_empty_and_without_storage) {
    const VtInstanceArray<double> array;
    EXPECT_EQ(array.Size(), 0);
    EXPECT_EQ(array.FirstBlock(), nullptr);
    EXPECT_EQ(elements(array), std::vector<double>());
}

TEST(InstanceArray, adding_one_by_one_doubles_the_blocks) {
    VtInstanceArray<VtLong> array;
    const Blocks expected[] = {{1}, {1, 2}, {1, 2}, {1, 2, 4}, {1, 2, 4}, {1, 2, 4}, {1, 2, 4}, {1, 2, 4, 8}};
    for (const Blocks &after : expected) {
        ASSERT_TRUE(array.Add(0));
        EXPECT_EQ(blocks(array), after);
    }
    add_numbers(array, 10000);
    EXPECT_EQ(blocks(array).size(), 14u);
    EXPECT_EQ(blocks(array).back(), 8192);
}

TEST(InstanceArray, a_grown_block_has_as_many_slots_as_the_whole_new_size) {
    VtInstanceArray<VtLong> array;
    EXPECT_TRUE(array.SetSize(10));
    EXPECT_EQ(blocks(array), (Blocks{10}));
    EXPECT_TRUE(array.SetSize(5));
    EXPECT_EQ(blocks(array), (Blocks{10}));
    EXPECT_TRUE(array.SetSize(20));
    EXPECT_EQ(blocks(array), (Blocks{10, 20}));
    EXPECT_TRUE(array.SetSize(30));
    EXPECT_EQ(blocks(array), (Blocks{10, 20}));
    EXPECT_TRUE(array.SetSize(31));
    EXPECT_EQ(blocks(array), (Blocks{10, 20, 31}));
}

TEST(InstanceArray, what_is_added_is_read) {
    VtInstanceArray<VtLong> array;
    add_numbers(array, 100);
    ASSERT_EQ(array.Size(), 100);
    for (VtLong i = 0; i < 100; ++i)
        EXPECT_EQ(array.At(i), i);
}

TEST(InstanceArray, storing_leaves_the_neighbours) {
    VtInstanceArray<VtLong> array;
    add_numbers(array, 9);
    for (VtLong stored = 0; stored < 9; ++stored) {
        array.Store(stored, -1);
        for (VtLong i = 0; i < 9; ++i)
            EXPECT_EQ(array.At(i), i == stored ? -1 : i);
        array.Store(stored, stored);
    }
}

TEST(InstanceArray, elements_never_move) {
    VtInstanceArray<VtLong> array;
    std::vector<const VtLong *> places;
    for (VtLong i = 0; i < 1000; ++i) {
        array.Add(i);
        places.push_back(&array.At(i));
    }
    array.SetSize(100000);
    for (VtLong i = 0; i < 1000; ++i)
        ASSERT_EQ(&array.At(i), places[static_cast<std::size_t>(i)]);
}

TEST(InstanceArray, new_elements_are_zero) {
    VtInstanceArray<VtTransform> array;
    ASSERT_TRUE(array.SetSize(3));
    for (VtLong i = 0; i < 3; ++i)
        for (int r = 0; r < 4; ++r)
            for (int c = 0; c < 4; ++c)
                EXPECT_EQ(array.At(i)[r][c], 0);

    VtInstanceArray<double> numbers;
    ASSERT_TRUE(numbers.SetSize(100));
    EXPECT_EQ(elements(numbers), std::vector<double>(100));
}

TEST(InstanceArray, shrinking_keeps_the_blocks_that_cover_the_new_size) {
    VtInstanceArray<VtLong> array;
    add_numbers(array, 7);
    ASSERT_EQ(blocks(array), (Blocks{1, 2, 4}));

    EXPECT_TRUE(array.SetSize(2));
    EXPECT_EQ(blocks(array), (Blocks{1, 2}));
    EXPECT_TRUE(array.SetSize(1));
    EXPECT_EQ(blocks(array), (Blocks{1}));
}

TEST(InstanceArray, growing_within_the_storage_brings_old_elements_back) {
    VtInstanceArray<VtLong> array;
    add_numbers(array, 7);
    array.SetSize(2);
    array.SetSize(3);
    EXPECT_EQ(elements(array), (std::vector<VtLong>{0, 1, 2}));
    EXPECT_EQ(blocks(array), (Blocks{1, 2}));

    // The block with the fourth was released; its successor is new.
    array.SetSize(4);
    EXPECT_EQ(elements(array), (std::vector<VtLong>{0, 1, 2, 0}));
    EXPECT_EQ(blocks(array), (Blocks{1, 2, 4}));
}

TEST(InstanceArray, the_same_size_changes_nothing) {
    VtInstanceArray<VtLong> array;
    add_numbers(array, 5);
    EXPECT_TRUE(array.SetSize(5));
    EXPECT_EQ(blocks(array), (Blocks{1, 2, 4}));
    EXPECT_EQ(elements(array), (std::vector<VtLong>{0, 1, 2, 3, 4}));
}

TEST(InstanceArray, size_zero_releases_everything) {
    VtInstanceArray<VtLong> array;
    add_numbers(array, 7);
    EXPECT_TRUE(array.SetSize(0));
    EXPECT_EQ(array.Size(), 0);
    EXPECT_EQ(array.FirstBlock(), nullptr);

    EXPECT_TRUE(array.Add(5));
    EXPECT_EQ(blocks(array), (Blocks{1}));
    array.SetSize(3);
    EXPECT_EQ(elements(array), (std::vector<VtLong>{5, 0, 0}));
}

TEST(InstanceArray, reading_beyond_the_storage_gives_the_first_element) {
    VtInstanceArray<VtLong> array;
    add_numbers(array, 3);
    array.Store(0, 42);
    for (VtLong i : {3, 4, 1000, largest, -1, -2, smallest})
        EXPECT_EQ(array.At(i), 42);
}

TEST(InstanceArray, reading_without_storage_gives_a_zero_element) {
    const VtInstanceArray<VtVector3> array;
    for (VtLong i : {0, 1, largest, -1, smallest})
        EXPECT_EQ(array.At(i).SqLength(), 0);
}

TEST(InstanceArray, storing_beyond_the_storage_changes_nothing) {
    VtInstanceArray<VtLong> empty;
    empty.Store(0, 1);
    EXPECT_EQ(empty.At(0), 0);

    VtInstanceArray<VtLong> array;
    add_numbers(array, 3);
    for (VtLong i : {3, 4, 1000, largest, -1, -2, smallest})
        array.Store(i, 99);
    EXPECT_EQ(elements(array), (std::vector<VtLong>{0, 1, 2}));
    EXPECT_EQ(blocks(array), (Blocks{1, 2}));
}

TEST(InstanceArray, a_negative_size_keeps_the_first_block) {
    VtInstanceArray<VtLong> array;
    add_numbers(array, 7);
    EXPECT_TRUE(array.SetSize(-1));
    EXPECT_EQ(array.Size(), -1);
    EXPECT_EQ(blocks(array), (Blocks{1}));
    EXPECT_EQ(elements(array), std::vector<VtLong>());

    EXPECT_TRUE(array.SetSize(smallest));
    EXPECT_EQ(array.Size(), smallest);
    EXPECT_EQ(blocks(array), (Blocks{1}));

    EXPECT_TRUE(array.SetSize(-3));
    EXPECT_EQ(array.Size(), -3);
    EXPECT_EQ(blocks(array), (Blocks{1}));
}

TEST(InstanceArray, a_negative_size_of_an_empty_array_needs_no_storage) {
    for (VtLong n : {-1, -1000, smallest}) {
        VtInstanceArray<VtLong> array;
        EXPECT_TRUE(array.SetSize(n));
        EXPECT_EQ(array.Size(), n);
        EXPECT_EQ(array.FirstBlock(), nullptr);
        EXPECT_EQ(array.At(0), 0);
        EXPECT_TRUE(array.SetSize(n + 1));
        EXPECT_EQ(array.FirstBlock(), nullptr);
    }
}

TEST(InstanceArray, adding_to_a_negative_size_stores_nothing) {
    VtInstanceArray<VtLong> array;
    add_numbers(array, 3);
    array.SetSize(-2);
    EXPECT_TRUE(array.Add(99));
    EXPECT_EQ(array.Size(), -1);
    EXPECT_EQ(blocks(array), (Blocks{1}));
    EXPECT_EQ(array.At(0), 0);

    // Size 0 is size 0: the storage goes.
    EXPECT_TRUE(array.Add(99));
    EXPECT_EQ(array.Size(), 0);
    EXPECT_EQ(array.FirstBlock(), nullptr);

    EXPECT_TRUE(array.Add(99));
    EXPECT_EQ(elements(array), (std::vector<VtLong>{99}));
}

TEST(InstanceArray, a_positive_size_after_a_negative_one_finds_the_first_block_again) {
    VtInstanceArray<VtLong> array;
    add_numbers(array, 7);
    array.Store(0, 42);
    array.SetSize(-1);
    EXPECT_TRUE(array.SetSize(5));
    EXPECT_EQ(blocks(array), (Blocks{1, 5}));
    EXPECT_EQ(elements(array), (std::vector<VtLong>{42, 0, 0, 0, 0}));
}

TEST(InstanceArray, block_size_is_the_least_first_block) {
    WithBlockSize<VtLong> array(4);
    EXPECT_TRUE(array.Add(0));
    EXPECT_EQ(blocks(array), (Blocks{4}));
    add_numbers(array, 4);
    EXPECT_EQ(blocks(array), (Blocks{4, 5}));

    WithBlockSize<VtLong> larger(4);
    EXPECT_TRUE(larger.SetSize(9));
    EXPECT_EQ(blocks(larger), (Blocks{9}));
}

TEST(InstanceArray, block_size_is_the_least_capacity_that_shrinking_keeps) {
    WithBlockSize<VtLong> array(4);
    array.SetSize(3);
    array.SetSize(6);
    array.SetSize(20);
    ASSERT_EQ(blocks(array), (Blocks{4, 6, 20}));
    array.SetSize(7);
    EXPECT_EQ(blocks(array), (Blocks{4, 6}));
    array.SetSize(1);
    EXPECT_EQ(blocks(array), (Blocks{4}));
    array.SetSize(-7);
    EXPECT_EQ(blocks(array), (Blocks{4}));
    array.SetSize(0);
    EXPECT_EQ(blocks(array), (Blocks{}));
}

TEST(InstanceArray, shrinking_may_find_no_block_to_release) {
    // Capacity 3 in blocks 1 and 2, made before the array's block size is 8.
    struct Later : VtInstanceArray<VtLong> {
        using VtInstanceArray<VtLong>::blockSize;
    } array;
    add_numbers(array, 3);
    array.blockSize = 8;
    EXPECT_TRUE(array.SetSize(1));
    EXPECT_EQ(blocks(array), (Blocks{1, 2}));
}

TEST(InstanceArray, visits_stretches_in_order_up_to_the_size) {
    VtInstanceArray<VtLong> array;
    add_numbers(array, 7);
    array.SetSize(5);
    Blocks counts;
    array.ForEachBlock([&](const VtLong *, VtLong count) { counts.push_back(count); });
    EXPECT_EQ(counts, (Blocks{1, 2, 2}));
    EXPECT_EQ(elements(array), (std::vector<VtLong>{0, 1, 2, 3, 4}));

    array.SetSize(3);
    counts.clear();
    array.ForEachBlock([&](const VtLong *, VtLong count) { counts.push_back(count); });
    EXPECT_EQ(counts, (Blocks{1, 2}));
}

// Random operations beside a std::vector of the storage: what a slot holds stays until its block is released, and a new
// block is zero.
class BesideVector {
  public:
    explicit BesideVector(VtLong first_block) : block_size(first_block), array(first_block) {}

    void set_size(VtLong n) {
        const Blocks before = blocks(array);
        ASSERT_TRUE(array.SetSize(n));
        check_blocks(before, n);
    }

    void add(VtLong value) {
        const Blocks before = blocks(array);
        ASSERT_TRUE(array.Add(value));
        check_blocks(before, size + 1);
        if (size > 0)
            slots[static_cast<std::size_t>(size - 1)] = value;
    }

    void store(VtLong i, VtLong value) {
        array.Store(i, value);
        if (i >= 0 && i < static_cast<VtLong>(slots.size()))
            slots[static_cast<std::size_t>(i)] = value;
    }

    void check_elements() const {
        const auto used = static_cast<std::ptrdiff_t>(std::max(size, 0));
        ASSERT_EQ(array.Size(), size);
        ASSERT_EQ(elements(array), std::vector<VtLong>(slots.begin(), slots.begin() + used));
        for (VtLong i = -3; i < size + 3; ++i) {
            const bool inside = i >= 0 && i < static_cast<VtLong>(slots.size());
            ASSERT_EQ(array.At(i), slots.empty() ? 0 : slots[inside ? static_cast<std::size_t>(i) : 0]);
        }
    }

  private:
    void check_blocks(const Blocks &before, VtLong n) {
        const Blocks after = blocks(array);
        const VtLong capacity = std::accumulate(after.begin(), after.end(), 0);
        if (n == 0) {
            ASSERT_EQ(after, Blocks());
        } else if (n > static_cast<VtLong>(slots.size())) {
            Blocks grown = before;
            grown.push_back(before.empty() ? std::max(n, block_size) : n);
            ASSERT_EQ(after, grown);
        } else if (n >= size) {
            ASSERT_EQ(after, before);
        } else {
            ASSERT_EQ(after, Blocks(before.begin(), before.begin() + static_cast<std::ptrdiff_t>(after.size())));
            // One block less would not do.
            ASSERT_TRUE(after.size() <= 1 || capacity - after.back() < std::max(n, block_size));
        }
        slots.resize(static_cast<std::size_t>(capacity));
        size = n;
    }

    VtLong block_size;
    WithBlockSize<VtLong> array;
    std::vector<VtLong> slots;
    VtLong size = 0;
};

TEST(InstanceArray, behaves_like_a_vector_of_its_storage_whatever_is_done) {
    for (VtLong block_size : {0, 1, 2, 4}) {
        std::mt19937 random(20240229);
        const auto below = [&](unsigned bound) { return static_cast<VtLong>(random() % bound); };
        BesideVector both(block_size);
        for (VtLong step = 1; step <= 20000 && !HasFatalFailure(); ++step) {
            switch (below(16)) {
            case 0:
                both.set_size(below(200));
                break;
            case 1:
                both.set_size(below(20) - 10);
                break;
            case 2:
                both.store(below(300) - 50, step);
                break;
            default:
                both.add(step);
            }
            both.check_elements();
        }
    }
}

} // namespace
