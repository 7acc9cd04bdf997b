#include "tests/support/random_poly.h"
#if __has_include("poly/poly.h") && !defined(TOLVEX_UP_TO_numbers) && !defined(TOLVEX_UP_TO_tokens) &&       \
                  !defined(TOLVEX_UP_TO_storage)
#include "numbers/num_assign.h"
#include "numbers/num_compare.h"
#include "numbers/primes.h"
#include "numbers/residue.h"
#include "numbers/ring_switch.h"
#include "poly/div_general.h"
#include "poly/leaf_number.h"
#include "poly/poly_add.h"
#include "poly/poly_basic.h"
#include "poly/poly_test.h"
#include "poly/poly_vars.h"

#include <algorithm>
#include <cstring>
#include <vector>
namespace tolvex::test {
const Ring all_rings[] = {
    {0, false, "Z"},
    {2, false, "Z/2"},
    {3, false, "Z/3"},
    {5, false, "Z/5"},
    {6, false, "Z/6"},
    {32003, false, "Z/32003"},
    {36000, false, "Z/36000"},
    {65536, false, "Z/65536"},
    {65537, false, "Z/65537"},
    {1 << 30, false, "Z/2^30"},
    {2147483629, false, "Z/2147483629"},
    {2147483646, false, "Z/2147483646"},
    {256, true, "GF(2^8)"},
    {65536, true, "GF(2^16)"},
};
const int all_ring_count = static_cast<int>(sizeof all_rings / sizeof all_rings[0]);

PolyGuard::~PolyGuard() { free_poly(&p); }

void use_integers() { use_ring(0, false); }

const Ring& pick_ring(int round) {
    const Ring& r = all_rings[round % all_ring_count];
    use_variables(6);
    use_ring(r);
    return r;
}

void use_ring(int32_t m, bool table_field) {
    f256 = table_field && m == 256;
    f2t16 = table_field && m == 65536;
    finf = f256 || f2t16;
    set_modulus(m == 0 ? -1 : m);
    modularmode = lintmode = m != 0;
    mod_is_prime = m != 0 && (finf || is_prime(m));
    smallmodulus = m != 0 && (finf || m < 65535);
    div_poly_cutoff = m != 0 ? 25 : 6;
}

int32_t random_int(Rng& rng, int32_t low, int32_t high) {
    return std::uniform_int_distribution<int32_t>(low, high)(rng);
}

static int32_t random_residue(Rng& rng, Coefs coefs) {
    const int32_t top = modulus - 1;
    if (coefs == Coefs::ones) return random_int(rng, 0, 1) ? 1 : top;
    if (coefs == Coefs::corners || random_int(rng, 0, 7) == 0) {
        const int32_t corner[] = {0, 1, top, modulus / 2, std::min(2, top)};
        return corner[random_int(rng, 0, 4)];
    }
    return random_int(rng, 0, top);
}

/// x, fresh, becomes a chain of `digits` digits; now and then all of them full.
static void random_chain(Rng& rng, int32_t digits, imptr x) {
    bool full = random_int(rng, 0, 7) == 0, negative = random_int(rng, 0, 1);
    numptr* at = &x->head;
    for (int32_t i = 0; i < digits; i++) {
        numptr d = newnum();
        int32_t v = full ? k_max_digit : random_int(rng, i == 0 ? 1 : 0, k_max_digit);
        d->value = negative ? -v : v;
        d->next = nullptr;
        *at = x->tail = d;
        at = &d->next;
    }
    x->size = digits;
}

void random_number(Rng& rng, Coefs coefs, imptr x) {
    free_num(x);
    if (modularmode) {
        x->lint = random_residue(rng, coefs);
        return;
    }
    if (lintmode) {
        x->lint = random_int(rng, -1000, 1000);
        return;
    }
    switch (coefs) {
    case Coefs::small:
        leaf_set_chain(x, random_int(rng, -99, 99));
        break;
    case Coefs::digit:
        random_chain(rng, 1, x);
        break;
    case Coefs::two_digits:
        random_chain(rng, random_int(rng, 1, 2), x);
        break;
    case Coefs::huge:
        random_chain(rng, random_int(rng, 1, 12), x);
        break;
    case Coefs::ones:
        leaf_set_chain(x, random_int(rng, 0, 1) ? 1 : -1);
        break;
    case Coefs::corners: {
        const int64_t corner[] = {0,
                                  1,
                                  -1,
                                  2,
                                  k_max_digit,
                                  -k_max_digit,
                                  k_base,
                                  -k_base,
                                  2147483647,
                                  -2147483647 - 1LL,
                                  (1LL << 55) - 1,
                                  1LL << 55};
        int32_t i = random_int(rng, 0, 13);
        if (i < 12)
            leaf_set_chain(x, corner[i]);
        else
            random_chain(rng, i - 9, x);
    }
    }
}

/// The number times the monomial, used up; a zero number gives the leaf 0.
static poly number_term(poly c, const int32_t* exps, int32_t levels) {
    if (poly_iszero(c)) return c;
    while (levels > 0 && exps[levels - 1] == 0) levels--;
    for (; levels > 0; levels--) c = chain_node(exps[levels - 1], c);
    return c;
}

poly term_poly(int64_t coefficient, const int32_t* exps, int32_t levels) {
    imptr c;
    newimag(&c);
    if (modularmode)
        c->lint = residue_of_int(coefficient);
    else if (lintmode)
        c->lint = static_cast<int32_t>(coefficient);
    else
        setvalue_any(coefficient, c);
    return number_term(leaf_of(c), exps, levels);
}

poly random_poly(Rng& rng, const Shape& shape) {
    int32_t kind = random_int(rng, 0, 19);
    int32_t terms = kind == 0 || shape.terms < 2 ? minn(1, shape.terms) : random_int(rng, 1, shape.terms);
    bool absent[k_levels];
    for (int32_t i = 0; i < shape.levels; i++) absent[i] = random_int(rng, 0, 9) == 0 || kind == 1;
    // The terms are added pairwise, as in a tournament, so that large ones are made quickly.
    std::vector<poly> parts;
    for (int32_t i = 0; i < terms; i++) {
        int32_t exps[k_levels];
        for (int32_t j = 0; j < shape.levels; j++)
            exps[j] = absent[j] ? 0 : random_int(rng, shape.min_exp, shape.max_exp);
        imptr c;
        newimag(&c);
        random_number(rng, shape.coefs, c);
        parts.push_back(number_term(leaf_of(c), exps, shape.levels));
    }
    if (parts.empty()) parts.push_back(zero_leaf());
    while (parts.size() > 1) {
        size_t half = parts.size() / 2;
        for (size_t i = 0; i < half; i++) {
            best_poly_add(parts[i], parts.back(), &parts[i]);
            parts.pop_back();
        }
    }
    return parts[0];
}

poly random_poly(Rng& rng, int32_t levels, int32_t terms, int32_t max_exp, Coefs coefs) {
    return random_poly(rng, Shape{levels, terms, max_exp, coefs, 0});
}

poly random_nonzero_poly(Rng& rng, const Shape& shape) {
    for (;;) {
        poly p = random_poly(rng, shape);
        if (!poly_iszero(p)) return p;
        free_poly(&p);
    }
}

poly random_nonzero_poly(Rng& rng, int32_t levels, int32_t terms, int32_t max_exp, Coefs coefs) {
    return random_nonzero_poly(rng, Shape{levels, terms, max_exp, coefs, 0});
}

poly dense_poly(Rng& rng, int32_t degree, Coefs coefs) {
    poly head = nullptr;
    polyptrr at = &head;
    for (int32_t e = degree; e >= 0; e--) {
        imptr c;
        newimag(&c);
        do random_number(rng, coefs, c);
        while (iszero(c));
        *at = chain_node(e, leaf_of(c));
        at = &(*at)->next;
    }
    *at = nullptr;
    return head;
}

poly copy_of(const polynode* p) {
    poly q = nullptr;
    poly_assign(p, &q);
    return q;
}

static const char k_letters[] = "xyztuv";

poly poly_of(const char* text) {
    poly sum = zero_leaf();
    const char* s = text;
    auto blank = [&s] {
        while (*s == ' ' || *s == '*') s++;
    };
    blank();
    while (*s != 0) {
        int64_t c = 1;
        int32_t exps[6] = {};
        while (*s == '+' || *s == '-' || *s == ' ') c = *s++ == '-' ? -c : c;
        bool number_seen = false;
        int64_t magnitude = 0;
        for (; *s >= '0' && *s <= '9'; s++) {
            magnitude = 10 * magnitude + (*s - '0');
            number_seen = true;
        }
        if (number_seen) c *= magnitude;
        blank();
        for (const char* letter; *s != 0 && (letter = strchr(k_letters, *s)) != nullptr; blank()) {
            s++;
            int32_t e = 1;
            if (*s == '^') {
                s++;
                bool negative = *s == '-';
                if (negative) s++;
                for (e = 0; *s >= '0' && *s <= '9'; s++) e = 10 * e + (*s - '0');
                if (negative) e = -e;
            }
            exps[letter - k_letters] += e;
        }
        best_poly_add(sum, term_poly(c, exps, 6), &sum);
    }
    return sum;
}

static void add_number(const number* x, std::string& s) {
    if (lintmode || x->size <= 2) {
        s += std::to_string(lintmode       ? x->lint
                            : x->size == 1 ? x->head->value
                                           : x->head->value * int64_t{k_base} + x->tail->value);
        return;
    }
    s += '[';
    for (numptr d = x->head; d != nullptr; d = d->next) {
        s += std::to_string(d->value);
        s += d->next != nullptr ? ',' : ']';
    }
}

static void add_text(const polynode* p, int32_t level, const std::string& factors, std::string& s) {
    for (; p != nullptr; p = p->next) {
        std::string f = factors;
        if (p->exp != 0) {
            f += '*';
            if (level < 6) {
                f += k_letters[level];
            } else {
                f += 'x';
                f += std::to_string(level + 1);
            }
            if (p->exp != 1) {
                f += '^';
                f += std::to_string(p->exp);
            }
        }
        if (!p->numb) {
            add_text(p->pcoef, level + 1, f, s);
            continue;
        }
        if (!s.empty()) s.append(" + ");
        add_number(p->ncoef, s);
        s.append(f);
    }
}

std::string text_of(const polynode* p) {
    std::string s;
    if (p == nullptr) return "nil";
    add_text(p, 0, "", s);
    return s;
}

int64_t live_records() {
#ifdef TOLVEX_CHECKED
    free_waiting(INT64_MAX);
    return pool_counters<polynode>.live + pool_counters<number>.live + pool_counters<numnode>.live;
#else
    return 0;
#endif
}

void use_variables(int32_t levels) {
    while (polynames != nullptr) delete_poly_name(1);
    for (int32_t i = 1; i <= levels; i++) {
        tokentipe name = {};
        char text[16];
        snprintf(text, sizeof text, "x%d", i);
        tok_set(name, text);
        insert_poly_name(name, 1);
    }
}

bool divides(poly d, poly n) {
    poly q = nullptr;
    boolean failed = 0;
    gen_poly_divide(n, d, &q, polynames, &failed);
    free_poly(&q);
    return !failed;
}

#ifndef TOLVEX_NO_GTEST
void PolyTest::SetUp() {
    set_up_once();
    use_variables(6);
    use_integers();
    records_before = live_records();
}

void PolyTest::TearDown() {
    use_integers();
    laurent = 0;
    EXPECT_EQ(live_records(), records_before);
}
#endif
}  // namespace tolvex::test
#endif
