#include "poly/poly_read.h"

#include "language/tokens/scanner.h"
#include "numbers/data_files.h"
#include "numbers/decimal_io.h"
#include "numbers/num_divide.h"
#include "numbers/ring_switch.h"
#include "poly/poly_add.h"
#include "poly/poly_basic.h"
#include "poly/poly_convert.h"
#include "poly/poly_mult.h"
#include "poly/poly_shape.h"
#include "poly/poly_test.h"
#include "poly/poly_vars.h"
#include "poly/ports.h"
#include "storage/failure.h"
#include "storage/interrupt.h"

#include <cctype>
namespace tolvex {
namespace {
constexpr int32_t k_nesting = 152;
constexpr int32_t k_exponent_limit = 1 << 28;

// ---- text ----------------------------------------------------------------------------------------------

/// One reading under way. A routine that meets an error notes its number and returns false, so that each
/// caller can give back what it has; the error is raised at the top.
struct Reader {
    FILE* inf;
    nameptr* flag;
    int32_t parentheses;
    Err code;
    tokentipe symbol;  // the offending token
};

bool refuse(Reader& r, Err code) {
    r.code = code;
    r.symbol = token;
    return false;
}

void advance(Reader& r) { scanner(r.inf, &token, r.flag); }
bool at(const char* text) { return tok_is_text(token, text); }
bool at_digit() { return isdigit(tok_char(token)) != 0; }
bool at_name() { return isalpha(tok_char(token)) != 0; }

/// Partial sums of a growing number of terms, like the digits of a binary counter: each addition is of two
/// sums of about equal length.
struct SumOfTerms {
    static constexpr int32_t k_ranks = 40;
    poly part[k_ranks] = {};

