// Sorting in pieces that are merged: the same order as the library's, at every length around the piece.
#include "storage/polled_sort.h"
#include "tests/support/support.h"

#include <algorithm>
#include <vector>
using namespace tolvex;

namespace {
struct Item {
    int32_t key, place;
};
}  // namespace

PROPERTY(polled_sort_agrees_with_the_library, 3) {
    constexpr int64_t k = k_sorted_unpolled;
    for (int64_t n :
         {int64_t{0}, int64_t{1}, k - 1, k, k + 1, 2 * k, 2 * k + 1, 3 * k + 17, 5 * k - 1, 8 * k}) {
        std::vector<Item> a(static_cast<size_t>(n));
        for (size_t i = 0; i < a.size(); i++)
            a[i] = {static_cast<int32_t>(rng() % 1000), static_cast<int32_t>(i)};
        auto less = [](const Item& x, const Item& y) {
            return x.key != y.key ? x.key < y.key : x.place < y.place;
        };
        std::vector<Item> expected = a;
        std::sort(expected.begin(), expected.end(), less);
        ScratchMark mark = scratch_mark();
        polled_sort(a.data(), n, less);
        scratch_release(mark);
        for (size_t i = 0; i < a.size(); i++) {
            ASSERT_EQ(a[i].key, expected[i].key) << n << " at " << i;
            ASSERT_EQ(a[i].place, expected[i].place) << n << " at " << i;
        }
    }
}
