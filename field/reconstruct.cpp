#include "field/reconstruct.h"

#include "field/tower_leaves.h"
#include "numbers/num_divide.h"
#include "storage/interrupt.h"

#include <initializer_list>
namespace tolvex {
static int64_t bits(const number* n) {
    auto head = static_cast<uint32_t>(n->head->value < 0 ? -n->head->value : n->head->value);
    int64_t width = 0;
    for (; head != 0; head >>= 1) width++;
    return int64_t{k_digit_bits} * (n->size - 1) + width;
}

void symmetric_residue(imptr x, const number* m, const number* half) {
    trunc_divide(x, m, nullptr, x);
    if (!int_abs_bigger(x, half, 0)) return;
    if (chain_sign(x) > 0)
        fastdiff(x, m);
    else
        fastsum(x, m);
}

static void halve(const number* m, imptr half) { trunc_divide(m, &number_2, half, nullptr); }

void symmetric_leaves(polyptrr p, const number* m) {
    number half = {};
    halve(m, &half);
    change_leaves(p, [&](imptr x) { symmetric_residue(x, m, &half); });
    special_free(&half);
}

/// b > 0 with b v of about half the length of m modulo m: the cofactor of the Euclidean algorithm where the
/// remainder first is short enough. False: b itself is too long.
static bool denominator_of(const number* v, const number* m, imptr b) {
    const int64_t target = bits(m) / 2;
    number r0 = {}, r1 = {}, s0 = {}, s1 = {}, q = {}, product = {};
    num_assign(m, &r0);
    num_assign(v, &r1);
    special_set(0, &s0);
    special_set(1, &s1);
    while (!iszero(&r1) && bits(&r1) > target - 2) {
        poll_interrupt();
        trunc_divide(&r0, &r1, &q, &r0);
        fast_mult(&q, &s1, &product);
        fastdiff(&s0, &product);
        number t = r0;
        r0 = r1;
        r1 = t;
        t = s0;
        s0 = s1;
        s1 = t;
    }
    bool found = bits(&s1) <= target && !iszero(&s1);
    abs_val_num(&s1, b);
    for (imptr x : {&r0, &r1, &s0, &s1, &q, &product}) special_free(x);
    return found;
}

bool reconstruct_poly(const polynode* y, const number* m, polyptrr numer, imptr denom) {
    const int64_t target = bits(m) / 2;
    number half = {}, d = {}, v = {}, b = {};
    halve(m, &half);
    special_set(1, &d);
    bool found = each_leaf(y, [&](const number* c) {
        fast_mult(c, &d, &v);
        symmetric_residue(&v, m, &half);
        if (bits(&v) < target - 1) return true;
        if (!denominator_of(&v, m, &b)) return false;
        fast_mult(&d, &b, &d);
        return bits(&d) <= target;
    });
    if (found) {
        free_poly(numer);
        poly_assign(y, numer);
        change_leaves(numer, [&](imptr x) {
            fast_mult(x, &d, x);
            symmetric_residue(x, m, &half);
        });
        num_assign(&d, denom);
    }
    for (imptr x : {&half, &d, &v, &b}) special_free(x);
    return found;
}
}  // namespace tolvex