    void add(poly term) {
        int32_t rank = 0;
        for (; part[rank] != nullptr; rank++) {
            best_poly_add(part[rank], term, &term);
            part[rank] = nullptr;
        }
        part[rank] = term;
    }
    poly total() {
        poly sum = nullptr;
        for (poly& p : part) {
            if (p == nullptr) continue;
            if (sum == nullptr) {
                sum = p;
            } else {
                best_poly_add(sum, p, &sum);
            }
            p = nullptr;
        }
        return sum;
    }
    void drop() {
        for (poly& p : part) free_poly(&p);
    }
};

bool read_poly(Reader& r, polyptrr p);

/// "(" poly ")"
bool read_parenthesis(Reader& r, polyptrr p) {
    if (++r.parentheses > k_nesting) return refuse(r, Err::read_coefficient_paren);
    advance(r);
    if (!read_poly(r, p)) return false;
    if (!at(")")) {
        free_poly(p);
        return refuse(r, Err::read_coefficient_paren);
    }
    r.parentheses--;
    advance(r);
    return true;
}

void read_digits(Reader& r, polyptrr p) {
    int32_t count = 0;
    newpoly(p);
    init_poly_node(*p);
    new_readin(r.inf, (*p)->ncoef, r.flag, &count);
}

/// The digits of an exponent, the first being current, as an ordinary integer in every ring.
bool read_exponent_digits(Reader& r, int32_t* e) {
    if (!at_digit()) return refuse(r, Err::read_exponent);
    int64_t v = 0;
    while (at_digit()) {
        if (v < k_exponent_limit) v = 10 * v + (tok_char(token) - '0');
        advance(r);
    }
    if (v >= k_exponent_limit) return refuse(r, Err::read_exponent);
    *e = static_cast<int32_t>(v);
    return true;
}

/// What follows "^".
bool read_exponent(Reader& r, int32_t* e) {
    bool guarded = at("(");
    if (guarded) advance(r);
    bool negative = at("-");
    if (negative) {
        if (!laurent) return refuse(r, Err::read_exponent);
        advance(r);
    }
    if (!read_exponent_digits(r, e)) return false;
    if (negative) *e = -*e;
    if (!guarded) return true;
    if (!at(")")) return refuse(r, Err::read_exponent_paren);
    advance(r);
    return true;
}

/// The powers of one term, by level.
struct Powers {
    int32_t level[k_levels];
    int32_t exp[k_levels];
    int32_t count;
};

bool read_powers(Reader& r, Powers* powers) {
    int32_t last = 0;
    while (at_name()) {
        int32_t level = 0, e = 1;
        if (!is_poly_name(token, &level)) return refuse(r, Err::read_unknown_variable);
        if (level <= last) return refuse(r, Err::read_order);
        last = level;
        advance(r);
        if (at("^")) {
            advance(r);
            if (!read_exponent(r, &e)) return false;
        }
        powers->level[powers->count] = level;
        powers->exp[powers->count++] = e;
    }
    return true;
}

/// c, which stands at level `level`, below all the powers from `from` on up: c := their product with c,
/// standing at level `to`. A level without power gets a pad.
poly raise_to_level(poly c, const Powers& powers, int32_t level, int32_t to) {
    int32_t i = powers.count - 1;
    for (level--; level >= to; level--) {
        int32_t e = 0;
        if (i >= 0 && powers.level[i] == level) e = powers.exp[i--];
        if (e == 0 && is_number(c)) continue;
        poly term;
        new_term(&term, e, c);
        c = term;
    }
    return c;
}

/// c := c times the powers; c stands at level 1 and is used up.
poly times_powers(poly c, const Powers& powers) {
    if (powers.count == 0 || poly_iszero(c)) return c;
    int32_t last = powers.level[powers.count - 1];
    if (is_number(c)) return raise_to_level(c, powers, last + 1, 1);
    if (poly_level(c) > last) {  // the usual case: the coefficient lies below all of them
        for (int32_t i = 0; i < last; i++) {
            poly pad = c;
            c = c->pcoef;
            free_node(pad);
        }
        return raise_to_level(c, powers, last + 1, 1);
    }
    poly monomial = nullptr;
    poly_set(1, &monomial);
    monomial = raise_to_level(monomial, powers, last + 1, 1);
    poly_mult(c, monomial, &c, polynames);
    free_poly(&monomial);
    return c;
}

bool read_term(Reader& r, polyptrr p) {
    poly c = nullptr;
    bool sum = at("(");
    if (sum) {
        if (!read_parenthesis(r, &c)) return false;
    } else if (at_digit()) {
        read_digits(r, &c);
    } else if (at_name()) {
        poly_set(1, &c);
    } else {
        return refuse(r, Err::bad_factor);
    }
    Powers powers;
    powers.count = 0;
    bool good = read_powers(r, &powers);
    if (good && sum && powers.count > 0 && !is_number(c) && poly_level(c) <= powers.level[0])
        good = refuse(r, Err::read_level);
    if (!good) {
        free_poly(&c);
        return false;
    }
    *p = times_powers(c, powers);
    return true;
}

/// Negates in the ring of the user, or a word that is reduced later.
void negate(poly p) {
    poly_inplace(p);
    if (!modularmode || minus_warned) return;
    if (tt_flag || minus_warning) {
        fputs("*** Warning. Negative value seen during poly readin in modular mode.\n", stdout);
        fputs("    Check your data carefully.\n", stdout);
    }
    if (tt_flag) {
        minus_warned = 1;
    } else {
        minus_warning = 0;
    }
}

bool read_poly(Reader& r, polyptrr p) {
    SumOfTerms sum;
    bool minus = at("-");
    if (minus) advance(r);
    for (;;) {
        poll_interrupt();
        poly term = nullptr;
        if (!read_term(r, &term)) {
            sum.drop();
            return false;
        }
        if (minus) negate(term);
        sum.add(term);
        minus = at("-");
        if (!minus && !at("+")) break;
        advance(r);
    }
    *p = sum.total();
    return true;
}
}  // namespace

void poly_readin(FILE* inf, polyptrr p, nameptr* flag, int32_t* depth) {
    Reader r = {inf, flag, 0, Err::bad_factor, {}};
    poly value = nullptr;
    boolean suspended = 0;
    if (nomodpolyreadin) check_modular(&suspended);
    bool good = read_poly(r, &value);
    if (nomodpolyreadin) restore_modular(suspended);
    if (!good) {
        error(r.code, tok_text(r.symbol));
        poly_set(0, &value);  // at a pushed level the statement goes on
    } else if (suspended) {
        poly_reduce_words(&value);
    }
    if (pseudo_polynames != nullptr) reduce_product(&value, polynames);
    *depth = poly_level(value);
    free_poly(p);
    *p = value;
}

// ---- the numeric form of chdat -------------------------------------------------------------------------

namespace {
constexpr int32_t k_end_of_chain = INT32_MAX;

[[noreturn]] void chdat_damaged() { tolvex_error("chdat file is damaged."); }

int32_t chdat_word() {
    int32_t v;
    if (chdat == nullptr || fscanf(chdat, " %d", &v) != 1) chdat_damaged();
    return v;
}

/// The digits of a number whose count has been read; n owns nothing.
void chdat_digits(int32_t count, imptr n) {
    if (count < 1) chdat_damaged();
    n->size = 0;
    numptr last = nullptr;
    for (int32_t i = 0; i < count; i++) {
        int32_t v = chdat_word();
        if (v > k_max_digit || v < -k_max_digit) chdat_damaged();
        numptr d = newnum();
        d->value = v;
        d->next = nullptr;
        if (last == nullptr) {
            n->head = d;
        } else {
            last->next = d;
        }
        last = n->tail = d;
        n->size = i + 1;
    }
    if (!modularmode) return;
    auto residue = static_cast<int32_t>(chain_mod_word(n, static_cast<uint32_t>(finf ? 2 : modulus)));
    special_free(n);
    n->lint = residue;
}

poly chdat_chain(int32_t level) {
    if (level > k_max_polys) chdat_damaged();
    poly head = nullptr;
    polyptrr tail = &head;
    for (int32_t e = chdat_word(); e != k_end_of_chain; e = chdat_word()) {
        int32_t count = chdat_word();
        poly c = nullptr;
        if (count == 0) {
            c = chdat_chain(level + 1);
        } else {
            newpoly(&c);
            init_poly_node(c);
            chdat_digits(count, c->ncoef);
        }
        if (e == 0 && is_number(c)) {
            *tail = c;
        } else {
            new_term(tail, e, c);
        }
        tail = &(*tail)->next;
    }
    return head;
}
}  // namespace

void direct_poly_read(polyptrr p) {
    poly value = chdat_chain(1);
    if (modularmode) poly_reduce_words(&value);  // takes out what has vanished
    fix_top(&value);
    free_poly(p);
    *p = value;
}

void direct_number_read(imptr n) {
    number value = {};
    chdat_digits(chdat_word(), &value);
    free_num(n);
    n->head = value.head;
    n->tail = value.tail;
    n->size = value.size;
    n->lint = value.lint;
}

// ---- the spill form ------------------------------------------------------------------------------------

namespace {
void put_word(FILE* f, int32_t v) { fwrite(&v, sizeof v, 1, f); }
bool get_word(FILE* f, int32_t* v) { return fread(v, sizeof *v, 1, f) == 1; }

bool get_leaf(FILE* f, polyptrr p) {
    int32_t count, v;
    if (!get_word(f, &count) || count < 0 || (count == 0) != (lintmode != 0)) return false;
    newpoly(p);
    init_poly_node(*p);
    imptr n = (*p)->ncoef;
    if (count == 0) {
        if (!get_word(f, &v)) return false;
        n->lint = v;
        return true;
    }
    for (int32_t i = 0; i < count; i++) {
        if (!get_word(f, &v) || v > k_max_digit || v < -k_max_digit) return false;
        if (i == 0) {
            num_make_digit(n, v);
            continue;
        }
        numptr d = newnum();
        d->value = v;
        d->next = nullptr;
        n->tail->next = d;
        n->tail = d;
        n->size++;
    }
    return true;
}

bool get_chain(FILE* f, polyptrr p, int32_t level) {
    if (level > k_max_polys + 1) return false;
    polyptrr tail = p;
    for (int32_t word;;) {
        if (!get_word(f, &word)) return false;
        if (word == k_end_of_chain) return *p != nullptr;
        if (word == negzero) {
            if (!get_leaf(f, tail)) return false;
        } else {
            poly c = nullptr;
            if (!get_chain(f, &c, level + 1)) {
                free_poly(&c);
                return false;
            }
            new_term(tail, word, c);
        }
        tail = &(*tail)->next;
    }
}
}  // namespace

void put_poly_disk(FILE* f, const polynode* p) {
    for (; p != nullptr; p = p->next) {
        if (!p->numb) {
            put_word(f, p->exp);
            put_poly_disk(f, p->pcoef);
            continue;
        }
        put_word(f, negzero);
        if (lintmode) {
            put_word(f, 0);
            put_word(f, p->ncoef->lint);
            continue;
        }
        put_word(f, p->ncoef->size);
        for (numptr d = p->ncoef->head; d != nullptr; d = d->next) put_word(f, d->value);
    }
    put_word(f, k_end_of_chain);
}

bool get_poly_disk(FILE* f, polyptrr p) {
    poly value = nullptr;
    bool good = get_chain(f, &value, 1);
    if (!good) free_poly(&value);
    free_poly(p);
    *p = value;
    return good;
}
}  // namespace tolvex
