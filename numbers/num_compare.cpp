#include "numbers/num_compare.h"
namespace tolvex {
namespace {
/// -1, 0, 1 for chains of one sign and equal length: the first differing digit decides. Signed digits make
/// this right for both signs.
int compare_digits(const numnode* p, const numnode* q) {
    for (; p != nullptr; p = p->next, q = q->next)
        if (p->value != q->value) return p->value > q->value ? 1 : -1;
    return 0;
}

/// -1, 0, 1 as |n| is below, equal to, above |m|.
int compare_magnitudes(const number* n, const number* m) {
    if (n->size != m->size) return n->size > m->size ? 1 : -1;
    int64_t s = n->head->value < 0 ? -1 : 1, t = m->head->value < 0 ? -1 : 1;
    const numnode* q = m->head;
    for (const numnode* p = n->head; p != nullptr; p = p->next, q = q->next) {
        int64_t a = s * p->value, b = t * q->value;
        if (a != b) return a > b ? 1 : -1;
    }
    return 0;
}
}  // namespace

boolean bigger(const number* n, const number* m) {
    if (lintmode) return n->lint > m->lint;
    if (n->size == 1 && m->size == 1) return n->head->value > m->head->value;
    bool n_negative = n->head->value < 0, m_negative = m->head->value < 0;
    if (n_negative != m_negative) return m_negative;
    if (n->size != m->size) return (n->size > m->size) != n_negative;
    return compare_digits(n->head, m->head) > 0;
}

boolean pos_bigger(const number* n, const number* m) {
    if (n->size != m->size) return n->size > m->size;
    return compare_digits(n->head, m->head) > 0;
}

boolean fast_bigger(numptr n, numptr p, int32_t nsize, int32_t psize) {
    if (nsize != psize) return nsize > psize;
    for (int32_t i = 0; i < nsize; i++, n = n->next, p = p->next)
        if (n->value != p->value) return n->value > p->value;
    return 0;
}

boolean int_abs_bigger(const number* n, const number* m, boolean equalok) {
    int c = compare_magnitudes(n, m);
    return c == 0 ? equalok : c > 0;
}

boolean abs_larger(const number* n, const number* m) {
    if (!lintmode) return compare_magnitudes(n, m) > 0;
    int64_t a = n->lint, b = m->lint;  // 64 bits: |-2^31| has no 32-bit form
    return (a < 0 ? -a : a) > (b < 0 ? -b : b);
}

boolean equal(const number* n, const number* m) { return lintmode ? n->lint == m->lint : spec_equal(n, m); }

boolean spec_equal(const number* n, const number* m) {
    return n->size == m->size && compare_digits(n->head, m->head) == 0;
}

boolean negtive(const number* n, const number* m) {
    if (lintmode) {
        auto a = static_cast<uint32_t>(n->lint), b = static_cast<uint32_t>(m->lint);
        if (modularmode && finf) return a == b;
        if (modularmode) return a + b == static_cast<uint32_t>(modulus) || (a == 0 && b == 0);
        return a + b == 0;
    }
    if (n->size != m->size) return 0;
    const numnode* q = m->head;
    for (const numnode* p = n->head; p != nullptr; p = p->next, q = q->next)
        if (static_cast<int64_t>(p->value) + q->value != 0) return 0;
    return 1;
}

boolean equal_which(const number* n, const number* m, boolean* firstone) {
    if (n->size != m->size) {
        *firstone = n->size > m->size;
        return 0;
    }
    int c = compare_digits(n->head, m->head);
    if (c != 0) *firstone = c > 0;
    return c == 0;
}

boolean equal_to_pm1(const number* n, boolean* its_minus1) {
    if (!lintmode && n->size != 1) {
        *its_minus1 = 0;
        return 0;
    }
    int32_t v = lintmode ? n->lint : n->head->value;
    // The residue modulus - 1 is the -1 of modular mode; modulo 2 it is 1 and counts as 1.
    if (modularmode && !finf && v == modulus - 1 && v != 1) v = -1;
    *its_minus1 = v == -1;
    return v == 1 || v == -1;
}
}  // namespace tolvex
