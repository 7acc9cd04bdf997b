#include "numbers/num_shift.h"

#include <bit>
namespace tolvex {
namespace {
/// Removes one leading zero digit, if the value has more than that digit.
void drop_zero_head(imptr n) {
    if (n->head->value != 0 || n->size < 2) return;
    numptr old = n->head;
    n->head = old->next;
    n->size--;
    free_digit(old);
}

void append_zeros(imptr n, int32_t x) {
    for (int32_t i = 0; i < x; i++) {
        numptr d = newnum();
        d->value = 0;
        d->next = nullptr;
        n->tail->next = d;
        n->tail = d;
    }
    n->size += x;
}

void become_zero(imptr n) {
    if (n->size > 1) {
        free_chain(n->head->next, n->tail);
        n->head->next = nullptr;
        n->tail = n->head;
        n->size = 1;
    }
    n->head->value = 0;
}

int32_t bit_length(const number* q, int64_t head) {
    int64_t bits = word_top_bit(head) + 1 + static_cast<int64_t>(k_digit_bits) * (q->size - 1);
    return bits > INT32_MAX ? INT32_MAX : static_cast<int32_t>(bits);
}
}  // namespace

void shift_right_1(imptr n) { gen_shift_right(n, 1); }
void shift_right_2(imptr n) { gen_shift_right(n, 2); }

void gen_shift_right(imptr n, int32_t m) {
    CHECK(m >= 1 && m < k_digit_bits && n->head->value >= 0);
    uint32_t carry = 0, low_bits = (1u << m) - 1;
    for (numptr p = n->head; p != nullptr; p = p->next) {
        auto d = static_cast<uint32_t>(p->value);
        p->value = static_cast<int32_t>((d >> m) | carry << (k_digit_bits - m));
        carry = d & low_bits;
    }
    drop_zero_head(n);
}

void shift_right(imptr n, int32_t m) {
    CHECK(m >= 0 && n->head->value >= 0);
    int32_t whole = m / k_digit_bits;
    if (whole >= n->size) {
        become_zero(n);
        return;
    }
    if (whole > 0) {
        numptr last = n->head;
        for (int32_t i = n->size - whole - 1; i > 0; i--) last = last->next;
        free_chain(last->next, n->tail);
        last->next = nullptr;
        n->tail = last;
        n->size -= whole;
    }
    if (m % k_digit_bits != 0) gen_shift_right(n, m % k_digit_bits);
}

void shift_left(imptr n, int32_t k) {
    CHECK(k >= 0 && n->head->value >= 0);
    if (n->head->value == 0) return;
    append_zeros(n, k / k_digit_bits);
    int32_t r = k % k_digit_bits;
    if (r == 0) return;
    int32_t up = k_digit_bits - r;
    int32_t top = n->head->value >> up;
    for (numptr p = n->head; p != nullptr; p = p->next) {
        int32_t from_below = p->next != nullptr ? p->next->value >> up : 0;
        p->value = static_cast<int32_t>((static_cast<uint32_t>(p->value) << r) & k_max_digit) | from_below;
    }
    if (top != 0) {
        numptr d = newnum();
        d->value = top;
        d->next = n->head;
        n->head = d;
        n->size++;
    }
}

void fillout(imptr n, int32_t x) {
    if (n->head->value != 0) append_zeros(n, x);
}

int32_t logg2(const number* q) { return bit_length(q, q->head->value); }
int32_t logg2_neg(const number* q) { return bit_length(q, -static_cast<int64_t>(q->head->value)); }

int32_t logg2lint(int32_t q) {
    int64_t a = q < 0 ? -static_cast<int64_t>(q) : q;
    if (modularmode && a > modulus / 2) a = modulus - a;
    return word_top_bit(a);
}

int32_t word_top_bit(int64_t q) {
    uint64_t a = q < 0 ? 0 - static_cast<uint64_t>(q) : static_cast<uint64_t>(q);
    return static_cast<int32_t>(std::bit_width(a)) - 1;
}
}  // namespace tolvex
