// VtInstanceArray when memory runs out.
#include "algebra/vt_transform.h"
#include "arrays/vt_instance_array.h"

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <fstream>
#include <limits>
#include <new>

namespace {

// How many more calls of each kind succeed; negative for all.
int blocks_left = -1;
int slots_left = -1;

bool fails(int &left) { return left >= 0 && left-- == 0; }

/// Until it goes out of scope, allocations fail after so many.
struct Shortage {
    Shortage(int blocks, int slots) {
        blocks_left = blocks;
        slots_left = slots;
    }
    ~Shortage() { blocks_left = slots_left = -1; }
};

constexpr int plenty = 1000;

} // namespace

// The linker sends this program's calls of calloc() and of the operator new that returns null through these.
extern "C" {
void *__real_calloc(std::size_t count, std::size_t size);
void *__wrap_calloc(std::size_t count, std::size_t size) {
    return fails(slots_left) ? nullptr : __real_calloc(count, size);
}
void *__real__ZnwmRKSt9nothrow_t(std::size_t size, const std::nothrow_t &nothrow);
void *__wrap__ZnwmRKSt9nothrow_t(std::size_t size, const std::nothrow_t &nothrow) {
    return fails(blocks_left) ? nullptr : __real__ZnwmRKSt9nothrow_t(size, nothrow);
}
}

namespace {

template <class T> int block_count(const VtInstanceArray<T> &array) {
    int count = 0;
    for (const VtArrayBlock<T> *block = array.FirstBlock(); block; block = block->next)
        ++count;
    return count;
}

/// Which of a block's two allocations fails: its record, or its slots.
class InstanceArrayShortage : public testing::TestWithParam<bool> {
  protected:
    Shortage from_now() const { return GetParam() ? Shortage(0, plenty) : Shortage(plenty, 0); }
};
INSTANTIATE_TEST_SUITE_P(Allocation, InstanceArrayShortage, testing::Bool(),
                         [](const auto &test) { return test.param ? "block" : "slots"; });

TEST_P(InstanceArrayShortage, the_first_block_fails) {
    VtInstanceArray<VtLong> array;
    {
        const Shortage shortage = from_now();
        EXPECT_FALSE(array.SetSize(5));
    }
    EXPECT_EQ(array.Size(), 5);
    EXPECT_EQ(array.FirstBlock(), nullptr);
    EXPECT_EQ(array.At(4), 0);
    array.Store(4, 1);
    EXPECT_EQ(array.At(4), 0);
}

TEST_P(InstanceArrayShortage, a_later_block_fails) {
    VtInstanceArray<VtLong> array;
    array.Add(10);
    array.Add(11);
    array.Add(12);
    {
        const Shortage shortage = from_now();
        EXPECT_FALSE(array.Add(13));
    }
    EXPECT_EQ(array.Size(), 4);
    EXPECT_EQ(block_count(array), 2);
    EXPECT_EQ(array.At(2), 12);
    EXPECT_EQ(array.At(3), 10);
    array.Store(3, 99);
    EXPECT_EQ(array.At(3), 10);
    VtLong visited = 0;
    array.ForEachBlock([&](const VtLong *, VtLong count) { visited += count; });
    EXPECT_EQ(visited, 3);
}

TEST_P(InstanceArrayShortage, every_size_is_complete_once_there_is_memory_again) {
    for (VtLong n : {1, 3, 4, 20, 21}) {
        VtInstanceArray<VtLong> array;
        array.Add(10);
        {
            const Shortage shortage = from_now();
            EXPECT_FALSE(array.SetSize(20));
        }
        EXPECT_TRUE(array.SetSize(n));
        EXPECT_EQ(array.At(0), 10);
        for (VtLong i = 0; i < n; ++i)
            array.Store(i, 100 + i);
        for (VtLong i = 0; i < n; ++i)
            EXPECT_EQ(array.At(i), 100 + i) << "of " << n;
    }
}

TEST_P(InstanceArrayShortage, what_needs_no_new_block_succeeds) {
    VtInstanceArray<VtLong> array;
    array.SetSize(10);
    const Shortage shortage = from_now();
    EXPECT_TRUE(array.SetSize(3));
    EXPECT_TRUE(array.Add(7));
    EXPECT_EQ(array.At(3), 7);
    EXPECT_TRUE(array.SetSize(-5));
    EXPECT_TRUE(array.SetSize(0));
}

#if defined(__SANITIZE_ADDRESS__)
constexpr bool address_sanitizer = true;
#elif defined(__has_feature)
constexpr bool address_sanitizer = __has_feature(address_sanitizer);
#else
constexpr bool address_sanitizer = false;
#endif

/// Until it goes out of scope, the process may have so many more bytes of address space.
class AddressSpaceLimit {
  public:
    explicit AddressSpaceLimit(rlim_t more) {
        std::ifstream statm("/proc/self/statm");
        rlim_t pages = 0;
        statm >> pages;
        getrlimit(RLIMIT_AS, &before);
        const rlimit limit{pages * 4096 + more, before.rlim_max};
        setrlimit(RLIMIT_AS, &limit);
    }
    ~AddressSpaceLimit() { setrlimit(RLIMIT_AS, &before); }

