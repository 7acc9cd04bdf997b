#include "quoly/quoly_rats.h"

#include "numbers/limbs.h"
#include "numbers/num_add.h"
#include "numbers/num_assign.h"
#include "numbers/num_compare.h"
#include "numbers/num_gcd.h"
#include "numbers/num_mult.h"
#include "numbers/num_sign.h"
#include "quoly/quoly_internal.h"
namespace tolvex {
/// A rational operand as two chains; the denominator of a number is nil.
struct Rational {
    const number* n;
    const number* d;
};
static Rational rational_parts(const quolynode* q) {
    if (q->numb) return {q->ncoef, nullptr};
    return {q->numer->ncoef, q->denom->ncoef};
}
static uint64_t magnitude(int64_t v) {
    return v < 0 ? 0 - static_cast<uint64_t>(v) : static_cast<uint64_t>(v);
}

// ---- sums ----------------------------------------------------------------------------------------------

/// Digits are below 2^28, so t is below 2^57 and the denominator below 2^56.
static void add_words(int32_t n1, int32_t d1, int32_t n2, int32_t d2, quolyptr p) {
    auto g = static_cast<int64_t>(word_gcd(static_cast<uint64_t>(d1), static_cast<uint64_t>(d2)));
    int64_t c1 = d1 / g, c2 = d2 / g, t = n1 * c2 + n2 * c1;
    if (t == 0) {
        receive_rational_words(p, 0, 1);
        return;
    }
    auto h = static_cast<int64_t>(g == 1 ? 1 : word_gcd(magnitude(t), static_cast<uint64_t>(g)));
    receive_rational_words(p, t / h, (g / h) * c1 * c2);
}

/// t := a b, or a copy of a for a nil b.
static void times(const number* a, const number* b, imptr t) {
    if (b == nullptr) {
        num_assign(a, t);
    } else {
        fast_mult(a, b, t);
    }
}

/// t := t + s or t - s.
static void combine(imptr t, const number* s, bool subtract) {
    if (subtract) {
        fastdiff(t, s);
    } else {
        fastsum(t, s);
    }
}

/// One of the denominators is missing: no common factor can arise.
static void add_to_integer(Rational a, Rational b, quolyptr p, bool subtract) {
    number top = {}, product = {}, bottom = {};
    times(a.n, b.d, &top);
    times(b.n, a.d, &product);
    combine(&top, &product, subtract);
    special_free(&product);
    num_assign(a.d != nullptr ? a.d : b.d, &bottom);
    receive_rational(p, &top, &bottom);
}

void add_rats(const quolynode* n, const quolynode* m, quolyptr p, bool subtract) {
    int32_t n1, d1, n2, d2;
    if (rational_words(n, &n1, &d1) && rational_words(m, &n2, &d2)) {
        add_words(n1, d1, subtract ? -n2 : n2, d2, p);
        return;
    }
    Rational a = rational_parts(n), b = rational_parts(m);
    if (a.d == nullptr || b.d == nullptr) {
        add_to_integer(a, b, p, subtract);
        return;
    }
    number g = {}, c1 = {}, c2 = {}, top = {}, product = {}, bottom = {};
    boolean coprime = 0;
    extgcd(a.d, b.d, &g, &c1, &c2, &coprime);
    times(a.n, coprime ? b.d : &c2, &top);
    times(b.n, coprime ? a.d : &c1, &product);
    combine(&top, &product, subtract);
    special_free(&product);
    if (iszero(&top)) {
        setvalue(1, &bottom);
    } else if (coprime) {
        fast_mult(a.d, b.d, &bottom);
    } else {
        // Only the gcd of the denominators can still have something in common with the numerator.
        number h = {}, reduced = {}, rest = {};
        boolean done = 0;
        extgcd(&top, &g, &h, &reduced, &rest, &done);
        if (done) {
            fast_mult(a.d, &c2, &bottom);
        } else {
            fast_mult(&c1, &c2, &bottom);
            fast_mult(&bottom, &rest, &bottom);
            special_free(&top);
            top = reduced;
            special_free(&rest);
        }
        special_free(&h);
    }
    special_free(&g);
    special_free(&c1);
    special_free(&c2);
    receive_rational(p, &top, &bottom);
}

// ---- products and quotients ----------------------------------------------------------------------------

/// (n1 n2) / (d1 d2), each pair n1/d1, n2/d2 in lowest terms, d1, d2 not 0.
static void mult_words(int64_t n1, int64_t d1, int64_t n2, int64_t d2, quolyptr p) {
    auto g1 = static_cast<int64_t>(word_gcd(magnitude(n1), magnitude(d2)));
    auto g2 = static_cast<int64_t>(word_gcd(magnitude(n2), magnitude(d1)));
    int64_t top = (n1 / g1) * (n2 / g2), bottom = (d1 / g2) * (d2 / g1);
    receive_rational_words(p, bottom < 0 ? -top : top, bottom < 0 ? -bottom : bottom);
}

/// The same for chains; a nil denominator is 1.
static void mult_parts(Rational a, Rational b, quolyptr p) {
    number top = {}, bottom = {};
    number g = {}, n1 = {}, d2 = {}, n2 = {}, d1 = {};
    if (a.d == nullptr) a.d = &number_1;
    if (b.d == nullptr) b.d = &number_1;
    if (iszero(a.n) || iszero(b.n)) {
        receive_rational_words(p, 0, 1);
        return;
    }
    boolean apart1 = 0, apart2 = 0;
    extgcd(a.n, b.d, &g, &n1, &d2, &apart1);
    extgcd(b.n, a.d, &g, &n2, &d1, &apart2);
    special_free(&g);
    fast_mult(apart1 ? a.n : &n1, apart2 ? b.n : &n2, &top);
    fast_mult(apart2 ? a.d : &d1, apart1 ? b.d : &d2, &bottom);
    special_free(&n1);
    special_free(&d2);
    special_free(&n2);
    special_free(&d1);
    if (chain_sign(&bottom) < 0) {
        in_place_neg(&top);
        in_place_neg(&bottom);
    }
    receive_rational(p, &top, &bottom);
}

void mult_rats(const quolynode* n, const quolynode* m, quolyptr p) {
    int32_t n1, d1, n2, d2;
    if (rational_words(n, &n1, &d1) && rational_words(m, &n2, &d2)) {
        mult_words(n1, d1, n2, d2, p);
    } else {
        mult_parts(rational_parts(n), rational_parts(m), p);
    }
}

void quot_rats(const quolynode* n, const quolynode* m, quolyptr p) {
    int32_t n1, d1, n2, d2;
    if (rational_words(n, &n1, &d1) && rational_words(m, &n2, &d2)) {
        mult_words(n1, d1, d2, n2, p);
        return;
    }
    Rational b = rational_parts(m);
    mult_parts(rational_parts(n), {b.d != nullptr ? b.d : &number_1, b.n}, p);
}
}  // namespace tolvex
