// The gcd over Z from images modulo the primes of the tables. The combined value grows in mixed radix,
//     value = d_1 + p_1 (d_2 + p_2 (d_3 + ...)),   |d_k| < p_k / 2,
// (Garner; Knuth, The Art of Computer Programming 2, 4.3.2), and is at each step the symmetric residue modulo
// the product of the primes: a digit 0 means that one more prime has changed nothing.
#include "gcd/basic_mod_method.h"

#include "gcd/engines.h"
#include "gcd/gcd_modes.h"
#include "gcd/num_content.h"
#include "gcd/polygcd.h"
#include "numbers/num_assign.h"
#include "numbers/num_compare.h"
#include "numbers/num_divide.h"
#include "numbers/num_gcd.h"
#include "numbers/num_mult.h"
#include "numbers/num_shift.h"
#include "numbers/num_sign.h"
#include "numbers/primes.h"
#include "numbers/residue.h"
#include "numbers/ring_switch.h"
#include "poly/div_general.h"
#include "poly/div_trial.h"
#include "poly/field_shape.h"
#include "poly/poly_add.h"
#include "poly/poly_basic.h"
#include "poly/poly_convert.h"
#include "poly/poly_monic.h"
#include "poly/poly_scale.h"
#include "poly/poly_shape.h"
#include "poly/poly_test.h"
#include "poly/size_estimates.h"
#include "poly/word_field.h"
#include "storage/interrupt.h"
#include "storage/progress.h"