  private:
    rlimit before{};
};

TEST(InstanceArrayMemory, a_huge_size_fails_and_leaves_the_array_usable) {
    if (address_sanitizer)
        GTEST_SKIP() << "the sanitizer needs the address space that this test takes away";

    const AddressSpaceLimit limit(64 << 20);
    VtInstanceArray<VtTransform> array;
    VtTransform one;
    one[0][0] = 1;
    ASSERT_TRUE(array.Add(one));

    for (VtLong huge : {1 << 20, 1 << 30, std::numeric_limits<VtLong>::max()}) {
        EXPECT_FALSE(array.SetSize(huge));
        EXPECT_EQ(array.Size(), huge);
        EXPECT_EQ(block_count(array), 1);
        EXPECT_EQ(array.At(huge - 1)[0][0], 1);

        EXPECT_TRUE(array.SetSize(1));
        EXPECT_EQ(array.At(0)[0][0], 1);
        EXPECT_TRUE(array.Add(one));
        EXPECT_EQ(array.At(1)[0][0], 1);
        EXPECT_TRUE(array.SetSize(1));
    }
}

TEST(InstanceArrayMemory, the_largest_size_has_a_last_element_and_takes_no_more) {
    if (address_sanitizer)
        GTEST_SKIP() << "the sanitizer keeps a shadow of 4 GiB and more";

    constexpr VtLong largest = std::numeric_limits<VtLong>::max();
    VtInstanceArray<signed char> array;
    ASSERT_TRUE(array.SetSize(largest));
    array.Store(largest - 1, 5);
    EXPECT_EQ(array.At(largest - 1), 5);
    EXPECT_EQ(array.At(largest - 2), 0);

    EXPECT_FALSE(array.Add(7));
    EXPECT_EQ(array.Size(), largest);
    EXPECT_EQ(array.At(largest - 1), 5);
}

TEST(InstanceArrayMemory, two_blocks_may_have_more_slots_than_the_largest_size) {
    if (address_sanitizer)
        GTEST_SKIP() << "the sanitizer keeps a shadow of 4 GiB and more";

    constexpr VtLong largest = std::numeric_limits<VtLong>::max();
    VtInstanceArray<signed char> array;
    ASSERT_TRUE(array.SetSize(largest - 1));
    ASSERT_TRUE(array.Add(7));
    EXPECT_EQ(block_count(array), 2);
    EXPECT_EQ(array.Size(), largest);
    EXPECT_EQ(array.At(largest - 1), 7);
    EXPECT_TRUE(array.SetSize(largest - 1));
    EXPECT_EQ(block_count(array), 1);
}

} // namespace
