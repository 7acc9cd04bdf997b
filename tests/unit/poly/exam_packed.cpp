// Terms as arrays: what a walk measures against each term by itself, and trees packed and written again.
#include "numbers/num_assign.h"
#include "poly/packed.h"
#include "poly/poly_basic.h"
#include "poly/poly_modes.h"
#include "poly/poly_test.h"
#include "storage/scratch.h"
#include "tests/support/random_poly.h"
#include "tests/support/support.h"

#include <algorithm>
#include <vector>

using namespace tolvex;
using namespace tolvex::test;
namespace {
constexpr int k_polynomials = 40;

/// The exponents of every term, level by level, those below its leaf being 0.
void list_terms(const polynode* p, size_t level, std::vector<int32_t> exps,
                std::vector<std::vector<int32_t>>* terms) {
    for (const polynode* t = p; t != nullptr; t = t->next) {
        if (!is_number(p)) exps[level] = t->exp;
        if (t->numb)
            terms->push_back(exps);
        else
            list_terms(t->pcoef, level + 1, exps, terms);
    }
}

void expect_measure(const polynode* p, int32_t levels) {
    PackMeasure m;
    pack_measure(p, &m);
    std::vector<std::vector<int32_t>> terms;
    list_terms(p, 0, std::vector<int32_t>(static_cast<size_t>(levels)), &terms);
    EXPECT_EQ(m.terms, static_cast<int64_t>(terms.size()));
    ASSERT_LE(m.levels, levels);
    for (int32_t level = 0; level < levels; level++) {
        int32_t least = terms[0][static_cast<size_t>(level)], most = least;
        for (const auto& t : terms) {
            least = std::min(least, t[static_cast<size_t>(level)]);
            most = std::max(most, t[static_cast<size_t>(level)]);
        }
        EXPECT_EQ(level < m.levels ? m.least[level] : 0, least);
        EXPECT_EQ(level < m.levels ? m.most[level] : 0, most);
    }
}

void leaf_of_leaves(void* terms, int64_t i, imptr leaf) {
    num_assign(static_cast<PackTerms*>(terms)->leaf[i], leaf);
}

void expect_round_trip(const polynode* p) {
    PackMeasure m;
    pack_measure(p, &m);
    PackPlan plan;
    ASSERT_TRUE(pack_plan(m.least, m.most, m.levels, &plan));
    ScratchMark mark = scratch_mark();
    PackTerms terms = pack_leaves(p, plan, nullptr, m.terms);
    EXPECT_EQ(terms.count, m.terms);
    for (int64_t i = 1; i < terms.count; i++) EXPECT_LT(terms.index[i], terms.index[i - 1]);
    poly again = pack_tree(plan, nullptr, terms.index, terms.count, leaf_of_leaves, &terms);
    EXPECT_TRUE(poly_equal(p, again)) << text_of(p) << "\n" << text_of(again);
    free_poly(&again);
    scratch_release(mark);
}

/// Terms of up to five variables in the ring in force.
void try_polynomials(Rng& rng, int32_t least_exp) {
    for (int k = 0; k < k_polynomials; k++) {
        int32_t levels = random_int(rng, 1, 5);
        poly p = random_nonzero_poly(rng, {levels, 30, 9, Coefs::two_digits, least_exp});
        expect_measure(p, levels);
        expect_round_trip(p);
        free_poly(&p);
    }
}

PROPERTY(PackedTermsInEveryRing, 3) {
    for (int i = 0; i < all_ring_count; i++) {
        use_ring(all_rings[i]);
        try_polynomials(rng, 0);
    }
    use_integers();
}

PROPERTY(PackedTermsWithNegativeExponents, 3) {
    use_integers();
    laurent = 1;
    try_polynomials(rng, -7);
    laurent = 0;
}
}  // namespace
