// Sizes weighted by degrees and levels, and sizes in bytes.
#include "numbers/num_shift.h"
#include "numbers/residue.h"
#include "poly/field_shape.h"
#include "poly/poly_test.h"
#include "poly/size_estimates.h"
namespace tolvex {
static int64_t number_mass_of(const polynode* leaf) { return lintmode ? 1 : leaf->ncoef->size; }

static int64_t at_most(int64_t x, int64_t cap) { return x > cap ? cap : x; }

/// What the three weighted masses differ in.
struct MassRule {
    int64_t cap;
    bool halved;     // (e + 1) / 2 in place of e
    int64_t a_term;  // added for each term
};

/// Every factor is below 2^31 and every mass at most the cap of 2^30; the weight is capped before it meets
/// the mass, so that no product leaves 64 bits.
static int64_t weighted(const polynode* n, int64_t multplier, int64_t depth, const MassRule& rule) {
    int64_t sum = 0;
    for (; n != nullptr && sum < rule.cap; n = n->next) {
        sum += rule.a_term;
        if (n->numb) {
            sum += number_mass_of(n);
        } else if (n->exp == 0) {
            sum += weighted(n->pcoef, multplier, depth, rule);
        } else {
            int64_t e = n->exp < 0 ? -static_cast<int64_t>(n->exp) : n->exp;
            if (rule.halved) e = (e + 1) / 2;
            int64_t weight = at_most(at_most(depth * multplier, rule.cap) * e, rule.cap);
            sum += weight * weighted(n->pcoef, 1, depth + 1, rule);
        }
        multplier = 1;
    }
    return at_most(sum, rule.cap);
}

/// Levels that the monomial p reaches.
static int32_t depth_below(const polynode* p) {
    int32_t levels = 0;
    for (; !p->numb; p = p->pcoef) levels++;
    return levels;
}

int32_t poly_mass(const polynode* n, int32_t multplier, int32_t depth) {
    if (laurent && monomial(n)) return depth_below(n) + 1;
    return static_cast<int32_t>(weighted(n, multplier, depth, {k_mass_cap, false, 0}));
}

int32_t better_poly_mass(const polynode* n, int32_t multplier, int32_t depth) {
    if (laurent && monomial(n)) return depth_below(n) + 1;
    return static_cast<int32_t>(weighted(n, multplier, depth, {k_better_mass_cap, true, 1}));
}

int64_t new_poly_mass(const polynode* n, int32_t depth) {
    return weighted(n, 1, depth, {k_new_mass_cap, false, 0});
}

// ---- bytes ---------------------------------------------------------------------------------------------

static constexpr int64_t k_number_mass = 31, k_digit_mass = 8, k_term_mass = 13;

/// Left as soon as the sum is above limit.
static int64_t mass_up_to(const polynode* n, int64_t limit) {
    int64_t sum = 0;
    for (; n != nullptr && sum <= limit; n = n->next) {
        if (n->numb)
            sum += k_number_mass + (lintmode ? 0 : k_digit_mass * n->ncoef->size);
        else
            sum += k_term_mass + mass_up_to(n->pcoef, limit - sum);
    }
    return sum;
}

int64_t simple_poly_mass(const polynode* n) { return mass_up_to(n, INT64_MAX); }
int32_t very_simple_poly_mass(const polynode* n) {
    return static_cast<int32_t>(at_most(mass_up_to(n, 250), INT32_MAX));
}
int32_t more_simple_poly_mass(const polynode* n) {
    return static_cast<int32_t>(at_most(mass_up_to(n, 350), INT32_MAX));
}

int64_t simple_node_mass(const polynode* n) {
    if (n->numb) return k_number_mass + (lintmode ? 0 : k_digit_mass * n->ncoef->size);
    return k_term_mass + simple_poly_mass(n->pcoef);
}

// ---- degrees as weights, bits --------------------------------------------------------------------------

static int64_t weight_of(const polynode* n, int32_t depth) {
    if (is_number(n) || is_field_element(n, depth)) return 1;
    int64_t sum = 0;
    for (; n != nullptr && sum < k_weight_cap; n = n->next) {
        if (n->numb) continue;  // the constant term: exponent 0
        if (n->exp != 0) {
            int64_t e = n->exp < 0 ? -static_cast<int64_t>(n->exp) : n->exp;
            sum += e * weight_of(n->pcoef, depth + 1);
        } else {
            sum += weight_of(n->pcoef, depth + 1);
        }
    }
    return at_most(sum, k_weight_cap);
}

int32_t poly_weight(const polynode* n, int32_t depth) { return static_cast<int32_t>(weight_of(n, depth)); }

static int32_t bits_of(const number* x) {
    if (!lintmode) {
        int64_t bits = int64_t{k_digit_bits} * (x->size - 1) + word_top_bit(x->head->value) + 1;
        return bits > INT32_MAX ? INT32_MAX : static_cast<int32_t>(bits);
    }
    int64_t v = x->lint;
    if (modularmode && !finf && v > half_modulus) v -= modulus;
    return word_top_bit(v) + 1;
}

int32_t max_digits(const polynode* p) {
    int32_t most = -1;
    for (; p != nullptr; p = p->next) {
        int32_t bits = p->numb ? bits_of(p->ncoef) : max_digits(p->pcoef);
        if (bits > most) most = bits;
    }
    return most;
}
}  // namespace tolvex
