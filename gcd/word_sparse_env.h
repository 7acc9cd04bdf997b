#pragma once
/// gcd/word_sparse_env.h: what the steps of gcd_of_few_terms share. Private to gcd/.
///
/// Purpose    one record for the steps: reading the operands, choosing weights, images at points, recovering
///            the terms.
/// Ownership  arrays stand in scratch memory of gcd_of_few_terms.
#include "gcd/word_gcd.h"
#include "gcd/word_recurrence.h"
namespace tolvex {
inline constexpr int32_t k_plan_levels = 62;             // a plan has no more: every radix is at least 2
inline constexpr uint32_t k_halving_prime = 2013265921;  // 15 * 2^27 + 1: exponents are found bit by bit
inline constexpr int64_t k_halving_box = int64_t{1} << 27;

/// One operand, its terms ordered by their degree in t.
struct SparseOperand {
    int64_t count;
    const number** leaf;
    int32_t* exponent;              // row i: exponents of term i by plan level, from the operand's lowest
    int32_t degree;                 // in t, counted from the lowest
    int64_t* start;                 // terms start[d]..start[d+1]-1 have degree d
    uint32_t* coefficient;          // modulo the prime in use
    uint32_t *value, *step, *wide;  // at the point in use; the ratio to the next point; its fixed quotient
    uint32_t* image;                // the polynomial in t at the point; degree + 1 entries
};
/// One computation.
struct SparseEnv {
    WordGcdEnv* env;
    PackPlan plan;
    SparseOperand op[2];
    int32_t weight[k_plan_levels];  // x_i becomes x_i t^weight
    int32_t lead[k_plan_levels];   // exponents of the monomial that the image's leading coefficient is set to
    int32_t hub;                   // level of weight 1 or -1 that is set to 1: its exponent follows from t's
    int64_t radix[k_plan_levels];  // exponents that are looked for lie below it
    int64_t place[k_plan_levels];  // weight of a level in the box of its group, 0: not looked for
    int32_t group[k_plan_levels];  // groups of levels whose box the field can number
    int32_t groups;
    int64_t box;  // the widest
    int64_t most_points;
    uint32_t point[k_plan_levels], ratio[k_plan_levels];                // the points are point * ratio^j
    uint32_t *point_power[k_plan_levels], *ratio_power[k_plan_levels];  // nil: no table
    uint32_t monomial_value, monomial_step;                             // of `lead`
    int32_t degree;      // of the gcd in t: the least that an image had
    uint32_t* sequence;  // row k: coefficient of t^k at the points
    number lead_gcd;     // over Z: what the leading number of the gcd divides
    bool known;          // the terms are known:
    int64_t terms;
    int64_t* first;          // terms first[k]..first[k+1]-1 belong to t^k
    int32_t* exponent;       // rows
    int64_t *index, *order;  // falling in the plan; term of each place
    int32_t longest;         // terms of the longest coefficient
    bool hopeless;
};
/// Reads the operands and chooses weights and groups whose boxes have at most `most` places; false: there are
/// none.
bool sparse_open(SparseEnv& s, int64_t most);
/// The coefficients modulo f.p.
void sparse_load(SparseEnv& s, const WordField& f);
/// A random point and ratios: powers of `base` that tell the places of the one group apart, or random.
void sparse_box_point(SparseEnv& s, const WordField& f, uint32_t base);
void sparse_free_point(SparseEnv& s, const WordField& f);
/// Multiplies the point by base^place in the levels of a group.
void sparse_shift_point(SparseEnv& s, const WordField& f, int32_t group, uint32_t base);
/// The values of all terms at the first point.
void sparse_start(SparseEnv& s, const WordField& f);
/// On to the next point.
void sparse_advance(SparseEnv& s, const WordField& f);
/// The monic gcd in t at the point; returns its degree, -1 for a bad point.
int32_t sparse_image(SparseEnv& s, const WordField& f, uint32_t** g);
/// The values of the monomial with these exponents (the hub left out) at the first point and at the ratios.
void sparse_monomial(const SparseEnv& s, const WordField& f, const int32_t* exponent, uint32_t* start,
                     uint32_t* ratio);
}  // namespace tolvex
