#include "poly/div_rounds.h"

#include "numbers/num_assign.h"
#include "numbers/num_compare.h"
#include "numbers/num_divide.h"
#include "numbers/primes.h"
#include "numbers/residue.h"
#include "poly/div_field.h"
#include "poly/div_trial.h"
#include "poly/evaluate.h"
#include "poly/poly_basic.h"
#include "poly/poly_test.h"
#include "poly/size_estimates.h"
#include "poly/word_field.h"
#include "storage/interrupt.h"
#include "storage/scratch.h"
namespace tolvex {
// An entry of the list of random points.
static int32_t random_point(int32_t k) {
    return global_list[(3 * k + static_cast<int32_t>(wf_random_below(3))) % k_global_list];
}

// Puts the value in front of the list: the next level up.
static void push_value(polyptrr values, int32_t value) {
    poly node;
    newpoly(&node);
    init_poly_node(node);
    setvalue(value, node->ncoef);
    node->next = *values;
    *values = node;
}

// ---- integer values ------------------------------------------------------------------------------------

static bool tells_nothing(const number* value) {
    constexpr int32_t k_useless = 39;
    return value->size == 1 && value->head->value >= -k_useless && value->head->value <= k_useless;
}

bool fast_test_rat(int32_t i, poly n, poly m, int32_t levels, bool first, bool* works) {
    constexpr int32_t k_small_values = 23;
    poly values = nullptr;
    for (int32_t level = levels; level >= 1; level--) {
        int32_t value = random_point(level + i);
        push_value(&values, first ? 2 + value % k_small_values : value);
    }
    number at_m = {}, at_n = {}, rest = {};
    rat_all_poly_eval(m, values, &at_m);
    *works = !tells_nothing(&at_m);
    bool divides = true;
    if (*works) {
        rat_all_poly_eval(n, values, &at_n);
        *works = !iszero(&at_n);
        trunc_divide(&at_n, &at_m, nullptr, &rest);
        divides = iszero(&rest);
    }
    special_free(&at_m);
    special_free(&at_n);
    special_free(&rest);
    free_poly(&values);
    return divides;
}

// ---- images in the main variable -----------------------------------------------------------------------

// Points for the levels below the main variable; with many levels the deepest are 0.
static poly draw_points(int32_t i, int32_t levels) {
    constexpr int32_t k_all_levels = 6, k_least_prime = 181;
    int32_t drawn = levels > k_all_levels ? (3 * levels + 3) / 4 : levels;
    poly values = nullptr;
    for (int32_t j = levels; j >= 1; j--) {
        int32_t value = 0;
        if (j <= drawn && lintmode)
            value = residue_of_int(random_point(i + j));
        else if (j <= drawn)
            value = maxx(1, random_point(i + j) % k_least_prime);
        push_value(&values, value);
    }
    return values;
}

static bool keeps_degree(poly p, poly values, polyptrr image) {
    all_poly_eval(&p, values, image, 2);
    return (*image)->exp == p->exp;
}

static bool image_divides(poly n, poly m, polypt pt) {
    if (!modularmode) return trial_poly_divide_noq(n, m, pt, 0, 0);
    poly rest = nullptr;
    poly_div_no_q(n, m, &rest, pt);
    bool divides = poly_iszero(rest);
    free_poly(&rest);
    return divides;
}

// The slow form of a round.
static Rounds image_round(int32_t i, poly n, poly m, int32_t levels, polypt pt) {
    poly values = draw_points(i, levels), image_n = nullptr, image_m = nullptr;
    Rounds verdict = Rounds::undecided;
    if (keeps_degree(m, values, &image_m) && keeps_degree(n, values, &image_n))
        verdict = image_divides(image_n, image_m, pt) ? Rounds::yes : Rounds::no;
    free_poly(&values);
    free_poly(&image_n);
    free_poly(&image_m);
    return verdict;
}

// ---- images in the other variables ---------------------------------------------------------------------
// Modulo a prime a factor of m that is free of the main variable is a unit in every image in it: it shows in
// an image in a variable of its own.

namespace {
/// An image in the variable `kept`: all other levels have values.
struct LevelImage {
    WordField f;
    const uint32_t* point;  // by level, 0: the main variable
    int32_t kept;
    uint32_t* at;  // by exponent
};
}  // namespace

// Adds scale times the image of p, whose top is `level`.
static void add_image(const LevelImage& image, const polynode* p, int32_t level, uint32_t scale) {
    poll_interrupt();
    for (; p != nullptr; p = p->next) {
        auto e = static_cast<uint64_t>(p->exp);
        uint32_t s = scale;
        LevelImage below = image;
        if (level == image.kept)
            below.at += p->exp;
        else if (e != 0)
            s = wf_mul(image.f, s, wf_power(image.f, image.point[level], e));
        if (p->numb)
            *below.at = wf_add(image.f, *below.at, wf_mul(image.f, s, wf_of_number(image.f, p->ncoef)));
        else
            add_image(below, p->pcoef, level + 1, s);
    }
}

static int32_t degree_in(const polynode* p, int32_t level) {
    int32_t degree = 0;
    max_degree(p, level + 1, &degree);
    return degree;
}

static bool level_image_divides(poly n, poly m, int32_t level, const uint32_t* point) {
    constexpr int32_t k_longest = 1 << 20;
    int32_t dm = degree_in(m, level), dn = degree_in(n, level);
    if (dm == 0 || dn > k_longest) return true;
    if (dm > dn) return false;
    ScratchMark mark = scratch_mark();
    LevelImage image = {word_field_ring(), point, level, nullptr};
    auto* x = scratch_array<uint32_t>(int64_t{dn} + 1);
    auto* y = scratch_array<uint32_t>(int64_t{dm} + 1);
    scratch_clear(x, static_cast<size_t>(dn + 1) * sizeof(uint32_t));
    scratch_clear(y, static_cast<size_t>(dm + 1) * sizeof(uint32_t));
    image.at = x;
    add_image(image, n, 0, 1);
    image.at = y;
    add_image(image, m, 0, 1);
    dn = wf_degree(x, dn);
    dm = wf_degree(y, dm);
    bool divides = dm < 0 || wf_mod(image.f, x, dn, y, dm, wf_inverse(image.f, y[dm])) < 0;
    scratch_release(mark);
    return divides;
}

static bool images_in_levels_divide(poly n, poly m, int32_t levels, int32_t levels_of_m) {
    uint32_t point[k_levels];
    WordField f = word_field_ring();
    for (int32_t k = 0; k <= levels; k++) point[k] = wf_random_unit(f);
    for (int32_t level = 1; level <= levels_of_m; level++)
        if (!level_image_divides(n, m, level, point)) return false;
    return true;
}

// ---- rounds --------------------------------------------------------------------------------------------

// How many rounds the operands are worth.
static int32_t count_rounds(poly n, poly m, int32_t levels) {
    if (levels < 2) return 0;
    int32_t nodes = node_total(n) + node_total(m), rounds;
    if (fast_poly_length(n, 10) + fast_poly_length(m, 10) < 14)
        rounds = nodes > 17 ? 4 : 3;
    else
        rounds = nodes > 34 ? 5 : 4;
    return modularmode ? minn(modulus - 1, rounds) : rounds;
}

// Integer values in front of the images: a round of many levels is over when both have worked.
static Rounds one_round(int32_t i, poly n, poly m, int32_t levels, int32_t lev_m, polypt pt) {
    constexpr int32_t k_values_from = 3, k_values_suffice = 5;
    if (!lintmode && levels >= k_values_from && field_depth == 0) {
        bool first_works, second_works;
        if (!fast_test_rat(i, n, m, levels + 1, true, &first_works) && first_works) return Rounds::no;
        if (!fast_test_rat(i, n, m, levels + 1, false, &second_works) && second_works) return Rounds::no;
        if (try_rat && levels >= k_values_suffice && lev_m >= 2 && first_works && second_works)
            return Rounds::yes;
    }
    return image_round(i, n, m, levels, pt);
}

Rounds divides_at_points(poly n, poly m, polypt pt) {
    int32_t lev_m = quick_depth_below(m, pt->depth), lev_n = quick_depth_below(n, pt->depth);
    if (lev_n < lev_m) return Rounds::no;
    Rounds verdict = Rounds::undecided;
    int32_t rounds = count_rounds(n, m, lev_n);
    for (int32_t i = 1; i <= rounds; i++) {
        poll_interrupt();
        Rounds round = one_round(i, n, m, lev_n, lev_m, pt);
        if (round == Rounds::no) return round;
        if (round == Rounds::yes) verdict = round;
    }
    if (verdict == Rounds::yes && modularmode && !images_in_levels_divide(n, m, lev_n, lev_m))
        return Rounds::no;
    return verdict;
}
}  // namespace tolvex