#include <cstdio>
namespace tolvex {
int32_t select_prime(poly x, poly y, int32_t buffer, int32_t rand_mod, int32_t prmesize, const number* prme) {
    const number *a = leading_coef(x)->ncoef, *b = leading_coef(y)->ncoef;
    int32_t start =
        prmesize - buffer - static_cast<int32_t>(wf_random_below(static_cast<uint32_t>(rand_mod)));
    int32_t i = minn(maxx(start, 1), prmesize);
    for (; i <= prmesize; i++) {
        auto p = static_cast<uint32_t>(prme[i - 1].lint);
        if (chain_mod_word(a, p) != 0 && chain_mod_word(b, p) != 0) break;
    }
    return i;
}

namespace {
/// What the images have given so far.
struct basic_mod_method_EnvRec {
    poly x, y;
    polypt pt;
    number lc;             // gcd of the leading numbers, forced onto every image
    number twice_lc;       // 2 |lc|
    number prod;           // product of the primes in val
    poly val;              // the combined value, symmetric modulo prod; nil: no image yet
    int32_t max_coef_val;  // bits of the largest coefficient of x, y
    int32_t i, initial_i;  // positions of the prime, and of the first one of this combination
    boolean done;          // val is the result
};
enum class Image { bad, coprime, higher, lower, same };
}  // namespace

// The prime at a position of the two tables in a row; 0 beyond them.
static int32_t prime_at(int32_t position) {
    if (position <= k_primes) return prime[position - 1].lint;
    position -= k_primes;
    return position <= k_big_primes ? big_prime[position - 1] : 0;
}

// Compares the leading monomials, the main variable first: below, equal to or above 0 as a's is smaller or
// larger.
static int32_t compare_leading_monomials(const polynode* a, const polynode* b) {
    while (!a->numb || !b->numb) {
        if (a->exp != b->exp) return a->exp < b->exp ? -1 : 1;
        if (!a->numb) a = a->pcoef;
        if (!b->numb) b = b->pcoef;
    }
    return 0;
}

static void alert(const char* text, int32_t p, int32_t degree, int32_t first_degree) {
    if (verbose && windy) printf(text, p, degree, first_degree);
}

// In the ring of p: the image gcd with leading number lc, in *image. False: p is no good.
static bool image_gcd(const basic_mod_method_EnvRec& env, int32_t lc, polyptrr image) {
    poly x = nullptr, y = nullptr;
    poly_image(env.x, &x);
    poly_image(env.y, &y);
    bool good = lc != 0 && x->exp >= env.x->exp && y->exp >= env.y->exp;
    if (good) {
        GcdCounters counters = gcd_counters_save();
        lookupgcd = -1000;
        polygcd(x, y, image, 0, 1, 1, env.pt, 1, 1, 1);
        gcd_counters_restore(counters);
        monic_poly(image);
        mod_num_poly_mult(image, lc);
    }
    free_poly(&x);
    free_poly(&y);
    return good;
}

// In the ring of p: the combined value modulo p.
static poly Chinese(const polynode* val) {
    poly image = nullptr;
    poly_image(val, &image);
    return image;
}

// In the ring of p: *image := the next digit, the difference to the combined value divided by the product of
// the earlier primes.
static void next_digit(const basic_mod_method_EnvRec& env, int32_t p, polyptrr image) {
    best_poly_sub(*image, Chinese(env.val), image);
    mod_num_poly_mult(
        image, imod_inverse(static_cast<int32_t>(chain_mod_word(&env.prod, static_cast<uint32_t>(p)))));
}

// The image modulo p. On `same` *digit is the next digit, or the whole image where it is the first one; on
// `lower` the whole image.
static Image take_image(basic_mod_method_EnvRec& env, int32_t p, polyptrr digit) {
    auto lc = static_cast<int32_t>(chain_mod_word(&env.lc, static_cast<uint32_t>(p)));
    RingState ring = ring_save();
    ring_enter_prime(p);
    Image kind = Image::same;
    if (!image_gcd(env, lc, digit))
        kind = Image::bad;
    else if (is_number(*digit))
        kind = Image::coprime;
    else if (env.val != nullptr) {
        int32_t order = compare_leading_monomials(*digit, env.val);
        kind = order > 0 ? Image::higher : order < 0 ? Image::lower : Image::same;
        int32_t degree = (*digit)->exp, first_degree = env.val->exp;
        if (degree > first_degree)
            alert(" *** Alert. spurious factor in gcd. %d, %d, %d\n", p, degree, first_degree);
        if (degree < first_degree)
            alert(" *** ALERT. spurious first factor in gcd. %d, %d, %d\n", p, degree, first_degree);
        if (kind == Image::same) next_digit(env, p, digit);
    }
    if (kind == Image::same || kind == Image::lower)
        poly_change_from_mod_symmetric(digit);
    else
        free_poly(digit);
    ring_restore(ring);
    return kind;
}

// The first image is the gcd itself if that has small coefficients: divided by its content c it must divide
// both operands. c: 1 if lc is 1.
static bool first_image_wins(basic_mod_method_EnvRec& env, int32_t p) {
    number bound = {}, c = {};
    setvalue(p, &bound);
    bool small = bigger(&bound, &env.twice_lc);
    special_free(&bound);
    if (!small) return false;
    setvalue(1, &c);
    if (!is_longint(&env.lc, 1)) find_gcdcoefs(env.val, &c);
    num_poly_quot(&env.val, &c, 0);
    bool wins = trial_poly_divide_noq(env.x, env.val, env.pt, 1, 1) &&
                trial_poly_divide_noq(env.y, env.val, env.pt, 1, 1);
    if (!wins) num_poly_mult(&env.val, &c);
    special_free(&c);
    return wins;
}

static void start_combination(basic_mod_method_EnvRec& env, int32_t p, poly image) {
    free_poly(&env.val);
    env.val = image;
    setvalue(1, &env.prod);
    env.initial_i = env.i;
    env.done = first_image_wins(env, p);
}

// The same symmetric values before and after the last prime, which had the chance to correct the leading
// number: the result, unproved.
static bool check_equivalent(const basic_mod_method_EnvRec& env, const polynode* digit) {
    return poly_iszero(digit) && bigger(&env.prod, &env.twice_lc);
}

static void add_digit(basic_mod_method_EnvRec& env, poly digit) {
    if (check_equivalent(env, digit)) {
        number c = {};
        find_gcdcoefs(env.val, &c);
        num_poly_quot(&env.val, &c, 0);
        special_free(&c);
        free_poly(&digit);
        gcd_unproved = 1;
        env.done = 1;
        return;
    }
    num_poly_mult(&digit, &env.prod);
    best_poly_add(env.val, digit, &env.val);
}

// Brings in the prime at position i.
static void use_prime(basic_mod_method_EnvRec& env, int32_t p) {
    poly digit = nullptr;
    switch (take_image(env, p, &digit)) {
    case Image::bad:
    case Image::higher:
        return;
    case Image::coprime:  // p keeps the leading numbers: no larger gcd can hide behind this image
        free_poly(&env.val);
        poly_set(1, &env.val);
        env.done = 1;
        return;
    case Image::lower:
        start_combination(env, p, digit);
        break;
    case Image::same:
        if (env.val == nullptr)
            start_combination(env, p, digit);
        else
            add_digit(env, digit);
        break;
    }
    number factor = {};
    setvalue(p, &factor);
    fast_mult(&env.prod, &factor, &env.prod);
    special_free(&factor);
}

// The product is far beyond any coefficient, and the images have not settled.
static bool hopeless(const basic_mod_method_EnvRec& env) {
    return env.i - env.initial_i > 10 && logg2(&env.prod) > 4 * int64_t{env.max_coef_val};
}

static void set_up(basic_mod_method_EnvRec& env) {
    number a = {}, b = {};
    abs_val_num(leading_coef(env.x)->ncoef, &a);
    abs_val_num(leading_coef(env.y)->ncoef, &b);
    binary_gcd(&a, &b, &env.lc);
    special_free(&a);
    special_free(&b);
    fast_mult(&env.lc, &number_2, &env.twice_lc);
    setvalue(1, &env.prod);
    env.max_coef_val = maxx(max_digits(env.x), max_digits(env.y));
    env.i = env.initial_i = select_prime(env.x, env.y, 530, 64, k_primes, prime);
}

void basic_mod_method(poly x, poly y, polyptrr r, boolean* success, polypt pt) {
    *success = 0;
    if (field_depth != 0 && !both_above_field_depth(x, y, pt->depth)) return;
    basic_mod_method_EnvRec env = {};
    env.x = x;
    env.y = y;
    env.pt = pt;
    set_up(env);
    for (int32_t p; !env.done && !hopeless(env) && (p = prime_at(env.i)) != 0; env.i++) {
        poll_interrupt();
        use_prime(env, p);
    }
    *success = env.done;
    if (env.done) {
        free_poly(r);
        *r = env.val;
        env.val = nullptr;
    }
    free_poly(&env.val);
    special_free(&env.lc);
    special_free(&env.twice_lc);
    special_free(&env.prod);
}
}  // namespace tolvex
