#pragma once
/// tests/unit/numbers/big_support.h: numbers at random, biased to corners, and a plain arithmetic on vectors
/// of digits against which the routines are compared.
#include "numbers/num_add.h"
#include "numbers/num_assign.h"
#include "numbers/num_compare.h"
#include "numbers/num_divide.h"
#include "numbers/num_gcd.h"
#include "numbers/num_mult.h"
#include "numbers/num_root.h"
#include "numbers/num_shift.h"
#include "numbers/num_sign.h"
#include "numbers/ring_switch.h"
#include "tests/support/support.h"

#include <initializer_list>
#include <vector>
namespace tolvex::test {
/// A number that gives its chain back. Tests only: no error jump passes one.
struct Num {
    number v = {};
    Num() = default;
    explicit Num(int64_t n) { setvalue_any(n, &v); }
    Num(std::initializer_list<int32_t> digits) { assign(std::vector<int32_t>(digits)); }
    explicit Num(const std::vector<int32_t>& digits) { assign(digits); }
    Num(const Num& o) { spec_num_assign(&o.v, &v); }
    Num(Num&& o) noexcept : v(o.v) { o.v.size = 0; }
    Num& operator=(const Num& o) {
        spec_num_assign(&o.v, &v);
        return *this;
    }
    ~Num() { special_free(&v); }
    void assign(const std::vector<int32_t>& digits) {
        special_free(&v);
        for (int32_t d : digits) {
            numptr p = newnum();
            p->value = d;
            p->next = nullptr;
            if (v.size == 0) {
                v.head = p;
            } else {
                v.tail->next = p;
            }
            v.tail = p;
            v.size++;
        }
    }
};

/// The number of a temporary, for the length of one call.
inline const number* at(const Num& x) { return &x.v; }

inline std::vector<int32_t> digits(const number* x) {
    std::vector<int32_t> d;
    for (const numnode* p = x->head; p != nullptr; p = p->next) d.push_back(p->value);
    return d;
}

inline bool same(const number* a, const number* b) { return digits(a) == digits(b); }

/// Digits of one shape: random, full, a power of the base and its neighbours, sparse.
inline Num random_digits(Rng& rng, int size, bool may_be_negative = true) {
    std::vector<int32_t> d(static_cast<size_t>(size));
    auto any = [&]() { return static_cast<int32_t>(rng() & k_max_digit); };
    switch (rng() % 8) {
    case 0:  // all digits full
        for (auto& x : d) x = k_max_digit;
        break;
    case 1:  // a power of the base
        d[0] = 1;
        break;
    case 2:  // one digit and zeros
        d[0] = any();
        break;
    case 3:  // runs of full digits and zeros
        for (auto& x : d) x = rng() % 3 == 0 ? 0 : k_max_digit;
        break;
    case 4:  // zeros at the tail
        for (size_t i = 0; i < (d.size() + 1) / 2; i++) d[i] = any();
        break;
    default:
        for (auto& x : d) x = any();
        if (rng() % 4 == 0) d[0] = 1;  // a short head
        if (rng() % 8 == 0) d[0] = k_max_digit;
    }
    if (d[0] == 0) d[0] = 1 + any() % 15;
    if (may_be_negative && rng() % 2 == 0)
        for (auto& x : d) x = -x;
    return Num(d);
}

/// Any number of up to `most` digits, biased to corners.
inline Num random_number(Rng& rng, int most, bool may_be_negative = true) {
    switch (rng() % 12) {
    case 0:
        return Num(int64_t{0});
    case 1:
        return Num(int64_t{1});
    case 2:
        return Num(int64_t{may_be_negative ? -1 : 2});
    case 3:
        return random_digits(rng, 1, may_be_negative);
    case 4:
        return random_digits(rng, 2, may_be_negative);
    default:
        return random_digits(rng, 1 + static_cast<int>(rng() % static_cast<uint64_t>(most)), may_be_negative);
    }
}

/// Plain signed integers: little-endian digits of base 2^28 and a sign. Slow and obvious.
struct Plain {
    std::vector<int64_t> d;  // no zero at the end
    bool negative = false;
};

inline void plain_trim(Plain& p) {
    while (!p.d.empty() && p.d.back() == 0) p.d.pop_back();
    if (p.d.empty()) p.negative = false;
}

inline Plain plain(const number* x) {
    Plain r;
    r.negative = x->head->value < 0;
    auto v = digits(x);
    for (size_t i = v.size(); i-- > 0;) r.d.push_back(v[i] < 0 ? -static_cast<int64_t>(v[i]) : v[i]);
    plain_trim(r);
    return r;
}

inline Num number_of(const Plain& p) {
    std::vector<int32_t> v;
    for (size_t i = p.d.size(); i-- > 0;) v.push_back(static_cast<int32_t>(p.negative ? -p.d[i] : p.d[i]));
    if (v.empty()) v.push_back(0);
    return Num(v);
}

inline int plain_compare_magnitudes(const Plain& a, const Plain& b) {
    if (a.d.size() != b.d.size()) return a.d.size() > b.d.size() ? 1 : -1;
    for (size_t i = a.d.size(); i-- > 0;)
        if (a.d[i] != b.d[i]) return a.d[i] > b.d[i] ? 1 : -1;
    return 0;
}

inline Plain plain_add(const Plain& a, const Plain& b, int sign = 1) {
    bool b_negative = b.negative != (sign < 0) && !b.d.empty();
    const Plain *x = &a, *y = &b;
    Plain r;
    if (a.negative == b_negative) {
        r.negative = a.negative;
    } else if (plain_compare_magnitudes(a, b) >= 0) {
        r.negative = a.negative;
    } else {
        r.negative = b_negative;
        x = &b;
        y = &a;
    }
    int64_t s = a.negative == b_negative ? 1 : -1, carry = 0;
    for (size_t i = 0; i < x->d.size() || i < y->d.size(); i++) {
        int64_t t = carry + (i < x->d.size() ? x->d[i] : 0) + s * (i < y->d.size() ? y->d[i] : 0);
        r.d.push_back(t & k_max_digit);
        carry = t >> k_digit_bits;
    }
    r.d.push_back(carry);
    plain_trim(r);
    return r;
}

inline Plain plain_mul(const Plain& a, const Plain& b) {
    Plain r;
    r.d.assign(a.d.size() + b.d.size() + 1, 0);
    r.negative = a.negative != b.negative;
    for (size_t i = 0; i < a.d.size(); i++) {
        int64_t carry = 0;
        for (size_t j = 0; j < b.d.size(); j++) {
            int64_t t = r.d[i + j] + a.d[i] * b.d[j] + carry;
            r.d[i + j] = t & k_max_digit;
            carry = t >> k_digit_bits;
        }
        r.d[i + b.d.size()] += carry;
    }
    plain_trim(r);
    return r;
}

inline Num product(const Num& a, const Num& b) {
    Num r;
    fast_mult(&a.v, &b.v, &r.v);
    return r;
}
inline Num sum(const Num& a, const Num& b) {
    Num r(a);
    fastsum(&r.v, &b.v);
    return r;
}
inline Num difference(const Num& a, const Num& b) {
    Num r(a);
    fastdiff(&r.v, &b.v);
    return r;
}
}  // namespace tolvex::test

/// Two numbers are the same, and in normal form.
#define EXPECT_NUM(a, b)                                                                                     \
    do {                                                                                                     \
        const tolvex::test::Num &left_ = (a), &right_ = (b);                                                 \
        EXPECT_TRUE(tolvex::num_check(&left_.v));                                                            \
        EXPECT_EQ(tolvex::test::digits(&left_.v), tolvex::test::digits(&right_.v));                          \
    } while (0)
