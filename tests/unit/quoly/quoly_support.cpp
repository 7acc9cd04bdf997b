#include "tests/unit/quoly/quoly_support.h"

#include "gcd/polygcd.h"
#include "language/tokens/scanner.h"
#include "numbers/display_modes.h"
#include "numbers/residue.h"
#include "poly/poly_add.h"
#include "poly/poly_basic.h"
#include "poly/poly_mult.h"
#include "poly/poly_test.h"
#include "quoly/quoly_add.h"
#include "quoly/quoly_display.h"
#include "quoly/quoly_mult.h"
#include "quoly/quoly_quot.h"

#include <cctype>
#include <cstdlib>
namespace tolvex::test {
/// x, y, z as far as `vars` goes; a list that stands so already is kept.
static void use_letters(int32_t vars) {
    if (number_polys == vars && (vars == 0 || tok_is(polynames->let, "x"))) return;
    while (number_polys > 0) delete_poly_name(1);
    const char* names[] = {"x", "y", "z"};
    for (int32_t i = 0; i < vars; i++) {
        tokentipe t = {};
        tok_set(t, names[i]);
        insert_poly_name(t, true);
    }
}

Setting::Setting(int32_t m, int32_t vars, bool with_laurent) {
    set_up_once();
    init_quoly_constants();
    use_letters(vars);
    pseudo_polynames = polynames;
    laurent = with_laurent;
    if (m == 0) {
        ring_enter_integers();
        return;
    }
    ring_enter_prime(m);
    f256 = m == 256;
    f2t16 = m == 65536;
    finf = f256 || f2t16;
    set_modulus(m);
    mod_is_prime = finf || is_prime(m);
}

Setting::~Setting() {
    ring_enter_integers();
    laurent = 0;
    uglyprint = monomial_list = 0;
    alt_form_display = do_line_sup = 1;
    dispcutoff = 76;
}

// ---- text ----------------------------------------------------------------------------------------------

namespace {
struct Parser {
    const char* at;

    char look() {
        for (;; at++) {
            if (*at == continuation && continuation != ' ') {
                while (*at != '\n' && *at != 0) at++;
                if (*at == 0) return 0;
            } else if (!isspace(static_cast<unsigned char>(*at))) {
                return *at;
            }
        }
    }

    quoly digits() {
        quoly q = nullptr, ten = nullptr;
        quoly_set(0, &q);
        quoly_set(finf ? 0 : modularmode ? residue_of_int(10) : 10, &ten);
        int64_t code = 0;
        for (; isdigit(static_cast<unsigned char>(look())); at++) {
            code = (code * 10 + (*at - '0')) & 0xFFFFFF;
            if (finf) continue;
            quoly d = nullptr;
            quoly_set(modularmode ? residue_of_int(*at - '0') : *at - '0', &d);
            fast_quoly_mult(&q, ten);
            best_quoly_add(&q, d);
        }
        if (finf) quoly_set(static_cast<int32_t>(code) % modulus, &q);
        free_quoly(&ten);
        return q;
    }

    int32_t exponent() {
        bool guarded = look() == '(';
        if (guarded) at++;
        bool minus = look() == '-';
        if (minus) at++;
        int32_t e = 0;
        for (; isdigit(static_cast<unsigned char>(look())); at++) e = 10 * e + (*at - '0');
        if (guarded && look() == ')') at++;
        return minus ? -e : e;
    }

    quoly factor() {
        quoly q = nullptr;
        char c = look();
        if (c == '(') {
            at++;
            q = sum();
            EXPECT_EQ(look(), ')') << at;
            at++;
        } else if (isdigit(static_cast<unsigned char>(c))) {
            q = digits();
        } else {
            tokentipe t = {};
            char name[2] = {c, 0};
            tok_set(t, name);
            int32_t level = 0;
            EXPECT_TRUE(is_poly_name(t, &level)) << at;
            poly x = nullptr;
            base_poly(&x, level);
            poly_to_quoly(&x, &q);
            at++;
        }
        if (look() == '^') {
            at++;
            int32_t e = exponent();
            number n = {};
            boolean lint = lintmode;
            if (lint) {
                n.lint = e;
            } else {
                num_make_digit(&n, e);
            }
            raise_to_power(&q, &n);
            special_free(&n);
        }
        return q;
    }

    quoly product() {
        quoly q = factor();
        for (;;) {
            char c = look();
            bool divide = c == '/';
            if (divide || c == '*') {
                at++;
            } else if (c != '(' && !isalnum(static_cast<unsigned char>(c))) {
                return q;
            }
            quoly f = factor();
            if (divide) {
                fast_quoly_quot(&q, f, 0);
            } else {
                fast_quoly_mult(&q, f);
            }
            free_quoly(&f);
        }
    }

