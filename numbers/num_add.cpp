#include "numbers/num_add.h"

#include "numbers/digit_source.h"
#include "numbers/limbs.h"
#include "numbers/residue.h"
namespace tolvex {
namespace {
/// Digits of one sum: on the stack up to this many, in scratch beyond.
constexpr int32_t k_stack_digits = 64;

/// The chain of s[0..n), most significant first, all digits in range and not negative, s[0] not 0 unless n is
/// 1; each digit gets the sign. The operands have been read: the nodes of ans serve again.
void store_digits(imptr ans, const int32_t* s, int32_t n, bool negative) {
    const int32_t flip = negative ? -1 : 0;  // (v ^ flip) - flip is +-v
    if (n == ans->size) {
        numptr p = ans->head;
        for (int32_t i = 0; i < n; i++, p = p->next) p->value = (s[i] ^ flip) - flip;
        return;
    }
    special_free(ans);
    DigitSource source;
    numptr head = source.next(), last = head;
    head->value = (s[0] ^ flip) - flip;
    for (int32_t i = 1; i < n; i++) {
        numptr d = source.next();
        d->value = (s[i] ^ flip) - flip;
        last->next = d;
        last = d;
        source.pause_every(i, last);
    }
    source.finish(last);
    ans->head = head;
    ans->tail = last;
    ans->size = n;
}

/// s[first..n) brought to digits 0..base-1; returns the carry out of s[first]. The value is not negative.
int32_t carry_any_base(int32_t* s, int32_t first, int32_t n, int32_t base) {
    int32_t carry = 0;
    for (int32_t i = n - 1; i >= first; i--) {
        int32_t d = s[i] + carry;
        carry = (d >= base) - (d < 0);
        s[i] = d - carry * base;
    }
    return carry;
}

/// The same in base 2^28, where shift and mask do, also for negative sums.
int32_t carry_base_28(int32_t* s, int32_t first, int32_t n) {
    int32_t carry = 0;
    for (int32_t i = n - 1; i >= first; i--) {
        int32_t d = s[i] + carry;
        carry = d >> k_digit_bits;
        s[i] = d & k_max_digit;
    }
    return carry;
}

/// s[0..n) holds sums of two digits each, of any sign; s[-1] is free. Brings the value to normal form and
/// stores it. The first sum that is not 0 has the sign of the value, since the digits below it weigh less.
void carry_and_store(imptr ans, int32_t* s, int32_t n, int32_t base) {
    int32_t first = 0;
    while (first < n - 1 && s[first] == 0) first++;
    bool negative = s[first] < 0;
    if (negative)
        for (int32_t i = first; i < n; i++) s[i] = -s[i];
    int32_t carry = base == k_base ? carry_base_28(s, first, n) : carry_any_base(s, first, n, base);
    if (carry != 0) {
        s[--first] = carry;
    } else {
        while (first < n - 1 && s[first] == 0) first++;
    }
    store_digits(ans, s + first, n - first, negative);
}

/// ans := p + sign q for chains of nsize, msize digits in the given base.
void add_chains(numptr p, int32_t nsize, numptr q, int32_t msize, int32_t sign, imptr ans, int32_t base) {
    int32_t n = maxx(nsize, msize);
    int32_t room[k_stack_digits + 1];
    bool small = n <= k_stack_digits;
    ScratchMark mark = {};
    if (!small) mark = scratch_mark();
    int32_t* s = (small ? room : scratch_array<int32_t>(n + 1)) + 1;
    int32_t i = 0;
    for (; i < n - msize; i++, p = p->next) s[i] = p->value;
    for (; i < n - nsize; i++, q = q->next) s[i] = sign * q->value;
    for_long_polled<k_digits_unpolled>(n - i, [&](int64_t k) {
        s[i + k] = p->value + sign * q->value;
        p = p->next;
        q = q->next;
    });
    carry_and_store(ans, s, n, base);
    if (!small) scratch_release(mark);
}

/// ans := p + sign q in base 2^28, with the one- and two-digit cases first.
void add_digits(numptr p, int32_t nsize, numptr q, int32_t msize, int32_t sign, imptr ans) {
    if (nsize <= 2 && msize <= 2) {
        int64_t a = p->value, b = q->value;
        if (nsize == 2) a = a * k_base + p->next->value;
        if (msize == 2) b = b * k_base + q->next->value;
        chain_set_int64(ans, a + sign * b);
        return;
    }
    add_chains(p, nsize, q, msize, sign, ans, k_base);
}

/// The sum of two one-digit operands goes into the node that is there, if it is one digit again.
inline bool one_digit_sum(imptr ans, const number* n, int64_t b) {
    int64_t sum = n->head->value + b;
    if (ans->size != 1 || sum > k_max_digit || sum < -k_max_digit) return false;
    ans->head->value = static_cast<int32_t>(sum);
    return true;
}
}  // namespace

void fastsum(imptr n, const number* m) {
    if (n->size == 1 && m->size == 1 && one_digit_sum(n, n, m->head->value)) return;
    add_digits(n->head, n->size, m->head, m->size, 1, n);
}

void fastdiff(imptr n, const number* m) {
    if (n->size == 1 && m->size == 1 && one_digit_sum(n, n, -static_cast<int64_t>(m->head->value))) return;
    add_digits(n->head, n->size, m->head, m->size, -1, n);
}

void medsum(int32_t nsize, int32_t msize, numptr p, numptr q, imptr ans) {
    add_digits(p, nsize, q, msize, 1, ans);
}

void meddiff(int32_t nsize, int32_t msize, numptr p, numptr q, imptr ans) {
    add_digits(p, nsize, q, msize, -1, ans);
}

void summ(const number* n, const number* m, imptr ans, int32_t vblock) {
    add_chains(n->head, n->size, m->head, m->size, 1, ans, vblock);
}

void diff(numptr p, int32_t size, const number* m, imptr ans, int32_t vblock) {
    add_chains(p, size, m->head, m->size, -1, ans, vblock);
}

void sub(const number* n1, const number* n2, imptr n3) {
    if (!lintmode) {
        add_digits(n1->head, n1->size, n2->head, n2->size, -1, n3);
    } else if (modularmode) {
        n3->lint = mod_sub(n1->lint, n2->lint, modulus);
    } else {
        n3->lint = static_cast<int32_t>(static_cast<uint32_t>(n1->lint) - static_cast<uint32_t>(n2->lint));
    }
}

void int_add(imptr n, const number* m) {
    if (modularmode) {
        n->lint = mod_add(n->lint, m->lint, modulus);
    } else if (lintmode) {
        n->lint = static_cast<int32_t>(static_cast<uint32_t>(n->lint) + static_cast<uint32_t>(m->lint));
    } else {
        int64_t sum = static_cast<int64_t>(n->head->value) + m->head->value;
        CHECK(n->size == 1 && m->size == 1 && sum >= -k_max_digit && sum <= k_max_digit);
        n->head->value = static_cast<int32_t>(sum);
    }
}
}  // namespace tolvex
