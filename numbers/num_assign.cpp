#include "numbers/num_assign.h"

#include "numbers/digit_source.h"
#include "numbers/limbs.h"
namespace tolvex {
void setvalue(int32_t n, imptr x) {
    if (lintmode) {
        x->lint = n;
        return;
    }
    // -2^31 has no magnitude in 32 bits and stands as one raw digit: a marker for the callers that want it.
    if ((n >= -k_max_digit && n <= k_max_digit) || n == INT32_MIN) {
        special_set(n, x);
    } else {
        chain_set_int64(x, n);
    }
}

void setvalue_any(int64_t n, imptr x) {
    if (lintmode) {
        x->lint = static_cast<int32_t>(static_cast<uint32_t>(static_cast<uint64_t>(n)));
    } else {
        chain_set_int64(x, n);
    }
}

void special_set(int32_t n, imptr x) {
    CHECK((n >= -k_max_digit && n <= k_max_digit) || n == INT32_MIN);
    if (x->size == 1) {
        x->head->value = n;
        return;
    }
    special_free(x);
    num_make_digit(x, n);
}

void special_set_2(int32_t n, int32_t m, imptr x) { chain_set_int64(x, static_cast<int64_t>(n) * m); }

void num_assign(const number* n, imptr x) {
    if (lintmode) {
        x->lint = n->lint;
    } else {
        fast_num_assign(n->head, n->size, x);
    }
}

void spec_num_assign(const number* n, imptr x) { fast_num_assign(n->head, n->size, x); }

/// x := the chain p; with `polled` there are safe points.
template <bool polled> static void copy_digits(numptr p, int32_t size, imptr x) {
    CHECK(size >= 1);
    if (size == 1 && x->size == 1) {
        x->head->value = p->value;
        return;
    }
    // The copy is complete before the old chain goes back: p may stand in x's own chain.
    DigitSource source;
    numptr head = source.next(), last = head;
    head->value = p->value;
    for (int32_t i = 1; i < size; i++) {
        p = p->next;
        numptr d = source.next();
        d->value = p->value;
        last->next = d;
        last = d;
        if constexpr (polled) source.pause_every(i, last);
    }
    source.finish(last);
    special_free(x);
    x->head = head;
    x->tail = last;
    x->size = size;
}

void fast_num_assign(numptr p, int32_t size, imptr x) { copy_digits<false>(p, size, x); }

void num_assign_polled(const number* n, imptr x) {
    if (lintmode) {
        x->lint = n->lint;
    } else {
        copy_digits<true>(n->head, n->size, x);
    }
}

void faster_num_assign(numptr p, int32_t size, imptrptr x) {
    if (p->value == 0) {
        *x = nullptr;
        return;
    }
    newimag(x);
    fast_num_assign(p, size, *x);
}
}  // namespace tolvex
