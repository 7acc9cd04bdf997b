// Exponential sums are taken apart into the exponents and coefficients they were made of.
#include "gcd/word_recurrence.h"
#include "storage/scratch.h"
#include "tests/support/random_poly.h"

#include <algorithm>
#include <map>
#include <vector>
using namespace tolvex;
using namespace tolvex::test;
namespace {
constexpr int32_t k_most = 40;

WordField field_of(int round) {
    const uint32_t primes[] = {2013265921, 2147483629, 32003, 65537};
    const Ring small[] = {{65536, true, ""}, {256, true, ""}, {2, false, ""},
                          {3, false, ""},    {23, false, ""}, {997, false, ""}};
    use_integers();
    if (round % 5 < 4) return word_field_prime(primes[round % 5]);
    use_ring(small[round / 5 % 6]);
    return word_field_enlarged();
}

/// A sum of t terms c base^(e j), its recurrence and what is found again.
struct Sum {
    std::map<int64_t, uint32_t> terms;
    std::vector<uint32_t> values;
    Sum(Rng& rng, const WordField& f, uint32_t base, int64_t limit, size_t t) {
        while (terms.size() < t)
            terms[static_cast<int64_t>(rng() % static_cast<uint64_t>(limit))] = wf_random_unit(f);
        for (size_t j = 0; j < 2 * t + 2; j++) {
            uint32_t a = 0;
            for (auto [e, c] : terms)
                a = wf_add(f, a, wf_mul(f, c, wf_power(f, base, static_cast<uint64_t>(e) * j)));
            values.push_back(a);
        }
    }
};
}  // namespace

PROPERTY(exponential_sums_are_taken_apart, 300) {
    WordField f = field_of(round);
    ScratchMark mark = scratch_mark();
    PowerBase base;
    int64_t limit = random_int(rng, 50, static_cast<int32_t>(std::min(f.p - 1, 20000u)));
    ASSERT_TRUE(power_base_open(f, limit, round % 3 != 0, &base));
    auto t = static_cast<int32_t>(random_int(rng, 1, 15));
    Sum s(rng, f, base.base, limit, static_cast<size_t>(t));
    Recurrence r;
    recurrence_open(&r, k_most);
    for (int32_t n = 0; n < 2 * t + 2; n++) {
        ASSERT_TRUE(recurrence_add(f, &r, s.values.data(), n, k_most));
        if (n >= 2 * t - 1) {  // what follows is predicted
            EXPECT_EQ(r.length, t);
        }
    }
    ASSERT_EQ(r.length, t);
    std::vector<uint32_t> p(static_cast<size_t>(t) + 1), root(static_cast<size_t>(t)),
        c(static_cast<size_t>(t));
    for (int32_t i = 0; i <= t; i++) p[static_cast<size_t>(t - i)] = r.c[i];
    ASSERT_TRUE(field_roots(f, base, p.data(), t, root.data()));
    ASSERT_TRUE(exponential_sum(f, root.data(), s.values.data(), t, c.data()));
    std::map<int64_t, uint32_t> found;
    for (size_t i = 0; i < root.size(); i++) found[power_log(f, &base, root[i])] = c[i];
    EXPECT_EQ(found, s.terms) << "field of " << f.p << ", limit " << limit << ", terms " << t;
    scratch_release(mark);
    use_integers();
}

// Polynomials without as many roots in the field: irreducible ones of degree 2, squares.
PROPERTY(what_does_not_split_is_refused, 60) {
    WordField f = field_of(round);
    ScratchMark mark = scratch_mark();
    PowerBase base;
    ASSERT_TRUE(power_base_open(f, 40, false, &base));
    uint32_t a = wf_random_unit(f), b = wf_random_unit(f), root[2];
    uint32_t twice[] = {wf_mul(f, a, a), wf_neg(f, wf_add(f, a, a)), 1};
    EXPECT_FALSE(field_roots(f, base, twice, 2, root));
    uint32_t p[] = {a, b, 1};  // z^2 + b z + a
    if (field_roots(f, base, p, 2, root)) {
        EXPECT_EQ(wf_value(f, p, 2, root[0]), 0u);
        EXPECT_EQ(wf_value(f, p, 2, root[1]), 0u);
    } else if (f.p < 70000) {
        int roots = 0;
        for (uint32_t x = 0; x < f.p; x++) roots += wf_value(f, p, 2, x) == 0;
        EXPECT_LT(roots, 2);
    }
    scratch_release(mark);
    use_integers();
}

TEST(WordRecurrence, refuses_what_it_cannot_hold) {
    set_up_once();
    WordField f = word_field_prime(32003);
    ScratchMark mark = scratch_mark();
    PowerBase base;
    EXPECT_FALSE(power_base_open(f, 40000, false, &base));
    Recurrence r;
    recurrence_open(&r, 2);
    const uint32_t a[] = {1, 5, 3, 17, 100, 7, 9, 2};  // of no short recurrence
    bool fits = true;
    for (int32_t n = 0; n < 8 && fits; n++) fits = recurrence_add(f, &r, a, n, 2);
    EXPECT_FALSE(fits);
    ASSERT_TRUE(power_base_open(f, 1000, false, &base));
    const uint32_t irreducible[] = {2, 0, 1};  // z^2 + 2
    uint32_t root[2];
    bool square = wf_power(f, wf_neg(f, 2), (f.p - 1) / 2) == 1;
    EXPECT_EQ(field_roots(f, base, irreducible, 2, root), square);
    const uint32_t twice[] = {1, f.p - 2, 1};  // (z - 1)^2
    EXPECT_FALSE(field_roots(f, base, twice, 2, root));
    const uint32_t same[] = {5, 5}, values[] = {1, 2};
    uint32_t c[2];
    EXPECT_FALSE(exponential_sum(f, same, values, 2, c));
    scratch_release(mark);
}
