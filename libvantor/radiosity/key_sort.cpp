// Sorting by keys, in a time that grows with the number of elements only.
#include "libvantor/radiosity/key_sort.h"

#include <algorithm>
#include <numeric>

namespace vantor {

// Many elements are sorted from the lowest digit to the highest: Knuth, "The Art of Computer Programming", 5.2.5.
void sort_by_key(std::vector<Keyed> &elements, int key_bits, const Interrupt &interrupt) {
    constexpr int digit_bits = 11;
    constexpr std::size_t digits = std::size_t{1} << digit_bits;
    if (elements.size() < digits) {
        std::ranges::stable_sort(elements, {}, &Keyed::key);
        return;
    }
    std::vector<Keyed> sorted(elements.size());
    for (int shift = 0; shift < key_bits; shift += digit_bits) {
        const auto digit_of = [&](const Keyed &e) { return e.key >> shift & (digits - 1); };
        std::vector<std::size_t> ends(digits);
        for (const Keyed &element : elements)
            ++ends[digit_of(element)];
        std::exclusive_scan(ends.begin(), ends.end(), ends.begin(), std::size_t{0});
        for (std::size_t i = 0; i < elements.size(); ++i) {
            if (i % 65536 == 0)
                interrupt.check();
            sorted[ends[digit_of(elements[i])]++] = elements[i];
        }
        elements.swap(sorted);
    }
}

} // namespace vantor