    quoly sum() {
        bool minus = look() == '-';
        if (minus) at++;
        quoly q = product();
        if (minus) quoly_inplace(q);
        for (;;) {
            char c = look();
            if (c != '+' && c != '-') return q;
            at++;
            quoly t = product();
            if (c == '+') {
                best_quoly_add(&q, t);
            } else {
                best_quoly_sub(&q, t);
            }
        }
    }
};
}  // namespace

quoly value(const std::string& text) {
    Parser p = {text.c_str()};
    quoly q = p.sum();
    char end = p.look();
    EXPECT_TRUE(end == 0 || end == ';') << text << " stops at " << p.at;
    return q;
}

std::string text_of(const quolynode* q, bool terminal, bool* open) {
    char* data = nullptr;
    size_t size = 0;
    FILE* f = open_memstream(&data, &size);
    bool still_open = quoly_display(f, terminal, q);
    if (open != nullptr) *open = still_open;
    fclose(f);
    std::string text(data, size);
    free(data);
    return text;
}

// ---- random values -------------------------------------------------------------------------------------

static int64_t pick(Rng& rng, int64_t low, int64_t high) {
    return low + static_cast<int64_t>(rng() % static_cast<uint64_t>(high - low + 1));
}

static quoly random_number(Rng& rng) {
    quoly q = nullptr;
    if (modularmode) {
        int64_t v = pick(rng, 0, 3) == 0 ? pick(rng, -1, 1) + modulus : pick(rng, 0, modulus - 1);
        quoly_set(static_cast<int32_t>(v % modulus), &q);
        return q;
    }
    const int64_t corners[] = {0, 1, -1, k_max_digit, -k_max_digit, k_base};
    int64_t kind = pick(rng, 0, 9);
    quoly_set(static_cast<int32_t>(kind < 6 ? pick(rng, -9, 9) : corners[pick(rng, 0, 5)]), &q);
    if (kind == 9) {
        quoly big = nullptr;
        quoly_set(static_cast<int32_t>(pick(rng, -1000000, 1000000)), &big);
        for (int64_t i = pick(rng, 1, 3); i > 0; i--) fast_quoly_mult(&q, big);
        free_quoly(&big);
    }
    return q;
}

quoly random_polynomial_value(Rng& rng, int32_t vars, int32_t size) {
    quoly sum = random_number(rng);
    if (vars == 0) return sum;
    for (int64_t i = pick(rng, 0, size); i > 0; i--) {
        quoly term = random_number(rng);
        for (int32_t level = 1; level <= vars; level++) {
            auto e = static_cast<int32_t>(pick(rng, laurent ? -2 : 0, 3));
            if (e == 0 || pick(rng, 0, 2) == 0) continue;
            poly x = nullptr;
            base_poly(&x, level);
            quoly v = nullptr;
            poly_to_quoly(&x, &v);
            if (e < 0) quoly_reciprocal(&v);
            quoly_compute_power(&v, e < 0 ? -e : e);
            fast_quoly_mult(&term, v);
            free_quoly(&v);
        }
        best_quoly_add(&sum, term);
    }
    return sum;
}

quoly random_nonzero_value(Rng& rng, int32_t vars, int32_t size) {
    for (;;) {
        quoly q = random_value(rng, vars, size);
        if (!quoly_iszero(q)) return q;
        free_quoly(&q);
    }
}

/// A denominator that can be inverted: over a composite modulus with the leading number 1.
static quoly random_denominator(Rng& rng, int32_t vars, int32_t size) {
    for (;;) {
        quoly q = random_polynomial_value(rng, vars, size);
        bool good = !quoly_iszero(q);
        if (good && modularmode && !mod_is_prime) {
            const polynode* lead = nullptr;
            if (!q->numb)
                for (lead = q->numer; !lead->numb;) lead = lead->pcoef;
            good = mod_inverse_or_0(q->numb ? q->ncoef->lint : lead->ncoef->lint) != 0;
        }
        if (good) return q;
        free_quoly(&q);
    }
}

quoly random_value(Rng& rng, int32_t vars, int32_t size) {
    quoly q = random_polynomial_value(rng, vars, size);
    if (pick(rng, 0, 1) == 0) return q;
    quoly d = random_denominator(rng, vars, size);
    fast_quoly_quot(&q, d, 0);
    free_quoly(&d);
    return q;
}

quoly copy_of(const quolynode* q) {
    quoly c = nullptr;
    quoly_assign(q, &c);
    return c;
}

bool ring_has_gcds() { return !modularmode || mod_is_prime; }

bool canonical(const quolynode* q) {
    if (!quoly_check(q)) return false;
    if (q->numb || q->denom == nullptr || !ring_has_gcds()) return true;
    poly g = nullptr;
    Lpolygcd(q->numer, q->denom, &g, laurent, polynames);
    bool lowest = poly_eq_1(g);
    free_poly(&g);
    return lowest;
}

Live value_records() {
#ifdef TOLVEX_CHECKED
    free_waiting_quolys(INT64_MAX);
    free_waiting(INT64_MAX);
    return {{pool_counters<quolynode>.live, pool_counters<polynode>.live, pool_counters<number>.live,
             pool_counters<numnode>.live}};
#else
    return {};
#endif
}
}  // namespace tolvex::test
