#include "poly/leaf_number.h"
#include "poly/poly_add.h"
#include "poly/poly_basic.h"
#include "poly/poly_laurent.h"
#include "poly/poly_mult_internal.h"
#include "poly/poly_shape.h"
#include "storage/interrupt.h"
#include "storage/scratch.h"
namespace tolvex {
namespace {
/// An operand cut in two: the terms of offset >= e above the lowest exponent, with e taken off, and the rest.
/// The top nodes are copies in scratch memory, the coefficients are the operand's own, which nobody changes.
struct Halves {
    poly high, low;  // nil: empty
};

/// The node t as a node of a shallow chain with the exponent exp; room: two nodes of scratch memory.
poly shallow_node(const polynode* t, int32_t exp, polynode* room) {
    poly c = t->pcoef;
    if (t->numb) {
        room[1] = leaf_alone(t);
        c = &room[1];
    }
    if (exp == 0 && is_number(c)) {
        room[0] = *c;
    } else {
        room[0].exp = exp;
        room[0].numb = 0;
        room[0].pcoef = c;
    }
    room[0].next = nullptr;
    return &room[0];
}

Halves cut(const polynode* p, int32_t size, int32_t last, int32_t e) {
    Halves h = {nullptr, nullptr};
    polyptrr high = &h.high, low = &h.low;
    auto* room = scratch_array<polynode>(2 * static_cast<int64_t>(size));
    for (; p != nullptr; p = p->next, room += 2) {
        int32_t offset = p->exp - last;
        polyptrr& at = offset >= e ? high : low;
        *at = shallow_node(p, offset >= e ? offset - e : offset, room);
        at = &(*at)->next;
    }
    return h;
}

/// Offset of the term at which a chain is cut in the middle.
int32_t middle_offset(const polynode* p, int32_t size, int32_t last) {
    for (int32_t i = size / 2 - 1; i > 0; i--) p = p->next;
    return p->exp - last;
}

/// *sum += part * x^e; part is used up.
void add_shifted(polyptrr sum, poly part, int32_t e) {
    sub_expons(&part, -e);
    best_poly_add(*sum, part, sum);
}

/// n m from four pieces by three products (A. Karatsuba, Yu. Ofman 1962; Knuth, TAOCP 2, 4.3.3).
poly three_products(const Halves& n, const Halves& m, bool square, int32_t e, polypt pol) {
    poly n_sum = nullptr, m_sum = nullptr, middle = nullptr, high = nullptr, low = nullptr;
    poly_add(n.high, n.low, &n_sum);
    if (!square) poly_add(m.high, m.low, &m_sum);
    poly_mult(n_sum, square ? n_sum : m_sum, &middle, pol);
    free_poly(&n_sum);
    free_poly(&m_sum);
    poly_mult(n.high, square ? n.high : m.high, &high, pol);
    poly_mult(n.low, square ? n.low : m.low, &low, pol);
    better_poly_sub(middle, high, &middle);
    better_poly_sub(middle, low, &middle);
    add_shifted(&low, middle, e);
    add_shifted(&low, high, 2 * e);
    return low;
}

/// The same when one operand has no high part: it meets both parts of the other.
poly two_products(poly whole, const Halves& m, int32_t e, polypt pol) {
    poly high = nullptr, low = nullptr;
    poly_mult(whole, m.high, &high, pol);
    poly_mult(whole, m.low, &low, pol);
    add_shifted(&low, high, e);
    return low;
}
}  // namespace

void karatsuba_poly_mult(poly n, poly m, polyptrr p, polypt pol) {
    const bool square = n == m;
    int32_t n_last = lastnode(n)->exp, m_last = lastnode(m)->exp;
    int32_t n_size = poly_length(n), m_size = poly_length(m);
    int32_t e = maxx(middle_offset(n, n_size, n_last), middle_offset(m, m_size, m_last));
    ScratchMark mark = scratch_mark();
    Halves n_halves = cut(n, n_size, n_last, e);
    Halves m_halves = square ? n_halves : cut(m, m_size, m_last, e);
    poly fresh;
    if (n_halves.high == nullptr)
        fresh = two_products(n_halves.low, m_halves, e, pol);
    else if (m_halves.high == nullptr)
        fresh = two_products(m_halves.low, n_halves, e, pol);
    else
        fresh = three_products(n_halves, m_halves, square, e, pol);
    scratch_release(mark);
    sub_expons(&fresh, -(n_last + m_last));
    poll_interrupt();
    free_poly(p);
    *p = fresh;
}
}  // namespace tolvex
