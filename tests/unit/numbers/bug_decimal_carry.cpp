// Long decimal texts are read in two halves. When their sum is one limb longer than the upper part alone, the
// carry was lost: 2^1536 was read as 0.
#include "numbers/decimal.h"
#include "tests/support/support.h"

#include <string>
#include <vector>
using namespace tolvex;

namespace {
/// a[0..n) as decimal text, and that text read back.
std::vector<limb> there_and_back(std::vector<limb> a) {
    auto n = static_cast<int64_t>(a.size());
    std::vector<char> text(static_cast<size_t>(text_room(n)));
    int64_t count = limbs_to_text(text.data(), a.data(), n);
    std::vector<limb> r(static_cast<size_t>(limbs_for_digits(count)));
    r.resize(static_cast<size_t>(limbs_from_text(r.data(), text.data(), count)));
    return r;
}
}  // namespace

TEST(DecimalCarry, PowersOf264AndTheirNeighbours) {
    tolvex::test::set_up_once();
    for (size_t n = 1; n <= 400; n++) {
        std::vector<limb> power(n + 1, 0), below(n, ~limb{0}), above(power);
        power[n] = 1;
        above[n] = above[0] = 1;
        ASSERT_EQ(there_and_back(power), power) << n;
        ASSERT_EQ(there_and_back(below), below) << n;
        ASSERT_EQ(there_and_back(above), above) << n;
    }
}
